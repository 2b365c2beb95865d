#include "layers/shape_layer.h"

#include "layers/pick_grfx.h"

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

constexpr double POINT_SIZE = 3.2;  // pixels across
// A line is under a pixel that is at most this far from it.
constexpr double PICK_REACH = 4;

K7MapFeatureKind KindOf(const K7ShpObj& shape) {
  switch (shape.Type()) {
    case K7_SHP_POLYGON:
    case K7_SHP_POLYGON_Z:
    case K7_SHP_POLYGON_M:
      return K7_MAP_AREA;
    default:
      return shape.GetPolyCount() > 0 ? K7_MAP_LINES : K7_MAP_POINTS;
  }
}

// The feature of a record that has none, so that the two are counted alike.
bool AddNothing(K7MapFeatures& features) { return features.Add(K7_MAP_POINTS, nullptr, nullptr, 0) >= 0; }

// What cannot be read, `ending` being that of one of the three files of a set.
std::string Unreadable(const std::filesystem::path& set, const char* ending, const std::string& why) {
  if (K7String::IComp(set.extension().string().c_str(), ending) == 0)
    return "cannot read '" + set.string() + "': " + why;
  return "cannot read '" + std::filesystem::path(set).replace_extension(ending).string() +
         "', which belongs to the shapefile set '" + set.string() + "': " + why;
}

// Empty when all files of the set open, else which does not and why.
std::string MissingFile(const std::filesystem::path& set) {
  for (const char* const ending : {".shp", ".dbf", ".shx"}) {
    const bool isMain = K7String::IComp(set.extension().string().c_str(), ending) == 0;
    const std::filesystem::path path = isMain ? set : std::filesystem::path(set).replace_extension(ending);
    std::FILE* const file = std::fopen(path.string().c_str(), "rb");
    if (!file) return Unreadable(set, ending, std::strerror(errno));
    std::fclose(file);
  }
  return {};
}

}  // namespace

std::string ShapeLayer::Name() const { return std::filesystem::path(m_path).stem().string(); }

K7ShpRecord* ShapeLayer::File::NextRecord() {
  if (progress && RecordCount() > 0) progress->Within(static_cast<double>(StoredCount()) / RecordCount());
  return K7ShpFile::NextRecord();
}

std::string ShapeLayer::Load(Progress& progress) {
  progress.Step("reading " + Name());
  if (std::string missing = MissingFile(m_path); !missing.empty()) return missing;
  m_file.progress = &progress;
  m_file.KeepNullShapes(true);
  const int code = m_file.Read(m_path.c_str(), K7IO::Inst());
  m_file.progress = nullptr;
  const char* const message = K7ErrorString::ErrorString(code);
  const char* const endings[] = {".shp", ".shp", ".dbf", ".shx"};  // by K7ShpPart
  if (code != 0) return Unreadable(m_path, endings[m_file.BadFile()], message ? message : "unknown error");

  const int featureClass = m_file.FindField("featurecla");
  bool hasPosition = m_file.StoredCount() == 0;
  for (int i = 0; i < m_file.StoredCount(); ++i) {
    const K7ShpRecord& record = *m_file.GetRecord(i);
    const bool added = record.Obj() ? AddFeature(*record.Obj(), i, hasPosition) : AddNothing(m_features);
    if (!added) return "out of memory";
    hasPosition = hasPosition || m_features.PointCount(i) > 0;
    m_isLakeLine.push_back(std::strncmp(record.Text(featureClass), "Lake", 4) == 0);
  }
  // Sets in projected coordinates have none, and would draw nothing.
  return hasPosition ? std::string() : "the shapefile set '" + m_path + "' has no positions in degrees";
}

bool ShapeLayer::AddFeature(const K7ShpObj& shape, int record, bool& hasPosition) {
  if (KindOf(shape) == K7_MAP_AREA)
    return m_areas.Add(static_cast<const K7ShpPoly&>(shape), record, hasPosition) && AddNothing(m_features);
  const K7ShpXY* const xy = shape.Points();
  m_points.clear();
  m_sizes.clear();
  for (int i = 0; xy && i < shape.GetPointCount(); ++i) m_points.emplace_back(xy[i].y, xy[i].x);
  for (int i = 0; i < shape.GetPolyCount(); ++i) m_sizes.push_back(shape.GetPolySize(i));
  if (shape.GetPolyCount() == 0) m_sizes.push_back(static_cast<int>(m_points.size()));
  return m_features.Add(KindOf(shape), m_points.data(), m_sizes.data(), static_cast<int>(m_sizes.size())) >=
         0;
}

void ShapeLayer::DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseFill(g, context.theme[m_item]);
  VisitAreas(context, [&](int area) {
    if (path.Area(&g, m_areas.Shown(), area) > 0) g.Fill();
  });
  if (m_item != ThemeItem::Rivers) return;
  // A lake that the data hold as its centre line only is water as broad as a line; drawn before the coasts
  // and in the water's colour, it vanishes where the lake is there as an area.
  UseLine(g, context.theme[ThemeItem::LakeLines], context.scale);
  for (int i = 0; i < m_features.Count(); ++i)
    if (IsLakeLine(i) && path.Outline(&g, m_features, i) > 0) g.Stroke();
}

void ShapeLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseLine(g, context.theme[m_item], context.scale);
  VisitAreas(context, [&](int area) {
    if (path.Outline(&g, m_areas.Shown(), area) > 0) g.Stroke();
  });
  for (int i = 0; i < m_features.Count(); ++i) {
    context.progress.Within(static_cast<double>(i) / m_features.Count());
    if (m_item == ThemeItem::Rivers && IsLakeLine(i)) continue;
    if (path.Outline(&g, m_features, i) > 0) g.Stroke();
  }
  // A line without length is a dot.
  g.LineStyle(POINT_SIZE * context.scale, nullptr, 0);
  VisitPoints(context, [&](int, double dx, double dy) {
    g.MoveTo(dx, dy);
    g.LineTo(dx, dy);
    g.Stroke();
  });
}

template <class Visit>
void ShapeLayer::VisitAreas(const LayerContext& context, Visit visit) {
  const int count = m_areas.Show(context.view) ? m_areas.Shown().Count() : 0;
  for (int area = 0; area < count; ++area) {
    context.progress.Within(static_cast<double>(area) / count);
    visit(area);
  }
}

template <class Visit>
void ShapeLayer::VisitPoints(const LayerContext& context, Visit visit) const {
  for (int i = 0; i < m_features.Count(); ++i)
    for (int k = 0; m_features.Kind(i) == K7_MAP_POINTS && k < m_features.PointCount(i); ++k) {
      const K7LatLon p = m_features.Point(i, k);
      double dx, dy;
      if (context.view.ToDevice(p.Lat(), p.Lon(), dx, dy)) visit(i, dx, dy);
    }
}

void ShapeLayer::KeepSymbols(const LayerContext& context, LabelPlan& plan) {
  const double half = POINT_SIZE * context.scale / 2;
  VisitPoints(context, [&](int, double dx, double dy) {
    plan.Keep(PixelBox{dx - half, dy - half, dx + half, dy + half});
  });
}

// The first field that says something; what kind of thing it is behind it.
std::string ShapeLayer::Describe(int feature) const {
  const K7ShpRecord& record = *m_file.GetRecord(feature);
  std::string text;
  for (const char* const field : {"name", "featurecla"}) {
    const std::string value = record.Text(m_file.FindField(field));
    if (!value.empty()) text += (text.empty() ? ": " : ", ") + value;
  }
  return Name() + text;
}

void ShapeLayer::Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
                      std::vector<std::string>& found) {
  PickGrfx picker(dx, dy);
  VisitAreas(context, [&](int area) {
    picker.Clear();
    path.Area(&picker, m_areas.Shown(), area);
    if (picker.Covers()) found.push_back(Describe(m_areas.NumberOf(area)));
  });
  for (int i = 0; i < m_features.Count(); ++i) {
    picker.Clear();
    path.Outline(&picker, m_features, i);
    if (picker.Distance() <= PICK_REACH * context.scale) found.push_back(Describe(i));
  }
  VisitPoints(context, [&](int feature, double x, double y) {
    if (std::hypot(x - dx, y - dy) <= PICK_REACH * context.scale) found.push_back(Describe(feature));
  });
}

// The sets of Natural Earth carry it in their name.
double ShapeLayer::DataScale() const {
  const std::string name = Name();
  int millions = 0;
  return std::sscanf(name.c_str(), "ne_%dm_", &millions) == 1 && millions > 0 ? millions * 1e6 : 0;
}
