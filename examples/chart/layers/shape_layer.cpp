#include "layers/shape_layer.h"

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

bool InDegrees(const GeoPoint& p) { return std::fabs(p.lat) <= 90.0001 && std::fabs(p.lon) <= 540; }

// The parts of a shape in degrees. Points that a layer's coordinates cannot place are left out.
std::vector<GeoLine> Parts(const K7ShpObj& shape, K7ShpFile& file) {
  std::vector<GeoLine> parts;
  for (int part = 0, point = 0; part < shape.GetPolyCount(); ++part) {
    GeoLine line;
    const int end = point + shape.GetPolySize(part);
    for (; point < end; ++point) {
      GeoPoint p;
      const bool placed = shape.GetPoint(&file, point, p.lat, p.lon) == 0;
      if (placed && InDegrees(p)) line.push_back(p);
    }
    if (line.size() > 1) parts.push_back(std::move(line));
  }
  return parts;
}

// Where a data set was cut along 180 degrees or closed along a pole: an edge of the data, not of the land.
bool OnDataEdge(const GeoPoint& a, const GeoPoint& b) {
  static const double NEAR = 1e-4;
  const auto onSeam = [](const GeoPoint& p) { return std::fabs(std::fabs(p.lon) - 180) < NEAR; };
  const auto onPole = [](const GeoPoint& p) { return std::fabs(p.lat) > 90 - NEAR; };
  return (onSeam(a) && onSeam(b)) || (onPole(a) && onPole(b));
}

// The outlines of rings without the edges of the data.
std::vector<GeoLine> Shores(const std::vector<GeoLine>& rings) {
  std::vector<GeoLine> shores;
  for (const GeoLine& ring : rings) {
    GeoLine shore(1, ring.front());
    for (size_t i = 1; i < ring.size(); ++i) {
      if (OnDataEdge(ring[i - 1], ring[i])) {
        if (shore.size() > 1) shores.push_back(std::move(shore));
        shore.clear();
      }
      shore.push_back(ring[i]);
    }
    if (shore.size() > 1) shores.push_back(std::move(shore));
  }
  return shores;
}

// Areas that were cut along 180 degrees overlap there by a hair, so that no seam shows between the halves.
// Half a pixel each is enough.
void CoverSeam(std::vector<GeoLine>& rings, double degreesPerPixel) {
  const double overlap = std::min(degreesPerPixel / 2, 0.005);
  for (GeoLine& ring : rings)
    for (GeoPoint& p : ring)
      if (std::fabs(std::fabs(p.lon) - 180) < 1e-4) p.lon = std::copysign(180 + overlap, p.lon);
}

double Width(const GeoLine& line) {
  const auto [west, east] = std::minmax_element(
      line.begin(), line.end(), [](const GeoPoint& a, const GeoPoint& b) { return a.lon < b.lon; });
  return east->lon - west->lon;
}

// Rings are closed. One that runs across 180 degrees uncut is carried on there, if it then closes; one that
// runs around a pole does not, and is meant as it stands, as is a band around the world, of which nothing
// would be left. The first ring is an outer one and runs clockwise, its area to the right: files that have it
// the other way round have all their rings so.
void Straighten(std::vector<GeoLine>& rings) {
  double area = 0;
  for (GeoLine& ring : rings) {
    if (ring.front().lat != ring.back().lat || ring.front().lon != ring.back().lon)
      ring.push_back(ring.front());
    GeoLine unrolled = Unroll(ring);
    const bool closes = std::fabs(unrolled.back().lon - unrolled.front().lon) < 1e-6;
    if (closes && Width(unrolled) > 1e-6) ring = std::move(unrolled);
  }
  const GeoLine& outer = rings.front();
  for (size_t i = 0; i + 1 < outer.size(); ++i)
    area += (outer[i + 1].lon - outer[i].lon) * (outer[i + 1].lat + outer[i].lat);
  if (area < 0)
    for (GeoLine& ring : rings) ring = GeoLine(ring.rbegin(), ring.rend());
}

bool IsArea(int type) {
  return type == K7_SHP_POLYGON || type == K7_SHP_POLYGON_Z || type == K7_SHP_POLYGON_M;
}

// A set is three files. Empty when all of them open, else which does not and why.
std::string MissingFile(const std::filesystem::path& set) {
  for (const char* const ending : {".shp", ".dbf", ".shx"}) {
    const std::filesystem::path path = std::filesystem::path(set).replace_extension(ending);
    const bool main = K7String::IComp(set.extension().string().c_str(), ending) == 0;
    std::FILE* const file = std::fopen((main ? set : path).string().c_str(), "rb");
    if (file) {
      std::fclose(file);
      continue;
    }
    const std::string why = std::strerror(errno);
    if (main) return "cannot read '" + set.string() + "': " + why;
    return "cannot read '" + path.string() + "', which belongs to the shapefile set '" + set.string() +
           "': " + why;
  }
  return {};
}

}  // namespace

std::string ShapeLayer::Load(Progress& progress) {
  progress.Step("reading " + std::filesystem::path(m_path).stem().string());
  if (std::string missing = MissingFile(m_path); !missing.empty()) return missing;
  m_file.progress = &progress;
  m_file.KeepNullShapes(true);
  const int code = m_file.Read(m_path.c_str(), K7IO::Inst());
  m_file.progress = nullptr;
  const char* const message = K7ErrorString::ErrorString(code);
  if (code == 0 && (m_file.StoredCount() == 0 || HasPosition())) return {};
  if (code == 0) return "the shapefile set '" + m_path + "' has no positions in degrees";
  return "cannot read the shapefile set '" + m_path + "': " + (message ? message : "unknown error");
}

K7ShpRecord* ShapeLayer::File::NextRecord() {
  if (progress && RecordCount() > 0) progress->Within(static_cast<double>(StoredCount()) / RecordCount());
  return K7ShpFile::NextRecord();
}

// Sets in projected coordinates have none, and would draw nothing.
bool ShapeLayer::HasPosition() {
  for (int i = 0; i < m_file.StoredCount(); ++i) {
    const K7ShpObj* const shape = m_file.GetRecord(i)->Obj();
    for (int k = 0; shape && k < shape->GetPointCount(); ++k) {
      GeoPoint p;
      if (shape->GetPoint(&m_file, k, p.lat, p.lon) == 0 && InDegrees(p)) return true;
    }
  }
  return false;
}

void ShapeLayer::Draw(const View& view, double scale, Progress& progress) const {
  DrawAreas(view, scale, progress);
  DrawLines(view, scale);
  DrawPoints(view, scale);
}

void ShapeLayer::DrawAreas(const View& view, double scale, Progress& progress) const {
  cairo_t* const cairo = view.Grfx().Cairo();
  const LayerStyle& style = StyleOf(m_kind);
  const GeoPath path(view);
  for (int i = 0; i < m_file.StoredCount(); ++i) {
    progress.Within(static_cast<double>(i) / m_file.StoredCount());
    const K7ShpObj* const shape = m_file.GetRecord(i)->Obj();
    if (!shape || !IsArea(shape->Type())) continue;
    std::vector<GeoLine> rings = Parts(*shape, m_file);
    if (rings.empty()) continue;
    Straighten(rings);
    const std::vector<GeoLine> shores = Shores(rings);
    CoverSeam(rings, view.NMPerPixel() / 60);
    path.AddArea(rings);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    SetColor(cairo, style.fill);
    cairo_fill(cairo);
    for (const GeoLine& shore : shores) path.AddLine(shore);
    Stroke(cairo, style.line, scale);
  }
}

void ShapeLayer::DrawLines(const View& view, double scale) const {
  cairo_t* const cairo = view.Grfx().Cairo();
  const GeoPath path(view);
  const int featureClass = m_file.FindField("featurecla");
  // Lake centre lines first, as broad water under the rivers that run into them.
  for (const bool lakes : {true, false}) {
    for (int i = 0; i < m_file.StoredCount(); ++i) {
      const K7ShpRecord& record = *m_file.GetRecord(i);
      const K7ShpObj* const shape = record.Obj();
      if (!shape || IsArea(shape->Type()) || shape->GetPolyCount() == 0) continue;
      const bool isLake =
          m_kind == LayerKind::Rivers && std::strncmp(record.Text(featureClass), "Lake", 4) == 0;
      if (isLake != lakes) continue;
      for (const GeoLine& part : Parts(*shape, m_file)) path.AddLine(Unroll(part));
    }
    Stroke(cairo, lakes ? LAKE_LINE : StyleOf(m_kind).line, scale);
  }
}

void ShapeLayer::DrawPoints(const View& view, double scale) const {
  cairo_t* const cairo = view.Grfx().Cairo();
  for (int i = 0; i < m_file.StoredCount(); ++i) {
    const K7ShpObj* const shape = m_file.GetRecord(i)->Obj();
    if (!shape || shape->GetPolyCount() > 0) continue;
    for (int k = 0; k < shape->GetPointCount(); ++k) {
      GeoPoint p;
      DevicePoint at;
      if (shape->GetPoint(&m_file, k, p.lat, p.lon) != 0 || !view.Shows(p, at)) continue;
      cairo_new_sub_path(cairo);
      cairo_arc(cairo, at.x, at.y, 1.6 * scale, 0, 6.2832);
    }
  }
  SetColor(cairo, StyleOf(m_kind).line.color);
  cairo_fill(cairo);
}
