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

struct Tolerated {
  const char* scenario;
  Fault fault;
  Finding kind;
  const char* reason;
};

// What is not mended yet.
const Tolerated KNOWN[] = {
    {"Checksum", Fault::FILE_NOTHING, Finding::WRONG_CODE, "a read that fails counts as the end of the data"},
    {"FindDirsRecur", Fault::MEMORY, Finding::DAMAGE,
     "a path that could not be made is searched from the root"},
    {"FindDirsRecur", Fault::MEMORY, Finding::WRONG_RESULT, "the same from the current folder"},
    {"HostXmlRead", Fault::FILE_HALF, Finding::WRONG_CODE,
     "a read that falls short counts as the end of the file"},
    {"HostXmlWrite", Fault::MEMORY, Finding::WRONG_RESULT,
     "a path that could not be copied is the empty one"},
    {"NativeXmlWrite", Fault::MEMORY, Finding::DAMAGE,
     "the temporary file stays when its path cannot be made"},
    {"OptionsRead", Fault::MEMORY, Finding::WRONG_RESULT, "texts that could not be made are empty ones"},
    {"OptionsWrite", Fault::MEMORY, Finding::WRONG_RESULT,
     "the root's name, and the path, as in HostXmlWrite"},
    {"ShapesOneByOne", Fault::FILE_CODE, Finding::WRONG_RESULT,
     "a failed read or seek shifts the attributes"},
    {"ShapesOneByOne", Fault::FILE_HALF, Finding::WRONG_RESULT, "the same"},
    {"ShapesOneByOne", Fault::FILE_NOTHING, Finding::WRONG_RESULT, "the same"},
    {"ShapesWhole", Fault::FILE_CODE, Finding::WRONG_RESULT, "the same"},
    {"ShapesWhole", Fault::FILE_HALF, Finding::WRONG_RESULT, "the same"},
    {"ShapesWhole", Fault::FILE_NOTHING, Finding::WRONG_RESULT, "the same"},
    {"Version", Fault::MEMORY, Finding::WRONG_RESULT,
     "a path that could not be made is that of another folder"},
    {"XmlTree", Fault::MEMORY, Finding::WRONG_RESULT,
     "an attribute that could not be copied is an empty one"},
};

bool IsKnown(const Scenario& scenario, Fault fault, Finding kind) {
  for (const Tolerated& t : KNOWN)
    if (std::strcmp(t.scenario, scenario.name) == 0 && t.fault == fault && t.kind == kind) return true;
  return false;
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
