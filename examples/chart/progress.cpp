#include "progress.h"

#include <cstdio>
#include <filesystem>

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

Progress::Progress()
    : m_next(Clock::now() + std::chrono::seconds(1)), m_terminal(isatty(fileno(stderr)) != 0) {}

Progress::~Progress() {
  if (m_shown) std::fputs("\r\033[K", stderr);
}

void Progress::Step(const std::string& what, const std::string& detail) {
  ++m_done;
  m_step = what + ", " + std::filesystem::path(detail).stem().string();
  Within(0);
}

void Progress::Within(double share) {
  if (!m_terminal || Clock::now() < m_next) return;
  m_next = Clock::now() + std::chrono::milliseconds(100);
  std::fprintf(stderr, "\r\033[Kk7chart: %d of %d: %s %d%%", m_done, m_total, m_step.c_str(),
               static_cast<int>(share * 100));
  std::fflush(stderr);
  m_shown = true;
}
