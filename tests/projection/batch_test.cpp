// The calls for many positions against the calls for one, which are held to other programs' figures.
#include <k7/core.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double UNTOUCHED = 1.25e300;

using Projection = std::unique_ptr<K7Projection>;

// The factory's nine, ellipsoidal cones of the earth and of a body too flat for series, a southern and a
// nearly cylindrical one, and cones of polar parallels.
std::vector<Projection> Subjects() {
  std::vector<Projection> made;
  for (int kind = 0; kind < 9; ++kind)
    made.emplace_back(K7Projection::Create(static_cast<K7ProjType>(kind), nullptr));
  made[K7_PROJ_RECTANGULAR]->ParamValue(0, 48);
  for (const double b : {6356752.314245179, 5700000.0}) {
    auto lambert = std::make_unique<K7LambertProjection>(33, 45, -96, 0);
    lambert->UseEllipEqs(6378137.0, b);
    made.push_back(std::move(lambert));
  }
  made.push_back(std::make_unique<K7LambertProjection>(-20, -40, 135, 0));
  made.push_back(std::make_unique<K7LambertProjection>(30, -29, 10, 0));
  made.push_back(std::make_unique<K7AlbersProjection>(60, 90, 0, 0));
  made.push_back(std::make_unique<K7AlbersProjection>(-90, 80, 20, 0));
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

// In and out of the domain, dense at the poles and at zero.
Batch Positions() {
  Batch made;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> lats(-90, 90), lons(-540, 540), exponent(-18, 0);
  for (int i = 0; i < 10000; ++i) {
    made.Add(lats(random), lons(random));
    made.Add(std::copysign(90 - std::pow(10, exponent(random)), lats(random)), lons(random));
    const double little = std::pow(10, 10 * exponent(random));
    made.Add(lats(random) * little, lons(random) * little);
  }
  const double odd[] = {0,     -0.,      90,        -90,  89.99, -89.99,  89,      -89,       45,
                        -45.5, 5e-324,   180,       -180, 270,   540,     -540,    30,        91,
                        -100,  112.5,    200,       -450, 1e5,   999999., 1e9,     -1e12,     1.5e300,
                        810,   INFINITY, -INFINITY, NAN,  60,    99.5,    1234567, -3.25e-300};
  for (const double lat : odd)
    for (const double lon : odd) made.Add(lat, lon);
  return made;
}

// As close as stated, or the same infinity or no number; and one position gives the same bits whatever
// surrounds it.
TEST(Batch, AgreesWithTheSingleCalls) {
  Batch batch = Positions();
  for (const Projection& projection : Subjects()) {
    batch.Run(*projection);
    const auto* const cone = dynamic_cast<const K7ConicProjection*>(projection.get());
    for (size_t i = 0; i < batch.lat.size(); ++i) {
      double single[3], alone[3];
      const double lat = batch.lat[i], lon = batch.lon[i], got[] = {batch.x[i], batch.y[i], batch.z[i]};
      projection->LatLon2World(lat, lon, single[0], single[1], single[2]);
      projection->LatLons2World(&lat, &lon, 1, alone, alone + 1, alone + 2);
      const double size = cone ? std::fmax(1, std::fabs(cone->Lat2Rho(lat * K7_DEG_TO_RAD)))
                               : (projection->IsAzimuthal() ? 1 : K7_EARTH_RADIUS_M);
      for (int c = 0; c < 3; ++c) {
        ASSERT_EQ(std::isnan(got[c]), std::isnan(single[c]))
            << projection->Name() << ' ' << lat << ' ' << lon;
        if (std::isnan(got[c])) continue;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(got[c]), std::bit_cast<std::uint64_t>(alone[c]));
        if (got[c] == single[c]) continue;
        ASSERT_LE(std::fabs(got[c] - single[c]) / std::fmax(size, std::fabs(single[c])), 1e-12)
            << projection->Name() << ' ' << lat << ' ' << lon;
      }
    }
  }
}

TEST(Batch, WritesItsCountAndNoMore) {
  for (const Projection& projection : Subjects())
    for (int count = -1; count <= 140; count += count < 20 ? 1 : 13)
      // One of both is eight bytes off a vector's boundary.
      for (const size_t skip : {0u, 1u}) {
        const size_t used = static_cast<size_t>(std::max(count, 0));
        std::vector<double> lat(used + 1), lon(used + 1), x(used + 9, UNTOUCHED);
        std::vector<double> y = x, z = x, noX = x, noY = x;
        for (size_t i = 0; i < used; ++i) {
          lat[i + skip] = i % 7 == 6 ? 90 : 1.5 * static_cast<double>(i % 50);
          lon[i + skip] = static_cast<double>(i) - 100;
        }
        projection->LatLons2World(&lat[skip], &lon[skip], count, &x[skip], &y[skip], &z[skip]);
        projection->LatLons2World(&lat[skip], &lon[skip], count, &noX[skip], &noY[skip], nullptr);
        EXPECT_EQ(x, noX);
        EXPECT_EQ(y, noY);
        for (size_t i = 0; i < x.size(); ++i)
          for (const double value : {x[i], y[i], z[i]})
            EXPECT_EQ(value != UNTOUCHED, i >= skip && i < used + skip) << i << " of " << count;
      }
}

}  // namespace
