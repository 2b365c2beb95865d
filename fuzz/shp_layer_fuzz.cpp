// Layers over shapefile sets from outside: names, documents, bounds, places, triangles. The input is a byte
// for the kind of the layer and one for the code page, and the set.

#include "shp_set.h"

#include <k7/geometry.h>
#include <k7/io/xml_elem.h>
#include <k7/projection/map_features.h>

#include <cmath>
#include <iterator>
#include <memory>

namespace {

constexpr const char* PAGES[] = {"",    "UTF-8", "ISO 8859-1", "ISO 8859-15", "1250",
                                 "850", "1254",  "1257",       "437",         "KOI8-R"};
constexpr int MOST_RECORDS = 100;  // of those that all are compared with

// One line of windows-1252, or with `breaks` several.
bool IsText(const char* text, bool breaks) {
  for (; *text; ++text) {
    const unsigned char c = static_cast<unsigned char>(*text);
    if (breaks && (c == '\n' || c == '\t')) continue;
    if (c < 0x20 || c == 0x7F || std::strchr("\x81\x8D\x8F\x90\x9D", *text)) return false;
  }
  return true;
}

void CheckTexts(K7ShpLayer& layer, K7ShapeRec& record) {
  K7String text;
  for (const K7XmlOutputType_t output : {K7XML_PLAIN, K7XML_FULL, K7XML_DISPLAY, K7XML_DOCUMENT}) {
    Require(layer.ToXML(&record, output, text) == 0 && IsText(text, true));
    K7XmlElem root;
    Require(root.Parse(text) && std::strcmp(root.Name(), "Record") == 0);
    Require(root.ChildText("TableIndex") && root.ChildText("Key"));
  }
  Require(layer.GetDescription(&record, text) == 0 && IsText(text, false));
}

void CheckNames(const K7ShapeTable& table) {
  for (int i = 0; i < table.AttribCount(); ++i) {
    const char* const name = table.AttribName(i);
    const int found = table.FindAttrib(name);
    Require(IsText(name, false) && found >= 0 && found <= i);
  }
}

void CheckTriangles(K7ShapeRec& record) {
  const K7STessGroup* groups = nullptr;
  const int count = record.GetTessGroups(groups);
  int vertices = 0, indices = 0;
  for (int g = 0; g < count; ++g) {
    Require(groups[g].firstVertex == vertices && groups[g].firstIndex == indices);
    for (int i = 0; i < groups[g].indexCount; ++i)
      Require(record.GetTriVertIndices()[indices++] < groups[g].vertexCount);
    vertices += groups[g].vertexCount;
  }
  Require(vertices == record.GetTriVertCount() && indices % 3 == 0);
  for (int i = 0; i < vertices; ++i)
    Require(std::fabs(record.GetTriVerts()[i].y) <= 90 && std::isfinite(record.GetTriVerts()[i].x));
}

void CheckPlace(K7ShapeTable& table, K7ShapeRec& record) {
  K7ChartRect bounds;
  double lat, lon;
  const bool isPlaced = record.GetBounds(bounds) == 0;
  Require((record.GetPos(lat, lon) == 0) == isPlaced);
  if (!isPlaced) return;
  Require(bounds.PtIn(lat, lon) || std::fabs(lon) == 180);
  const std::unique_ptr<K7ShapeQuery> query(table.AreaQuery(bounds));
  // Longitudes a turn farther on are rounded: who only nearly meets may be among them.
  const K7ChartRect wider(bounds.North(), bounds.South(), bounds.East() + 1e-9, bounds.West() - 1e-9);
  int least = 0, most = 0;
  for (int i = 0; i < table.RecordCount(); ++i) {
    K7ChartRect other;
    if (table.GetRecord(i)->GetBounds(other) != 0) continue;
    least += other.AreaIn(bounds);
    most += other.AreaIn(wider);
  }
  Require(query && query->Count() >= least && query->Count() <= most && least > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const K7ShapeType type = static_cast<K7ShapeType>(data[0] % (K7_SHAPE_VERTICAL_STRUCTURE + 1));
  MemIO io;
  io.Put("a.cpg", std::string(PAGES[data[1] % std::size(PAGES)]));
  PutSet(io, data + 2, size - 2);
  K7ShpLayer layer(type);
  const int err = layer.Read("a.shp", &io);
  K7ShapeTable& table = *layer.Table();
  Require(err == 0 || table.RecordCount() == 0);
  CheckNames(table);
  Require(layer.Features() && layer.Features()->Count() == table.RecordCount());
  for (int i = 0; i < std::min(table.RecordCount(), MOST_RECORDS); ++i) {
    K7ShapeRec& record = *table.GetRecord(i);
    Require(table.FindRecord(record.GetKey()) == &record);
    CheckTexts(layer, record);
    CheckTriangles(record);
    CheckPlace(table, record);
  }
  layer.FreeMemCache();
  Require(layer.FreeMemCache() == 0);
  return 0;
}
