// K7RasterCache: the bitmaps of image files that were looked at last.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/foundation/cache.h>
#include <k7/raster/bitmap.h>

#include <memory>

/// Keeps bitmaps by the paths of their files, and lets go of those that were asked for longest ago when they
/// take more memory than its budget. Nothing is locked.
class K7_API K7RasterCache {
 public:
  /// `maxBytes` is the budget for all kept bitmaps, palettes and all.
  explicit K7RasterCache(int64_t maxBytes);
  ~K7RasterCache();
  K7RasterCache(const K7RasterCache&) = delete;
  K7RasterCache& operator=(const K7RasterCache&) = delete;

  /// Answers the bitmap of the file at `path`, read with `K7Bitmap::Read` when it is not kept. It belongs to
  /// the cache and is good until the next operation on it. A bitmap larger than the budget is handed out and
  /// not kept. Null when it cannot be had; `err` (optional) receives 0, the code of `Read`, or K7_ERR_MEMORY.
  const K7Bitmap* Get(const char* path, int* err = nullptr);
  /// Lets go of a file's bitmap, because the file has changed, say. Answers whether it was kept.
  bool Forget(const char* path);
  void Clear();

  /// What the kept bitmaps take, in bytes, each rounded up to a multiple of 1024.
  int64_t CurSize() const;
  int Count() const { return m_paths.Count(); }

 private:
  class Entry;
  const K7Bitmap* Keep(std::unique_ptr<Entry> entry);

  K7Cache m_cache;                 // in units of 1024 bytes
  K7StrMap m_paths;                // path -> Entry
  std::unique_ptr<Entry> m_loose;  // handed out last, and not kept
};
