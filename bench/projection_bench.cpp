// Positions to world points and back, a million at random, degrees in and out.
//
//   k7     through K7Projection's virtual interface, one call a point
//   batch  K7Projection::LatLons2World, one call for all (forward only)
//   bare   the same formula written out for the one projection, its constants at hand, one call a point of a
//          function that is not inlined: what any interface of single points costs at least
//   proj   PROJ's proj_trans, one call a point, and proj_trans_array, one call for all, on the same sphere:
//   the bare
//          operation, radians in and out, as PROJ has them itself
//   s2     S2's unit vector (the azimuthal projections only)
#include <k7/projection.h>

#include <benchmark/benchmark.h>
#include <proj.h>
#include <s2/s2latlng.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int COUNT = 1000000;
constexpr double PI = 3.141592653589793;
constexpr double RAD = 0.017453292519943295;
constexpr double DEG = 57.29577951308232;
constexpr double R = 6378137.0;

struct Point {
  double a, b, c;  // lat, lon, 0 or x, y, z
};

const std::vector<Point>& Positions() {
  static const std::vector<Point> positions = [] {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> sine(-0.999, 0.999), turn(-180, 180);
    std::vector<Point> made(COUNT);
    for (Point& p : made) p = {std::asin(sine(random)) * DEG, turn(random), 0};
    return made;
  }();
  return positions;
}

std::vector<Point> WorldPoints(const K7Projection& projection) {
  std::vector<Point> points(COUNT);
  for (int i = 0; i < COUNT; ++i) {
    const Point& p = Positions()[i];
    projection.LatLon2World(p.a, p.b, points[i].a, points[i].b, points[i].c);
  }
  return points;
}

// The formulas, each as a function of one point.
using Formula = bool (*)(double, double, double, double&, double&, double&);
#define FORMULA(name) \
  [[gnu::noinline]] bool name(double a, double b, [[maybe_unused]] double c, double& x, double& y, double& z)

FORMULA(MercatorForward) {
  constexpr double LIMIT = 1.5706217938696971;
  const double phi = std::fmin(std::fmax(a * RAD, -LIMIT), LIMIT);
  x = b * RAD * R;
  y = std::log(std::tan(phi / 2 + PI / 4)) * R;
  z = 0;
  return a > -90 && a < 90;
}
FORMULA(MercatorInverse) {
  x = (PI / 2 - 2 * std::atan(std::exp(-b / R))) * DEG;
  y = a / R * DEG;
  z = 0;
  return std::fabs(x) <= 89;
}
FORMULA(MillerForward) {
  x = b * RAD * R;
  y = std::log(std::tan(0.4 * (a * RAD) + PI / 4)) / 0.8 * R;
  z = 0;
  return a >= -90 && a <= 90;
}
FORMULA(MillerInverse) {
  x = (2.5 * std::atan(std::exp(0.8 * b / R)) - 1.9634954084936207) * DEG;
  y = a / R * DEG;
  z = 0;
  return std::fabs(x) <= 89;
}
double g_stretch = 1;  // a setting, no constant

FORMULA(RectangularForward) {
  x = b * RAD * R;
  y = a * RAD * g_stretch * R;
  z = 0;
  return true;
}
FORMULA(RectangularInverse) {
  x = b / R / g_stretch * DEG;
  y = a / R * DEG;
  z = 0;
  return true;
}

// Parallels 45 and 30, meridian -90, origin 0, as the factory's cones.
const double LAMBERT_N = std::log(std::cos(PI / 4) / std::cos(PI / 6)) /
                         std::log(std::tan(PI / 4 + PI / 12) / std::tan(PI / 4 + PI / 8));
const double LAMBERT_F = std::cos(PI / 4) * std::pow(std::tan(PI / 4 + PI / 8), LAMBERT_N) / LAMBERT_N;
const double ALBERS_N = (std::sin(PI / 4) + 0.5) / 2;
const double ALBERS_C = 0.5 + 2 * ALBERS_N * std::sin(PI / 4);
const double ALBERS_RHO0 = std::sqrt(ALBERS_C) / ALBERS_N;

double Wrap(double d) { return d > PI ? d - 2 * PI : d < -PI ? d + 2 * PI : d; }

FORMULA(LambertForward) {
  const double rho = LAMBERT_F / std::pow(std::tan(PI / 4 + a * RAD / 2), LAMBERT_N);
  const double theta = LAMBERT_N * Wrap(b * RAD + PI / 2);
  x = rho * std::sin(theta);
  y = LAMBERT_F - rho * std::cos(theta);
  z = 0;
  return true;
}
FORMULA(LambertInverse) {
  const double d = LAMBERT_F - b;
  x = (2 * std::atan(std::pow(LAMBERT_F / std::sqrt(a * a + d * d), 1 / LAMBERT_N)) - PI / 2) * DEG;
  y = Wrap(std::atan2(a, d) / LAMBERT_N - PI / 2) * DEG;
  z = 0;
  return true;
}
FORMULA(AlbersForward) {
  const double rho = std::sqrt(ALBERS_C - 2 * ALBERS_N * std::sin(a * RAD)) / ALBERS_N;
  const double theta = ALBERS_N * Wrap(b * RAD + PI / 2);
  x = rho * std::sin(theta);
  y = ALBERS_RHO0 - rho * std::cos(theta);
  z = 0;
  return true;
}
FORMULA(AlbersInverse) {
  const double d = ALBERS_RHO0 - b;
  const double rho = std::sqrt(a * a + d * d);
  x = std::asin((ALBERS_C - rho * rho * ALBERS_N * ALBERS_N) / (2 * ALBERS_N)) * DEG;
  y = Wrap(std::atan2(a, d) / ALBERS_N - PI / 2) * DEG;
  z = 0;
  return true;
}
FORMULA(UnitVector) {
  const double cosPhi = std::cos(a * RAD);
  x = cosPhi * std::cos(b * RAD);
  y = cosPhi * std::sin(b * RAD);
  z = std::sin(a * RAD);
  return true;
}
FORMULA(UnitVectorInverse) {
  const double length = std::sqrt(a * a + b * b + c * c);
  if (length == 0) return false;
  x = std::asin(c / length) * DEG;
  y = std::atan2(b / length, a / length) * DEG;
  z = 0;
  return true;
}

struct Subject {
  K7ProjType kind;
  Formula forward;
  Formula inverse;
  const char* proj;
};

constexpr const char* CART = "+proj=cart +R=1";
const Subject SUBJECTS[] = {
    {K7_PROJ_MERCATOR, MercatorForward, MercatorInverse, "+proj=merc +R=6378137"},
    {K7_PROJ_MILLER, MillerForward, MillerInverse, "+proj=mill +R=6378137"},
    {K7_PROJ_RECTANGULAR, RectangularForward, RectangularInverse, "+proj=eqc +R=6378137"},
    {K7_PROJ_LAMBERT, LambertForward, LambertInverse,
     "+proj=lcc +lat_1=45 +lat_2=30 +lon_0=-90 +lat_0=0 +R=1"},
    {K7_PROJ_ALBERS, AlbersForward, AlbersInverse, "+proj=aea +lat_1=45 +lat_2=30 +lon_0=-90 +lat_0=0 +R=1"},
    {K7_PROJ_ORTHOGRAPHIC, UnitVector, UnitVectorInverse, CART},
    {K7_PROJ_STEREOGRAPHIC, UnitVector, UnitVectorInverse, CART},
    {K7_PROJ_GNOMONIC, UnitVector, UnitVectorInverse, CART},
    {K7_PROJ_PERSPECTIVE, UnitVector, UnitVectorInverse, CART},
};

// Runs `convert` over all points and keeps the results in memory.
template <class Convert>
void Measure(benchmark::State& state, const std::vector<Point>& in, Convert convert) {
  std::vector<Point> out(in.size());
  for (auto _ : state) {
    for (size_t i = 0; i < in.size(); ++i) convert(in[i], out[i]);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(in.size()));
}

std::unique_ptr<K7Projection> Make(const Subject& subject) {
  return std::unique_ptr<K7Projection>(K7Projection::Create(subject.kind, nullptr));
}

void RunK7(benchmark::State& state, const Subject& subject, bool forward) {
  const auto projection = Make(subject);
  const K7Projection* p = projection.get();
  benchmark::DoNotOptimize(p);
  if (forward) {
    Measure(state, Positions(), [p](const Point& i, Point& o) { p->LatLon2World(i.a, i.b, o.a, o.b, o.c); });
  } else {
    Measure(state, WorldPoints(*p),
            [p](const Point& i, Point& o) { p->World2LatLon(i.a, i.b, i.c, o.a, o.b); });
  }
}

void RunBare(benchmark::State& state, const Subject& subject, bool forward) {
  const Formula f = forward ? subject.forward : subject.inverse;
  Measure(state, forward ? Positions() : WorldPoints(*Make(subject)),
          [f](const Point& i, Point& o) { f(i.a, i.b, i.c, o.a, o.b, o.c); });
}

void RunBatch(benchmark::State& state, const Subject& subject) {
  const auto projection = Make(subject);
  std::vector<double> lat, lon, x(COUNT), y(COUNT), z(COUNT);
  for (const Point& p : Positions()) {
    lat.push_back(p.a);
    lon.push_back(p.b);
  }
  for (auto _ : state) {
    projection->LatLons2World(lat.data(), lon.data(), COUNT, x.data(), y.data(), z.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * COUNT);
}

void RunProj(benchmark::State& state, const Subject& subject, bool forward, bool array) {
  PJ* const pj = proj_create(nullptr, subject.proj);
  const PJ_DIRECTION direction = forward ? PJ_FWD : PJ_INV;
  const auto points = forward ? Positions() : WorldPoints(*Make(subject));
  std::vector<PJ_COORD> in(points.size()), out(points.size());
  for (size_t i = 0; i < in.size(); ++i) {
    const Point& p = points[i];
    in[i] = forward ? proj_coord(p.b * RAD, p.a * RAD, 0, 0) : proj_coord(p.a, p.b, p.c, 0);
  }
  for (auto _ : state) {
    if (array) {
      state.PauseTiming();
      out = in;  // the array is converted in place
      state.ResumeTiming();
      proj_trans_array(pj, direction, out.size(), out.data());
    } else {
      for (size_t i = 0; i < in.size(); ++i) out[i] = proj_trans(pj, direction, in[i]);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(in.size()));
  proj_destroy(pj);
}

void RunS2(benchmark::State& state, const Subject& subject, bool forward) {
  if (forward) {
    Measure(state, Positions(), [](const Point& i, Point& o) {
      const S2Point p = S2LatLng::FromDegrees(i.a, i.b).ToPoint();
      o = {p.x(), p.y(), p.z()};
    });
  } else {
    Measure(state, WorldPoints(*Make(subject)), [](const Point& i, Point& o) {
      const S2LatLng p(S2Point(i.a, i.b, i.c));
      o = {p.lat().degrees(), p.lng().degrees(), 0};
    });
  }
}

const bool REGISTERED = [] {
  benchmark::DoNotOptimize(g_stretch);
  for (const Subject& s : SUBJECTS) {
    for (const bool forward : {true, false}) {
      const std::string name = std::string(Make(s)->Name()) + (forward ? "/forward/" : "/inverse/");
      const auto add = [&](const char* who, auto run) {
        benchmark::RegisterBenchmark((name + who).c_str(), run)->Unit(benchmark::kMillisecond);
      };
      add("k7", [&s, forward](benchmark::State& state) { RunK7(state, s, forward); });
      if (forward) add("batch", [&s](benchmark::State& state) { RunBatch(state, s); });
      add("bare", [&s, forward](benchmark::State& state) { RunBare(state, s, forward); });
      if (s.proj == CART && s.kind != K7_PROJ_ORTHOGRAPHIC) continue;  // the same work as orthographic
      add("proj_trans", [&s, forward](benchmark::State& state) { RunProj(state, s, forward, false); });
      add("proj_trans_array", [&s, forward](benchmark::State& state) { RunProj(state, s, forward, true); });
      if (s.proj == CART) add("s2", [&s, forward](benchmark::State& state) { RunS2(state, s, forward); });
    }
  }
  return true;
}();

}  // namespace
