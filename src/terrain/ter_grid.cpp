#include "terrain/ter_grid.h"

#include "io/os.h"

#include <chrono>
#include <cstdlib>
#include <limits>
#include <new>
#include <thread>

constinit k7ter::ReaderSlot k7ter::readerSlots[READER_SLOTS];

namespace {

using k7ter::ReaderSlot;

// Decided before any thread owns a slot: where the system refuses, all share.
bool CanFence() {
  static const bool can = k7os::FenceThreads();
  return can;
}

constinit thread_local ReaderSlot* ownSlot = nullptr;
constinit thread_local bool isEnding = false;

// At the end of a thread. What it looks up afterwards, as others of its objects end, shares the slot.
struct GiveBack {
  ~GiveBack() {
    isEnding = true;
    ownSlot->owner.store(nullptr, std::memory_order_release);
  }
};

bool TakeSlot(ReaderSlot& slot, const void* thread) {
  const void* none = nullptr;
  if (isEnding || !CanFence() || !slot.owner.compare_exchange_strong(none, thread)) return false;
  ownSlot = &slot;
  thread_local const GiveBack atEnd;
  return true;
}

}  // namespace

K7TerGrid* k7ter::NewGrid(const K7ChartRect& bounds, int rows, int columns) {
  const size_t rowCount = static_cast<size_t>(rows), rowSize = static_cast<size_t>(columns) * sizeof(int16_t);
  void* const block = std::malloc(sizeof(K7TerGrid) + rowCount * (sizeof(int16_t*) + rowSize));
  if (!block) return nullptr;
  K7TerGrid* const grid = new (block) K7TerGrid;
  static constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
  grid->south = bounds.South();
  grid->west = bounds.West();
  grid->east = grid->west > bounds.East() ? bounds.East() + 360 : bounds.East();
  grid->height = bounds.North() - grid->south;
  grid->width = grid->east - grid->west;
  if (!(grid->height > 0)) grid->height = NONE;
  if (!(grid->width > 0)) grid->width = NONE;
  grid->rows = static_cast<int16_t>(rows);
  grid->columns = static_cast<int16_t>(columns);
  grid->rowCount = grid->rows;
  grid->columnCount = grid->columns;
  for (int row = 0; row < rows; ++row) grid->Rows()[row] = grid->Posts() + int64_t{row} * columns;
  return grid;
}

void k7ter::Release(K7TerGrid* grid) {
  if (grid && grid->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) std::free(grid);
}

k7ter::ReadSection::ReadSection() : m_slot(SlotOf(k7os::ThreadMark())) {
  const void* const thread = k7os::ThreadMark();
  m_isOwner = Owns(thread, m_slot) || TakeSlot(m_slot, thread);
  if (m_isOwner) {
    m_slot.Step();
    std::atomic_signal_fence(std::memory_order_seq_cst);
  } else {
    m_slot.sharers.fetch_add(1, std::memory_order_seq_cst);
  }
}

k7ter::ReadSection::~ReadSection() {
  if (m_isOwner)
    m_slot.Step();
  else
    m_slot.sharers.fetch_sub(1, std::memory_order_release);
}

void k7ter::WaitForReaders() {
  // A host that forbids itself the call later on leaves time: what a processor has stored is seen by all
  // within microseconds.
  if (CanFence() && !k7os::FenceThreads()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  for (const ReaderSlot& slot : readerSlots) {
    const unsigned at = slot.steps.load(std::memory_order_acquire);
    while (at % 2 == 1 && slot.steps.load(std::memory_order_acquire) == at) std::this_thread::yield();
    while (slot.sharers.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
  }
}
