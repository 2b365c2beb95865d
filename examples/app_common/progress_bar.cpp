#include "app_common/progress_bar.h"

#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

ProgressBar::ProgressBar() : m_terminal(isatty(fileno(stderr)) != 0) {}

void ProgressBar::Show(const std::string& what, double share) {
  static constexpr int WIDTH = 30;
  if (!m_terminal || Clock::now() < m_next) return;
  m_next = Clock::now() + std::chrono::milliseconds(100);
  const int full = static_cast<int>(share * WIDTH);
  std::fprintf(stderr, "\r\033[K[%s%s] %s", std::string(static_cast<size_t>(full), '#').c_str(),
               std::string(static_cast<size_t>(WIDTH - full), ' ').c_str(), what.c_str());
  std::fflush(stderr);
  m_shown = true;
}

void ProgressBar::Wipe() {
  if (m_shown) std::fputs("\r\033[K", stderr);
  m_shown = false;
}
