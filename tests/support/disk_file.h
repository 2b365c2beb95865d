// Whole files of the disk, read and written past the library; and a user who may not do everything.
#pragma once

#include "support/platform.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#endif
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline void PutFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string GetFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

#ifdef _WIN32

// Neither exists there: the tests that need them are skipped.
struct SmallDisk {
  explicit SmallDisk(size_t) {}
};
struct Nobody {
  explicit Nobody(const TempDir&) {}
  static bool Changed() { return false; }
};

#else

/// Files of the process grow to so many bytes only: a disk that fills up in the middle of a text.
class SmallDisk {
 public:
  explicit SmallDisk(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~SmallDisk() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  rlimit m_before{};
  void (*const m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

/// Root may read and write everything: for a while this process is somebody else, who may reach `dir`.
class Nobody {
 public:
  explicit Nobody(const TempDir& dir) {
    if (!Changed()) return;
    namespace fs = std::filesystem;
    fs::permissions(dir.Path(), fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
    EXPECT_EQ(seteuid(65534), 0);
  }
  ~Nobody() { EXPECT_TRUE(!Changed() || seteuid(0) == 0); }
  Nobody(const Nobody&) = delete;
  Nobody& operator=(const Nobody&) = delete;
  static bool Changed() { return getuid() == 0; }
};

#endif
