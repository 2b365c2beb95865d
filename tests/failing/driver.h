// Lets the n-th thing that can fail do so, once or from there on, for every n, and judges what came of it.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

/// What fails, and how: memory, or a host's files by a code, by half of what was asked, or without a word.
enum class Fault { NONE, MEMORY, FILE_CODE, FILE_HALF, FILE_NOTHING };

/// The one failure that is planned. Only what runs under `Disturbed` counts.
struct Plan {
  Fault fault = Fault::NONE;
  int at = -1;
  bool onwards = false;
  int count = 0;
  bool armed = false;

  bool Fails() {
    if (!armed) return false;
    const int i = count++;
    return at >= 0 && (i == at || (onwards && i > at));
  }
};
inline constinit Plan plan;
/// Allocations and files that are held.
inline constinit long held = 0;

/// The library's work, and within it what a host does, whose memory is not at issue.
template <bool ARMED>
struct Arming {
  Arming() { plan.armed = ARMED; }
  ~Arming() { plan.armed = before; }
  Arming(const Arming&) = delete;
  Arming& operator=(const Arming&) = delete;
  const bool before = plan.armed;
};
using Disturbed = Arming<true>;
using Quiet = Arming<false>;

/// What a scenario got, in order (FNV-1a): a success must be that of the undisturbed run.
struct Digest {
  uint64_t value = 14695981039346656037u;

  Digest() = default;
  explicit Digest(const char* text) { Add(text); }
  bool operator==(const Digest&) const = default;
  void Add(const void* data, size_t size) {
    for (size_t i = 0; i < size; ++i)
      value = (value ^ static_cast<const unsigned char*>(data)[i]) * 1099511628211u;
  }
  void Add(const char* text) {
    while (*text) Add(text++, 1);
    Add("", 1);
  }
  void Add(int i) { Add(&i, sizeof i); }
  void Add(double d) { Add(&d, sizeof d); }
};

/// Answers 0 and fills the digest, or a failure's negative code, or DAMAGED.
using ScenarioFunction = int (*)(Digest&);
constexpr int DAMAGED = 1;   ///< failed, and what was there before is not what it was
constexpr int LITTERED = 2;  ///< left a file behind that nobody asked for

struct Scenario {
  const char* name;
  ScenarioFunction run;
  std::vector<int> codes;  ///< failures that it may answer
  bool usesHostFiles = false;
};

enum class Finding { WRONG_RESULT, WRONG_CODE, DAMAGE, LEAK, CRASH, HANG };
constexpr const char* FINDING_NAMES[] = {"wrong result", "wrong code", "damage", "leak", "crash", "hang"};

struct Found {
  Finding kind;
  int at;
  int code;
};

/// What a child process tells its parent, in memory that they share.
struct Report {
  int at;  ///< being tried
  int count;
  Found found[4096];
  void Add(Finding kind, int code) {
    if (count < 4096) found[count++] = {kind, at, code};
  }
};

inline void TryFrom(int first, const Scenario& scenario, Fault fault, bool onwards, Report& report) {
  Digest whole;
  plan = {};
  plan.fault = fault;
  scenario.run(whole);  // whatever is made once for the process is made
  plan.count = 0;
  whole = {};
  report.at = -1;
  if (const int code = scenario.run(whole)) return report.Add(Finding::WRONG_RESULT, code);
  const int points = plan.count;
  for (int n = first; n < points; ++n) {
    report.at = n;
    const long before = held;
    plan = {fault, n, onwards};
    alarm(5);
    Digest result;
    const int code = scenario.run(result);
    plan = {};
    alarm(0);
    if (code == 0 && !(result == whole)) report.Add(Finding::WRONG_RESULT, code);
    if (code > 0) report.Add(Finding::DAMAGE, code);
    bool allowed = code >= 0;
    for (const int known : scenario.codes) allowed = allowed || code == known;
    if (!allowed) report.Add(Finding::WRONG_CODE, code);
    if (held != before) report.Add(Finding::LEAK, static_cast<int>(held - before));
  }
}

/// All findings. Each run has a process of its own, so that a crash and a hang are findings too, and the next
/// failure is tried behind them.
inline std::vector<Found> FailOneByOne(const Scenario& scenario, Fault fault, bool onwards) {
  static constexpr int MOST_DEATHS = 20;
  auto& report = *static_cast<Report*>(
      mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  report.count = 0;
  report.at = -1;
  for (int deaths = 0; deaths < MOST_DEATHS; ++deaths) {
    const pid_t child = fork();
    if (child == 0) {
      TryFrom(report.at + 1, scenario, fault, onwards, report);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status == 0) break;
    report.Add(WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM ? Finding::HANG : Finding::CRASH, status);
  }
  std::vector<Found> found(report.found, report.found + report.count);
  munmap(&report, sizeof(Report));
  return found;
}
