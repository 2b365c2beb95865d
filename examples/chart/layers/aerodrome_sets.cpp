// What an aerodrome layer is read from, and what its sets say of runways.

#include "layers/aerodrome_kinds.h"
#include "layers/aerodrome_layer.h"
#include "layers/read_set.h"
#include "layers/shape_value.h"

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>
#include "store/text_1252.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

namespace {

constexpr double FEET_PER_METRE = 1 / 0.3048;

bool IsSame(const std::string& a, const std::string& b) { return K7String::IComp(a.c_str(), b.c_str()) == 0; }

}  // namespace

std::string AerodromeLayer::Load(const std::string& folder, const std::string& airport) {
  m_sets.clear();
  std::map<std::string, std::string> paths;  // by lower-case names, in a fixed order
  std::error_code error;
  std::filesystem::directory_iterator files(folder, error);
  if (error) return "cannot read the folder of aerodrome sets '" + folder + "': " + error.message();
  for (; !error && files != std::filesystem::directory_iterator(); files.increment(error)) {
    const std::filesystem::path& path = files->path();
    if (IsSame(path.extension().string(), ".shp"))
      paths.emplace(Folded1252(path.stem().string()), path.string());
  }
  for (const AerodromeKind& kind : AerodromeKinds())
    for (const std::string& prefix : {std::string(), Folded1252(airport) + "_"})
      if (const auto found = paths.find(prefix + kind.set); found != paths.end())
        if (std::string problem = LoadSet(found->second, kind, airport, !prefix.empty()); !problem.empty())
          return problem;
  return {};
}

std::string AerodromeLayer::LoadSet(const std::string& path, const AerodromeKind& kind,
                                    const std::string& airport, bool isNamed) {
  auto layer = std::make_unique<K7ShpLayer>(kind.type, static_cast<int>(m_sets.size()));
  if (std::string problem = ReadSet(*layer, path); !problem.empty()) return problem;
  if (!layer->Features()) return "out of memory for the shapefile set '" + path + "'";
  const K7ShapeTable* const table = layer->Table();
  std::vector<char> isOurs;
  for (int i = 0; i < table->RecordCount(); ++i) {
    const std::string of = ShapeText(*layer, *table->GetRecord(i), "IDARPT");
    isOurs.push_back(of.empty() ? isNamed : IsSame(of, airport));
  }
  if (std::find(isOurs.begin(), isOurs.end(), 1) != isOurs.end())
    m_sets.push_back({&kind, std::move(layer), std::move(isOurs), {}});
  return {};
}

bool AerodromeLayer::Has(K7ShapeType type) const {
  return std::any_of(m_sets.begin(), m_sets.end(), [&](const Set& set) { return set.kind->type == type; });
}

K7ChartRect AerodromeLayer::Bounds() const {
  K7ChartRect bounds, box;
  for (const Set& set : m_sets)
    for (int i = 0; i < set.layer->Table()->RecordCount(); ++i)
      if (set.isOurs[static_cast<size_t>(i)] && set.layer->Table()->GetRecord(i)->GetBounds(box) == 0)
        bounds.BoundingUnion(bounds, box);
  return bounds;
}

template <class Visit>
void AerodromeLayer::VisitOurs(K7ShapeType type, Visit visit) const {
  for (const Set& set : m_sets)
    for (int i = 0; set.kind->type == type && i < set.layer->Table()->RecordCount(); ++i)
      if (set.isOurs[static_cast<size_t>(i)]) visit(*set.layer, *set.layer->Table()->GetRecord(i));
}

void AerodromeLayer::Complete(std::vector<RunwayStrip>& runways) const {
  static const double MOST_FEET = 30000;
  const auto feetOf = [](const K7Shape& shape, const K7ShapeRec& record, const char* name, auto take) {
    const std::optional<double> metres = ShapeNumber(shape, record, name);
    if (metres && std::fabs(*metres) * FEET_PER_METRE < MOST_FEET)
      take(static_cast<int>(std::lround(*metres * FEET_PER_METRE)));
  };
  const auto visitEnds = [&](K7ShapeType type, auto visit) {
    VisitOurs(type, [&](const K7Shape& shape, const K7ShapeRec& record) {
      const std::string ident = ShapeText(shape, record, "IDTHR");
      for (RunwayStrip& runway : runways)
        for (RunwayEnd& end : runway.ends)
          if (!ident.empty() && IsSame(end.ident, ident)) visit(shape, record, end);
    });
  };
  VisitOurs(K7_SHAPE_RUNWAY, [&](const K7Shape& shape, const K7ShapeRec& record) {
    const std::string ident = ShapeText(shape, record, "IDRWY");
    const size_t point = ident.find_first_of("./");
    const std::string first = ident.substr(0, point);
    for (RunwayStrip& runway : runways) {
      if (first.empty() || (!IsSame(runway.ends[0].ident, first) && !IsSame(runway.ends[1].ident, first)))
        continue;
      feetOf(shape, record, "LENGTH", [&](int feet) { runway.length = feet > 0 ? feet : runway.length; });
      feetOf(shape, record, "WIDTH", [&](int feet) { runway.width = feet; });
      runway.isClosed = runway.isClosed || IsClosedShape(shape, record);
    }
  });
  visitEnds(K7_SHAPE_DISPLACED_AREA, [&](const K7Shape& shape, const K7ShapeRec& record, RunwayEnd& end) {
    feetOf(shape, record, "LENGTH", [&](int feet) { end.displaced = feet; });
  });
  visitEnds(K7_SHAPE_THRESHOLD, [&](const K7Shape& shape, const K7ShapeRec& record, RunwayEnd& end) {
    feetOf(shape, record, "ELEV", [&](int feet) { end.elev = feet; });
  });
}
