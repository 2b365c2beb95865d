#include "layers/shape_layer.h"

#include "ink/readable.h"
#include "ink/text.h"
#include "layers/pick_grfx.h"

#include <k7/foundation/error_string.h>
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

// UTF-8; empty for what is absent and for numbers.
std::string TextOf(const K7ShapeTable& table, int record, const char* field) {
  const int i = table.FindAttrib(field);
  K7ShapeAttrib value;
  if (table.AttribType(i) != K7_ATTRIB_TEXT || table.GetAttrib(*table.GetRecord(record), i, value) != 0)
    return {};
  const char* const text = value;
  return text ? Utf8(text) : std::string();
}

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
    if (const std::string why = WhyUnreadable(path.string()); !why.empty())
      return Unreadable(set, ending, why);
  }
  return {};
}

}  // namespace

std::string ShapeLayer::Name() const { return std::filesystem::path(m_path).stem().string(); }

std::string ShapeLayer::Load(Progress& progress) {
  progress.Step("reading " + Name());
  if (std::string missing = MissingFile(m_path); !missing.empty()) return missing;
  const int code = m_set.Read(m_path.c_str(), K7IO::Inst(), new Reader(progress));
  const char* const message = K7ErrorString::ErrorString(code);
  const char* const endings[] = {".shp", ".shp", ".dbf", ".shx"};  // by K7ShpPart
  if (code != 0) return Unreadable(m_path, endings[m_set.BadFile()], message ? message : "unknown error");

  bool hasPosition = m_set.Table()->RecordCount() == 0;
  if (!TakeAreas(hasPosition) || !TakeLines(hasPosition)) return "out of memory";
  // Sets in projected coordinates have none, and would draw nothing.
  return hasPosition ? std::string() : "the shapefile set '" + m_path + "' has no positions in degrees";
}

bool ShapeLayer::TakeAreas(bool& hasPosition) {
  const K7ShpFile& file = *m_set.File();
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7ShpObj* const shape = file.GetRecord(i)->Obj();
    m_hasLines = m_hasLines || (shape && !IsArea(*shape));
    if (shape && IsArea(*shape) && !m_areas.Add(static_cast<const K7ShpPoly&>(*shape), i, hasPosition))
      return false;
  }
  return true;
}

// A set has shapes of one kind: the features of one that has areas, which would hold these a second time,
// are not asked for.
bool ShapeLayer::TakeLines(bool& hasPosition) {
  const K7MapFeatures* const features = m_hasLines ? m_set.Features() : nullptr;
  if (m_hasLines && !features) return false;
  for (int i = 0; features && i < features->Count(); ++i) {
    hasPosition = hasPosition || features->PointCount(i) > 0;
    if (m_item == ThemeItem::Rivers)
      m_isLakeLine.push_back(TextOf(*m_set.Table(), i, "featurecla").starts_with("Lake"));
  }
  return true;
}

void ShapeLayer::Prepare(const LayerContext& context) {
  static const double BEYOND = 8;  // pixels from the window that a symbol or a pick reaches
  m_shown.clear();
  if (!m_hasLines || !context.theme[m_item].ShowsAt(context.view.NMPerPixel())) return;
  const double reach =
      BEYOND + std::max(context.theme[m_item].width, context.theme[ThemeItem::LakeLines].width);
  const std::unique_ptr<K7ShapeQuery> query(
      m_set.Table()->AreaQuery(WidenedExtent(context.view, reach * context.scale)));
  while (const K7ShapeRec* const record = query ? query->Next() : nullptr)
    if (const int number = record->GetKey() - 1; m_set.Features()->Kind(number) != K7_MAP_AREA)
      m_shown.push_back(number);
  // One lies over the other as the set has them.
  std::sort(m_shown.begin(), m_shown.end());
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
  for (const int i : m_shown)
    if (IsLakeLine(i) && path.Outline(&g, *m_set.Features(), i) > 0) g.Stroke();
}

void ShapeLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseLine(g, context.theme[m_item], context.scale);
  VisitAreas(context, [&](int area) {
    if (path.Outline(&g, m_areas.Shown(), area) > 0) g.Stroke();
  });
  for (size_t i = 0; i < m_shown.size(); ++i) {
    context.progress.Within(static_cast<double>(i) / static_cast<double>(m_shown.size()));
    if (!IsLakeLine(m_shown[i]) && path.Outline(&g, *m_set.Features(), m_shown[i]) > 0) g.Stroke();
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
void ShapeLayer::VisitPoints(const LayerContext& context, Visit visit) {
  for (const int i : m_shown) {
    const K7MapFeatures& features = *m_set.Features();
    for (int k = 0; features.Kind(i) == K7_MAP_POINTS && k < features.PointCount(i); ++k) {
      const K7LatLon p = features.Point(i, k);
      double dx, dy;
      if (context.view.ToDevice(p.Lat(), p.Lon(), dx, dy)) visit(i, dx, dy);
    }
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
    const std::string value = TextOf(*m_set.Table(), record, field);
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
  for (const int i : m_shown) {
    picker.Clear();
    path.Outline(&picker, *m_set.Features(), i);
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
