#include <k7/core.h>

#include "soft_grfx.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int WIDTH = 1000;
constexpr int HEIGHT = 600;

using Projection = std::unique_ptr<K7Projection>;

struct GoldenCase {
  int kind = 0;  // K7ProjType
  std::string name;
  std::vector<double> parameters;
  double tolerance = 0;
  std::vector<std::array<double, 4>> rows;  // lat, lon and two coordinates
};

std::vector<GoldenCase> ReadGolden(const char* file) {
  std::vector<GoldenCase> cases;
  std::ifstream in(std::string(K7_TEST_DATA "/projection/") + file);
  for (std::string line, word; std::getline(in, line);) {
    std::istringstream fields(line);
    if (line.starts_with("case ")) {
      GoldenCase& next = cases.emplace_back();
      fields >> word >> next.kind >> next.name;
      for (double value; fields >> value;) next.parameters.push_back(value);
      next.tolerance = next.parameters.back();
      next.parameters.pop_back();
    } else if (!line.empty() && line[0] != '#') {
      auto& row = cases.back().rows.emplace_back();
      for (double& value : row) fields >> value;
    }
  }
  return cases;
}

Projection Make(int kind) { return Projection(K7Projection::Create(static_cast<K7ProjType>(kind), nullptr)); }

Projection Make(const GoldenCase& c) {
  const auto& p = c.parameters;
  if (c.name == "albers") return std::make_unique<K7AlbersProjection>(p[0], p[1], p[2], p[3]);
  if (c.name.starts_with("lambert")) {
    auto lambert = std::make_unique<K7LambertProjection>(p[0], p[1], p[2], p[3]);
    if (c.name == "lambert-wgs84") lambert->UseEllipEqs(6378137.0, 6356752.314245179);
    return lambert;
  }
  Projection made = Make(c.kind);
  const double* const values = p.data() + (made->IsAzimuthal() ? 2 : 0);  // behind the centre
  for (int i = made->ParamCount() - 1; i >= 0; --i) made->ParamValue(i, values[i]);
  return made;
}

void Show(const K7Projection& projection, SoftGrfx& g, double lat, double lon) {
  ASSERT_TRUE(projection.SetupMatrix(&g, WIDTH / 2, HEIGHT / 2, WIDTH, HEIGHT));
  ASSERT_TRUE(projection.CenterOn(&g, lat, lon));
}

// Where a position is drawn; false behind a camera and off the map.
bool Draw(const K7Projection& projection, const SoftGrfx& g, double lat, double lon, double& dx, double& dy) {
  double x, y, z;
  return projection.LatLon2World(lat, lon, x, y, z) && g.Project(x, y, z, dx, dy);
}

double Degrees(double lat1, double lon1, double lat2, double lon2) {
  return K7LatLon(lat1, lon1).Distance(K7LatLon(lat2, lon2)) / K7_EARTH_RADIUS_NM * K7_RAD_TO_DEG;
}

TEST(Projection, FlatMapsAgreeWithProj) {
  const auto cases = ReadGolden("flat.txt");
  ASSERT_EQ(cases.size(), 13u);
  for (const GoldenCase& c : cases) {
    // A clone has all its numbers, but for the ellipsoid.
    const Projection made = Make(c), clone(made->Clone(nullptr));
    const Projection& projection = c.name == "lambert-wgs84" ? made : clone;
    for (const auto& [lat, lon, x, y] : c.rows) {
      SCOPED_TRACE(c.name + " " + std::to_string(lat) + " " + std::to_string(lon));
      const double allowed = projection->IsConic() ? c.tolerance * (1 + std::hypot(x, y)) : c.tolerance;
      double px, py, pz, backLat, backLon;
      EXPECT_TRUE(projection->LatLon2World(lat, lon, px, py, pz));
      EXPECT_NEAR(px, x, allowed);
      EXPECT_NEAR(py, y, allowed);
      EXPECT_TRUE(projection->World2LatLon(x, y, 0, backLat, backLon));
      EXPECT_NEAR(backLat, lat, c.name == "lambert-wgs84" ? 2e-9 : 1e-9);
      EXPECT_NEAR(std::remainder(backLon - lon, 360.0), 0.0, 1e-9);
    }
  }
}

TEST(Projection, CamerasAgreeWithProj) {
  const auto cases = ReadGolden("device.txt");
  ASSERT_EQ(cases.size(), 20u);
  for (const GoldenCase& c : cases) {
    const Projection projection = Make(c);
    SoftGrfx g(WIDTH, HEIGHT);
    Show(*projection, g, c.parameters[0], c.parameters[1]);
    for (const auto& [lat, lon, dx, dy] : c.rows) {
      SCOPED_TRACE(c.name + " " + std::to_string(lat) + " " + std::to_string(lon));
      double px, py, backLat, backLon;
      ASSERT_TRUE(Draw(*projection, g, lat, lon, px, py));
      EXPECT_NEAR(px, dx, c.tolerance);
      EXPECT_NEAR(py, dy, c.tolerance);
      ASSERT_TRUE(projection->Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, backLat, backLon));
      EXPECT_NEAR(Degrees(lat, lon, backLat, backLon), 0.0, 1e-7);
    }
  }
}

// A position is in view when the camera stands on its side of the globe; flat maps show all that they map.
bool InView(K7ProjType kind, double lat, double arc) {
  constexpr double ARCS[] = {181, 181, 89, 181, 181, 181, 75.4, 175, 89};  // of an eye at 4 radii: acos(1/4)
  const bool cut = kind == K7_PROJ_MERCATOR || kind == K7_PROJ_LAMBERT;
  return arc < ARCS[kind] && std::fabs(lat) < (cut ? 89.9 : 91);
}

TEST(Projection, PicksWhatItDraws) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> sine(-1, 1), turn(-180, 180);
  constexpr double CENTRES[][2] = {{48.5, -123.2}, {0, 180}, {-12, -180}, {89.95, 0}, {-90, 0}, {90, 77}};
  for (int kind = 0; kind < 9; ++kind) {
    const Projection projection = Make(kind);
    for (const auto& [centreLat, centreLon] : CENTRES) {
      SoftGrfx g(WIDTH, HEIGHT, 1.7);
      if (kind == K7_PROJ_MERCATOR && std::fabs(centreLat) == 90.0) continue;
      if (kind == K7_PROJ_LAMBERT && centreLat == -90.0) continue;
      Show(*projection, g, centreLat, centreLon);
      for (int i = 0; i < 2000; ++i) {
        const double lat = i < 4 ? 90 - 180 * (i % 2) : std::asin(sine(random)) * K7_RAD_TO_DEG;
        const double lon = i % 50 == 4 ? 180 : turn(random);
        if (!InView(projection->Type(), lat, Degrees(lat, lon, centreLat, centreLon))) continue;
        SCOPED_TRACE(std::string(projection->Name()) + " " + std::to_string(lat) + " " + std::to_string(lon));
        // A cylinder is unrolled about its centre.
        const double drawn =
            projection->IsCylindrical() ? centreLon + std::remainder(lon - centreLon, 360.0) : lon;
        double dx, dy, backLat = 0, backLon = 0;
        ASSERT_TRUE(Draw(*projection, g, lat, drawn, dx, dy));
        ASSERT_TRUE(projection->Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, backLat, backLon));
        EXPECT_LE(Degrees(lat, lon, backLat, backLon), 2e-6);
        EXPECT_LE(std::fabs(backLon), 180.0);
      }
    }
  }
}

TEST(Projection, PixelsOffTheMapAreNotPicked) {
  double lat, lon;
  SoftGrfx g(WIDTH, HEIGHT, 0.05);
  const auto misses = [&](const Projection& projection, double dx, double dy) {
    lat = 1.25, lon = 2.5;
    return !projection->Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, lat, lon) && lat == 1.25 && lon == 2.5;
  };
  // Limb of the parallel view: a twentieth of half the width; of the eye at 4 radii: tan(asin(1/4)) of half
  // the height.
  for (const auto& [kind, limb] :
       {std::pair{K7_PROJ_ORTHOGRAPHIC, 25.0}, {K7_PROJ_PERSPECTIVE, 15 / std::sqrt(15.0)}}) {
    const Projection globe = Make(kind);
    Show(*globe, g, 48.5, -123.2);
    for (double angle = 0; angle < 6.28; angle += 0.1)
      for (const double r : {1.0001 * limb, 0.9999 * limb})
        EXPECT_EQ(misses(globe, 500 + r * std::cos(angle), 300 + r * std::sin(angle)), r > limb);
    // What is no pixel and no window.
    EXPECT_TRUE(misses(globe, NAN, 300));
    EXPECT_FALSE(globe->Device2LatLon(500, 300, nullptr, WIDTH, HEIGHT, lat, lon));
    EXPECT_FALSE(globe->Device2LatLon(500, 300, &g, 0, HEIGHT, lat, lon));
    EXPECT_FALSE(globe->Device2LatLon(500, 300, &g, WIDTH, 0, lat, lon));
  }
  for (const K7ProjType kind : {K7_PROJ_MERCATOR, K7_PROJ_MILLER, K7_PROJ_RECTANGULAR}) {
    const Projection cylinder = Make(kind);
    Show(*cylinder, g, 10, 170);
    const double pole = kind == K7_PROJ_MERCATOR ? 89.99 : 90;
    const double off[][3] = {{pole, 170, 1.001}, {-pole, 170, 1.001}, {10, -10.01, 1}, {10, 350.01, 1}};
    for (const auto& [lat0, lon0, stretch] : off) {
      double x, y, z, dx, dy;
      cylinder->LatLon2World(lat0, lon0, x, y, z);
      g.Project(x, y * stretch, z, dx, dy);
      EXPECT_TRUE(misses(cylinder, dx, dy));
    }
  }
  for (const K7ProjType kind : {K7_PROJ_LAMBERT, K7_PROJ_ALBERS}) {
    const Projection cone = Make(kind);
    const auto& conic = dynamic_cast<const K7ConicProjection&>(*cone);
    Show(*cone, g, 45, -90);
    const double n = conic.Lambda2Theta(1 - K7_PI / 2);  // one radian east of the central meridian
    const double apexY = conic.Lat2Rho(0), rho = conic.Lat2Rho(0.7);
    for (const double turn : {0.98, 1.02, 1 / n, -1.02, -0.98}) {
      double dx, dy;
      g.Project(rho * std::sin(turn * n * K7_PI), apexY - rho * std::cos(turn * n * K7_PI), 0, dx, dy);
      EXPECT_EQ(misses(cone, dx, dy), std::fabs(turn) > 1);
    }
  }
  // A cone's pole may be an arc, within which there is no latitude.
  EXPECT_TRUE(std::isnan(K7AlbersProjection(45, 30, -90, 0).Rho2Lat(0)));
}

// A host whose pipeline holds single-precision numbers.
class SingleGrfx : public SoftGrfx {
 public:
  using SoftGrfx::SoftGrfx;
  bool UnProject(double dx, double dy, double depth, double& x, double& y, double& z) override {
    if (!SoftGrfx::UnProject(dx, dy, depth, x, y, z)) return false;
    for (double* v : {&x, &y, &z}) *v = static_cast<float>(*v);
    return true;
  }
};

TEST(Projection, PicksWithSinglePrecisionHosts) {
  for (int kind = 0; kind < 9; ++kind)
    for (const double centre : {-90.0, 33.3, 179.9}) {
      const Projection projection = Make(kind);
      SingleGrfx g(WIDTH, HEIGHT, 1.7);
      SoftGrfx exact(WIDTH, HEIGHT, 1.7);
      Show(*projection, g, 41.7, centre);
      Show(*projection, exact, 41.7, centre);
      for (double dx = 420; dx <= 580; dx += 40)
        for (double dy = 220; dy <= 380; dy += 40) {
          SCOPED_TRACE(testing::Message() << kind << ' ' << dx << ' ' << dy);
          double lat1 = 0, lon1 = 0, lat2 = 0, lon2 = 0;
          ASSERT_TRUE(projection->Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, lat1, lon1));
          ASSERT_TRUE(projection->Device2LatLon(dx, dy, &exact, WIDTH, HEIGHT, lat2, lon2));
          EXPECT_NEAR(Degrees(lat1, lon1, lat2, lon2), 0.0, 2e-3);
        }
    }
}

// The ray of a pixel of a camera with heading and pitch, laid out in the plane of the local horizon, and the
// first point of the globe on it.
bool FirstOnRay(double magnification, double heading, double pitch, double fieldOfView, double lat,
                double lon, double dx, double dy, K7ECEF& hit) {
  const double h = heading * K7_DEG_TO_RAD, p = pitch * K7_DEG_TO_RAD;
  const double reach = std::tan(fieldOfView * K7_DEG_TO_RAD);
  const double right = (2 * dx / WIDTH - 1) * reach * WIDTH / HEIGHT, top = (1 - 2 * dy / HEIGHT) * reach;
  // Forward, and upright from it, in east, north and up; right is the heading turned by 90 degrees.
  K7ECEF ray(std::sin(h) * (std::cos(p) - top * std::sin(p)) + right * std::cos(h),
             std::cos(h) * (std::cos(p) - top * std::sin(p)) - right * std::sin(h),
             std::sin(p) + top * std::cos(p));
  const K7ECEF below(lat, lon);
  below.OrthoToECEF(ray);
  ray.Normalize();
  K7ECEF eye = below;
  eye *= magnification;
  const double half = -eye.DotProduct(ray), square = half * half - (magnification * magnification - 1);
  if (square < 0 || half < 0) return false;
  const double way = half - std::sqrt(square);
  hit = K7ECEF(eye.X() + way * ray.X(), eye.Y() + way * ray.Y(), eye.Z() + way * ray.Z());
  return true;
}

TEST(Projection, TiltedCamerasSeeGroundBelowTheHorizonOnly) {
  int ground = 0, sky = 0;
  for (const double pitch : {-70.0, -30.0, -5.0, 10.0, 17.0, 30.0, 50.0, 70.0})
    for (const double feet : {35000.0, 1e6, 6e7}) {
      K7PerspectiveProjection view(4);
      const double params[] = {feet, pitch * 9, 0, pitch, 50};
      for (int i = 4; i >= 0; --i) view.ParamValue(i, params[i]);
      SoftGrfx g(WIDTH, HEIGHT);
      Show(view, g, 48.5, -123.2);
      for (double dx = 25.3; dx < WIDTH; dx += 50)
        for (double dy = 15.7; dy < HEIGHT; dy += 30) {
          SCOPED_TRACE(testing::Message() << pitch << ' ' << feet << ' ' << dx << ' ' << dy);
          K7ECEF hit;
          double lat, lon, hitLat, hitLon;
          const bool seen = FirstOnRay(K7PerspectiveProjection::Alt2Mag(feet), params[1], pitch, params[4],
                                       48.5, -123.2, dx, dy, hit);
          ASSERT_EQ(view.Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, lat, lon), seen);
          ++(seen ? ground : sky);
          if (!seen) continue;
          hit.GetLatLon(hitLat, hitLon);
          EXPECT_NEAR(Degrees(lat, lon, hitLat, hitLon), 0, 1e-6);
        }
    }
  EXPECT_GT(std::min(ground, sky), 1000);
}

TEST(Projection, Device2WorldPicksTheVisibleSurface) {
  for (int kind = 0; kind < 9; ++kind) {
    const Projection projection = Make(kind);
    SoftGrfx g(WIDTH, HEIGHT, 1.3);
    Show(*projection, g, 45, -90);
    double x, y, z, lat, lon, exactLat, exactLon;
    // The depths of two globes are exact at the middle only.
    const double dx = kind == K7_PROJ_GNOMONIC || kind == K7_PROJ_PERSPECTIVE ? 500 : 640;
    ASSERT_TRUE(projection->Device2World(dx, 300, &g, WIDTH, HEIGHT, x, y, z));
    projection->World2LatLon(x, y, z, lat, lon);
    ASSERT_TRUE(projection->Device2LatLon(dx, 300, &g, WIDTH, HEIGHT, exactLat, exactLon));
    EXPECT_NEAR(Degrees(lat, lon, exactLat, exactLon), 0.0, 1e-9) << projection->Name();
    EXPECT_NEAR(projection->IsAzimuthal() ? x * x + y * y + z * z : 1.0, 1.0, 1e-12);
    EXPECT_EQ(projection->Device2World(1151, 300, &g, WIDTH, HEIGHT, x, y, z),
              kind != K7_PROJ_ORTHOGRAPHIC && kind != K7_PROJ_PERSPECTIVE);
    EXPECT_FALSE(projection->Device2World(500, 300, nullptr, WIDTH, HEIGHT, x, y, z));
    projection->Device2World(500, 300, &g, 0, 0, x, y, z);
    EXPECT_FALSE(projection->CenterOn(nullptr, 45, -90));
    EXPECT_FALSE(projection->SetupMatrix(&g, 0, 0, 0, 100));
    EXPECT_TRUE(projection->SetupMatrix(&g, std::numeric_limits<int>::min(), 0, WIDTH, HEIGHT));
  }
}

TEST(Projection, EdgesOfTheDomains) {
  double x, y, z, edge, lat, lon, dx, dy;
  SoftGrfx g(WIDTH, HEIGHT);
  const K7MercatorProjection mercator;
  EXPECT_FALSE(mercator.LatLon2World(90, 0, x, y, z));
  EXPECT_TRUE(mercator.LatLon2World(89.99, 0, x, edge, z));
  EXPECT_EQ(y, edge);
  EXPECT_TRUE(mercator.LatLon2World(89.5, 0, x, y, z));
  EXPECT_FALSE(mercator.World2LatLon(x, y, z, lat, lon));
  EXPECT_FALSE(mercator.CenterOn(&g, 90, 0));
  // Two radii across the window, the camera's axis at its lower left corner.
  EXPECT_TRUE(mercator.SetupMatrix(&g, 0, 0, WIDTH, HEIGHT) && mercator.CenterOn(&g, 0, 0));
  EXPECT_TRUE(g.Project(6378137.0, 6378137.0, 0, dx, dy));
  EXPECT_NEAR(std::hypot(dx - 500, dy - (HEIGHT - 500)), 0, 1e-9);
  const K7MillerProjection miller;
  EXPECT_TRUE(miller.LatLon2World(-90, 0, x, y, z));
  EXPECT_FALSE(miller.World2LatLon(x, y, z, lat, lon));
  EXPECT_FALSE(K7GnomonicProjection().World2LatLon(0, 0, 0, lat, lon));
  EXPECT_FALSE(
      K7PerspectiveProjection(0.5).SetupMatrix(&g, 0, 0, WIDTH, HEIGHT));  // an eye within has no horizon
}

// Where rounding decides: the poles, also as standard parallels, and the meridian on which a cone is cut.
TEST(Projection, ConesHaveTheirPolesAndSides) {
  for (int parallel = -60; parallel <= 90; ++parallel) {
    const K7AlbersProjection polar(parallel, 90, 132, 0), southern(parallel, -40, 132, -30);
    for (const K7ConicProjection* cone : {&polar, &southern}) {
      if (cone == &southern && parallel > 20) continue;
      SoftGrfx g(WIDTH, HEIGHT, 0.8);
      Show(*cone, g, 0, 132);
      for (const double pole : {-90, 90}) {
        double x, y, z, dx, dy, lat = 0, lon = 0;
        EXPECT_TRUE(cone->LatLon2World(pole, -48, x, y, z) && cone->World2LatLon(x, y, z, lat, lon));
        EXPECT_NEAR(lat, pole, 1e-5) << parallel;  // an arc sine near 90 degrees
        ASSERT_TRUE(g.Project(x, y, z, dx, dy));
        EXPECT_TRUE(cone->Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, lat, lon)) << parallel << ' ' << pole;
      }
    }
  }
  const K7LambertProjection cone(-20, -40, 135, -30);
  SoftGrfx g(WIDTH, HEIGHT, 0.8);
  Show(cone, g, -30, 135);
  for (int i = -87; i <= 60; ++i) {
    double dx, dy, lat, lon;
    ASSERT_TRUE(Draw(cone, g, i, -45, dx, dy));
    EXPECT_TRUE(cone.Device2LatLon(dx, dy, &g, WIDTH, HEIGHT, lat, lon)) << i;
  }
}

TEST(Projection, KindsHaveTheirNamesAndDefaults) {
  std::ifstream in(K7_TEST_DATA "/projection/kinds.txt");
  const auto next = [&in] {
    std::string word;
    std::getline(in >> std::ws, word, ',');
    return word;
  };
  for (int i = 0; i < 9; ++i) {
    const Projection made = Make(i);
    ASSERT_EQ(made->Name(), next());
    SCOPED_TRACE(made->Name());
    EXPECT_EQ(made->Type(), i);
    EXPECT_DOUBLE_EQ(made->NearClip(), std::stod(next()));
    EXPECT_DOUBLE_EQ(made->FarClip(), std::stod(next()));
    const std::string family = next();
    EXPECT_EQ(made->IsConic(), family == "conic");
    EXPECT_EQ(made->IsCylindrical(), family == "cylindrical");
    EXPECT_EQ(made->IsAzimuthal(), family == "azimuthal");
    EXPECT_NEAR(made->ScaleError(60, 10), std::stod(next()), 1e-15);
    ASSERT_EQ(made->ParamCount(), std::stoi(next()));
    for (int p = 0; p < made->ParamCount(); ++p) {
      EXPECT_EQ(made->ParamName(p), next());
      EXPECT_NEAR(made->ParamValue(p), std::stod(next()), 1e-6);
    }
    if (i == K7_PROJ_RECTANGULAR) continue;  // its one name is that of every index
    for (const int none : {-1, made->ParamCount()}) EXPECT_EQ(made->ParamName(none), nullptr);
  }
  EXPECT_DOUBLE_EQ(K7PerspectiveProjection(2.5).ScaleError(0, 0), 4.0);
}

// The window of a cone is two earth radii wide, and the meridian of its centre runs straight up.
TEST(Projection, ConesStandUpright) {
  for (const int kind : {K7_PROJ_LAMBERT, K7_PROJ_ALBERS}) {
    const Projection made = Make(kind);
    SoftGrfx g(WIDTH, HEIGHT);
    Show(*made, g, 40, -20);
    double x, y, z, x2, y2, dx, dy;
    ASSERT_TRUE(made->LatLon2World(40, -20, x, y, z) && g.Project(x, y, z, dx, dy));
    EXPECT_NEAR(std::hypot(dx - 500, dy - 300), 0, 1e-9);
    ASSERT_TRUE(made->LatLon2World(47, -20, x2, y2, z) && g.Project(x2, y2, z, dx, dy));
    EXPECT_NEAR(dx, 500, 1e-9);
    EXPECT_NEAR(300 - dy, std::hypot(x2 - x, y2 - y) * WIDTH / 2, 1e-9);
    const auto& cone = dynamic_cast<const K7ConicProjection&>(*made);
    for (const double lambda : {-1.2, 1.5, 3.0})
      EXPECT_NEAR(cone.Theta2Lambda(cone.Lambda2Theta(lambda)), lambda, 1e-14);
    // 200 degrees east of the central meridian are 160 west of it.
    EXPECT_LT(cone.Lambda2Theta(110 * K7_DEG_TO_RAD), 0);
  }
}

// The depths that two globes are stated with, seen from over 0 N 0 E: x = d - the depth along the axis, by
// hand.
TEST(Projection, Device2WorldKeepsItsStatedDepths) {
  SoftGrfx g(WIDTH, HEIGHT);
  double x, y, z;
  const K7GnomonicProjection gnomonic;
  Show(gnomonic, g, 0, 0);
  ASSERT_TRUE(gnomonic.Device2World(750, 300, &g, WIDTH, HEIGHT, x, y, z));
  EXPECT_NEAR(x, 1 / std::sqrt(1 + 2.2 * 2.2), 1e-12);  // half-way to the edge: 0.5 x 1.1 / 0.25
  EXPECT_NEAR(y, 2 * x, 1e-12);                         // on the ray, whose tangent is 0.5 / 0.25
  const K7PerspectiveProjection eye(4);
  Show(eye, g, 0, 0);
  ASSERT_TRUE(eye.Device2World(550, 300, &g, WIDTH, HEIGHT, x, y, z));
  // A tenth of the way to the edge: tangent 1/8 of 15/4 / 3, so t^2 - 8 c t + 15 = 0 with c = 8 / sqrt(65).
  const double c = 8 / std::sqrt(65.0), depth = (4 * c - std::sqrt(16 * c * c - 15)) * c;
  EXPECT_NEAR(x, 4 - depth, 1e-12);
  EXPECT_NEAR(y, depth / 10 * 5 / 3, 1e-12);  // tangent of 45 degrees by the window's sides
  EXPECT_TRUE(eye.Device2World(596, 300, &g, WIDTH, HEIGHT, x, y, z));
  // The horizon of the stated depth: c^2 = 15/16, tangent 1 / sqrt(15) of 5/4 at the edge.
  EXPECT_FALSE(eye.Device2World(604, 300, &g, WIDTH, HEIGHT, x, y, z));
  // The middle in whole pixels.
  for (const K7Projection* projection :
       {static_cast<const K7Projection*>(&gnomonic), static_cast<const K7Projection*>(&eye)}) {
    SoftGrfx odd(WIDTH + 1, HEIGHT + 1);
    ASSERT_TRUE(projection->SetupMatrix(&odd, 0, 0, WIDTH + 1, HEIGHT + 1) &&
                projection->CenterOn(&odd, 0, 0));
    ASSERT_TRUE(projection->Device2World(500, 300, &odd, WIDTH + 1, HEIGHT + 1, x, y, z));
    EXPECT_NEAR(x, 1, 1e-12);
  }
}

TEST(Projection, ParametersAndClones) {
  int err = 5;
  EXPECT_EQ(K7Projection::Create(static_cast<K7ProjType>(9), &err), nullptr);
  EXPECT_EQ(err, 5);
  for (int kind = 0; kind < 9; ++kind) {
    const Projection made = Make(kind);
    const auto value = [&](int i) { return kind == K7_PROJ_PERSPECTIVE && i == 3 ? -70 : 40 + i; };
    for (int i = 0; i < made->ParamCount(); ++i) made->ParamValue(i, value(i));
    const Projection copy(made->Clone(nullptr));
    EXPECT_EQ(copy->Type(), kind);
    for (int i = 0; i < made->ParamCount(); ++i) EXPECT_NEAR(copy->ParamValue(i), value(i), 1e-7);
  }

  // Assigned through the base, kind and clip distances change hands.
  K7OrthographicProjection globe;
  static_cast<K7Projection&>(globe) = K7GnomonicProjection();
  EXPECT_EQ(globe.Type(), K7_PROJ_GNOMONIC);
  EXPECT_EQ(globe.NearClip(), 0.25);
  EXPECT_EQ(globe.FarClip(), 1.1);

  // An ellipsoidal cone stays one through its parameters, and is spherical again as a clone.
  K7LambertProjection changed(45, 30, -90, 0), round(40, 20, -90, 0), flat = round;
  for (K7LambertProjection* cone : {&changed, &flat}) cone->UseEllipEqs(6378137.0, 6356752.314245179);
  changed.ParamValue(0, 40);
  changed.ParamValue(1, 20);
  const Projection clone(changed.Clone(nullptr));
  const auto yOf = [](const K7Projection& projection) {
    double x, y, z;
    projection.LatLon2World(50, -60, x, y, z);
    return y;
  };
  EXPECT_NEAR(yOf(*clone), yOf(round), 1e-14);
  EXPECT_NEAR(yOf(changed), yOf(flat), 1e-14);
  EXPECT_GT(std::fabs(yOf(round) - yOf(flat)), 1e-4);

  // The ellipsoidal inverse is a series to the eighth power of the eccentricity: what is left is of the
  // tenth.
  const double e2 = 0.005;
  flat.UseEllipEqs(1, std::sqrt(1 - e2));
  for (double phi = -1.4; phi < 1.5; phi += 0.1)
    EXPECT_NEAR(flat.Rho2Lat(flat.Lat2Rho(phi)), phi, 0.2 * std::pow(e2, 5)) << phi;

  // A new pitch waits for the next clip planes, which the horizon at 1/4 of sine and the tilt of 60 degrees
  // then decide.
  K7PerspectiveProjection eye(4.0);
  eye.ParamValue(3, -30);
  EXPECT_DOUBLE_EQ(eye.NearClip(), 3.0);
  eye.ParamValue(0, eye.ParamValue(0));
  EXPECT_NEAR(eye.NearClip(), 1.5, 1e-12);
  EXPECT_NEAR(eye.FarClip(), 15 / 8.0 + std::sqrt(45.0) / 8, 1e-12);
}

}  // namespace
