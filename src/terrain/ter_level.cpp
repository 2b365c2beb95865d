#include <k7/terrain/ter_level.h>

#include <k7/foundation/cache.h>
#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>

#include "terrain/ter_elev.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

using k7ter::CELL_DEGREES;

K7TerLevel::K7TerLevel(int resolution, K7Cache* cache, const K7Mutex& cacheMutex)
    : m_resolution(resolution), m_cache(cache), m_cacheMutex(cacheMutex) {}

K7TerLevel::~K7TerLevel() { Clear(); }

void K7TerLevel::Clear() {
  m_rings.Clear();  // merged from the regions' tiles
  const K7LockGuard cacheLock(m_cacheMutex);
  const K7LockGuard lock(m_mutex);
  for (K7TerRegion*& region : m_regions) {
    if (region && m_cache) region->LeaveCache(*m_cache);
    delete std::exchange(region, nullptr);
  }
}

bool K7TerLevel::findTerFile(const K7StrArray& directories, int south, int west, K7String& path) const {
  K7IO* const io = K7IO::Inst();
  for (int i = 0; io && i < directories.Count(); ++i) {
    const K7FmtString name("%s%d_%c%02d%c%03d.ter", directories[i], static_cast<int>(m_resolution),
                           south < 0 ? 'S' : 'N', std::abs(south), west < 0 ? 'W' : 'E', std::abs(west));
    const std::unique_ptr<K7File> file(io->CreateFileX(name, "rb"));
    if (file && file->IsValid() && path.Create(name) >= 0) return true;
  }
  path.Clear();
  return false;
}

int K7TerLevel::Read(const K7StrArray& directories) {
  if (m_maxResolution > 0 && m_resolution > m_maxResolution) return K7_ERR_OUT_OF_RANGE;
  Clear();
  const K7LockGuard lock(m_mutex);
  K7String path;
  for (int slot = 0; slot < BANDS * COLUMNS; ++slot) {
    const int south = slot / COLUMNS * CELL_DEGREES - 90, west = slot % COLUMNS * CELL_DEGREES - 180;
    if (!findTerFile(directories, south, west, path)) continue;
    std::unique_ptr<K7TerRegion> region(new (std::nothrow) K7TerRegion);
    if (!region) return K7_ERR_MEMORY;
    if (region->Read(path) == 0) m_regions[slot] = region.release();
  }
  return 0;
}

K7TerRegion* K7TerLevel::Region(int band, int column) const {
  if (band < 0 || band >= BANDS || column < 0 || column >= COLUMNS) return nullptr;
  return m_regions[band * COLUMNS + column];
}

K7TerRegion* K7TerLevel::RegionAt(double lat, double lon) const { return FindRegion(lat, lon); }

bool K7TerLevel::SpansRect(const K7ChartRect& rect) const {
  for (const K7TerRegion* const region : m_regions)
    if (region && region->GetChartRect().AreaIn(rect)) return true;
  return false;
}

int K7TerLevel::GetElev(double lat, double lon) {
  K7TerRegion* const region = FindRegion(lat, lon);
  return region ? region->GetElev(lat, lon, this) : K7_NO_ELEV;
}

// A tile that found no place in the cache, or no grid for its place, leaves nothing behind.
int K7TerLevel::ReadElev(K7TerTile& tile, double lat, double lon) {
  if (!m_cache) return tile.GetElev(lat, lon, true, 1);
  const K7LockGuard lock(m_cacheMutex);
  const bool isCached = AddToCache(&tile);
  const int elev = tile.GetElev(lat, lon, true, 1);
  if (isCached && !tile.GetMesh()) m_cache->Remove(tile.CachePosition());
  if (!isCached) tile.Free();
  return elev;
}

bool K7TerLevel::AddToCache(K7TerTile* tile) {
  if (!m_cache || !tile) return false;
  const K7LockGuard lock(m_cacheMutex);
  if (tile->CacheSize() > m_cache->MaxSize()) return false;
  // The first round may find all tiles in use: it has asked each, and the second takes the oldest.
  for (int round = 0; round < 2; ++round) {
    if (m_cache->Insert(tile) != 0) return false;
    if (tile->CachePosition() >= 0) return true;
  }
  return false;
}

void K7TerLevel::ClearSRTImages() {
  const K7LockGuard lock(m_mutex);
  for (K7TerRegion* const region : m_regions)
    if (region) region->ClearSRTImages();
}
