#include <k7/geometry/shp_layer.h>

#include "foundation/alloc.h"
#include "geometry/code_page.h"
#include "geometry/shp_layer_store.h"
#include "geometry/shp_rows.h"
#include "io/read.h"

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>
#include <k7/projection/grfx.h>
#include <k7/projection/map_path.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

// "land" of "data/land.shp".
int TakeName(const char* path, K7String& name) {
  const char* start = path;
  for (const char* p = path; *p; ++p)
    if (*p == '/' || *p == '\\') start = p + 1;
  const char* const point = std::strrchr(start, '.');
  return name.Copy(start, point ? static_cast<int>(point - start) : -1) < 0 ? int{K7_ERR_MEMORY} : 0;
}

// Gives what the ".cpg" beside a set says, null without one. 0 or a code.
int TakePage(const char* path, K7IO* io, k7page::Page& page) {
  K7String name;
  // The set has been read: there is a point.
  if (const int err = name.Copy(path, static_cast<int>(std::strrchr(path, '.') - path)); err < 0) return err;
  for (const char* const ending : {".cpg", ".CPG"}) {
    K7String full;
    if (const int err = full.Copy(name); err < 0) return err;
    if (const int err = full += ending; err < 0) return err;
    const std::unique_ptr<K7File> file(io->CreateFileX(full, "rb"));
    if (!file) return K7_ERR_MEMORY;
    if (!file->IsValid()) continue;
    char text[32] = {};
    const int64_t size = std::min<int64_t>(k7read::BytesLeft(file.get()), sizeof text - 1);
    if (size < 0 || k7read::Exact(file.get(), text, static_cast<int>(size)) != 0) return K7_ERR_FILE_IO;
    page = k7page::ByName(text);
    return 0;
  }
  return 0;
}

// What the texts themselves tell: those of other pages hardly ever follow the rules of UTF-8.
k7page::Page PageOfTexts(const K7ShpFile& file) {
  bool isUtf8 = false;
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7DbfField* const fields = file.GetRecord(i)->Attrs();
    for (int k = 0; fields && k < file.FieldCount(); ++k) {
      if (file.Field(k)->type != 'C' || !fields[k].text) continue;
      const int looks = k7page::LooksLikeUtf8(fields[k].text);
      if (looks < 0) return k7page::WINDOWS_1252;
      isUtf8 = isUtf8 || looks > 0;
    }
  }
  return isUtf8 ? k7page::UTF_8 : k7page::WINDOWS_1252;
}

void ConvertTexts(k7page::Page page, const K7ShpFile& file) {
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7DbfField* const fields = file.GetRecord(i)->Attrs();
    for (int k = 0; fields && k < file.FieldCount(); ++k)
      if (file.Field(k)->type == 'C' && fields[k].text) k7page::Convert(page, fields[k].text);
  }
}

int TakeFields(K7ShpLayerStore& store, k7page::Page page) {
  const int count = store.file->FieldCount();
  store.fields.reset(new (std::nothrow) K7String[static_cast<size_t>(count)]);
  if (!store.fields) return K7_ERR_MEMORY;
  for (int i = 0; i < count; ++i) {
    char name[sizeof store.file->Field(i)->name + 1] = {};
    std::memcpy(name, store.file->Field(i)->name, sizeof store.file->Field(i)->name);
    k7page::Convert(page, name);
    if (store.fields[static_cast<size_t>(i)].Create(name) < 0) return K7_ERR_MEMORY;
  }
  return 0;
}

int TakeRecords(K7ShpLayerStore& store) {
  const int count = store.file->StoredCount();
  ShpRows rows;
  store.records.reset(NewArray<ShpLayerRec>(count));
  const std::unique_ptr<K7ChartRect[]> boxes(NewArray<K7ChartRect>(count));
  if (!store.records || !boxes) return K7_ERR_MEMORY;
  for (int i = 0; i < count; ++i) {
    ShpLayerRec& record = store.records[static_cast<size_t>(i)];
    K7ChartRect& box = boxes[static_cast<size_t>(i)];
    if (const int err = record.Init(&store, i, rows)) return err;
    if (record.GetBounds(box) == 0) store.bounds.BoundingUnion(store.bounds, box);
  }
  store.count = count;
  return store.tree.Build(boxes.get(), count);
}

K7MapFeatureKind KindOf(const ShpLayerRec& record) {
  if (record.IsArea()) return K7_MAP_AREA;
  return record.GetPolyCount() > 0 ? K7_MAP_LINES : K7_MAP_POINTS;
}

// A record without a shape is a feature without points: the two are counted alike.
bool AddFeature(K7MapFeatures& features, const ShpLayerRec& record, K7ShpFile& file) {
  const K7ShpObj* const obj = record.Obj();
  Buffer<K7LatLon> points;
  Buffer<int> sizes;
  double lat, lon;
  const int first = record.GetPolyCount() > 0 ? record.PolyStart(0) : 0;
  for (int i = first; obj && i < obj->GetPointCount(); ++i)
    if (obj->GetPoint(&file, i, lat, lon) == 0) points.Add(K7LatLon(lat, lon));
  for (int i = 0; i < record.GetPolyCount(); ++i) sizes.Add(record.GetPolySize(i));
  if (sizes.Count() == 0) sizes.Add(points.Count());
  // A reader that could not turn all points into degrees leaves nothing to be drawn.
  int sum = 0;
  for (int i = 0; i < sizes.Count(); ++i) sum += sizes[i];
  const int parts = sum > 0 && sum == points.Count() ? sizes.Count() : 0;
  return !points.Failed() && !sizes.Failed() &&
         features.Add(KindOf(record), points.Data(), sizes.Data(), parts) >= 0;
}

// Null without memory.
std::unique_ptr<K7MapFeatures> MakeFeatures(const K7ShpLayerStore& store) {
  std::unique_ptr<K7MapFeatures> features(new (std::nothrow) K7MapFeatures);
  for (int i = 0; features && i < store.count; ++i)
    if (!AddFeature(*features, store.records[static_cast<size_t>(i)], *store.file)) features.reset();
  return features;
}

int Load(K7ShpLayerStore& store, const char* path, K7IO* io) {
  if (const int err = TakeName(path, store.name)) return err;
  store.file->KeepNullShapes(true);
  if (const int err = store.file->Read(path, io)) return err;
  k7page::Page page = nullptr;
  if (const int err = TakePage(path, io, page)) return err;
  if (!page) page = k7page::ByDriver(store.file->DbfHeader().languageDriver);
  if (!page) page = PageOfTexts(*store.file);
  ConvertTexts(page, *store.file);
  if (const int err = TakeFields(store, page)) return err;
  return TakeRecords(store);
}

}  // namespace

K7ShpLayer::K7ShpLayer(K7ShapeType type, int key)
    : m_type(type), m_key(key), m_store(new (std::nothrow) K7ShpLayerStore) {}

K7ShpLayer::~K7ShpLayer() { delete m_store; }

int K7ShpLayer::Read(const char* path, K7IO* io, K7ShpFile* reader) {
  std::unique_ptr<K7ShpLayerStore> store(new (std::nothrow) K7ShpLayerStore);
  std::unique_ptr<K7ShpFile> file(reader ? reader : new (std::nothrow) K7ShpFile);
  // Kept until the end: the path may be a text of it.
  const std::unique_ptr<K7ShpLayerStore> old(std::exchange(m_store, new (std::nothrow) K7ShpLayerStore));
  if (!path || !io) return K7_ERR_BAD_ARGUMENT;
  if (!store || !file) return K7_ERR_MEMORY;
  store->file = std::move(file);
  if (const int err = Load(*store, path, io)) {
    if (m_store) m_store->badFile = store->file->BadFile();
    return err;
  }
  delete std::exchange(m_store, store.release());
  return 0;
}

K7ShpPart K7ShpLayer::BadFile() const { return m_store ? m_store->badFile : K7_SHP_NO_FILE; }
const K7ShpFile* K7ShpLayer::File() const { return m_store ? m_store->file.get() : nullptr; }
K7ShapeTable* K7ShpLayer::Table() const { return m_store ? &m_store->table : nullptr; }
const char* K7ShpLayer::Name() const { return m_store ? static_cast<const char*>(m_store->name) : ""; }

const K7MapFeatures* K7ShpLayer::Features() {
  if (!m_store) return nullptr;
  if (const K7MapFeatures* const ready = m_store->ready.load(std::memory_order_acquire)) return ready;
  const K7LockGuard lock(m_store->mutex);
  if (!m_store->features) m_store->features = MakeFeatures(*m_store);
  m_store->ready.store(m_store->features.get(), std::memory_order_release);
  return m_store->features.get();
}

K7ShapeTable* K7ShpLayer::GetTable(const K7ShapeRec* record) const {
  return record && m_store && m_store->table.FindRecord(record->GetKey()) == record ? &m_store->table
                                                                                    : nullptr;
}

int K7ShpLayer::Render(K7Grfx* g, K7MapPath& path, K7ShapeRec* record) {
  if (!g || !record) return K7_ERR_BAD_ARGUMENT;
  if (!GetTable(record)) return K7_ERR_NOT_FOUND;
  const K7MapFeatures* const features = Features();
  if (!features) return K7_ERR_MEMORY;
  const int number = static_cast<const ShpLayerRec*>(record)->Number();
  const int area = path.Area(g, *features, number);
  if (area > 0) g->Fill();
  const int line = area < 0 ? area : path.Outline(g, *features, number);
  if (line > 0) g->Stroke();
  return line < 0 ? line : 0;
}

int K7ShpLayer::FreeMemCache() { return m_store ? m_store->table.FreeMemCache() : 0; }
