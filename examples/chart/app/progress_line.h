// A progress line on the terminal, for whatever takes longer than a second.
#pragma once

#include "ink/progress.h"

#include <chrono>

class ProgressLine : public Progress {
 public:
  ProgressLine();
  /// Wipes the line.
  ~ProgressLine() override;
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// So many steps more than have been begun.
  void Expect(int steps) { m_steps = m_done + steps; }
  void Step(const std::string& what) override;
  void Within(double share) override;

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point m_next;  // when the line is written again
  std::string m_step;
  bool m_terminal;
  bool m_shown = false;
  int m_steps = 0;  // 0: not known
  int m_done = 0;
};
