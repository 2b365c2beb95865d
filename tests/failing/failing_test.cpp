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

class Failing : public testing::TestWithParam<Scenario> {
 protected:
  static void SetUpTestSuite() { Folder(); }
  static void Expect(Fault fault) {
    // A host's file loses what it had buffered when it is closed, and closing has no result: nobody can know.
    const bool silentLoss = GetParam().newEnd && !GetParam().onDisk && fault != Fault::MEMORY;
    for (const bool onwards : {false, true})
      EXPECT_EXIT(FailOneByOne(GetParam(), fault, onwards, silentLoss), testing::ExitedWithCode(0), "")
          << "fault " << static_cast<int>(fault) << (onwards ? ", from there on" : ", once");
  }
};

TEST_P(Failing, Memory) {
  if (!K7_CAN_FAIL_MEMORY) GTEST_SKIP() << "the sanitizer owns the allocation functions";
  Expect(Fault::MEMORY);
}

TEST_P(Failing, Files) {
  for (const Fault fault : {Fault::FILE_CODE, Fault::FILE_HALF, Fault::FILE_NOTHING}) Expect(fault);
}

INSTANTIATE_TEST_SUITE_P(All, Failing, testing::ValuesIn(scenarios::ALL),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
