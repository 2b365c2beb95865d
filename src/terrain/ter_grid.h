// A grid of elevations in memory, and how threads look into grids while others let them go.
//
// A lookup takes no lock: it stands in a ReadSection while it follows a pointer to a grid, or to the levels
// of the terrain. Whoever takes such a pointer away waits for the sections that may have seen it, and only
// then frees what it led to. Sections last a fraction of a microsecond and never lock or wait.
#pragma once

#include <atomic>
#include <cstdint>

/// The block that holds rows x columns posts: the head, the pointers to the rows, the posts row by row.
struct K7TerGrid {
  std::atomic<int32_t> owners{1};
  int16_t rows = 0;
  int16_t columns = 0;

  int16_t** Rows() { return reinterpret_cast<int16_t**>(this + 1); }
  int16_t* Posts() { return reinterpret_cast<int16_t*>(Rows() + rows); }
  const int16_t* Posts() const { return const_cast<K7TerGrid*>(this)->Posts(); }
};
static_assert(sizeof(K7TerGrid) % alignof(int16_t*) == 0);

namespace k7ter {

/// A grid whose posts are not set; null without memory.
K7TerGrid* NewGrid(int rows, int columns);
/// Gives up one share in a grid that no lookup can find any more. Null is ignored.
void Release(K7TerGrid* grid);

/// Threads spread over counters on lines of their own, so that lookups do not slow each other down.
struct alignas(64) ReaderCount {
  std::atomic<int32_t> inside{0};
};
inline constexpr unsigned READER_COUNTS = 64;
extern ReaderCount readerCounts[READER_COUNTS];
inline constinit std::atomic<unsigned> threadsSeen{0};
inline constinit thread_local unsigned threadNumber = 0;  // from 1; 0 before the first section

class ReadSection {
 public:
  // Sequentially consistent, like every access to the pointers that sections follow: either a section sees
  // that the pointer is gone, or who took it away sees the section.
  ReadSection() : m_count(Mine()) { m_count.fetch_add(1, std::memory_order_seq_cst); }
  ~ReadSection() { m_count.fetch_sub(1, std::memory_order_release); }
  ReadSection(const ReadSection&) = delete;
  ReadSection& operator=(const ReadSection&) = delete;

 private:
  static std::atomic<int32_t>& Mine() {
    unsigned number = threadNumber;
    if (number == 0) threadNumber = number = ++threadsSeen;
    return readerCounts[number % READER_COUNTS].inside;
  }

  std::atomic<int32_t>& m_count;
};

/// Returns when every section that began before has ended. Not to be called within one.
void WaitForReaders();

}  // namespace k7ter
