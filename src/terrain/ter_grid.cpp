#include "terrain/ter_grid.h"

#include <cstdlib>
#include <new>
#include <thread>

k7ter::ReaderCount k7ter::readerCounts[READER_COUNTS];

K7TerGrid* k7ter::NewGrid(int rows, int columns) {
  const size_t rowCount = static_cast<size_t>(rows), rowSize = static_cast<size_t>(columns) * sizeof(int16_t);
  void* const block = std::malloc(sizeof(K7TerGrid) + rowCount * (sizeof(int16_t*) + rowSize));
  if (!block) return nullptr;
  K7TerGrid* const grid = new (block) K7TerGrid;
  grid->rows = static_cast<int16_t>(rows);
  grid->columns = static_cast<int16_t>(columns);
  for (int row = 0; row < rows; ++row) grid->Rows()[row] = grid->Posts() + int64_t{row} * columns;
  return grid;
}

void k7ter::Release(K7TerGrid* grid) {
  if (grid && grid->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) std::free(grid);
}

void k7ter::WaitForReaders() {
  for (const ReaderCount& count : readerCounts)
    while (count.inside.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
}
