// Shapefile sets from outside. The input is a byte (odd: null shapes are kept) and the set.

#include "shp_set.h"

#include <k7/geometry.h>

#include <cstdint>
#include <cstdlib>

namespace {

// Keeps what is read from being optimised away.
volatile double g_sink;

void WalkMeasures(const K7ShpMulti& multi) {
  double min = 0;
  double max = 0;
  if (multi.GetZRange(min, max)) g_sink = min + max;
  if (multi.GetMRange(min, max)) g_sink = min + max;
  for (int i = 0; i < multi.GetPointCount(); ++i) {
    if (multi.Z()) g_sink = multi.Z()[i];
    if (multi.M()) g_sink = multi.M()[i];
  }
}

void WalkShape(K7ShpFile& file, const K7ShpObj& obj) {
  double a = 0;
  double b = 0;
  double c = 0;
  double d = 0;
  obj.GetBounds(&file, a, b, c, d);
  obj.GetPos(&file, a, b);
  for (int i = -1; i <= obj.GetPointCount(); ++i) {
    const bool inside = i >= 0 && i < obj.GetPointCount();
    if ((obj.GetPoint(&file, i, a, b) == 0) != inside) std::abort();
  }
  int64_t points = 0;
  for (int i = 0; i < obj.GetPolyCount(); ++i) {
    if (obj.GetPolySize(i) < 0) std::abort();
    points += obj.GetPolySize(i);
  }
  if (points > obj.GetPointCount()) std::abort();
  if (const auto* multi = dynamic_cast<const K7ShpMulti*>(&obj)) WalkMeasures(*multi);
}

void WalkRecord(K7ShpFile& file, const K7ShpRecord& record) {
  for (int i = 0; i < file.FieldCount(); ++i)
    g_sink = record.Number(i) + record.Integer(i) + static_cast<double>(std::strlen(record.Text(i)));
  if (record.Obj()) WalkShape(file, *record.Obj());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const bool keepNullShapes = data[0] % 2 != 0;
  MemIO io;
  PutSet(io, data + 1, size - 1);

  K7ShpFile file;
  file.KeepNullShapes(keepNullShapes);
  const int err = file.Read("a.shp", &io);
  if (err == 0 && file.StoredCount() != std::max(file.RecordCount(), 0)) std::abort();
  for (int i = 0; i < file.StoredCount(); ++i) WalkRecord(file, *file.GetRecord(i));
  file.FindField("NAME");

  // One record at a time, with the attributes also read out of turn.
  if (file.ReadHeader("a.shp", &io) != 0) return 0;
  for (int i = 0; K7ShpRecord* record = file.NextRecord(); ++i) {
    WalkRecord(file, *record);
    file.ReleaseAttrs(file.GetAttrs(i));
    delete record;
  }
  return 0;
}
