// Every allocation and every operation of a host's files fails, one at a time and from there on. A failure
// must be told by one of its codes, cost nothing that was there before, and hold nothing back; what counts as
// a success must be what an undisturbed run gets.

#include "failing/scenarios.h"

// The process's allocation functions: the library finds them here, too. Sanitizers have their own.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define K7_CAN_FAIL_MEMORY 1

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);

static bool MemoryFails() { return plan.fault == Fault::MEMORY && plan.Fails(); }
static void* Held(void* p) {
  held += p != nullptr;
  return p;
}
void* malloc(size_t size) noexcept { return MemoryFails() ? nullptr : Held(__libc_malloc(size)); }
void* calloc(size_t n, size_t size) noexcept {
  return MemoryFails() ? nullptr : Held(__libc_calloc(n, size));
}
void* realloc(void* p, size_t size) noexcept {
  if (MemoryFails()) return nullptr;
  held += !p;
  return __libc_realloc(p, size);
}
void free(void* p) noexcept {
  held -= p != nullptr;
  __libc_free(p);
}
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return malloc(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return malloc(size); }
#else
#define K7_CAN_FAIL_MEMORY 0
#endif

namespace {

// A host's file loses what it had buffered when it is closed, and closing has no result: through a host's own
// services nobody can know.
bool IsKnown(const Scenario& scenario, Fault fault, Finding kind) {
  const bool writesThroughHost =
      std::strcmp(scenario.name, "HostXmlWrite") == 0 || std::strcmp(scenario.name, "OptionsWrite") == 0;
  return writesThroughHost && fault != Fault::MEMORY && kind == Finding::WRONG_RESULT;
}

constexpr const char* FAULT_NAMES[] = {"nothing", "memory", "files by a code", "files by half",
                                       "files silently"};

class Failing : public testing::TestWithParam<Scenario> {
 protected:
  static void SetUpTestSuite() { scenarios::Folder(); }
  static void Expect(Fault fault) {
    for (const bool onwards : {false, true})
      for (const Found& found : FailOneByOne(GetParam(), fault, onwards)) {
        EXPECT_TRUE(IsKnown(GetParam(), fault, found.kind))
            << GetParam().name << ", " << FAULT_NAMES[static_cast<int>(fault)] << ", "
            << (onwards ? "from " : "only ") << found.at << ": "
            << FINDING_NAMES[static_cast<int>(found.kind)] << " (" << found.code << ")";
      }
  }
};

TEST_P(Failing, Memory) {
  if (!K7_CAN_FAIL_MEMORY) GTEST_SKIP() << "the sanitizer owns the allocation functions";
  Expect(Fault::MEMORY);
}

TEST_P(Failing, Files) {
  if (!GetParam().usesHostFiles) return;
  for (const Fault fault : {Fault::FILE_CODE, Fault::FILE_HALF, Fault::FILE_NOTHING}) Expect(fault);
}

INSTANTIATE_TEST_SUITE_P(All, Failing, testing::ValuesIn(scenarios::ALL),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
