#include <k7/terrain/ter_region.h>

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_tile.h>

#include "io/read.h"
#include "terrain/ter_elev.h"
#include "terrain/ter_lookup.h"

#include <cstdlib>
#include <memory>
#include <new>

namespace {

constexpr int HEADER_SIZE = 72;
constexpr int TILE_HEADER_SIZE = 44;

// Between the edges, also of a tile across 180.
double CentreLon(const K7ChartRect& bounds) {
  const double east = bounds.West() > bounds.East() ? bounds.East() + 360 : bounds.East();
  return (east + bounds.West()) / 2;
}

}  // namespace

K7TerRegion::~K7TerRegion() { FreeTiles(); }

void K7TerRegion::FreeTiles() {
  for (int cell = 0; cell < CellCount(); ++cell) delete m_tiles[0][cell];
  std::free(static_cast<void*>(m_tiles));
  m_tiles = nullptr;
}

void K7TerRegion::Clear() {
  const K7LockGuard lock(m_mutex);
  Init(K7ChartRect(), 0, 0, 0, 0);
  SetWords(0, 0);
  SetTileTable(HEADER_SIZE, 0);
  m_path.Clear();
}

void K7TerRegion::LeaveCache(K7Cache& cache) {
  for (int cell = 0; cell < CellCount(); ++cell) {
    const K7TerTile* const tile = m_tiles[0][cell];
    if (tile && tile->CachePosition() >= 0) cache.Remove(tile->CachePosition());
  }
}

void K7TerRegion::Init(const K7ChartRect& bounds, int rows, int columns, double tileHeight,
                       double tileWidth) {
  const K7LockGuard lock(m_mutex);
  FreeTiles();
  m_bounds = bounds;
  m_rows = rows;
  m_columns = columns;
  m_tileHeight = tileHeight;
  m_tileWidth = tileWidth;
}

void K7TerRegion::SetWords(int32_t first, int32_t second) {
  m_words[0] = first;
  m_words[1] = second;
}

void K7TerRegion::SetTileTable(int offset, int count) {
  m_tableOffset = offset;
  m_tileCount = count;
}

int K7TerRegion::AllocTilesMatrix() {
  const K7LockGuard lock(m_mutex);
  FreeTiles();
  const int64_t cells = int64_t{m_rows} * m_columns;
  if (m_rows < 0 || m_columns < 0 || m_rows > MAX_CELLS || cells > MAX_CELLS) return K7_ERR_INVALID_DATA;
  const size_t rows = static_cast<size_t>(m_rows) + 1;  // a block of its own even without cells
  m_tiles = static_cast<K7TerTile***>(std::calloc(rows + static_cast<size_t>(cells), sizeof(void*)));
  if (!m_tiles) return K7_ERR_MEMORY;
  K7TerTile** const first = reinterpret_cast<K7TerTile**>(m_tiles + rows);
  m_tiles[0] = first;
  for (int row = 1; row < m_rows; ++row) m_tiles[row] = first + int64_t{row} * m_columns;
  return 0;
}

bool K7TerRegion::SetTile(double lat, double lon, K7TerTile* tile) {
  int row = 0, column = 0;
  if (!tile || !InBounds(lat, lon) || !FindCell(lat, lon, row, column)) return false;
  K7TerTile*& cell = m_tiles[row][column];
  if (cell != tile) delete cell;
  cell = tile;
  tile->m_region = this;
  return true;
}

K7TerTile* K7TerRegion::GetTile(double lat, double lon) const {
  int row = 0, column = 0;
  return InBounds(lat, lon) && FindCell(lat, lon, row, column) ? m_tiles[row][column] : nullptr;
}

K7TerTile* K7TerRegion::Tile(int row, int column) const {
  if (!m_tiles || row < 0 || row >= m_rows || column < 0 || column >= m_columns) return nullptr;
  return m_tiles[row][column];
}

void K7TerRegion::ClearSRTImages() {
  for (int cell = 0; cell < CellCount(); ++cell)
    if (m_tiles[0][cell]) m_tiles[0][cell]->ClearSRTImage();
}

int K7TerRegion::GetElev(double lat, double lon, K7TerLevel* level) {
  K7TerTile* unread = nullptr;
  {
    const k7ter::ReadSection section;
    const int elev = TryElev(lat, lon, unread);
    if (elev != k7ter::NOT_READ) return elev;
  }
  return level && !unread->IsResting() ? level->ReadElev(*unread, lat, lon) : K7_NO_ELEV;
}

int K7TerRegion::Read(const char* path) {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  const K7LockGuard lock(m_mutex);
  // Before what was held goes: it may be the region's own path.
  K7String name;
  if (const int err = name.Create(path); err < 0) return err;
  Clear();
  K7IO* const io = K7IO::Inst();
  const std::unique_ptr<K7File> file(io ? io->CreateFileX(name, "rb") : nullptr);
  if (!file || !file->IsValid()) return K7_ERR_FILE_IO;
  if (const int err = ReadHeader(file.get())) return err;
  m_path = static_cast<K7String&&>(name);
  if (const int err = AllocTilesMatrix()) return err;
  return ReadTiles(file.get());
}

int K7TerRegion::ReadHeader(K7File* file) {
  char raw[HEADER_SIZE];
  if (k7read::Exact(file, raw, HEADER_SIZE) != 0) return K7_ERR_FILE_IO;
  k7read::Cursor cursor(raw, HEADER_SIZE);
  double bounds[4];
  cursor.Little(m_words);
  cursor.Little(m_rows);
  cursor.Little(m_columns);
  cursor.Little(m_tileHeight);
  cursor.Little(m_tileWidth);
  cursor.Little(bounds);
  m_bounds.Init(bounds[0], bounds[1], bounds[2], bounds[3]);
  cursor.Little(m_tableOffset);
  cursor.Little(m_tileCount);
  return 0;
}

int K7TerRegion::ReadTiles(K7File* file) {
  const bool isThere = m_tableOffset >= 0 && file->Seek(m_tableOffset) &&
                       k7read::Holds(file, int64_t{m_tileCount} * TILE_HEADER_SIZE);
  int err = isThere ? 0 : K7_ERR_FILE_IO;
  for (int i = 0; err == 0 && i < m_tileCount; ++i) err = ReadTile(file);
  if (err == K7_ERR_FILE_IO) Clear();
  return err;
}

int K7TerRegion::ReadTile(K7File* file) {
  std::unique_ptr<K7TerTile> tile(new (std::nothrow) K7TerTile);
  if (!tile) return K7_ERR_MEMORY;
  if (const int err = tile->ReadHeader(file)) return err;
  const K7ChartRect& bounds = tile->GetChartRect();
  if (!SetTile((bounds.North() + bounds.South()) / 2, CentreLon(bounds), tile.get()))
    return K7_ERR_INVALID_DATA;
  static_cast<void>(tile.release());  // the matrix has it
  return 0;
}

int K7TerRegion::Write(K7File* file) const {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  char raw[HEADER_SIZE];
  k7ter::Composer composer(raw);
  composer.Add(m_words);
  composer.Add(m_rows);
  composer.Add(m_columns);
  composer.Add(m_tileHeight);
  composer.Add(m_tileWidth);
  composer.Add(m_bounds);
  composer.Add(m_tableOffset);
  composer.Add(m_tileCount);
  if (file->Write(raw, HEADER_SIZE) != HEADER_SIZE) return K7_ERR_FILE_IO;
  for (int cell = 0; cell < CellCount(); ++cell) {
    const K7TerTile* const tile = m_tiles[0][cell];
    if (const int err = tile ? tile->WriteHeader(file) : 0) return err;
  }
  return 0;
}
