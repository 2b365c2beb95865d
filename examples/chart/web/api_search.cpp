// Where something is, by what a pilot would type.

#include "app_common/position_text.h"
#include "layers/nav_places.h"
#include "route/fix_kind.h"
#include "route/route_ends.h"
#include "store/text_1252.h"
#include "web/api_answer.h"
#include "web/page_api.h"
#include "web/query_value.h"
#include "web/route_point.h"
#include "web/view_request.h"

#include <cstring>

namespace {

constexpr K7NavType TYPES[] = {K7NAV_AIRPORT,      K7NAV_VOR,         K7NAV_ENROUTE_NDB,
                               K7NAV_TERMINAL_NDB, K7NAV_ENROUTE_FIX, K7NAV_TERMINAL_FIX};
constexpr size_t MOST_FOUND = 20, MOST_READ = 1000, LONGEST = 64;
constexpr size_t LEAST_OF_NAME = 2;  // letters: all records are looked at

struct Found {
  K7NavKey key;
  std::string ident, name;
  K7LatLon place;
};

class Search {
 public:
  Search(NavStore& store, const std::optional<K7LatLon>& near) : m_store(store), m_near(near) {}

  const std::vector<Found>& All() const { return m_found; }
  bool IsFull() const { return m_found.size() >= MOST_FOUND; }
  /// Adds what one kind of query finds, the nearest first where that means something.
  template <class Query>
  void Add(Query query) {
    std::vector<Found> found;
    for (const K7NavType type : TYPES) {
      const std::unique_ptr<K7NavQueryResult> result(query(m_store, type));
      for (size_t i = 0; result && i < MOST_READ; ++i) {
        const K7NavRec* const record = result->Next();
        if (!record) break;
        Take(static_cast<const K7NavFix&>(*record), found);
      }
    }
    if (m_near)
      std::stable_sort(found.begin(), found.end(), [this](const Found& a, const Found& b) {
        return m_near->Distance(a.place) < m_near->Distance(b.place);
      });
    for (size_t i = 0; i < found.size() && !IsFull(); ++i) m_found.push_back(std::move(found[i]));
  }

 private:
  void Take(const K7NavFix& fix, std::vector<Found>& found) const {
    const double lat = K7NavData::FixPt2DecDeg(fix.lat), lon = K7NavData::FixPt2DecDeg(fix.lon);
    const auto isThis = [&](const Found& known) { return known.key == fix.key; };
    if (std::fabs(lat) > 90 || std::fabs(lon) > 180 || std::any_of(m_found.begin(), m_found.end(), isThis))
      return;
    const std::string ident = Utf8Of1252(std::string(fix.ident, strnlen(fix.ident, sizeof fix.ident)));
    found.push_back({fix.key, ident, FixName(fix), {lat, lon}});
  }

  NavStore& m_store;
  const std::optional<K7LatLon>& m_near;
  std::vector<Found> m_found;
};

void Write(JsonWriter& json, const std::string& text, const Found& found, const std::string& kind) {
  json.Begin('{').Key("text").Text(text).Key("ident").Text(found.ident).Key("name").Text(found.name);
  json.Key("kind").Text(kind).Key("lat").Number(found.place.Lat(), 6).Key("lon").Number(found.place.Lon(), 6);
  json.Key("point").Text(PointText(found.ident, found.place)).End('}');
}

// "SEA  SEATTLE VORTAC 116.8  N47 26.1 W122 18.6"
void Write(JsonWriter& json, NavStore& store, const Found& found) {
  const std::string kind = FixKind(store, found.key);
  const std::string name = found.name == found.ident ? std::string() : found.name;
  Write(json,
        found.ident + "  " + name + (name.empty() ? "" : " ") + kind + "  " + PositionText(found.place, 1),
        found, kind);
}

void FindAll(const std::string& text, Search& search) {
  const std::string wanted = Text1252(text);
  const char* const given = wanted.c_str();
  if (MayBeIdent(text)) {
    search.Add([=](NavStore& store, K7NavType type) { return store.IdentQuery(type, given); });
    if (!search.IsFull())
      search.Add([=](NavStore& store, K7NavType type) { return store.IdentPrefixQuery(type, given); });
  }
  if (!search.IsFull() && text.size() >= LEAST_OF_NAME)
    search.Add([=](NavStore& store, K7NavType type) { return store.NameQuery(type, given); });
}

std::string ReadText(const HttpRequest& request, std::string& text) {
  const std::string* const given = request.Find("q");
  text = given ? Trimmed(*given) : std::string();
  if (text.empty()) return "'q' is an identifier, a name or a position";
  return text.size() <= LONGEST ? WhyNoTexts(request) : "nothing has so long a name";
}

std::string ReadNear(const HttpRequest& request, std::optional<K7LatLon>& near) {
  if (!request.Find("lat") || !request.Find("lon")) return {};
  double lat = 0, lon = 0;
  std::string problem = ReadWithin(request, "lat", -90, 90, lat);
  if (problem.empty()) problem = ReadWithin(request, "lon", -540, 540, lon);
  near.emplace(lat, std::remainder(lon, 360));
  return problem;
}

}  // namespace

HttpAnswer AnswerSearch(const HttpRequest& request, Desk& desk) {
  std::string text;
  std::optional<K7LatLon> near;
  std::string problem = ReadText(request, text);
  if (problem.empty()) problem = ReadNear(request, near);
  if (!problem.empty()) return Problem(400, problem);
  NavStore* const store = desk.Store(problem);
  if (!problem.empty()) return Problem(500, problem);
  JsonWriter json;
  json.Begin('{').Key("found").Begin('[');
  size_t count = 0;
  if (store) {
    Search search(*store, near);
    FindAll(text, search);
    for (const Found& found : search.All()) Write(json, *store, found);
    count = search.All().size();
  }
  // Some identifiers, as 3W5, would also read as a position.
  Found position;
  if (ReadPosition(text, position.place).empty()) {
    Write(json, PositionText(position.place, 1), position, "position");
    ++count;
  }
  json.End(']');
  if (count == 0)
    json.Key("problem").Text(store && MayBeIdent(text) ? NoSuchPlace(*store, text)
                                                       : "nothing is called '" + text + "'");
  json.End('}');
  if (store) store->FreeRecs();
  return JsonAnswer(std::move(json));
}
