#include <k7/terrain/terrain.h>

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/foundation/options.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_tile.h>

#include "foundation/forever.h"
#include "io/os.h"
#include "terrain/ter_elev.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr int MAX_CACHE_SIZE = 100;

// A function's static, so that it stands before any host's own statics use it.
K7Mutex& InstanceMutex() {
  static K7Forever<K7Mutex> mutex;
  return *mutex;
}

// False, with `value` unchanged, for a setting that is not there.
bool GetSetting(const char* key, int& value) {
  K7Options* const options = K7Options::Inst();
  const char* const text = options ? options->GetValueByKey(key) : nullptr;
  if (text) value = static_cast<int>(std::clamp(std::strtol(text, nullptr, 10), -1L << 30, 1L << 30));
  return text != nullptr;
}

int PostsPerDegree(int arcSeconds) { return arcSeconds < 1 ? -1 : static_cast<int>(3600.0 / arcSeconds); }

// The directory as it is written, and with the separator that it may lack.
int ListDirectories(const char* directory, K7StrArray& directories) {
  if (const int err = directories += directory) return err;
  const K7String name(directory);
  const char last = name[name.Len() - 1];
  return last == '/' || last == '\\' ? 0 : directories += K7FmtString("%s/", directory);
}

}  // namespace

/// What a lookup follows without a lock: complete before it is found, gone before it is deleted.
struct K7TerrainK7::Levels {
  std::unique_ptr<K7TerLevel> at[LEVELS];
  // The first that a lookup at each level asks; null where there is none so coarse.
  const K7TerLevel* first[LEVELS] = {};

  void FindFirst() {
    const K7TerLevel* coarser = nullptr;
    for (int i = 0; i < LEVELS; ++i) first[i] = coarser = at[i] ? at[i].get() : coarser;
  }
  // From level `index` down, to where it answers; `unread` with NOT_READ.
  int TryElev(int& index, double lat, double lon, K7TerTile*& unread) const {
    for (; index >= 0; --index) {
      const int elev = at[index] ? at[index]->TryElev(lat, lon, unread) : K7_NO_ELEV;
      if (elev != K7_NO_ELEV) return elev;
    }
    return K7_NO_ELEV;
  }
};

std::atomic<K7TerrainK7*> K7TerrainK7::m_inst{nullptr};

K7TerrainK7* K7TerrainK7::Inst() {
  if (K7TerrainK7* const inst = m_inst.load()) return inst;
  const K7LockGuard lock(InstanceMutex());
  if (!m_inst.load()) m_inst = new (std::nothrow) K7TerrainK7;
  return m_inst.load();
}

void K7TerrainK7::Destroy() {
  const K7LockGuard lock(InstanceMutex());
  delete m_inst.exchange(nullptr);
}

K7TerrainK7::K7TerrainK7() : m_cache(m_cacheSize << 20) {}

K7TerrainK7::~K7TerrainK7() { DropLevels(); }

void K7TerrainK7::DropLevels() {
  const std::unique_ptr<Levels> former(m_levels.exchange(nullptr));
  if (!former) return;
  k7ter::WaitForReaders();
  m_cache.FreeAll();
}

void K7TerrainK7::Clear() {
  const K7LockGuard lock(m_mutex);
  DropLevels();
}

void K7TerrainK7::ClearCache() {
  const K7LockGuard lock(m_mutex);
  m_cache.FreeAll();
}

void K7TerrainK7::ClearSRTImages() {
  const K7LockGuard lock(m_mutex);
  const Levels* const levels = m_levels.load();
  for (int i = 0; levels && i < LEVELS; ++i)
    if (levels->at[i]) levels->at[i]->ClearSRTImages();
}

int K7TerrainK7::SetDirectory(const char* directory) {
  const K7LockGuard lock(m_mutex);
  if (const int err = m_directory.Create(directory); err < 0) return err;
  DropLevels();
  m_isRead = false;
  return 0;
}

int K7TerrainK7::Read(const char* directory) {
  if (!directory || !*directory) return K7_ERR_BAD_ARGUMENT;
  const K7LockGuard lock(m_mutex);
  ReadOptions();
  DropLevels();
  m_isRead = false;
  m_cache.Init(m_cacheSize << 20);
  if (const int err = ReadLevels(directory)) return err;
  m_isRead = true;
  return 0;
}

void K7TerrainK7::ReadOptions() {
  int arcSeconds = 0;
  if (GetSetting("TerrainCacheSize", m_cacheSize)) m_cacheSize = std::clamp(m_cacheSize, 0, MAX_CACHE_SIZE);
  GetSetting("TerrainTextureBitDepth", K7TerTile::m_textureBitDepth);
  if (GetSetting("TerrainResolutionLimit", arcSeconds)) m_resolutionLimit = PostsPerDegree(arcSeconds);
}

int K7TerrainK7::ReadLevels(const char* directory) {
  K7StrArray directories;
  if (const int err = ListDirectories(directory, directories); err < 0) return err;
  if (m_directory.Create(directory) < 0) return K7_ERR_MEMORY;
  std::unique_ptr<Levels> levels(new (std::nothrow) Levels);
  if (!levels) return K7_ERR_MEMORY;
  for (int i = 0; i < LEVELS; ++i) {
    std::unique_ptr<K7TerLevel> level(new (std::nothrow) K7TerLevel(RESOLUTIONS[i], &m_cache, m_mutex));
    if (!level) return K7_ERR_MEMORY;
    level->SetMaxResolution(m_resolutionLimit);
    if (level->Read(directories) == 0) levels->at[i] = std::move(level);
  }
  levels->FindFirst();
  m_levels = levels.release();
  return 0;
}

int K7TerrainK7::GetLevelIndex(double resolution) { return k7ter::LevelIndex(resolution); }

// What nearly all lookups take: one level has the answer. It calls nothing, so the compiler needs half the
// instructions.
[[gnu::flatten]] int K7TerrainK7::GetElev(double lat, double lon, double resolution) {
  const int index = k7ter::LevelIndex(resolution);
  int elev = K7_NO_ELEV;
  const void* const thread = k7os::ThreadMark();
  k7ter::ReaderSlot& slot = k7ter::SlotOf(thread);
  if (k7ter::Owns(thread, slot)) {
    const k7ter::OwnSection section(slot);
    const Levels* const levels = m_levels.load();
    const K7TerLevel* const level = levels ? levels->first[index] : nullptr;
    K7TerTile* unread = nullptr;
    if (level) elev = level->TryElev(lat, lon, unread);
  }
  return elev == K7_NO_ELEV || elev == k7ter::NOT_READ ? FindElev(index, lat, lon) : elev;
}

int K7TerrainK7::FindElev(int index, double lat, double lon) {
  {
    const k7ter::ReadSection section;
    const Levels* const levels = m_levels.load();
    int level = index;
    for (bool rests = levels; rests; --level) {
      K7TerTile* unread = nullptr;
      const int elev = levels->TryElev(level, lat, lon, unread);
      if (elev != k7ter::NOT_READ) return elev;
      rests = unread->IsResting();
    }
  }
  return ReadElev(index, lat, lon);
}

int K7TerrainK7::ReadElev(int index, double lat, double lon) {
  const K7LockGuard lock(m_mutex);
  if (!m_isRead && Read(m_directory) != 0) return K7_NO_ELEV;
  const Levels* const levels = m_levels.load();
  for (; levels && index >= 0; --index) {
    const int elev = levels->at[index] ? levels->at[index]->GetElev(lat, lon) : K7_NO_ELEV;
    if (elev != K7_NO_ELEV) return elev;
  }
  return K7_NO_ELEV;
}

K7TerLevel* K7TerrainK7::GetLevel(int index) {
  const K7LockGuard lock(m_mutex);
  const Levels* const levels = m_levels.load();
  return levels && index >= 0 && index < LEVELS ? levels->at[index].get() : nullptr;
}

int K7TerrainK7::SetResolutionLimit(int arcSeconds) {
  const K7LockGuard lock(m_mutex);
  const int former = std::exchange(m_resolutionLimit, PostsPerDegree(arcSeconds));
  const Levels* const levels = m_levels.load();
  // Lifting the limit leaves the levels with theirs: they are read with the new one, if at all.
  if (!levels || arcSeconds < 1 || former == m_resolutionLimit) return 0;
  for (const std::unique_ptr<K7TerLevel>& level : levels->at)
    if (level) level->SetMaxResolution(m_resolutionLimit);
  return 0;
}

int K7TerrainK7::ResolutionLimit() {
  const K7LockGuard lock(m_mutex);
  return m_resolutionLimit;
}

int K7TerrainK7::LimitLevelIndex() {
  const K7LockGuard lock(m_mutex);
  if (m_resolutionLimit <= 0) return LEVELS - 1;
  const Levels* const levels = m_levels.load();
  int last = -1;
  for (int i = 0; levels && i < LEVELS; ++i) {
    if (!levels->at[i]) continue;
    last = i;
    if (RESOLUTIONS[i] >= m_resolutionLimit) break;
  }
  return last;
}
