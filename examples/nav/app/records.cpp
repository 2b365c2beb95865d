// Records as a person asks for them and reads about them.

#include "app/database.h"
#include "store/spelling.h"

#include <k7/navdata.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <set>
#include <tuple>

namespace {

constexpr K7NavType LISTED[] = {K7NAV_AIRPORT,       K7NAV_VOR,           K7NAV_ENROUTE_NDB,
                                K7NAV_TERMINAL_NDB,  K7NAV_ENROUTE_FIX,   K7NAV_TERMINAL_FIX,
                                K7NAV_LOCALIZER,     K7NAV_MARKER,        K7NAV_LOW_USE_AIRPORT,
                                K7NAV_AIRWAY_HEADER, K7NAV_CTRL_AIRSPACE, K7NAV_SPECIAL_USE_AIRSPACE};

constexpr OptionRow<IdentOptions> OPTIONS[] = {
    {"--near", "POSITION", "Where it is meant: the nearest comes first.",
     [](const char* text, IdentOptions& o) -> std::string {
       o.near = text;
       K7LatLon position;
       return ReadPosition(text, position);
     }},
};

// What the bytes 0x80 to 0x9F stand for; 0 for those that stand for nothing.
constexpr unsigned WINDOWS_1252[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                       0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AppendUtf8(std::string& out, unsigned code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | code >> 12);
    out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

K7LatLon Middle(int32_t lat1, int32_t lon1, int32_t lat2, int32_t lon2) {
  const double lon = K7NavData::FixPt2DecDeg(lon1);
  const double width = std::remainder(K7NavData::FixPt2DecDeg(lon2) - lon, 360);
  return {(K7NavData::FixPt2DecDeg(lat1) + K7NavData::FixPt2DecDeg(lat2)) / 2,
          std::remainder(lon + width / 2, 360)};
}

}  // namespace

std::string ReadPosition(const std::string& text, K7LatLon& position) {
  return position.ParsePosition(text.c_str()) ? "" : Quoted(text) + " is no position";
}

std::string Utf8(const char* text) {
  std::string out;
  for (; text && *text; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    const unsigned code = byte >= 0x80 && byte < 0xA0 ? WINDOWS_1252[byte - 0x80] : byte;
    AppendUtf8(out, code < 0x20 || code == 0x7F ? '?' : code);
  }
  return out;
}

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
  const K7NavType type = rec.Type();
  if (K7IsFix(type)) {
    const auto& fix = static_cast<const K7NavFix&>(rec);
    at.Init(K7NavData::FixPt2DecDeg(fix.lat), K7NavData::FixPt2DecDeg(fix.lon));
  } else if (type == K7NAV_HIGH_AIRWAY || type == K7NAV_LOW_AIRWAY) {
    const auto& segment = static_cast<const K7AirwaySeg&>(rec);
    at = Middle(segment.fromLat, segment.fromLon, segment.toLat, segment.toLon);
  } else if (type == K7NAV_CTRL_AIRSPACE || type == K7NAV_SPECIAL_USE_AIRSPACE) {
    const auto& area = static_cast<const K7NavArea&>(rec);
    at = Middle(area.south, area.west, area.north, area.east);
  } else {
    return false;
  }
  return true;
}

std::string PositionText(const K7LatLon& at) {
  K7String lat, lon;
  if (!at.FormatLat("%H%02d %04.1M", lat) || !at.FormatLon("%H%03d %04.1M", lon)) return {};
  return std::string(lat) + " " + std::string(lon);
}

std::span<const K7NavType> ListedTypes() { return LISTED; }

std::vector<const K7NavRec*> FindAll(NavStore& store, const std::string& ident, const K7LatLon* near) {
  std::vector<const K7NavRec*> found;
  for (const K7NavType type : LISTED) {
    const std::unique_ptr<K7NavQueryResult> result(type == K7NAV_AIRWAY_HEADER
                                                       ? store.AirwayQuery(ident.c_str())
                                                       : store.IdentQuery(type, ident.c_str()));
    while (const K7NavRec* rec = result ? result->Next() : nullptr)
      if (const K7NavRec* kept = store.GetRec(rec->key)) found.push_back(kept);
  }
  if (!near) return found;
  const auto distance = [near](const K7NavRec* rec) {
    K7LatLon at;
    return PlaceOf(*rec, at) ? near->Distance(at) : 1e9;
  };
  std::stable_sort(found.begin(), found.end(),
                   [&](const K7NavRec* a, const K7NavRec* b) { return distance(a) < distance(b); });
  return found;
}

std::string NotThere(NavStore& store, const std::string& ident) {
  static constexpr int SHOWN = 8, ASKED = 100, MOST_DIFFERENT = 3;
  // The nearest spelling first; of equally near ones those of the same letters, as exchanged ones are.
  std::set<std::tuple<int, bool, std::string>> similar;
  std::string wanted = ident;
  for (char& c : wanted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const K7NavType type : LISTED) {
    const std::unique_ptr<K7NavQueryResult> result(store.SimilarIdentQuery(type, ident.c_str(), ASKED));
    while (const K7NavRec* rec = result ? result->Next() : nullptr) {
      const std::string name = IdentOf(*rec);
      if (name.empty()) continue;
      const bool sameLetters = std::is_permutation(name.begin(), name.end(), wanted.begin(), wanted.end());
      similar.emplace(SpellingDistance(wanted, name, MOST_DIFFERENT), !sameLetters, name);
    }
  }
  std::string text = "there is no " + Quoted(ident);
  int shown = 0;
  for (const auto& [difference, otherLetters, name] : similar)
    if (shown < SHOWN) text += (shown++ == 0 ? "; spelled like it are " : ", ") + name;
  return text;
}

void AddIdentOptions(OptionTable& table, IdentOptions& options) { table.Add(OPTIONS, options); }

std::string FindIdent(const IdentOptions& options, const DatabaseOptions& database, NavStore& store,
                      std::vector<const K7NavRec*>& found) {
  if (std::string problem = OpenDatabase(database, store); !problem.empty()) return problem;
  K7LatLon near;
  const bool hasNear = !options.near.empty() && ReadPosition(options.near, near).empty();
  found = FindAll(store, options.ident, hasNear ? &near : nullptr);
  return found.empty() ? NotThere(store, options.ident) : "";
}
