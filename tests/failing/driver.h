// Lets the n-th thing that can fail do so, once or from there on, for every n, and judges what came of it.
#pragma once

#include "failing/failing_files.h"
#include "support/disk_file.h"

#include <k7/core.h>

#include <gtest/gtest.h>

#include <bit>
#include <iostream>
#include <string_view>
#include <vector>

/// What a scenario got, in order: a success must be that of the undisturbed run.
struct Digest {
  template <class... T>
  explicit Digest(const T&... parts) {
    Add(parts...);
  }
  bool operator==(const Digest&) const = default;
  template <class... T>
  void Add(const T&... parts) {
    ((m_value = m_value * 1099511628211u + Hash(parts)), ...);
  }

 private:
  static uint64_t Hash(std::string_view text) { return std::hash<std::string_view>()(text); }
  static uint64_t Hash(const char* text) { return Hash(std::string_view(text)); }
  static uint64_t Hash(int i) { return static_cast<uint64_t>(i); }
  static uint64_t Hash(double d) { return std::bit_cast<uint64_t>(d); }
  uint64_t m_value = 1;
};

constexpr int DAMAGED = 1;   ///< failed, and what was there before is not what it was
constexpr int LITTERED = 2;  ///< left a file behind that nobody asked for

/// What a host does. It starts with the files, in its own file system or in a folder on the disk, works with
/// memory and files that may fail, and answers 0 and what it got, a failure's code, or DAMAGED.
struct Scenario {
  const char* name;
  int (*run)(FailingIO& host, Digest& got);
  std::vector<int> codes = {};  ///< failures that it may answer beside K7_ERR_MEMORY
  std::vector<std::pair<std::string, std::string>> files = {};
  /// The first file is replaced: afterwards it is the old one or ends as the new one does. On the disk a
  /// failure leaves the old one; a host's own may be lost with its disk, though not with memory.
  const char* newEnd = nullptr;
  bool onDisk = false;
};

/// To be made before the first child process, which would leave it behind.
inline const std::string& Folder() {
  static const TempDir folder;
  static const std::string path = folder / "disk/";
  return path;
}

inline const char* OnDisk(const char* name) {
  const Quiet quiet;
  static std::string path;
  path = Folder() + name;
  return path.c_str();
}
inline K7IOK7& Native() {
  static K7IOK7 io;
  return io;
}

inline int Run(const Scenario& scenario, Digest& got) {
  namespace fs = std::filesystem;
  FailingIO host;
  if (scenario.onDisk) {
    K7IO::SetInst(&Native());
    fs::remove_all(Folder());
    fs::create_directories(Folder());
  }
  for (const auto& [path, text] : scenario.files) {
    host.Put(path.c_str(), text);
    if (scenario.onDisk) PutFile(OnDisk(path.c_str()), text);
  }
  int err;
  {
    const Disturbed on;
    err = scenario.run(host, got);
  }
  K7Options::Destroy();
  K7Log::CloseLogFile();
  tzset();  // the C library gets back what it keeps of the zone
  if (err > 0 || !scenario.newEnd) return err;
  const auto& [path, old] = scenario.files.front();
  const std::string now = scenario.onDisk ? GetFile(OnDisk(path.c_str())) : host.Text(path.c_str());
  got.Add(now);
  if (scenario.onDisk && std::distance(fs::directory_iterator(Folder()), {}) != 1) return LITTERED;
  const bool isNew = now.ends_with(scenario.newEnd) && !(err && scenario.onDisk);
  const bool mayBeLost = !scenario.onDisk && plan.fault != Fault::MEMORY;
  return err == 0 || isNew || now == old || mayBeLost ? err : DAMAGED;
}

/// Tries all failures, in a process of its own, which dies as a death test does: with 0 unless something was
/// found, then told on stderr. A crash or a hang is behind the last failure that is named there.
[[noreturn]] inline void FailOneByOne(const Scenario& scenario, Fault fault, bool onwards, bool silentLoss) {
  int findings = 0;
  const auto found = [&](const char* what, long detail) {
    std::cerr << what << " (" << detail << ") ";
    ++findings;
  };
  Digest whole;
  plan = {};
  plan.fault = fault;
  Run(scenario, whole);  // whatever is made once for the process is made
  plan.count = 0;
  whole = Digest();
  if (const int code = Run(scenario, whole)) found("fails undisturbed", code);
  const int points = plan.count;
  for (int n = 0; n < points; ++n) {
    std::cerr << n << ' ';
    const long before = held;
    plan = {fault, n, onwards};
    alarm(5);
    Digest got;
    const int code = Run(scenario, got);
    plan = {};
    alarm(0);
    const bool known = code == K7_ERR_MEMORY || std::ranges::count(scenario.codes, code) > 0;
    if (code == 0 && !(got == whole) && !silentLoss) found("wrong result", code);
    if (code > 0) found(code == LITTERED ? "litter" : "damage", code);
    if (code < 0 && !known) found("wrong code", code);
    if (held != before) found("leak", held - before);
  }
  _exit(findings > 0);
}
