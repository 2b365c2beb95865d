// A bar on the terminal, for what takes longer than a moment.
#pragma once

#include <chrono>
#include <string>

class ProgressBar {
 public:
  ProgressBar();
  ~ProgressBar() { Wipe(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows what is being done and how far it has come, 0 to 1. Cheap enough to be called often.
  void Show(const std::string& what, double share);
  void Wipe();

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point m_next = Clock::now() + std::chrono::milliseconds(300);
  bool m_terminal;
  bool m_shown = false;
};
