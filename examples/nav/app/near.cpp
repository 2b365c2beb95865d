// k7nav near: what is about a position.

#include "app/database.h"
#include "app_common/verb.h"

#include <k7/projection/chart_rect.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

namespace {

struct NearOptions {
  double range = 25;
  double count = 30;
};

constexpr OptionRow<NearOptions> OPTIONS[] = {
    {"--range", "NM", "How far away (default 25, at most 500).",
     [](const char* text, NearOptions& o) -> std::string {
       return ReadNumber(text, o.range) && o.range > 0 && o.range <= 500
                  ? ""
                  : Quoted(text) + " is no range above 0, up to 500 NM";
     }},
    {"--count", "N", "How many at most (default 30).",
     [](const char* text, NearOptions& o) -> std::string {
       return ReadNumber(text, o.count) && o.count >= 1 && o.count <= 10000 && o.count == std::floor(o.count)
                  ? ""
                  : Quoted(text) + " is no whole number from 1 to 10000";
     }},
};

struct Found {
  double distance;
  const K7NavRec* rec;
};

class Near : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(OPTIONS, m_options);
    AddDatabaseOptions(table, m_database);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (m_hasPosition) return Verb::TakeArgument(argument);
    m_hasPosition = true;
    return ReadPosition(argument, m_at);
  }

  std::string Run() override {
    if (!m_hasPosition) return "near needs a position, as \"48.2 -123.1\"";
    NavStore store;
    if (std::string problem = OpenDatabase(m_database, store); !problem.empty()) return problem;
    for (const K7NavType type : {K7NAV_CTRL_AIRSPACE, K7NAV_SPECIAL_USE_AIRSPACE})
      PrintAirspaces(store, type);
    const std::vector<Found> found = Gather(store);
    for (const Found& row : found) Print(store, row);
    return {};
  }

 private:
  // The position lies within these.
  void PrintAirspaces(NavStore& store, K7NavType type) const {
    const std::unique_ptr<K7NavQueryResult> result(store.AirspacesAt(type, m_at));
    while (const K7NavRec* rec = result ? result->Next() : nullptr)
      std::printf("%8s  %3s   %-20s  %s\n", "within", "", K7NavData::TypeName(type),
                  Describe(store, *rec).c_str());
  }

  std::vector<Found> Gather(NavStore& store) const {
    const int count = static_cast<int>(m_options.count);
    std::vector<Found> found;
    for (const K7NavType type : ListedTypes()) {
      if (!K7IsFix(type)) continue;
      const std::unique_ptr<K7NavQueryResult> result(store.NearestQuery(type, m_at, count, m_options.range));
      while (const K7NavRec* rec = result ? result->Next() : nullptr) {
        K7LatLon at;
        const K7NavRec* const kept = store.GetRec(rec->key);
        if (kept && PlaceOf(*kept, at)) found.push_back({m_at.Distance(at), kept});
      }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Found& a, const Found& b) { return a.distance < b.distance; });
    found.resize(std::min(found.size(), static_cast<size_t>(count)));
    return found;
  }

  void Print(NavStore& store, const Found& row) const {
    K7LatLon at;
    PlaceOf(*row.rec, at);
    const double bearing = m_at.InitCourse(at);
    const std::string degrees = std::to_string(std::lround(std::max(bearing, 0.0)) % 360);
    std::printf("%5.1f NM  %s%s\302\260  %-20s  %s\n", row.distance,
                std::string(3 - degrees.size(), '0').c_str(), degrees.c_str(),
                K7NavData::TypeName(row.rec->Type()), Describe(store, *row.rec).c_str());
  }

  K7LatLon m_at;
  bool m_hasPosition = false;
  NearOptions m_options;
  DatabaseOptions m_database;
};

}  // namespace

std::unique_ptr<Verb> MakeNear() { return std::make_unique<Near>(); }
