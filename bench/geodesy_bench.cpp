// Spherical navigation beside the bare formulas, GeographicLib (a geodesic with no flattening) and S2.

#include <benchmark/benchmark.h>
#include <k7/geodesy.h>

#include <s2/s2edge_distances.h>
#include <s2/s2latlng.h>
#include <GeographicLib/Geodesic.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace {

struct Leg {
  double lat1, lon1, lat2, lon2;
};

const std::vector<Leg>& Legs() {
  static const std::vector<Leg> legs = [] {
    std::mt19937_64 bits(1);
    std::uniform_real_distribution<> lat(-89, 89), lon(-180, 180);
    std::vector<Leg> made(32768);
    for (Leg& leg : made) leg = {lat(bits), lon(bits), lat(bits), lon(bits)};
    return made;
  }();
  return legs;
}

// Runs `work` over the legs; the figure is legs a second.
template <class Work>
void OverLegs(benchmark::State& state, Work work) {
  const std::vector<Leg>& legs = Legs();
  for (auto _ : state)
    for (const Leg& leg : legs) benchmark::DoNotOptimize(work(leg));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(legs.size()));
}

struct Vec {
  double x, y, z;
};

inline Vec BareVector(double lat, double lon) {
  const double phi = lat * K7_DEG_TO_RAD, lambda = lon * K7_DEG_TO_RAD, c = std::cos(phi);
  return {c * std::cos(lambda), c * std::sin(lambda), std::sin(phi)};
}

inline double BareDistance(const Vec& p, const Vec& q) {
  const double k = p.x * q.x + p.y * q.y + p.z * q.z;
  if (std::fabs(k) < 0.707) return std::acos(k) * K7_EARTH_RADIUS_NM;
  const double x = p.y * q.z - p.z * q.y, y = p.z * q.x - p.x * q.z, z = p.x * q.y - p.y * q.x;
  const double angle = std::asin(std::sqrt(x * x + y * y + z * z));
  return (k >= 0 ? angle : K7_PI - angle) * K7_EARTH_RADIUS_NM;
}

void DistanceBare(benchmark::State& state) {
  OverLegs(state,
           [](const Leg& l) { return BareDistance(BareVector(l.lat1, l.lon1), BareVector(l.lat2, l.lon2)); });
}
void DistanceK7(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) { return K7LatLon(l.lat1, l.lon1).Distance(K7LatLon(l.lat2, l.lon2)); });
}
void DistanceGeographicLib(benchmark::State& state) {
  const GeographicLib::Geodesic sphere(K7_EARTH_RADIUS_NM, 0);
  OverLegs(state, [&](const Leg& l) {
    double d;
    sphere.Inverse(l.lat1, l.lon1, l.lat2, l.lon2, d);
    return d;
  });
}
void DistanceS2(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) {
    return S2LatLng::FromDegrees(l.lat1, l.lon1).GetDistance(S2LatLng::FromDegrees(l.lat2, l.lon2)).radians();
  });
}

void CourseBare(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) {
    const Vec p = BareVector(l.lat1, l.lon1), q = BareVector(l.lat2, l.lon2);
    const double r = std::sqrt(p.x * p.x + p.y * p.y), cosLon = p.x / r, sinLon = p.y / r;
    const double course =
        std::atan2(q.y * cosLon - q.x * sinLon, q.z * r - (q.x * cosLon + q.y * sinLon) * p.z) *
        K7_RAD_TO_DEG;
    return course < 0 ? course + 360 : course;
  });
}
void CourseK7(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) { return K7LatLon(l.lat1, l.lon1).InitCourse(K7LatLon(l.lat2, l.lon2)); });
}
void CourseGeographicLib(benchmark::State& state) {
  const GeographicLib::Geodesic sphere(K7_EARTH_RADIUS_NM, 0);
  OverLegs(state, [&](const Leg& l) {
    double first, second;
    sphere.Inverse(l.lat1, l.lon1, l.lat2, l.lon2, first, second);
    return first;
  });
}

// The second position of a leg serves as course and distance.
void EndPointBare(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) {
    const Vec s = BareVector(l.lat1, l.lon1);
    const double r = std::sqrt(s.x * s.x + s.y * s.y), cosLon = s.x / r, sinLon = s.y / r;
    const double delta = (l.lat2 + 90) / K7_EARTH_RADIUS_NM, psi = (90 - l.lon2) * K7_DEG_TO_RAD;
    const double a = std::cos(psi) * std::sin(delta), b = std::sin(psi) * std::sin(delta),
                 u = std::cos(delta);
    const double w = b * s.z - u * r;
    return std::asin(u * s.z + b * r) * K7_RAD_TO_DEG +
           std::atan2(a * cosLon - w * sinLon, -a * sinLon - w * cosLon) * K7_RAD_TO_DEG;
  });
}
void EndPointK7(benchmark::State& state) {
  OverLegs(state, [](const Leg& l) {
    K7LatLon end;
    end.EndPoint(K7LatLon(l.lat1, l.lon1), l.lon2, l.lat2 + 90);
    return end.Lat() + end.Lon();
  });
}
void EndPointGeographicLib(benchmark::State& state) {
  const GeographicLib::Geodesic sphere(K7_EARTH_RADIUS_NM, 0);
  OverLegs(state, [&](const Leg& l) {
    double lat, lon;
    sphere.Direct(l.lat1, l.lon1, l.lon2, l.lat2 + 90, lat, lon);
    return lat + lon;
  });
}

// Between unit vectors that are kept, as routes keep them.
template <class Vector, class Make, class Work>
void OverVectors(benchmark::State& state, Make make, Work work) {
  std::vector<Vector> points;
  for (const Leg& l : Legs()) points.push_back(make(l.lat1, l.lon1));
  for (auto _ : state)
    for (size_t i = 1; i < points.size(); ++i) benchmark::DoNotOptimize(work(points[i - 1], points[i]));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(points.size() - 1));
}
void VectorDistanceBare(benchmark::State& state) { OverVectors<Vec>(state, BareVector, BareDistance); }
void VectorDistanceK7(benchmark::State& state) {
  OverVectors<K7ECEF>(
      state, [](double lat, double lon) { return K7ECEF(lat, lon); },
      [](const K7ECEF& p, const K7ECEF& q) { return p.Distance(q); });
}

void VectorDistanceS2(benchmark::State& state) {
  OverVectors<S2Point>(
      state, [](double lat, double lon) { return S2LatLng::FromDegrees(lat, lon).ToPoint(); },
      [](const S2Point& p, const S2Point& q) { return S1Angle(p, q).radians() * K7_EARTH_RADIUS_NM; });
}

// Distance from one kept leg to kept vectors: from its circle, with the side, by K7; by S2 from the leg's
// nearest point, as an angle, and as the chord that it prefers for comparing.
void CrossTrackK7(benchmark::State& state) {
  const K7GrtCirc leg(47.5, -122.3, 51.5, -0.1);
  OverVectors<K7ECEF>(
      state, [](double lat, double lon) { return K7ECEF(lat, lon); },
      [&](const K7ECEF&, const K7ECEF& p) { return leg.CrossTrack(p); });
}
void CrossAndAlongTrackK7(benchmark::State& state) {
  const K7GrtCirc leg(47.5, -122.3, 51.5, -0.1);
  OverVectors<K7ECEF>(
      state, [](double lat, double lon) { return K7ECEF(lat, lon); },
      [&](const K7ECEF&, const K7ECEF& p) {
        double cross, along;
        leg.OrthoDist(p, cross, along);
        return cross + along;
      });
}
void CrossTrackS2(benchmark::State& state) {
  const S2Point begin = S2LatLng::FromDegrees(47.5, -122.3).ToPoint();
  const S2Point end = S2LatLng::FromDegrees(51.5, -0.1).ToPoint();
  OverVectors<S2Point>(
      state, [](double lat, double lon) { return S2LatLng::FromDegrees(lat, lon).ToPoint(); },
      [&](const S2Point&, const S2Point& p) { return S2::GetDistance(p, begin, end).radians(); });
}
void CrossTrackChordS2(benchmark::State& state) {
  const S2Point begin = S2LatLng::FromDegrees(47.5, -122.3).ToPoint();
  const S2Point end = S2LatLng::FromDegrees(51.5, -0.1).ToPoint();
  OverVectors<S2Point>(
      state, [](double lat, double lon) { return S2LatLng::FromDegrees(lat, lon).ToPoint(); },
      [&](const S2Point&, const S2Point& p) {
        S1ChordAngle chord = S1ChordAngle::Infinity();
        S2::UpdateMinDistance(p, begin, end, &chord);
        return chord.length2();
      });
}
// The foot of the perpendicular on the leg, and both distances from it.
void CrossAndAlongTrackS2(benchmark::State& state) {
  const S2Point begin = S2LatLng::FromDegrees(47.5, -122.3).ToPoint();
  const S2Point end = S2LatLng::FromDegrees(51.5, -0.1).ToPoint();
  const S2Point normal = S2::RobustCrossProd(begin, end).Normalize();
  OverVectors<S2Point>(
      state, [](double lat, double lon) { return S2LatLng::FromDegrees(lat, lon).ToPoint(); },
      [&](const S2Point&, const S2Point& p) {
        const S2Point foot = S2::Project(p, begin, end, normal);
        return S1Angle(p, foot).radians() + S1Angle(begin, foot).radians();
      });
}

BENCHMARK(DistanceBare);
BENCHMARK(DistanceK7);
BENCHMARK(DistanceGeographicLib);
BENCHMARK(DistanceS2);
BENCHMARK(CourseBare);
BENCHMARK(CourseK7);
BENCHMARK(CourseGeographicLib);
BENCHMARK(EndPointBare);
BENCHMARK(EndPointK7);
BENCHMARK(EndPointGeographicLib);
BENCHMARK(VectorDistanceBare);
BENCHMARK(VectorDistanceK7);
BENCHMARK(VectorDistanceS2);
BENCHMARK(CrossTrackK7);
BENCHMARK(CrossTrackS2);
BENCHMARK(CrossTrackChordS2);
BENCHMARK(CrossAndAlongTrackK7);
BENCHMARK(CrossAndAlongTrackS2);

}  // namespace
