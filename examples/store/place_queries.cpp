// Records by where they lie.
#include <k7/geodesy/grtcirc.h>
#include <k7/navdata/obstacle.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "store/boundary.h"
#include "store/nav_store.h"
#include "store/store_file.h"

namespace {

constexpr double HALF_AROUND = 10801;  // NM

// Of a record with two halves the nearer one; then by distance and key.
Keys Nearest(std::vector<Hit> hits, K7NavType type, size_t maxCount = std::numeric_limits<size_t>::max()) {
  std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
    return a.idx != b.idx ? a.idx < b.idx : a.distance < b.distance;
  });
  hits.erase(std::unique(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.idx == b.idx; }),
             hits.end());
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Hit& a, const Hit& b) { return a.distance < b.distance; });
  std::vector<K7NavKey> keys;
  for (size_t i = 0; i < std::min(hits.size(), maxCount); i++) keys.emplace_back(hits[i].idx, type);
  return keys;
}

// The ends of records that are lines, one record after the other.
class Lines {
 public:
  Lines(StoreFile& file, K7NavType type) : m_file(file), m_type(type) {}
  bool Ends(uint32_t idx, K7LatLon& from, K7LatLon& to) {
    m_arena.Clear();
    const K7NavRec* rec = m_file.Read(K7NavKey(idx, m_type), m_arena);
    if (rec) EndsOf(*rec, from, to);
    return rec;
  }

 private:
  StoreFile& m_file;
  K7NavType m_type;
  Arena m_arena;
};

/// A great circle and the strip beside it.
struct Strip {
  K7LatLon from, to;
  double width;
  K7GrtCirc line;

  double Along(const K7LatLon& at) const {
    double cross = 0, along = 0;
    if (line.Length() > 0) line.OrthoDist(at, cross, along);
    return std::clamp(along, 0.0, line.Length());
  }
  bool Holds(const K7LatLon& at) const { return DistanceToLine(at, from, to) <= width; }
  // Where it first meets another line; negative when it does not.
  double FirstMeeting(const K7LatLon& a, const K7LatLon& b) const {
    if (DistanceToLine(from, a, b) <= width) return 0;
    double first = line.Length() + 1;
    for (const K7LatLon& end : {a, b}) {
      if (Holds(end)) first = std::min(first, Along(end));
    }
    K7LatLon crossing;
    if (line.Intersect(K7GrtCirc(a, b), crossing, 0)) first = std::min(first, Along(crossing));
    if (first > line.Length() && DistanceToLine(to, a, b) <= width) first = line.Length();
    return first > line.Length() ? -1 : first;
  }
};

}  // namespace

K7NavQueryResult* NavStore::AreaQuery(K7NavType type, const K7ChartRect& area) {
  if (!m_file) return nullptr;
  Hits hits = m_file->Find(type, WindowsOf(area));
  return hits ? ResultOf(*m_file, Nearest(std::move(*hits), type)) : nullptr;
}

K7NavQueryResult* NavStore::LineQuery(K7NavType type, const K7LatLon& from, const K7LatLon& to,
                                      double width) {
  if (!m_file || !(width >= 0)) return nullptr;
  const Strip strip = {from, to, width, K7GrtCirc(from, to)};
  const Place place = TableOf(type).place;
  Lines lines(*m_file, type);
  // In pieces, so that the boxes do not hold half of the world.
  const double length = from.Distance(to), course = from.InitCourse(to);
  if (!std::isfinite(length)) return nullptr;
  const int pieces = std::max(1, static_cast<int>(std::ceil(length / std::max(60.0, 2 * width))));
  std::vector<Hit> found;
  for (int i = 0; i < pieces; i++) {
    const double begin = length * i / pieces, half = length / pieces / 2;
    K7LatLon middle;
    middle.EndPoint(from, course, begin + half);
    const Hits hits = m_file->Find(type, WindowsAround(middle, half + width));
    if (!hits) return nullptr;
    for (Hit hit : *hits) {
      K7LatLon a = hit.box.SouthWest(), b;
      hit.distance = begin;
      if (place == Place::POINT) hit.distance = strip.Holds(a) ? strip.Along(a) : -1;
      if (place == Place::LINE) hit.distance = lines.Ends(hit.idx, a, b) ? strip.FirstMeeting(a, b) : -1;
      if (hit.distance >= 0) found.push_back(hit);
    }
  }
  return ResultOf(*m_file, Nearest(std::move(found), type));
}

K7NavQueryResult* NavStore::NearestQuery(K7NavType type, const K7LatLon& at, int maxCount,
                                         double maxDistance) {
  if (!m_file) return nullptr;
  const auto wanted = static_cast<size_t>(std::max(maxCount, 0));
  const bool isLine = TableOf(type).place == Place::LINE;
  Lines lines(*m_file, type);
  maxDistance = std::min(maxDistance, HALF_AROUND);
  std::vector<Hit> near;
  // Wider and wider, until there are enough that nothing outside can be nearer.
  for (double radius = std::min(maxDistance, 25.0); radius >= 0 && wanted > 0;
       radius = std::min(3 * radius + 1, maxDistance)) {
    const Hits hits = m_file->Find(type, WindowsAround(at, radius));
    if (!hits) return nullptr;
    near.clear();
    for (Hit hit : *hits) {
      K7LatLon from, to;
      if (isLine && !lines.Ends(hit.idx, from, to)) continue;
      hit.distance = isLine ? DistanceToLine(at, from, to) : DistanceToBox(at, hit.box);
      if (hit.distance <= radius) near.push_back(hit);
    }
    // Two halves of a record may count twice.
    if (near.size() >= 2 * wanted || radius >= maxDistance) break;
  }
  return ResultOf(*m_file, Nearest(std::move(near), type, wanted));
}

K7NavQueryResult* NavStore::AirspacesAt(K7NavType type, const K7LatLon& at) {
  if (!m_file) return nullptr;
  if (TableOf(type).place != Place::AREA) return ResultOf(*m_file, Keys(std::in_place));
  Hits hits = m_file->Find(type, WindowsAround(at, 0));
  if (!hits) return nullptr;
  const Keys candidates = Nearest(std::move(*hits), type);
  std::vector<K7NavKey> within;
  for (const K7NavKey& key : *candidates) {
    const Keys segments = m_file->Related(SEGMENTS_OF_AIRSPACE, key);
    if (!segments) return nullptr;
    Arena arena;
    std::vector<K7AirspaceSeg> pieces;
    for (const K7NavKey& segment : *segments) {
      const K7NavRec* rec = m_file->Read(segment, arena);
      if (rec) pieces.push_back(*static_cast<const K7AirspaceSeg*>(rec));
    }
    if (IsWithin(pieces, at)) within.push_back(key);
  }
  return ResultOf(*m_file, std::move(within));
}

K7NavQueryResult* NavStore::AirportsByRunway(const K7ChartRect& area, int minFeet) {
  if (!m_file) return nullptr;
  Keys keys = m_file->SelectWithin(K7NAV_AIRPORT, area, "t.longest_runway>=? ORDER BY t.idx",
                                   static_cast<int64_t>(minFeet));
  if (keys) std::sort(keys->begin(), keys->end());
  return ResultOf(*m_file, std::move(keys));
}

const K7NavRec* NavStore::HighestObstacle(const K7ChartRect& area) {
  if (!m_file) return nullptr;
  const K7NavRec* highest = nullptr;
  const auto elev = [](const K7NavRec* rec) { return static_cast<const K7Obstacle*>(rec)->elev; };
  for (const K7NavType type : {K7NAV_OBSTACLE, K7NAV_OBSTACLE_54, K7NAV_OBSTACLE_55, K7NAV_OBSTACLE_56}) {
    const Keys keys = m_file->SelectWithin(type, area, "1 ORDER BY t.elev DESC,t.idx LIMIT 1");
    if (!keys) return nullptr;
    for (const K7NavKey& key : *keys) {
      const K7NavRec* rec = m_file->Keep(key);
      if (rec && (!highest || elev(rec) > elev(highest))) highest = rec;
    }
  }
  return highest;
}

const K7NavRec* NavStore::MoraAt(const K7LatLon& at) {
  if (!m_file || !std::isfinite(at.Lat()) || !std::isfinite(at.Lon())) return nullptr;
  // The cell's middle, which belongs to it alone; the pole to the last row, 180 to the column that begins
  // there.
  const double lat = std::clamp(std::floor(at.Lat()), -90.0, 89.0) + 0.5;
  const double lon = std::floor(std::remainder(at.Lon(), 360));
  const Hits hits =
      m_file->Find(K7NAV_MORA, WindowsAround(K7LatLon(lat, (lon >= 180 ? -180 : lon) + 0.5), 0));
  return hits && !hits->empty() ? m_file->Keep(K7NavKey(hits->front().idx, K7NAV_MORA)) : nullptr;
}
