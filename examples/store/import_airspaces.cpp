// Airspaces with their boundaries.

#include "store/import_boundary.h"
#include "store/import_fields.h"
#include "store/import_run.h"

#include <algorithm>
#include <cctype>

namespace {

struct ClassRow {
  const char* name;
  K7NavType type;
  uint8_t kind;
  char letter;
};
constexpr ClassRow CLASSES[] = {
    {"A", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CLASS_A, 'A'},
    {"B", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CLASS_B, 'B'},
    {"C", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CLASS_C, 'C'},
    {"D", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_AREA, 'D'},
    {"E", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_AREA, 'E'},
    {"F", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_AREA, 'F'},
    {"G", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_AREA, 'G'},
    {"CTR", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_ZONE, 0},
    {"CTA", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::CONTROL_AREA, 0},
    {"TMA", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::TERMINAL_AREA, 0},
    {"RMZ", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::RADAR_ZONE, 0},
    {"TMZ", K7NAV_CTRL_AIRSPACE, K7CtrlAirspace::RADAR_ZONE, 0},
    {"R", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::RESTRICTED, 0},
    {"Q", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::DANGER, 0},
    {"P", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::PROHIBITED, 0},
    {"GP", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::PROHIBITED, 0},
    {"W", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::GLIDER, 0},
    {"GSEC", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::GLIDER, 0},
};
// Whatever countries have invented beside them.
constexpr ClassRow OTHER = {"", K7NAV_SPECIAL_USE_AIRSPACE, K7SUAirspace::UNKNOWN, 0};

const ClassRow& FindClass(const std::string& name) {
  const ClassRow* const row =
      std::find_if(std::begin(CLASSES), std::end(CLASSES), [&](const ClassRow& r) { return name == r.name; });
  return row == std::end(CLASSES) ? OTHER : *row;
}

// "CYR107 COMOX": a first word of letters and digits is the identifier.
void SplitName(const std::string& whole, std::string& ident, std::string& name) {
  const std::string first = whole.substr(0, whole.find(' '));
  const auto has = [&](int (*kind)(int)) {
    return std::any_of(first.begin(), first.end(),
                       [&](char c) { return kind(static_cast<unsigned char>(c)); });
  };
  name = whole;
  ident.clear();
  if (first.size() > 8 || !has(std::isdigit) || !has(std::isalpha)) return;
  ident = first;
  const std::string_view rest = Trimmed(std::string_view(whole).substr(first.size()));
  name = rest.empty() ? whole : std::string(rest);
}

template <class Area>
K7NavKey AddAirspace(const OpenAirSpace& space, const ClassRow& row, const BoundaryBounds& bounds,
                     size_t pieces, ImportRun& run) {
  std::string ident, name;
  SplitName(space.name, ident, name);
  Area area;
  area.key = K7NavKey(0, row.type);
  area.name = name.c_str();
  if (!ident.empty()) area.ident = ident.c_str();
  area.type = row.kind;
  area.north = K7NavData::DecDeg2FixPt(bounds.north);
  area.south = K7NavData::DecDeg2FixPt(bounds.south);
  area.east = K7NavData::DecDeg2FixPt(bounds.east);
  area.west = K7NavData::DecDeg2FixPt(bounds.west);
  area.floor = space.floor;
  area.ceiling = space.ceiling;
  area.firstSeg = run.sink.Count(K7NAV_AIRSPACE_SEG);
  area.segCount = static_cast<uint32_t>(pieces);
  if constexpr (requires { area.airspaceClass; }) area.airspaceClass = row.letter;
  return run.sink.Add(area);
}

void TakeAirspace(const OpenAirSpace& space, ImportRun& run) {
  std::vector<K7AirspaceSeg> pieces;
  if (std::string problem = JoinBoundary(space.boundary, pieces); !problem.empty()) {
    run.log.Problem(space.line, "the airspace '" + space.name + "' " + problem);
    return;
  }
  const ClassRow& row = FindClass(space.airspaceClass);
  const BoundaryBounds bounds = BoundsOf(pieces);
  const K7NavKey key = row.type == K7NAV_CTRL_AIRSPACE
                           ? AddAirspace<K7CtrlAirspace>(space, row, bounds, pieces.size(), run)
                           : AddAirspace<K7SUAirspace>(space, row, bounds, pieces.size(), run);
  uint32_t sequence = 0;
  for (K7AirspaceSeg& piece : pieces) {
    piece.key = K7NavKey(0, K7NAV_AIRSPACE_SEG);
    piece.airspace = key;
    piece.sequence = sequence++;
    run.sink.Add(piece);
  }
}

}  // namespace

std::string ImportAirspaces(ByteSource& source, const std::string& name, ImportRun& run) {
  OpenAirReader airspaces([&](const OpenAirSpace& space) { TakeAirspace(space, run); });
  LineReader reader(source);
  run.log.Begin(name);
  bool begun = false;
  for (std::string_view line; reader.Next(line);) {
    if (reader.Number() % 256 == 0) run.progress("reading " + name, reader.Share());
    if (OpenAirReader::SaysNothing(line)) continue;
    if (!begun && (reader.Problem() || !OpenAirReader::IsFirstLine(line))) break;
    begun = true;
    std::string problem;
    if (reader.Problem()) {
      airspaces.Spoil();
      problem = reader.Problem();
    } else {
      problem = airspaces.Take(line, reader.Number());
    }
    if (!problem.empty()) run.log.Problem(reader.Number(), problem);
  }
  if (reader.Damaged()) return name + " is damaged or cut off";
  if (!begun) return name + " is no OpenAir file: it does not begin with an airspace";
  airspaces.Finish();
  return {};
}
