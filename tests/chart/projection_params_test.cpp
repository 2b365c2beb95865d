// Parameters that k7chart sets for its user.

#include "layers/projection_params.h"

#include <k7/projection/conic.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

// Equal parallels are the cone that touches the globe along one circle (Snyder, USGS Professional Paper 1395,
// equations 15-1 to 15-4 with n = sin phi1). A pixel of a chart 100 NM across is about 3e-5 earth radii.
TEST(ProjectionParams, EqualParallelsAreTheTangentCone) {
  const double radian = std::acos(-1.0) / 180;
  for (const double parallel : {-80.0, -30.0, 0.5, 44.9, 45.1, 60.0, 89.0}) {
    K7LambertProjection projection(50, 30, -100, parallel);
    ASSERT_EQ(SetParams(projection, {{"Standard Parallel 2", parallel}, {"Standard Parallel 1", parallel}}),
              "");
    const double phi = parallel * radian;
    const double n = std::sin(phi);
    const auto rho = [&](double lat) {
      return std::cos(phi) / n *
             std::pow(std::tan(radian * 45 + phi / 2) / std::tan(radian * (45 + lat / 2)), n);
    };
    for (const double lat : {parallel - 0.9, parallel, parallel + 0.9})
      for (const double lon : {-120.0, -100.5, -100.0, -60.0}) {
        double x, y, z;
        projection.LatLon2World(lat, lon, x, y, z);
        EXPECT_NEAR(x, rho(lat) * std::sin(n * (lon + 100) * radian), 1e-6) << parallel << " " << lat;
        EXPECT_NEAR(y, rho(parallel) - rho(lat) * std::cos(n * (lon + 100) * radian), 1e-6) << parallel;
      }
  }
}

// What is said of a value is how it is taken: the defaults, and both ends of each range.
TEST(ProjectionParams, SaidRangesAreThoseThatAreTaken) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type) {
    const std::unique_ptr<K7Projection> projection(
        K7Projection::Create(static_cast<K7ProjType>(type), nullptr));
    for (int i = 0; i < projection->ParamCount(); ++i) {
      const std::string name = projection->ParamName(i), said = ParamRange(*projection, i);
      EXPECT_EQ(SetParams(*projection, {{name, projection->ParamValue(i)}}), "");
      double low = 0, high = 0;
      ASSERT_EQ(std::sscanf(said.c_str(), "%*[a-z ]%lf%*[a-z ]%lf", &low, &high), 2) << said;
      const struct {
        double value;
        bool taken;
      } ENDS[] = {{low - 1e-3, false},
                  {low, said.starts_with("from")},
                  {low + 1e-3, true},
                  {high - 1e-3, true},
                  {high, said.find(" to ") != std::string::npos && said.find("below") == std::string::npos},
                  {high + 1e-3, false},
                  {1e10, false}};
      for (const auto& end : ENDS) {
        const std::string problem = SetParams(*projection, {{name, end.value}});
        EXPECT_NE(problem.starts_with("'" + name + "' is " + said + ", not "), end.taken)
            << end.value << problem;
      }
    }
  }
}

}  // namespace
