// Ground under a way: as high as the data say, with gaps where they say nothing, and drawn where it is.

#include "app/terrain_options.h"
#include "sheet/elevations.h"
#include "sheet/profile_axes.h"
#include "sheet/profile_panel.h"
#include "terrain/region_file.h"

#include <k7/foundation/error_string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>

namespace {

// Along the equator: sea, a plateau, nothing, a higher plateau, a plain.
struct Steps : K7Terrain {
  int Read(const char*) override { return 0; }
  void Clear() override {}
  int GetElev(double, double lon, double) override {
    return lon < 0.5 ? -2000 : lon < 1 ? 5000 : lon < 1.2 ? K7_NO_ELEV : lon < 1.4 ? 5001 : 100;
  }
};

Profile StepsProfile() {
  Steps terrain;
  Profile profile;
  profile.fixes = {{"A", {0, 0}}, {"B", {0, 0.7}}, {"C", {0, 2}}};
  size_t leg = 0;
  EXPECT_EQ(TakeGround(terrain, 30, 0.1, profile, leg), 0);
  return profile;
}

TEST(Profile, KnowsHighestGroundGapsAndClearance) {
  Profile profile = StepsProfile();
  static const double NEAR = 0.11;  // a degree of the equator is 60 NM
  EXPECT_NEAR(profile.fixes[1].distance, 42, 0.01);
  for (size_t i = 1; i < profile.points.size(); ++i) {
    const double apart = profile.points[i].distance - profile.points[i - 1].distance;
    ASSERT_TRUE(apart > 0 && apart <= 0.1 + 1e-9) << i;
  }
  const std::vector<PointRun> gaps = Gaps(profile);
  ASSERT_EQ(gaps.size(), 1u);
  EXPECT_NEAR(gaps[0].from, 60, NEAR);
  EXPECT_NEAR(gaps[0].to, 72, NEAR);
  ASSERT_TRUE(HighestGround(profile.points));
  EXPECT_EQ(HighestGround(profile.points)->elev, 5001);
  EXPECT_NEAR(HighestGround(profile.points)->distance, 72, NEAR);

  profile.altitude = 7001;
  EXPECT_TRUE(LowRuns(profile).empty());
  profile.altitude = 7000;  // 2000 ft over the one plateau only
  ASSERT_EQ(LowRuns(profile).size(), 1u);
  EXPECT_NEAR(LowRuns(profile)[0].to, 84, NEAR);
  profile.altitude = 5999;
  EXPECT_EQ(LowRuns(profile).size(), 2u);
  profile.altitude = 999;  // over the water too
  EXPECT_NEAR(LowRuns(profile)[0].from, 0, NEAR);
}

TEST(Profile, OppositeEndsAndNoGroundAtAll) {
  Steps terrain;
  Profile profile;
  size_t leg = 9;
  profile.fixes = {{"A", {0, 0}}, {"B", {10, 10}}, {"C", {-10, -170}}};
  EXPECT_EQ(TakeGround(terrain, 0, 1e-9, profile, leg), K7_ERR_INVALID_DATA);
  EXPECT_EQ(leg, 1u);
  EXPECT_LE(profile.points.size(), 1000001u);  // however dense it was asked for
  for (K7TerElevPoint& point : profile.points) point.elev = K7_NO_ELEV;
  EXPECT_EQ(HighestGround(profile.points), nullptr);
  profile.altitude = 9000;
  EXPECT_TRUE(LowRuns(profile).empty());
  EXPECT_EQ(ClearanceText(profile).substr(0, 7), "WARNING");
}

TEST(Profile, GroundIsDrawnWhereItIs) {
  Profile profile = StepsProfile();
  const Theme day;
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 900, 500);
  cairo_t* const cairo = cairo_create(surface);
  const PixelBox box = {50, 40, 850, 460};
  // Without room or length nothing is drawn, and nothing goes wrong.
  DrawProfile(cairo, {50, 40, 60, 50}, 10, profile, day);
  DrawProfile(cairo, {50, 40, -3e9, NAN}, 10, profile, day);
  DrawProfile(cairo, box, 10, Profile{}, day);
  const ProfileFrame frame = FrameOf(box, 10, profile);
  const auto at = [&](double nm, double feet) {
    cairo_surface_flush(surface);
    const unsigned char* const row =
        cairo_image_surface_get_data(surface) +
        cairo_image_surface_get_stride(surface) * std::lround(frame.Y(feet) - 0.5);
    return reinterpret_cast<const uint32_t*>(row)[std::lround(frame.X(nm) - 0.5)] & 0xFFFFFF;
  };
  EXPECT_EQ(at(45, 3300), 0u);
  DrawProfile(cairo, box, 10, profile, day);
  const auto is = [](const Color& c) { return uint32_t{c.red} << 16 | uint32_t{c.green} << 8 | c.blue; };
  const uint32_t sky = is(day[ThemeItem::Sky].fill), ground = at(45, 2300);
  EXPECT_NE(ground, sky);
  for (const double nm : {33.0, 37.0, 45.0, 53.0, 57.0, 75.0, 81.0}) {
    EXPECT_EQ(at(nm, 4850), ground) << nm;
    EXPECT_EQ(at(nm, 5150), sky) << nm;
  }
  for (const double nm : {93.0, 105.0, 117.0}) EXPECT_EQ(at(nm, 450), sky) << nm;
  EXPECT_EQ(at(15, -300), is(day[ThemeItem::Sea].fill));
  for (double feet = 200; feet < 5500; feet += 7)
    EXPECT_TRUE(at(66, feet) != ground && at(66, feet) != sky) << feet;
  EXPECT_GE(frame.X(0), box.left);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

// The grid that the sample was made of, bilinear between its posts, as docs/terrain.md says.
class Csv {
 public:
  Csv() {
    std::ifstream in(K7_SAMPLE_DATA "/terrain/salish_sea.csv");
    double lat, lon, metres;
    for (std::string line; std::getline(in, line);)
      if (std::sscanf(line.c_str(), "%lf,%lf,%lf", &lat, &lon, &metres) == 3) m_rows[lat][lon] = metres;
  }
  double At(double lat, double lon) const {
    const auto above = m_rows.upper_bound(lat), below = std::prev(above);
    const double share = (lat - below->first) / (above->first - below->first);
    return Along(below->second, lon) * (1 - share) + Along(above->second, lon) * share;
  }

 private:
  static double Along(const std::map<double, double>& row, double lon) {
    const auto east = row.upper_bound(lon), west = std::prev(east);
    return std::lerp(west->second, east->second, (lon - west->first) / (east->first - west->first));
  }
  std::map<double, std::map<double, double>> m_rows;
};

TEST(Elevations, SampleHasTheElevationsOfItsGrid) {
  Elevations terrain;
  ASSERT_EQ(terrain.Open(SampleTerrain()), "");
  EXPECT_EQ(terrain.PostSpacing(0), 30);
  EXPECT_EQ(terrain.PostSpacing(100), 90);  // seconds: 120, 40 posts a degree
  const Csv csv;
  for (int row = 48 * 120 + 5; row < 50 * 120 - 5; row += 11)
    for (int column = 122 * 120 + 5; column < 126 * 120 - 5; column += 13) {
      const double lat = row / 120.0, lon = -column / 120.0;
      const Elevations::Answer answer = terrain.Find(lat, lon, 0);
      ASSERT_NEAR(answer.feet, csv.At(lat, lon) * 3.2808399, 0.51 * 3.2808399 + 1.5) << lat << " " << lon;
      ASSERT_LE(std::abs(MetresOfFeet(answer.feet) - csv.At(lat, lon)), 0.51) << lat << " " << lon;
      ASSERT_EQ(answer.postsPerDegree, 120);
    }
  EXPECT_EQ(terrain.Find(48.7767, -121.8144, 0).feet, K7_NO_ELEV);
}

// A region that claims less than its cell answers 0 there, which is no elevation to fly by.
TEST(Elevations, OutsideTheDataThereIsNoSea) {
  const TempFolder folder;
  const auto post = [](int, int) { return 100; };
  folder.Write("120_N00E150.ter", MadeRegion(10, 178, 1, 2, 120, post).Bytes());
  folder.Write("12_N60E000.ter", MadeRegion(88, 5, 2, 1, 12, post).Bytes());
  Elevations terrain;
  ASSERT_EQ(terrain.Open(folder.Path()), "");
  EXPECT_EQ(terrain.GetElev(10.5, 179.5, 0), 328);
  EXPECT_EQ(terrain.GetElev(12.5, 179.5, 0), K7_NO_ELEV);
  EXPECT_EQ(terrain.GetElev(90, 5.5, 0), 328);
  for (const double odd : {HUGE_VAL, std::nan(""), -1e300})
    EXPECT_EQ(terrain.GetElev(odd, odd, 0), K7_NO_ELEV);
  folder.Write("40_N00E150.ter", "no region");
  EXPECT_NE(terrain.Open(folder.Path()).find("40_N00E150.ter"), std::string::npos);
}

}  // namespace
