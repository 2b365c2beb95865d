// Records as a person asks for them and reads about them.

#include "app/database.h"
#include "store/place.h"
#include "store/text_1252.h"

#include <k7/navdata.h>

#include <cstring>

namespace {

constexpr K7NavType LISTED[] = {K7NAV_AIRPORT,       K7NAV_VOR,           K7NAV_ENROUTE_NDB,
                                K7NAV_TERMINAL_NDB,  K7NAV_ENROUTE_FIX,   K7NAV_TERMINAL_FIX,
                                K7NAV_LOCALIZER,     K7NAV_MARKER,        K7NAV_LOW_USE_AIRPORT,
                                K7NAV_AIRWAY_HEADER, K7NAV_CTRL_AIRSPACE, K7NAV_SPECIAL_USE_AIRSPACE};

}  // namespace

std::string ReadPosition(const std::string& text, K7LatLon& position) {
  return position.ParsePosition(text.c_str()) ? "" : Quoted(text) + " is no position";
}

std::string Utf8(const char* text) { return text ? Printable1252(text) : std::string(); }

std::string IdentOf(const K7NavRec& rec) {
  const auto text = [](const auto& member) {
    return Utf8(std::string(member, strnlen(member, sizeof member)).c_str());
  };
  const K7NavType type = rec.Type();
  if (K7IsFix(type)) return text(static_cast<const K7NavFix&>(rec).ident);
  if (type == K7NAV_AIRWAY_HEADER) return text(static_cast<const K7AirwayHeader&>(rec).ident);
  const bool area = type == K7NAV_CTRL_AIRSPACE || type == K7NAV_SPECIAL_USE_AIRSPACE;
  return area ? Utf8(static_cast<const K7NavArea&>(rec).ident) : std::string();
}

std::string Describe(NavStore& store, const K7NavRec& rec) {
  K7String text;
  if (store.GetDescriptionByKey(rec.key, text) == 0 && !text.IsEmpty()) return Utf8(text);
  std::string what = IdentOf(rec);
  if (rec.Type() == K7NAV_AIRWAY_HEADER) {
    const int count = static_cast<const K7AirwayHeader&>(rec).segCount;
    what += " with " + std::to_string(count) + (count == 1 ? " segment" : " segments");
  }
  return what.empty() ? K7NavData::TypeName(rec.Type()) : what;
}

bool PlaceOf(const K7NavRec& rec, K7LatLon& at) {
  const auto bounds = BoundsOf(TableOf(rec.Type()), rec);
  if (!bounds) return false;
  double lat, lon;
  bounds->Degrees().Center(lat, lon);
  at.Init(lat, lon);
  return true;
}

std::string PositionText(const K7LatLon& at) {
  K7String lat, lon;
  if (!at.FormatLat("%H%02d %04.1M", lat) || !at.FormatLon("%H%03d %04.1M", lon)) return {};
  return std::string(lat) + " " + std::string(lon);
}

std::span<const K7NavType> ListedTypes() { return LISTED; }
