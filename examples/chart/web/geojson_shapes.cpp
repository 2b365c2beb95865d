#include "layers/shape_layer.h"
#include "store/text_1252.h"
#include "web/geojson_features.h"
#include "web/geojson_geometry.h"

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>

#include <algorithm>
#include <memory>

namespace {

constexpr int FIELD_DECIMALS = 9;

void AddGeometry(JsonWriter& json, const K7ShpObj& shape) {
  const K7ShpXY* const xy = shape.Points();
  std::vector<std::vector<K7LatLon>> parts;
  int at = 0;
  const int count = std::max(shape.GetPolyCount(), 1);
  for (int part = 0; part < count && xy; ++part) {
    const int size = shape.GetPolyCount() > 0 ? shape.GetPolySize(part) : shape.GetPointCount();
    parts.emplace_back();
    for (int i = 0; i < size; ++i, ++at) parts.back().emplace_back(xy[at].y, xy[at].x);
  }
  switch (shape.Type()) {
    case K7_SHP_POLYGON:
    case K7_SHP_POLYGON_Z:
    case K7_SHP_POLYGON_M:
      return WriteArea(json, parts);
    case K7_SHP_POLYLINE:
    case K7_SHP_POLYLINE_Z:
    case K7_SHP_POLYLINE_M:
      return WriteLines(json, parts);
    default:
      WritePoints(json, parts.empty() ? std::vector<K7LatLon>() : parts.front());
  }
}

void AddProperties(JsonWriter& json, const K7ShapeTable& table, const K7ShapeRec& record,
                   const std::string& layer) {
  json.Begin('{').Key("layer").Text(layer);
  for (int i = 0; i < table.AttribCount(); ++i) {
    K7ShapeAttrib value;
    const std::string name = Utf8Of1252(table.AttribName(i));
    if (name == "layer" || table.GetAttrib(record, i, value) != 0) continue;
    json.Key(name);
    const K7ShapeAttribType type = table.AttribType(i);
    const char* const text = type == K7_ATTRIB_TEXT ? static_cast<const char*>(value) : nullptr;
    if (type == K7_ATTRIB_TEXT)
      json.Text(Utf8Of1252(text ? text : ""));
    else if (type == K7_ATTRIB_DOUBLE)
      json.Number(static_cast<double>(value), FIELD_DECIMALS);
    else
      json.Integer(type == K7_ATTRIB_INT ? static_cast<int>(value) : static_cast<int64_t>(value));
  }
  json.End('}');
}

}  // namespace

bool FeatureWriter::HasRoom() const {
  static const size_t MOST_BYTES = 32 << 20;
  return m_count < m_most && m_json.Written().size() < MOST_BYTES;
}

bool FeatureWriter::AddShapes(ShapeLayer& layer, const std::string& name, const K7ChartRect& area) {
  const K7ShpLayer& set = layer.Set();
  const std::unique_ptr<K7ShapeQuery> query(set.Table()->AreaQuery(area));
  // In the order of the set, so that a limit always leaves out the same.
  std::vector<const K7ShapeRec*> found;
  while (const K7ShapeRec* const record = query ? query->Next() : nullptr) found.push_back(record);
  std::sort(found.begin(), found.end(),
            [](const K7ShapeRec* a, const K7ShapeRec* b) { return a->GetKey() < b->GetKey(); });
  for (const K7ShapeRec* const record : found) {
    if (!HasRoom()) return false;
    const std::string id = layer.Name() + "/" + std::to_string(record->GetKey());
    m_json.Begin('{').Key("type").Text("Feature").Key("id").Text(id).Key("geometry");
    AddGeometry(m_json, *set.File()->GetRecord(record->GetKey() - 1)->Obj());
    m_json.Key("properties");
    AddProperties(m_json, *set.Table(), *record, name);
    m_json.End('}');
    ++m_count;
  }
  return true;
}
