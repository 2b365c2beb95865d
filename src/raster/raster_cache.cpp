#include <k7/raster/raster_cache.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include <algorithm>
#include <climits>
#include <new>

namespace {

constexpr int64_t UNIT = 1024;

void SetCode(int* err, int code) {
  if (err) *err = code;
}

}  // namespace

// Deletes itself when the cache lets go of it.
class K7RasterCache::Entry : public K7CacheObj {
 public:
  explicit Entry(K7StrMap& paths) : m_paths(paths) {}
  virtual ~Entry() = default;

  int Read(const char* file) {
    const int err = path.Create(file);
    return err < 0 ? err : bitmap.Read(file);
  }
  int CacheSize() const override {
    const int64_t rows = int64_t{bitmap.RowBytes()} * bitmap.Height();
    return static_cast<int>((rows + int64_t{sizeof *this} + path.AllocLen() + UNIT - 1) / UNIT);
  }
  void FreeContents() override {
    m_paths.Remove(path);
    delete this;
  }

  K7String path;
  K7Bitmap bitmap;

 private:
  K7StrMap& m_paths;
};

K7RasterCache::K7RasterCache(int64_t maxBytes)
    : m_cache(static_cast<int>(std::clamp<int64_t>(maxBytes / UNIT, 0, INT_MAX))) {}

K7RasterCache::~K7RasterCache() { Clear(); }

const K7Bitmap* K7RasterCache::Get(const char* path, int* err) {
  SetCode(err, path ? 0 : int{K7_ERR_BAD_ARGUMENT});
  if (!path) return nullptr;
  if (Entry* const kept = static_cast<Entry*>(m_paths.Get(path))) {
    m_cache.Insert(kept);  // is now the newest
    return &kept->bitmap;
  }
  m_loose.reset();
  std::unique_ptr<Entry> entry(new (std::nothrow) Entry(m_paths));
  const int code = entry ? entry->Read(path) : int{K7_ERR_MEMORY};
  SetCode(err, code);
  return code == 0 ? Keep(std::move(entry)) : nullptr;
}

const K7Bitmap* K7RasterCache::Keep(std::unique_ptr<Entry> entry) {
  int err = 0;
  if (entry->CacheSize() <= m_cache.MaxSize()) m_cache.Insert(entry.get());
  if (entry->CachePosition() >= 0) m_paths.Insert(entry->path, entry.get(), &err);
  if (err != 0) m_cache.Remove(entry->CachePosition());
  if (entry->CachePosition() >= 0) return &entry.release()->bitmap;
  m_loose = std::move(entry);
  return &m_loose->bitmap;
}

bool K7RasterCache::Forget(const char* path) {
  m_loose.reset();
  Entry* const kept = static_cast<Entry*>(m_paths.Get(path));
  if (!kept) return false;
  m_cache.Remove(kept->CachePosition());
  kept->FreeContents();
  return true;
}

void K7RasterCache::Clear() {
  m_loose.reset();
  m_cache.FreeAll();
}

int64_t K7RasterCache::CurSize() const { return m_cache.CurSize() * UNIT; }
