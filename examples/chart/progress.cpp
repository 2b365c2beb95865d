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

Progress::Progress() : m_start(std::chrono::steady_clock::now()), m_terminal(isatty(fileno(stderr)) != 0) {}

Progress::~Progress() {
  if (m_shown) std::fputs("\r\033[K", stderr);
}

void Progress::Step(const std::string& what, const std::string& detail) {
  ++m_done;
  if (!m_terminal || std::chrono::steady_clock::now() - m_start < std::chrono::seconds(1)) return;
  const std::string name = std::filesystem::path(detail).stem().string();
  std::fprintf(stderr, "\r\033[Kk7chart: %d of %d: %s, %s", m_done, m_total, what.c_str(), name.c_str());
  std::fflush(stderr);
  m_shown = true;
}
