#include <k7/projection/map_features.h>

#include <k7/foundation/error_string.h>

#include "projection/feature_store.h"
#include "projection/seam.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

// The rows of one feature while they are repaired, in place at the end of the store's arrays.
class Row {
 public:
  Row(double* lat, double* lon, int count) : m_lat(lat), m_lon(lon), m_count(count) {}

  void Unroll() {
    const auto lonOf = [this](int i) -> double& { return m_lon[i]; };
    if (CarriesOnToRing(m_count, lonOf)) CarryOn(m_count, lonOf);
  }

  // Positive for a clockwise ring, whose area lies to the right.
  double Turning() const {
    double area = 0;
    for (int i = 0; i + 1 < m_count; ++i) area += (m_lon[i + 1] - m_lon[i]) * (m_lat[i + 1] + m_lat[i]);
    return area;
  }
  void Reverse() {
    std::reverse(m_lat, m_lat + m_count);
    std::reverse(m_lon, m_lon + m_count);
  }

  // An edge of the data, not of the land.
  bool IsCut(int i) const { return IsSeamCut(i) || IsPoleCut(i); }
  void StraightenCuts() {
    const double lat = m_lat[0], lon = m_lon[0];
    for (int i = 1; i < m_count; ++i) {
      if (IsSeamCut(i)) m_lon[i - 1] = m_lon[i] = std::copysign(180.0, m_lon[i]);
      if (IsPoleCut(i)) m_lat[i - 1] = m_lat[i] = std::copysign(90.0, m_lat[i]);
    }
    // The first point is the last: where one has moved, the other goes with it.
    const int end = m_count - 1;
    m_lon[0] = m_lon[end] = m_lon[0] != lon ? m_lon[0] : m_lon[end];
    m_lat[0] = m_lat[end] = m_lat[0] != lat ? m_lat[0] : m_lat[end];
  }

  DegreeBox Bounds() const {
    DegreeBox box;
    for (int i = 0; i < m_count; ++i) box.Include(m_lat[i], m_lon[i]);
    return box;
  }

 private:
  bool IsSeamCut(int i) const {
    return OnSeam(m_lon[i - 1]) && OnSeam(m_lon[i]) && std::fabs(m_lon[i] - m_lon[i - 1]) < 1;
  }
  bool IsPoleCut(int i) const { return OnPole(m_lat[i - 1]) && OnPole(m_lat[i]); }

  double* m_lat;
  double* m_lon;
  int m_count;
};

// Copies the points of a row that are on the earth behind those that the store has; a ring is closed.
int CopyRow(K7MapFeatureStore& store, const K7LatLon* points, int count, bool ring) {
  const int first = store.lat.Count();
  for (int i = 0; i < count; ++i) {
    if (!OnEarth(points[i].Lat(), points[i].Lon())) continue;
    store.lat.Add(std::clamp(points[i].Lat(), -90.0, 90.0));
    store.lon.Add(points[i].Lon());
  }
  const int copied = store.lon.Count() - first;
  if (store.lat.Failed() || store.lon.Failed() || !ring || copied < 2) return copied;
  if (store.lat[first] == store.lat.Last() && store.lon[first] == store.lon.Last()) return copied;
  store.lat.Add(store.lat[first]);
  store.lon.Add(store.lon[first]);
  return copied + 1;
}

void AddPart(K7MapFeatureStore& store, int first, int count) {
  const Row row(store.lat.Data() + first, store.lon.Data() + first, count);
  store.parts.Add({first, count, row.Bounds()});
}

// Points, or a ring: where the first one runs the other way, `turn` tells that all are turned around.
void AddRow(K7MapFeatureStore& store, const K7LatLon* points, int count, bool ring, bool isFirst,
            bool& turn) {
  const int first = store.lat.Count();
  const int copied = CopyRow(store, points, count, ring);
  if (store.lat.Failed() || store.lon.Failed()) return;
  if (copied < (ring ? 4 : 1)) {
    store.lat.Truncate(first);
    store.lon.Truncate(first);
    return;
  }
  if (ring) {
    Row row(store.lat.Data() + first, store.lon.Data() + first, copied);
    row.Unroll();
    row.StraightenCuts();
    if (isFirst) turn = row.Turning() < 0;
    if (turn) row.Reverse();
  }
  AddPart(store, first, copied);
}

// Copies a row as a line, carried on across 180. One that winds around the world is taken up a turn or two
// back each time that it has run off: a view looks for each part in every turn that it reaches.
void AddLine(K7MapFeatureStore& store, const K7LatLon* points, int count) {
  int first = store.lon.Count();
  for (int i = 0; i < count; ++i) {
    if (!OnEarth(points[i].Lat(), points[i].Lon())) continue;
    const bool starts = store.lon.Count() == first;
    const double lat = std::clamp(points[i].Lat(), -90.0, 90.0);
    const double lon = starts ? points[i].Lon() : CarriedOn(store.lon.Last(), points[i].Lon());
    const bool ends = std::fabs(lon) > FARTHEST_LON;
    for (int copies = ends ? 2 : 1; copies > 0; --copies) {
      store.lat.Add(lat);
      store.lon.Add(ends && copies == 1 ? std::remainder(lon, 360) : lon);
    }
    if (store.lat.Failed() || store.lon.Failed()) return;
    if (!ends) continue;
    const int next = store.lon.Count() - 1;
    AddPart(store, first, next - first);
    first = next;
  }
  const int rest = store.lon.Count() - first;
  if (rest >= 2) {
    AddPart(store, first, rest);
  } else {
    store.lat.Truncate(first);
    store.lon.Truncate(first);
  }
}

// The stretches of a ring between the edges of the data.
void AddOutlines(K7MapFeatureStore& store, const FeaturePart& ring) {
  const Row row(store.lat.Data() + ring.first, store.lon.Data() + ring.first, ring.count);
  int start = 0;
  for (int i = 1; i <= ring.count; ++i) {
    if (i < ring.count && !row.IsCut(i)) continue;
    if (i - start > 1) AddPart(store, ring.first + start, i - start);
    start = i;
  }
}

}  // namespace

bool K7MapFeatureStore::Contains(const Feature& area, double placeLat, double placeLon) const {
  bool in = false;
  for (int part = area.firstPart; part < area.firstPart + area.partCount; ++part) {
    const FeaturePart& row = parts[part];
    if (!(placeLat >= row.box.south && placeLat <= row.box.north)) continue;
    const PointSpan ring = Points(row);
    for (int i = 0; i + 1 < ring.count; ++i) {
      const double aLat = ring.lat[i], bLat = ring.lat[i + 1];
      if ((aLat > placeLat) == (bLat > placeLat)) continue;
      const double edge = ring.lon[i] + (ring.lon[i + 1] - ring.lon[i]) * (placeLat - aLat) / (bLat - aLat);
      // Rings may run on across 180: the place lies to the west of an edge once a turn. How many turns there
      // are does not matter, as a closed ring's edges are even.
      if (std::fmod(std::ceil((edge - placeLon) / 360), 2) != 0) in = !in;
    }
  }
  return in;
}

K7MapFeatures::K7MapFeatures() : m_store(new (std::nothrow) K7MapFeatureStore) {}
K7MapFeatures::~K7MapFeatures() { delete m_store; }

int K7MapFeatures::Add(K7MapFeatureKind kind, const K7LatLon* points, const int* sizes, int parts) {
  if (kind < K7_MAP_POINTS || kind > K7_MAP_AREA) return K7_ERR_BAD_ARGUMENT;
  if (parts < 0 || (parts > 0 && (!points || !sizes))) return K7_ERR_BAD_ARGUMENT;
  for (int i = 0; i < parts; ++i)
    if (sizes[i] < 0) return K7_ERR_BAD_ARGUMENT;
  if (!m_store) return K7_ERR_MEMORY;
  K7MapFeatureStore& s = *m_store;
  const int pointsBefore = s.lat.Count();
  const int partsBefore = s.parts.Count();
  const int featuresBefore = s.features.Count();

  const bool area = kind == K7_MAP_AREA;
  bool turn = false;
  for (int part = 0; part < parts && !s.lat.Failed() && !s.lon.Failed(); points += sizes[part++]) {
    if (kind == K7_MAP_LINES)
      AddLine(s, points, sizes[part]);
    else
      AddRow(s, points, sizes[part], area, s.parts.Count() == partsBefore, turn);
  }
  const int ringsEnd = s.parts.Count();
  if (area)
    for (int i = partsBefore; i < ringsEnd && !s.parts.Failed(); ++i) AddOutlines(s, FeaturePart(s.parts[i]));

  Feature feature = {kind, partsBefore, ringsEnd - partsBefore, ringsEnd, s.parts.Count() - ringsEnd,
                     {},   false};
  for (int i = partsBefore; i < ringsEnd; ++i) feature.box.Include(s.parts[i].box);
  feature.isHalf = (feature.box.east == 180) != (feature.box.west == -180);
  s.features.Add(feature);
  if (!s.lat.Failed() && !s.lon.Failed() && !s.parts.Failed() && !s.features.Failed()) return featuresBefore;
  s.lat.Truncate(pointsBefore);
  s.lon.Truncate(pointsBefore);
  s.parts.Truncate(partsBefore);
  s.features.Truncate(featuresBefore);
  return K7_ERR_MEMORY;
}

void K7MapFeatures::Clear() {
  if (!m_store) return;
  m_store->lat.Clear();
  m_store->lon.Clear();
  m_store->parts.Clear();
  m_store->features.Clear();
}

int K7MapFeatures::Count() const { return m_store ? m_store->features.Count() : 0; }

K7MapFeatureKind K7MapFeatures::Kind(int feature) const {
  const Feature* const f = m_store ? m_store->At(feature) : nullptr;
  return f ? f->kind : K7_MAP_POINTS;
}

K7ChartRect K7MapFeatures::Bounds(int feature) const {
  const Feature* const f = m_store ? m_store->At(feature) : nullptr;
  if (!f || f->box.IsEmpty()) return {};
  if (f->box.east - f->box.west >= 360) return {f->box.north, f->box.south, 180, -180};
  return {f->box.north, f->box.south, std::remainder(f->box.east, 360), std::remainder(f->box.west, 360)};
}

int K7MapFeatures::PointCount(int feature) const {
  const Feature* const f = m_store ? m_store->At(feature) : nullptr;
  int count = 0;
  for (int i = 0; f && i < f->partCount; ++i) count += m_store->parts[f->firstPart + i].count;
  return count;
}

K7LatLon K7MapFeatures::Point(int feature, int i) const {
  // The parts of a feature lie end to end.
  if (i < 0 || i >= PointCount(feature)) return {};
  const int at = m_store->parts[m_store->At(feature)->firstPart].first + i;
  return {m_store->lat[at], m_store->lon[at]};
}

bool K7MapFeatures::Contains(int feature, double lat, double lon) const {
  const Feature* const f = m_store ? m_store->At(feature) : nullptr;
  return f && f->kind == K7_MAP_AREA && m_store->Contains(*f, lat, lon);
}
