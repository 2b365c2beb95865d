#include <k7/projection.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr long double PI = std::numbers::pi_v<long double>;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double UNTOUCHED = 1.25e300;

using Projection = std::unique_ptr<K7Projection>;
using Point = std::array<long double, 3>;

// The textbook's cones (Snyder, chapters 14 and 15, ellipsoidal) in long double, by forms that the library
// does not use.
struct Cone {
  long double parallel1, parallel2, meridian, e = 0;

  long double m(long double phi) const {
    return std::cos(phi) / std::sqrt(1 - e * e * std::pow(std::sin(phi), 2.0L));
  }
  // Equation 15-9.
  long double t(long double phi) const {
    return std::tan(PI / 4 - phi / 2) / std::pow((1 - e * std::sin(phi)) / (1 + e * std::sin(phi)), e / 2);
  }
  Point Develop(long double rho, long double rho0, long double n, long double lambda) const {
    const long double theta = n * (std::fabs(lambda) <= PI ? lambda : lambda - std::copysign(2 * PI, lambda));
    return {rho * std::sin(theta), rho0 - rho * std::cos(theta), rho};
  }
  Point Lambert(long double phi, long double lambda) const {
    const long double a = parallel1 * PI / 180, b = parallel2 * PI / 180;
    const long double n = std::log(m(a) / m(b)) / std::log(t(a) / t(b));
    const long double f = m(a) / (n * std::pow(t(a), n));
    return Develop(f * std::pow(t(phi), n), f, n, lambda - meridian * PI / 180);
  }
  Point Albers(long double phi, long double lambda) const {
    const long double a = std::sin(parallel1 * PI / 180), b = std::sin(parallel2 * PI / 180);
    const long double n = (a + b) / 2;
    const auto rho = [&](long double sine) { return std::sqrt(1 + a * b - 2 * n * sine) / n; };
    return Develop(rho(std::sin(phi)), rho(0), n, lambda - meridian * PI / 180);
  }
};

struct Subject {
  Projection projection;
  Cone cone;
  double parallel = 0;  // of the rectangular one

  // In world units; a cone's third number is the distance from its apex.
  Point Textbook(long double lat, long double lon) const {
    constexpr long double R = 6378137;
    const long double phi = lat * PI / 180, lambda = lon * PI / 180;
    switch (projection->Type()) {
      case K7_PROJ_MERCATOR:
        return {R * lambda, R * std::asinh(std::tan(std::fmin(std::fmax(lat, -89.99L), 89.99L) * PI / 180)),
                0};
      case K7_PROJ_MILLER:
        return {R * lambda, R * std::asinh(std::tan(0.8L * phi)) / 0.8L, 0};
      case K7_PROJ_RECTANGULAR:
        return {R * lambda, R * phi / std::cos(parallel * PI / 180), 0};
      case K7_PROJ_LAMBERT:
        return cone.Lambert(phi, lambda);
      case K7_PROJ_ALBERS:
        return cone.Albers(phi, lambda);
      default:
        return {std::cos(phi) * std::cos(lambda), std::cos(phi) * std::sin(lambda), std::sin(phi)};
    }
  }
};

// The factory's nine, an ellipsoidal cone, a southern and a nearly cylindrical one, and cones of polar
// parallels.
std::vector<Subject> Subjects() {
  std::vector<Subject> made;
  for (int kind = 0; kind < 9; ++kind) {
    made.push_back({Projection(K7Projection::Create(static_cast<K7ProjType>(kind), nullptr)), {45, 30, -90}});
  }
  made[K7_PROJ_RECTANGULAR].projection->ParamValue(0, made[K7_PROJ_RECTANGULAR].parallel = 48);
  for (const double b : {6356752.314245179, 5700000.0}) {  // the earth, and a body too flat for series
    auto lambert = std::make_unique<K7LambertProjection>(33, 45, -96, 0);
    lambert->UseEllipEqs(6378137.0, b);
    made.push_back({std::move(lambert), {33, 45, -96, std::sqrt(1 - std::pow(b / 6378137.0L, 2.0L))}});
  }
  made.push_back({std::make_unique<K7LambertProjection>(-20, -40, 135, 0), {-20, -40, 135}});
  made.push_back({std::make_unique<K7LambertProjection>(30, -29, 10, 0), {30, -29, 10}});
  made.push_back({std::make_unique<K7AlbersProjection>(60, 90, 0, 0), {60, 90, 0}});
  made.push_back({std::make_unique<K7AlbersProjection>(-90, 80, 20, 0), {-90, 80, 20}});
  return made;
}

struct Batch {
  std::vector<double> lat, lon, x, y, z;

  void Add(double latitude, double longitude) {
    lat.push_back(latitude);
    lon.push_back(longitude);
  }
  void Run(const K7Projection& projection) {
    x.assign(lat.size(), UNTOUCHED);
    y = z = x;
    projection.LatLons2World(lat.data(), lon.data(), static_cast<int>(lat.size()), x.data(), y.data(),
                             z.data());
  }
};

Batch Positions() {
  Batch made;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> lats(-90, 90), lons(-540, 540), exponent(-18, 0);
  for (int i = 0; i < 20000; ++i) {
    made.Add(lats(random), lons(random));
    made.Add(std::copysign(90 - std::pow(10, exponent(random)), lats(random)), lons(random));
    made.Add(lats(random) * std::pow(10, 10 * exponent(random)),
             lons(random) * std::pow(10, 10 * exponent(random)));
  }
  for (const double lat : {0., -0., 90., -90., 89.99, -89.99, 89., -89., 45., -45., 60., 5e-324}) {
    for (const double lon : {0., -0., 90., 180., -180., 270., 540., -540., 5e-324}) made.Add(lat, lon);
  }
  return made;
}

// What 1e-12 is relative to.
long double Size(const K7Projection& projection, const Point& point, int coordinate) {
  if (projection.IsAzimuthal()) return 1;
  const long double radius = projection.IsCylindrical() ? K7_EARTH_RADIUS_M : 1;
  return std::max({radius, std::fabs(point[coordinate]), std::fabs(point[2])});
}

TEST(Batch, AgreesWithTheTextbook) {
  Batch batch = Positions();
  for (const Subject& subject : Subjects()) {
    const K7Projection& projection = *subject.projection;
    batch.Run(projection);
    long double worst = 0;
    size_t at = 0;
    for (size_t i = 0; i < batch.lat.size(); ++i) {
      // Close to poles the exact calls keep fewer digits of a cone's radius, and these with them; and a cone
      // is cut on one meridian, on which either side is right.
      const double cut = std::remainder(batch.lon[i] - static_cast<double>(subject.cone.meridian), 360.0);
      if (projection.IsConic() && (std::fabs(batch.lat[i]) > 88 || std::fabs(cut) > 179.9999)) continue;
      const Point expected = subject.Textbook(batch.lat[i], batch.lon[i]);
      const double got[] = {batch.x[i], batch.y[i], batch.z[i]};
      for (int c = 0; c < (projection.IsAzimuthal() ? 3 : 2); ++c) {
        const long double error = std::fabs(got[c] - expected[c]) / Size(projection, expected, c);
        if (!(error <= worst)) worst = error, at = i;
      }
    }
    EXPECT_LE(worst, 1e-12L) << projection.Name() << ' ' << batch.lat[at] << ' ' << batch.lon[at];
  }
}

// In and out of the domain, as close as stated or the same infinity or no number; and one position gives the
// same bits whatever surrounds it.
TEST(Batch, AgreesWithTheSingleCalls) {
  Batch batch = Positions();
  const double odd[] = {0,       30,           91,    -100,    112.5,     200,       -450,
                        1e5,     1e9,          -1e12, 1.5e300, INFINITE,  -INFINITE, -45.5,
                        1234567, NOT_A_NUMBER, -180,  810,     -3.25e-300};
  for (const double lat : odd) {
    for (const double lon : odd) batch.Add(lat, lon);
  }
  for (const Subject& subject : Subjects()) {
    const K7Projection& projection = *subject.projection;
    batch.Run(projection);
    for (size_t i = 0; i < batch.lat.size(); ++i) {
      double x, y, z, alone[3];
      projection.LatLon2World(batch.lat[i], batch.lon[i], x, y, z);
      projection.LatLons2World(&batch.lat[i], &batch.lon[i], 1, alone, alone + 1, alone + 2);
      const double single[] = {x, y, z}, got[] = {batch.x[i], batch.y[i], batch.z[i]};
      // The apex of a cone whose origin is the equator.
      double apexX, apexY, apexZ;
      const bool conic = projection.IsConic();
      if (conic) {
        projection.LatLon2World(0, static_cast<double>(subject.cone.meridian), apexX, apexY, apexZ);
        apexY = dynamic_cast<const K7ConicProjection&>(projection).Lat2Rho(0);
      }
      const Point point = {x, y, conic ? std::hypot(x, apexY - y) : z};
      for (int c = 0; c < 3; ++c) {
        SCOPED_TRACE(projection.Name() + (" " + std::to_string(batch.lat[i])) + " " +
                     std::to_string(batch.lon[i]));
        ASSERT_EQ(std::isnan(got[c]), std::isnan(single[c]));
        if (std::isnan(got[c])) continue;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(got[c]), std::bit_cast<std::uint64_t>(alone[c]));
        if (got[c] == single[c]) continue;
        ASSERT_LE(std::fabs(got[c] - single[c]) / Size(projection, point, c), 1e-12L);
      }
    }
  }
}

TEST(Batch, WritesItsCountAndNoMore) {
  for (const Subject& subject : Subjects()) {
    const K7Projection& projection = *subject.projection;
    for (int count = -1; count <= 140; count += count < 20 ? 1 : 13) {
      const size_t used = static_cast<size_t>(std::max(count, 0));
      // One of both is eight bytes off a vector's boundary.
      for (const size_t skip : {0u, 1u}) {
        std::vector<double> lat(used + 1), lon(used + 1), x(used + 9, UNTOUCHED);
        std::vector<double> y = x, z = x, noX = x, noY = x;
        for (size_t i = 0; i < used; ++i) {
          lat[i + skip] = i % 7 == 6 ? 90 : 1.5 * static_cast<double>(i % 50);
          lon[i + skip] = static_cast<double>(i) - 100;
        }
        projection.LatLons2World(&lat[skip], &lon[skip], count, &x[skip], &y[skip], &z[skip]);
        projection.LatLons2World(&lat[skip], &lon[skip], count, &noX[skip], &noY[skip], nullptr);
        EXPECT_EQ(x, noX);
        EXPECT_EQ(y, noY);
        for (size_t i = 0; i < x.size(); ++i) {
          const bool written = i >= skip && i < used + skip;
          EXPECT_EQ(x[i] != UNTOUCHED, written);
          EXPECT_EQ(y[i] != UNTOUCHED, written);
          EXPECT_EQ(z[i] != UNTOUCHED, written);
        }
      }
    }
  }
}

}  // namespace
