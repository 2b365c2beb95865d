#include "route/fix_kind.h"

#include <k7/navdata/nav_data.h>
#include <k7/navdata/navaid.h>

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
