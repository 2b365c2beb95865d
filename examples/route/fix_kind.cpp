#include "route/fix_kind.h"

#include <k7/navdata/airport.h>
#include <k7/navdata/nav_data.h>
#include <k7/navdata/navaid.h>

#include "store/text_1252.h"

namespace {

std::string WithFigures(const char* kind, const char* format, double value) {
  K7String text;
  if (value > 0) text.Format(format, value);
  return std::string(kind) + std::string(text);
}

std::string KindOf(const K7VHFNavaid& navaid) {
  std::string kind = navaid.DetailedType();
  if (kind.empty()) kind = "VHF navaid";
  if (kind == "VORDME") kind = "VOR-DME";
  return WithFigures(kind.c_str(), navaid.freq % 10 == 0 ? " %.1f" : " %.2f", navaid.freq / 100.0);
}

const char* NameIn(const K7NavRec& rec) {
  switch (rec.Type()) {
    case K7NAV_AIRPORT:
      return static_cast<const K7Airport&>(rec).name;
    case K7NAV_VOR:
      return static_cast<const K7VHFNavaid&>(rec).name;
    case K7NAV_ENROUTE_NDB:
    case K7NAV_TERMINAL_NDB:
      return static_cast<const K7NDB&>(rec).name;
    case K7NAV_ENROUTE_FIX:
    case K7NAV_TERMINAL_FIX:
      return static_cast<const K7Waypoint&>(rec).name;
    default:
      return nullptr;
  }
}

}  // namespace

std::string FixKind(K7NavData& store, const K7NavKey& key) {
  const K7NavRec* const rec = store.GetRec(key);
  if (!rec) return {};
  switch (rec->Type()) {
    case K7NAV_AIRPORT:
      return "airport";
    case K7NAV_VOR:
      return KindOf(static_cast<const K7VHFNavaid&>(*rec));
    case K7NAV_ENROUTE_NDB:
    case K7NAV_TERMINAL_NDB: {
      const uint32_t tenths = static_cast<const K7NDB&>(*rec).freq;
      return WithFigures("NDB", tenths % 10 == 0 ? " %.0f" : " %.1f", tenths / 10.0);
    }
    case K7NAV_ENROUTE_FIX:
    case K7NAV_TERMINAL_FIX:
      return "fix";
    default:
      return {};
  }
}

std::string FixName(const K7NavRec& rec) {
  const char* const name = NameIn(rec);
  return name ? Utf8Of1252(name) : std::string();
}
