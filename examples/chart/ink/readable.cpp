#include "ink/readable.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

std::string WhyUnreadable(const std::string& path) {
  if (std::FILE* const file = std::fopen(path.c_str(), "rb")) {
    std::fclose(file);
    return {};
  }
  return std::strerror(errno);
}
