#include "app/progress_line.h"

#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

ProgressLine::ProgressLine()
    : m_next(Clock::now() + std::chrono::seconds(1)), m_terminal(isatty(fileno(stderr)) != 0) {}

ProgressLine::~ProgressLine() {
  if (m_shown) std::fputs("\r\033[K", stderr);
}

void ProgressLine::Step(const std::string& what) {
  ++m_done;
  m_step = what;
  Within(0);
}

void ProgressLine::Within(double share) {
  if (!m_terminal || Clock::now() < m_next) return;
  m_next = Clock::now() + std::chrono::milliseconds(100);
  std::fputs("\r\033[Kk7chart: ", stderr);
  if (m_steps > 0) std::fprintf(stderr, "%d of %d: ", m_done, m_steps);
  std::fputs(m_step.c_str(), stderr);
  if (share > 0) std::fprintf(stderr, " %d%%", static_cast<int>(share * 100));
  std::fflush(stderr);
  m_shown = true;
}
