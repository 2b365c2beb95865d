#include <k7/terrain/ter_tile.h>

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>
#include <k7/terrain/ter_region.h>

#include "io/deflate.h"
#include "io/read.h"
#include "terrain/ter_elev.h"
#include "terrain/ter_lookup.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace {

constexpr int HEADER_SIZE = 44;
constexpr int64_t REST = 1'000'000'000;

// Nanoseconds that only grow.
int64_t Now() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct ReleaseGrid {
  void operator()(K7TerGrid* grid) const { k7ter::Release(grid); }
};
using GridPtr = std::unique_ptr<K7TerGrid, ReleaseGrid>;

// The lock of what has one: a tile outside a region belongs to one thread.
class RegionLock {
 public:
  explicit RegionLock(K7Mutex* mutex) : m_mutex(mutex) {
    if (m_mutex) m_mutex->Lock();
  }
  ~RegionLock() {
    if (m_mutex) m_mutex->Unlock();
  }
  RegionLock(const RegionLock&) = delete;
  RegionLock& operator=(const RegionLock&) = delete;

 private:
  K7Mutex* m_mutex;
};

}  // namespace

int32_t K7TerTile::m_textureBitDepth = 0;

K7TerTile::K7TerTile(const K7ChartRect& bounds, int rows, int columns) { SetHeader(bounds, rows, columns); }

void K7TerTile::SetHeader(const K7ChartRect& bounds, int rows, int columns) {
  m_bounds = bounds;
  m_rows = static_cast<int16_t>(std::clamp(rows, 0, INT16_MAX));
  m_columns = static_cast<int16_t>(std::clamp(columns, 0, INT16_MAX));
}

K7TerTile::~K7TerTile() {
  Publish(nullptr);
  delete[] m_image;
}

int K7TerTile::Size() const {
  return static_cast<int>(std::min<int64_t>((int64_t{m_rows} * m_columns + 24) * 3, INT32_MAX));
}

int K7TerTile::ReadHeader(K7File* file) {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  Clear();
  char raw[HEADER_SIZE];
  if (k7read::Exact(file, raw, HEADER_SIZE) != 0) return K7_ERR_FILE_IO;
  k7read::Cursor cursor(raw, HEADER_SIZE);
  double bounds[4];
  cursor.Little(bounds);
  m_bounds.Init(bounds[0], bounds[1], bounds[2], bounds[3]);
  cursor.Little(m_offset);
  cursor.Little(m_compSize);
  cursor.Little(m_rows);
  cursor.Little(m_columns);
  return 0;
}

int K7TerTile::WriteHeader(K7File* file) const {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  char raw[HEADER_SIZE];
  k7ter::Composer composer(raw);
  composer.Add(m_bounds);
  composer.Add(m_offset);
  composer.Add(m_compSize);
  composer.Add(m_rows);
  composer.Add(m_columns);
  return file->Write(raw, HEADER_SIZE) == HEADER_SIZE ? 0 : K7_ERR_FILE_IO;
}

// A grid of this tile from its place in the file.
int K7TerTile::ReadGrid(K7File* file, K7TerGrid*& grid) const {
  const int64_t posts = int64_t{m_rows} * m_columns;
  const int64_t length = posts * static_cast<int64_t>(sizeof(int16_t));
  if (m_rows < 1 || m_columns < 1 || !k7deflate::MayHold(m_compSize, length)) return K7_ERR_INVALID_DATA;
  if (m_offset < 0 || !file->Seek(m_offset) || !k7read::Holds(file, m_compSize)) return K7_ERR_FILE_IO;
  k7read::Block stream;
  if (!stream.Alloc(m_compSize)) return K7_ERR_MEMORY;
  if (k7read::Exact(file, stream.Bytes(), m_compSize) != 0) return K7_ERR_FILE_IO;
  GridPtr inflated(k7ter::NewGrid(m_bounds, m_rows, m_columns));
  if (!inflated) return K7_ERR_MEMORY;
  if (!k7deflate::Unpack(stream.Bytes(), m_compSize, inflated->Posts(), length)) return K7_ERR_INVALID_DATA;
  grid = inflated.release();
  return 0;
}

int K7TerTile::ReadGrid(K7TerGrid*& grid) const {
  if (m_compSize < 1) return K7_ERR_INVALID_DATA;
  K7IO* const io = K7IO::Inst();
  if (!m_region || !io) return K7_ERR_BAD_ARGUMENT;
  const std::unique_ptr<K7File> file(io->CreateFileX(m_region->m_path, "rb"));
  if (!file || !file->IsValid()) return K7_ERR_BAD_ARGUMENT;
  return ReadGrid(file.get(), grid);
}

int K7TerTile::Read(K7File* file) {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  if (m_compSize < 1) return K7_ERR_OUT_OF_RANGE;
  K7TerGrid* grid = nullptr;
  if (const int err = ReadGrid(file, grid)) return err;
  Publish(grid);
  return 0;
}

int K7TerTile::Read() {
  K7TerGrid* grid = nullptr;
  if (const int err = ReadGrid(grid)) return err;
  Publish(grid);
  return 0;
}

int K7TerTile::Write(K7File* file) {
  const K7TerGrid* const grid = m_grid.load();
  if (!file || !grid) return K7_ERR_BAD_ARGUMENT;
  const int64_t length = int64_t{grid->rows} * grid->columns * static_cast<int64_t>(sizeof(int16_t));
  const int64_t room = k7deflate::PackedRoom(length);
  k7read::Block stream;
  if (!stream.Alloc(room)) return K7_ERR_MEMORY;
  const int64_t size = k7deflate::Pack(grid->Posts(), length, stream.Bytes(), room);
  if (size < 0 || size > INT32_MAX) return K7_ERR_INVALID_DATA;
  m_compSize = static_cast<int32_t>(size);
  return file->Write(stream.Bytes(), m_compSize) == m_compSize ? 0 : K7_ERR_FILE_IO;
}

int K7TerTile::AllocMesh() {
  if (m_rows < 1 || m_columns < 1) return K7_ERR_INVALID_DATA;
  K7TerGrid* const grid = k7ter::NewGrid(m_bounds, m_rows, m_columns);
  if (!grid) return K7_ERR_MEMORY;
  std::fill_n(grid->Posts(), int64_t{m_rows} * m_columns, static_cast<int16_t>(K7_NO_ELEV));
  Publish(grid);
  return 0;
}

int16_t** K7TerTile::GetMesh() const {
  K7TerGrid* const grid = m_grid.load();
  return grid ? grid->Rows() : nullptr;
}

void K7TerTile::Clear() { Publish(nullptr); }

// Makes `grid`, which may be null, that of the tile.
void K7TerTile::Publish(K7TerGrid* grid) {
  const RegionLock lock(m_region ? &m_region->m_mutex : nullptr);
  m_restUntil = 0;
  K7TerGrid* const former = m_grid.exchange(grid);
  if (!former) return;
  k7ter::WaitForReaders();
  k7ter::Release(former);
}

int K7TerTile::GetElev(double lat, double lon, bool readIfNeeded, uint8_t inFeet) {
  const bool feet = inFeet == 1;
  {
    const k7ter::ReadSection section;
    const int elev = TryElev(lat, lon, feet);
    if (elev != k7ter::NOT_READ) return elev;
  }
  return readIfNeeded && !IsResting() ? ReadElev(lat, lon, feet) : K7_NO_ELEV;
}

// What could not be read is left alone for a while: neither do thousands of lookups each inflate a damaged
// tile, nor stays a hole for good where a file was out of reach for a moment.
bool K7TerTile::IsResting() const {
  const int64_t until = m_restUntil.load(std::memory_order_relaxed);
  return until != 0 && Now() < until;
}

int K7TerTile::ReadElev(double lat, double lon, bool inFeet) {
  const RegionLock lock(m_region ? &m_region->m_mutex : nullptr);
  if (!m_grid.load() && (IsResting() || Read() != 0)) {
    if (!IsResting()) m_restUntil = Now() + REST;
    return K7_NO_ELEV;
  }
  return TryElev(lat, lon, inFeet);
}

bool K7TerTile::Overlaps(const K7ChartRect* rect) const {
  if (!rect) return false;
  double west = m_bounds.West(), east = m_bounds.East();
  if (east < west) {
    if (rect->West() > 0)
      east += 360;
    else
      west -= 360;
  }
  if (rect->West() >= west && east > rect->West()) return true;
  const double rectEast = rect->East() < rect->West() ? rect->East() + 360 : rect->East();
  return rectEast > west && east >= rectEast;
}

bool K7TerTile::CanFree() const { return !m_isUsed.exchange(false, std::memory_order_relaxed); }

K7TerMeshHold::K7TerMeshHold(const K7TerTile& tile) {
  {
    const k7ter::ReadSection section;
    m_grid = tile.m_grid.load();
    if (m_grid) ++m_grid->owners;
  }
  if (!m_grid && tile.m_region) tile.ReadGrid(m_grid);
}

K7TerMeshHold::~K7TerMeshHold() { k7ter::Release(m_grid); }

const int16_t* const* K7TerMeshHold::Rows() const { return m_grid ? m_grid->Rows() : nullptr; }
