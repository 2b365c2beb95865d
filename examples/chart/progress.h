// A progress line on the terminal, for drawings that take longer than a second.
#pragma once

#include <chrono>
#include <string>

class Progress {
 public:
  Progress();
  /// Wipes the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void SetTotal(int steps) { m_total = steps; }
  /// Begins the next step.
  void Step(const std::string& what, const std::string& detail);
  /// How far the step has come, 0 to 1. Cheap enough to be called for every shape.
  void Within(double share);

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point m_next;  // when the line is written again
  std::string m_step;
  bool m_terminal;
  bool m_shown = false;
  int m_total = 0;
  int m_done = 0;
};
