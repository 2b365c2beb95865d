#include "web/geojson_geometry.h"

#include "web/geo_cut.h"

#include <cmath>

namespace {

constexpr int DECIMALS = 6;  // a ninth of a metre

void Write(JsonWriter& json, const GeoPoint& p) {
  json.Begin('[').Number(p.lon, DECIMALS).Number(p.lat, DECIMALS).End(']');
}

template <class Part>
void Write(JsonWriter& json, const std::vector<Part>& parts) {
  json.Begin('[');
  for (const Part& part : parts) Write(json, part);
  json.End(']');
}

// What is one is no "Multi".
template <class Part>
void WriteGeometry(JsonWriter& json, const std::string& type, const std::vector<Part>& parts) {
  if (parts.empty()) {
    json.Null();
    return;
  }
  json.Begin('{').Key("type").Text(parts.size() == 1 ? type : "Multi" + type).Key("coordinates");
  if (parts.size() == 1)
    Write(json, parts.front());
  else
    Write(json, parts);
  json.End('}');
}

}  // namespace

void WritePoints(JsonWriter& json, const std::vector<K7LatLon>& points) {
  std::vector<GeoPoint> written;
  for (const K7LatLon& p : points)
    if (std::fabs(p.Lat()) <= 90 && std::fabs(p.Lon()) <= 540)
      written.push_back({std::fabs(p.Lon()) > 180 ? std::remainder(p.Lon(), 360) : p.Lon(), p.Lat()});
  WriteGeometry(json, "Point", written);
}

void WriteLines(JsonWriter& json, const std::vector<std::vector<K7LatLon>>& lines) {
  std::vector<GeoLine> written;
  for (const std::vector<K7LatLon>& line : lines)
    for (GeoLine& piece : CutLine(line))
      if (piece.size() > 1) written.push_back(std::move(piece));
  WriteGeometry(json, "LineString", written);
}

void WriteArea(JsonWriter& json, const std::vector<std::vector<K7LatLon>>& rings) {
  WriteGeometry(json, "Polygon", CutArea(rings));
}
