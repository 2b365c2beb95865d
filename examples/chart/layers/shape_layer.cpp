#include "layers/shape_layer.h"

#include "layers/pick_grfx.h"
#include "layers/read_set.h"
#include "layers/shape_value.h"

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>
#include <k7/io/io.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

constexpr double POINT_SIZE = 3.2;  // pixels across
// A line is under a pixel that is at most this far from it.
constexpr double PICK_REACH = 4;
// In place of the feature of a record.
constexpr int NOT_YET = -1, AMONG_AREAS = -2;

// Reports how far the reading has come.
class Reader : public K7ShpFile {
 public:
  explicit Reader(Progress& progress) : m_progress(progress) {}
  K7ShpRecord* NextRecord() override {
    if (RecordCount() > 0) m_progress.Within(static_cast<double>(StoredCount()) / RecordCount());
    return K7ShpFile::NextRecord();
  }

 private:
  Progress& m_progress;  // of the loading, which is all the reading there is
};

bool IsArea(const K7ShpObj& shape) {
  return shape.Type() == K7_SHP_POLYGON || shape.Type() == K7_SHP_POLYGON_Z ||
         shape.Type() == K7_SHP_POLYGON_M;
}

bool HasPositions(const K7ShpFile& file) {
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7ShpObj* const shape = file.GetRecord(i)->Obj();
    const K7ShpXY* const xy = shape ? shape->Points() : nullptr;
    if (xy && std::any_of(xy, xy + shape->GetPointCount(), IsOnEarth)) return true;
  }
  return file.StoredCount() == 0;
}

}  // namespace

std::string ShapeLayer::Name() const { return std::filesystem::path(m_path).stem().string(); }

std::string ShapeLayer::Load(Progress& progress) {
  progress.Step("reading " + Name());
  if (std::string problem = ReadSet(m_set, m_path, new Reader(progress)); !problem.empty()) return problem;
  m_features.assign(static_cast<size_t>(m_set.Table()->RecordCount()), NOT_YET);
  // Sets in projected coordinates have no positions, and would draw nothing.
  return HasPositions(*m_set.File()) ? std::string()
                                     : "the shapefile set '" + m_path + "' has no positions in degrees";
}

// What is made ready to be drawn is what some view has shown: a set of the world costs a chart of a few
// states little.
void ShapeLayer::Prepare(const LayerContext& context) {
  static const double BEYOND = 8;  // pixels from the window that a symbol, a pick or a closed area reaches
  m_shown.clear();
  if (!context.theme[m_item].ShowsAt(context.view.NMPerPixel())) return;
  const double width =
      std::max(context.theme[m_item].width, context.theme[ThemeItem::LakeLines].width) * context.scale;
  const double reach = BEYOND * std::max(context.scale, 1.0) + width;
  const std::unique_ptr<K7ShapeQuery> query(m_set.Table()->AreaQuery(WidenedExtent(context.view, reach)));
  while (const K7ShapeRec* const record = query ? query->Next() : nullptr) {
    const int number = record->GetKey() - 1;
    if (m_features[static_cast<size_t>(number)] == NOT_YET) MakeReady(number);
    if (const int feature = m_features[static_cast<size_t>(number)]; feature >= 0)
      m_shown.push_back({number, feature});
  }
  // One lies over the other as the set has them.
  std::sort(m_shown.begin(), m_shown.end(), [](const Line& a, const Line& b) { return a.record < b.record; });
}

// Without memory it stays undone.
void ShapeLayer::MakeReady(int record) {
  const K7ShpObj& shape = *m_set.File()->GetRecord(record)->Obj();
  if (IsArea(shape)) {
    if (m_areas.Add(static_cast<const K7ShpPoly&>(shape), record))
      m_features[static_cast<size_t>(record)] = AMONG_AREAS;
    return;
  }
  const K7ShpXY* const xy = shape.Points();
  m_points.clear();
  m_sizes.clear();
  for (int i = 0; xy && i < shape.GetPointCount(); ++i) m_points.emplace_back(xy[i].y, xy[i].x);
  for (int i = 0; i < shape.GetPolyCount(); ++i) m_sizes.push_back(shape.GetPolySize(i));
  const bool isLines = !m_sizes.empty();
  if (!isLines) m_sizes.push_back(static_cast<int>(m_points.size()));
  const int feature = m_lines.Add(isLines ? K7_MAP_LINES : K7_MAP_POINTS, m_points.data(), m_sizes.data(),
                                  static_cast<int>(m_sizes.size()));
  if (feature < 0) return;
  m_features[static_cast<size_t>(record)] = feature;
  m_isLakeLine.push_back(
      m_item == ThemeItem::Rivers &&
      ShapeText(m_set, *m_set.Table()->GetRecord(record), "featurecla").starts_with("Lake"));
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
  for (const Line& line : m_shown)
    if (IsLakeLine(line.feature) && path.Outline(&g, m_lines, line.feature) > 0) g.Stroke();
}

void ShapeLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseLine(g, context.theme[m_item], context.scale);
  VisitAreas(context, [&](int area) {
    if (path.Outline(&g, m_areas.Shown(), area) > 0) g.Stroke();
  });
  for (size_t i = 0; i < m_shown.size(); ++i) {
    const int feature = m_shown[i].feature;
    context.progress.Within(static_cast<double>(i) / static_cast<double>(m_shown.size()));
    if (!IsLakeLine(feature) && path.Outline(&g, m_lines, feature) > 0) g.Stroke();
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
  for (const Line& line : m_shown)
    for (int k = 0; m_lines.Kind(line.feature) == K7_MAP_POINTS && k < m_lines.PointCount(line.feature);
         ++k) {
      const K7LatLon p = m_lines.Point(line.feature, k);
      double dx, dy;
      if (context.view.ToDevice(p.Lat(), p.Lon(), dx, dy)) visit(line.record, dx, dy);
    }
}

void ShapeLayer::KeepSymbols(const LayerContext& context, LabelPlan& plan) {
  const double half = POINT_SIZE * context.scale / 2;
  VisitPoints(context, [&](int, double dx, double dy) {
    plan.Keep(PixelBox{dx - half, dy - half, dx + half, dy + half});
  });
}

// The first field that says something; what kind of thing it is behind it.
Picked ShapeLayer::Describe(int record) {
  std::string text;
  for (const char* const field : {"name", "featurecla"}) {
    const std::string value = ShapeText(m_set, *m_set.Table()->GetRecord(record), field);
    if (!value.empty()) text += (text.empty() ? ": " : ", ") + value;
  }
  return PickedShape(Name() + text, m_set, *m_set.Table()->GetRecord(record));
}

void ShapeLayer::Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
                      std::vector<Picked>& found) {
  PickGrfx picker(dx, dy);
  VisitAreas(context, [&](int area) {
    picker.Clear();
    path.Area(&picker, m_areas.Shown(), area);
    if (picker.Covers()) found.push_back(Describe(m_areas.NumberOf(area)));
  });
  for (const Line& line : m_shown) {
    picker.Clear();
    path.Outline(&picker, m_lines, line.feature);
    if (picker.Distance() <= PICK_REACH * context.scale) found.push_back(Describe(line.record));
  }
  VisitPoints(context, [&](int record, double x, double y) {
    if (std::hypot(x - dx, y - dy) <= PICK_REACH * context.scale) found.push_back(Describe(record));
  });
}

// The sets of Natural Earth carry it in their name.
double ShapeLayer::DataScale() const {
  const std::string name = Name();
  int millions = 0;
  return std::sscanf(name.c_str(), "ne_%dm_", &millions) == 1 && millions > 0 ? millions * 1e6 : 0;
}
