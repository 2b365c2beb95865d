#include "route/route_ends.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "app_common/position_text.h"
#include "route/fix_kind.h"
#include "store/nav_store.h"
#include "store/spelling.h"
#include "store/text_1252.h"

namespace {

constexpr struct {
  K7NavType type;
  const char* word;
} KINDS[] = {{K7NAV_AIRPORT, "airport"},  {K7NAV_VOR, "VOR"},         {K7NAV_ENROUTE_NDB, "NDB"},
             {K7NAV_TERMINAL_NDB, "NDB"}, {K7NAV_ENROUTE_FIX, "fix"}, {K7NAV_TERMINAL_FIX, "fix"}};

// Of an identifier that more places have, a route to any is hardly meant.
constexpr size_t MOST_PLACES = 1000;
// A beacon beside its VOR is the same place to whoever flies there.
constexpr double SAME_PLACE_NM = 1;
// What rounding leaves between two writings of one place; data keep 7e-6.
constexpr double NO_WAY_NM = 1e-6;

// As flight plans write positions, to the minute: "4842N12148W".
std::string IdentOf(const K7LatLon& place) {
  const auto minutes = [](double degrees) { return static_cast<int>(std::lround(std::fabs(degrees) * 60)); };
  const int lat = minutes(place.Lat()), lon = minutes(place.Lon());
  K7String text;
  text.Format("%02d%02d%s%03d%02d%s", lat / 60, lat % 60, place.Lat() < 0 ? "S" : "N", lon / 60, lon % 60,
              place.Lon() < 0 ? "W" : "E");
  return std::string(text);
}

std::vector<RouteEnd> PlacesOf(NavStore& store, const std::string& ident) {
  std::vector<RouteEnd> places;
  for (const auto& [type, word] : KINDS) {
    const std::unique_ptr<K7NavQueryResult> result(store.IdentQuery(type, Text1252(ident).c_str()));
    while (const K7NavRec* const rec = result && places.size() < MOST_PLACES ? result->Next() : nullptr) {
      const auto& fix = static_cast<const K7NavFix&>(*rec);
      RouteEnd end;
      end.ident = Utf8Of1252(std::string(fix.ident, strnlen(fix.ident, sizeof fix.ident)));
      const std::string name = FixName(fix);
      end.what = word + (name.empty() || name == end.ident ? "" : " " + name);
      end.key = fix.key;
      end.place = {K7NavData::FixPt2DecDeg(fix.lat), K7NavData::FixPt2DecDeg(fix.lon)};
      if (std::fabs(end.place.Lat()) <= 90 && std::fabs(end.place.Lon()) <= 180) places.push_back(end);
    }
  }
  return places;
}

std::string Rounded(double nm) {
  K7String text;
  text.Format("%.0f NM", nm);
  return std::string(text);
}

std::string NoteOn(const RouteEnd& chosen, const std::vector<RouteEnd>& places, const RouteEnd& other) {
  const RouteEnd* next = nullptr;
  size_t others = 0;
  for (const RouteEnd& place : places) {
    if (place.place.Distance(chosen.place) <= SAME_PLACE_NM) continue;
    ++others;
    if (!next || place.place.Distance(other.place) < next->place.Distance(other.place)) next = &place;
  }
  if (!next) return {};
  return chosen.ident + " is also " +
         (others > 1 ? std::to_string(others) + " other places" : "another place") +
         ": taken is the one nearest to " + other.ident + ", " + chosen.what + " at " +
         PositionText(chosen.place, 1) + ", " + Rounded(chosen.place.Distance(other.place)) +
         "; the next is " + next->what + " at " + PositionText(next->place, 1) + ", " +
         Rounded(next->place.Distance(other.place));
}

// The nearest two. False for the same place, which is no route.
bool FindNearest(const std::vector<RouteEnd>& starts, const std::vector<RouteEnd>& ends, RouteEnd& first,
                 RouteEnd& second) {
  double nearest = INFINITY;
  for (const RouteEnd& start : starts)
    for (const RouteEnd& end : ends) {
      const double distance = start.place.Distance(end.place);
      if (distance >= nearest || distance < NO_WAY_NM) continue;
      nearest = distance;
      first = start;
      second = end;
    }
  return std::isfinite(nearest);
}

std::string SamePlace(const std::string& from, const std::string& to) {
  return from + " and " + to + " are the same place";
}

std::string PlaceNear(NavStore& store, const std::string& ident, const std::string& where,
                      std::vector<RouteEnd>& places) {
  if (ident.empty()) return "an identifier stands before '@'";
  K7LatLon near;
  if (std::string problem = ReadPosition(where, near); !problem.empty()) return problem;
  if (MayBeIdent(ident)) places = PlacesOf(store, ident);
  if (places.empty()) return NoSuchPlace(store, ident);
  const auto nearest = std::min_element(
      places.begin(), places.end(),
      [&](const RouteEnd& a, const RouteEnd& b) { return a.place.Distance(near) < b.place.Distance(near); });
  places = {RouteEnd(*nearest)};
  return {};
}

// An identifier comes first: some, as 3W5, would also read as a position.
std::string PlacesOrPosition(NavStore& store, const std::string& text, std::vector<RouteEnd>& places) {
  if (const size_t at = text.find('@'); at != std::string::npos)
    return PlaceNear(store, text.substr(0, at), text.substr(at + 1), places);
  if (MayBeIdent(text)) places = PlacesOf(store, text);
  if (!places.empty()) return {};
  RouteEnd position;
  const std::string problem = ReadPosition(text, position.place);
  if (!problem.empty()) return MayBeIdent(text) ? NoSuchPlace(store, text) : problem;
  position.ident = IdentOf(position.place);
  position.what = "position " + PositionText(position.place, 1);
  places.push_back(position);
  return {};
}

}  // namespace

std::string FindEnds(NavStore& store, const std::string& from, const std::string& to, RouteEnd& first,
                     RouteEnd& second) {
  std::vector<RouteEnd> starts, ends;
  if (std::string problem = PlacesOrPosition(store, from, starts); !problem.empty()) return problem;
  if (std::string problem = PlacesOrPosition(store, to, ends); !problem.empty()) return problem;
  if (!FindNearest(starts, ends, first, second)) return SamePlace(from, to);
  first.note = NoteOn(first, starts, second);
  second.note = NoteOn(second, ends, first);
  return {};
}

std::string FindPlaces(NavStore& store, const std::vector<std::string>& texts,
                       std::vector<RouteEnd>& places) {
  places.clear();
  std::vector<RouteEnd> before, here;
  for (size_t i = 0; i < texts.size(); ++i) {
    here.clear();
    if (std::string problem = PlacesOrPosition(store, texts[i], here); !problem.empty()) return problem;
    if (i > 0) {
      RouteEnd from, to;
      if (!FindNearest(before, here, from, to)) return SamePlace(texts[i - 1], texts[i]);
      if (i == 1) {
        from.note = NoteOn(from, before, to);
        places.push_back(from);
      }
      to.note = NoteOn(to, here, from);
      places.push_back(to);
      here.assign(1, to);
    }
    before = here;
  }
  if (texts.size() == 1) places.push_back(before.front());
  return {};
}

bool MayBeIdent(const std::string& text) {
  const auto end = std::find(text.begin(), text.end(), '@');
  return std::all_of(text.begin(), end, [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
  });
}

std::string NoSuchPlace(NavStore& store, const std::string& ident) {
  std::vector<std::string> similar;
  for (const auto& [type, word] : KINDS) {
    static constexpr int ASKED = 2;
    const std::unique_ptr<K7NavQueryResult> result(
        store.SimilarIdentQuery(type, Text1252(ident).c_str(), ASKED));
    while (const K7NavRec* const rec = result ? result->Next() : nullptr) {
      const auto& fix = static_cast<const K7NavFix&>(*rec);
      std::string found = Utf8Of1252(std::string(fix.ident, strnlen(fix.ident, sizeof fix.ident)));
      if (std::find(similar.begin(), similar.end(), found) == similar.end()) similar.push_back(found);
    }
  }
  std::string wanted = ident;
  for (char& c : wanted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  static constexpr int MOST_DIFFERENT = 3;
  std::stable_sort(similar.begin(), similar.end(), [&](const std::string& a, const std::string& b) {
    return SpellingDistance(wanted, a, MOST_DIFFERENT) < SpellingDistance(wanted, b, MOST_DIFFERENT);
  });
  std::string text = "there is no airport, navaid or fix '" + ident + "'";
  for (const std::string& found : similar)
    text += (&found == &similar[0] ? "; spelled like it are " : ", ") + found;
  return text;
}
