// A grid of elevations in memory, and how threads look into grids while others let them go.
//
// A lookup takes no lock: it stands in a ReadSection while it follows a pointer to a grid, or to the levels
// of the terrain. Whoever takes such a pointer away waits for the sections that may have seen it, and only
// then frees what it led to. Sections last a fraction of a microsecond, never lock or wait, and do not
// nest.
#pragma once

#include <k7/projection/chart_rect.h>

#include <atomic>
#include <cstdint>

/// The block that holds rows x columns posts: the head, the pointers to the rows, the posts row by row.
struct K7TerGrid {
  std::atomic<int32_t> owners{1};
  int16_t rows = 0;
  int16_t columns = 0;
  // Where the tile lies, degrees; the east runs on across 180. What has no height or no width has NaN for it,
  // and no position then has a post.
  double south = 0, west = 0, east = 0, height = 0, width = 0;
  double rowCount = 0, columnCount = 0;

  int16_t** Rows() { return reinterpret_cast<int16_t**>(this + 1); }
  int16_t* Posts() { return reinterpret_cast<int16_t*>(Rows() + rows); }
  const int16_t* Posts() const { return const_cast<K7TerGrid*>(this)->Posts(); }
  int PostAt(double lat, double lon) const;
};
static_assert(sizeof(K7TerGrid) % alignof(int16_t*) == 0);

namespace k7ter {

/// A grid of a tile, whose posts are not set; null without memory.
K7TerGrid* NewGrid(const K7ChartRect& bounds, int rows, int columns);
/// Gives up one share in a grid that no lookup can find any more. Null is ignored.
void Release(K7TerGrid* grid);

/// Where threads say that they are within a section: at most one that owns the slot, and any number that
/// share it.
struct alignas(64) ReaderSlot {
  std::atomic<const void*> owner{nullptr};  // its mark
  std::atomic<unsigned> steps{0};           // of the owner, into sections and out of them: odd within one
  std::atomic<int32_t> sharers{0};

  void Step() { steps.store(steps.load(std::memory_order_relaxed) + 1, std::memory_order_release); }
};
inline constexpr unsigned READER_SLOTS = 256;
extern ReaderSlot readerSlots[READER_SLOTS];

/// The slot of the calling thread. Threads that start one after the other have stacks, and so marks, one
/// after the other.
inline ReaderSlot& SlotOf(const void* thread) {
  return readerSlots[(reinterpret_cast<uintptr_t>(thread) >> 12) % READER_SLOTS];
}
inline bool Owns(const void* thread, const ReaderSlot& slot) {
  return slot.owner.load(std::memory_order_relaxed) == thread;
}

/// A section of a thread that owns its slot. Either it sees that a pointer is gone, or who took it away sees
/// the section. For that the mark must not come behind what is read: a locked instruction would do, but
/// lookups would then wait for each other's memory. So the order is kept for the compiler alone, and who
/// takes a pointer away, which is rare, has all threads fenced.
class OwnSection {
 public:
  explicit OwnSection(ReaderSlot& slot) : m_slot(slot) {
    m_slot.Step();
    std::atomic_signal_fence(std::memory_order_seq_cst);
  }
  ~OwnSection() { m_slot.Step(); }
  OwnSection(const OwnSection&) = delete;
  OwnSection& operator=(const OwnSection&) = delete;

 private:
  ReaderSlot& m_slot;
};

/// A section of any thread, which comes to own its slot by the first when the slot is free. Otherwise order
/// is kept by sequential consistency, like that of all accesses to the pointers that sections follow.
class ReadSection {
 public:
  ReadSection();
  ~ReadSection();
  ReadSection(const ReadSection&) = delete;
  ReadSection& operator=(const ReadSection&) = delete;

 private:
  ReaderSlot& m_slot;
  bool m_isOwner;
};

/// Returns when every section that began before has ended. Not to be called within one.
void WaitForReaders();

}  // namespace k7ter
