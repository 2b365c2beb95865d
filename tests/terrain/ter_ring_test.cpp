#include <k7/terrain/ter_color_map.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_ring.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(TerColorMap, BandsReachUpToTheNext) {
  const int32_t limits[] = {-9999, 0, 500, 1000};
  const K7Color colors[] = {K7Color(1u), K7Color(2u), K7Color(3u), K7Color(4u)};
  K7TerColorMap map;
  ASSERT_TRUE(map.Init(4, limits, colors));
  EXPECT_EQ(colors[0], map.GetColor(-20000));
  EXPECT_EQ(colors[0], map.GetColor(-1));
  EXPECT_EQ(colors[1], map.GetColor(0));
  EXPECT_EQ(colors[2], map.GetColor(999));
  EXPECT_EQ(colors[3], map.GetColor(5000));
  EXPECT_FALSE(map.Init(21, limits, colors));
  EXPECT_FALSE(map.Init(-1, limits, colors));
  EXPECT_FALSE(map.Init(1, nullptr, colors));
  EXPECT_EQ(4, map.Count()) << "a refused set-up changes nothing";
  EXPECT_TRUE(map.Init(0, nullptr, nullptr));
  EXPECT_EQ(0, map.Count());
}

// The numbers of tiles are worked out by hand from 360 / (height / cos middle), down to a divisor of 360.
TEST(TerRing, TilesStayRoughlySquare) {
  const struct {
    double south;
    float height;
    int tiles;
  } bands[] = {{0, 10, 36}, {60, 10, 15}, {-70, 10, 15},  {50, 10, 36},
               {80, 10, 3}, {-90, 10, 3}, {0, 0.1F, 3600}};
  for (const auto& band : bands) {
    K7TerRing ring;
    ASSERT_EQ(0, ring.Init(band.south, band.height, 2, 2));
    EXPECT_EQ(band.tiles, ring.TileCount()) << band.south;
    EXPECT_FLOAT_EQ(360.0F / static_cast<float>(band.tiles), ring.GetTileWidth());
    EXPECT_FLOAT_EQ(ring.GetTileWidth() / band.height, ring.GetLatScaleFactor());
    for (double lon = -179.97; lon < 180; lon += 7.77) {
      const K7TerTileEX* const tile = ring.GetTile(lon);
      ASSERT_NE(nullptr, tile);
      const K7ChartRect& at = tile->GetChartRect();
      EXPECT_TRUE(at.PtIn(at.South(), lon)) << lon;
      EXPECT_EQ(tile, ring.GetTile(lon < 0 ? lon + 360 : lon));
    }
  }
}

TEST(TerRing, TheTurnBeginsAtZeroAndMeets180) {
  K7TerRing ring;
  ASSERT_EQ(0, ring.Init(0, 10, 3, 4));
  EXPECT_EQ(K7ChartRect(10, 0, 10, 0), ring.Tile(0)->GetChartRect());
  EXPECT_EQ(K7ChartRect(10, 0, -180, 170), ring.Tile(17)->GetChartRect());
  EXPECT_EQ(ring.Tile(18), ring.GetTile(-180));
  EXPECT_EQ(nullptr, ring.GetTile(180)) << "a tile has its western edge only";
  EXPECT_EQ(nullptr, ring.GetTile(std::nan("")));
  EXPECT_EQ(nullptr, ring.Tile(36));
  ASSERT_EQ(0, ring.Init(60, 10, 3, 4));
  EXPECT_EQ(ring.Tile(7), ring.GetTile(180)) << "from 168 to -168";
}

TEST(TerRing, RefusesWhatIsNoBand) {
  const double nan = std::nan("");
  K7TerRing ring;
  for (const double south : {nan, -91.0, 85.0, 1e300}) EXPECT_EQ(-11003, ring.Init(south, 10, 2, 2)) << south;
  for (const float height : {0.0F, -1.0F, std::nanf(""), 1e-30F, std::numeric_limits<float>::infinity()})
    EXPECT_EQ(-11003, ring.Init(0, height, 2, 2)) << height;
  EXPECT_EQ(-11003, ring.Init(0, 10, 1, 40000));
  EXPECT_EQ(0, ring.TileCount());
}

TEST(TerRing, RingsOfALevelCoverEveryLatitudeBut90) {
  K7TerLevel level(40);
  K7TerRings& rings = level.Rings();
  EXPECT_EQ(nullptr, level.GetTerRing(0));
  ASSERT_EQ(0, rings.Init(7.5F, 2, 2));
  EXPECT_EQ(24, rings.Count());
  EXPECT_EQ(rings.Ring(12), level.GetTerRing(0));
  EXPECT_EQ(rings.Ring(11), rings.GetTerRing(-0.001));
  EXPECT_EQ(rings.Ring(0), rings.GetTerRing(-90));
  EXPECT_EQ(nullptr, rings.GetTerRing(90));
  level.Clear();
  EXPECT_EQ(0, rings.Count());
  EXPECT_EQ(-11003, rings.Init(7, 2, 2));
  EXPECT_EQ(0, rings.Count());
}

// A source reaches the tiles that it overlaps and those beside it, also across 180, and no others.
TEST(TerRing, SourcesGoToTheirTilesAndNeighbours) {
  K7TerRing ring;
  ASSERT_EQ(0, ring.Init(0, 10, 11, 11));
  K7TerTile inside(K7ChartRect(4, 2, 175, 173), 3, 3), edge(K7ChartRect(10, 0, -170, 180), 3, 3);
  K7TerTile above(K7ChartRect(13, 12, 175, 173), 3, 3);
  EXPECT_EQ(1, ring.AddTile(&inside));
  EXPECT_EQ(3, ring.AddTile(&edge));
  EXPECT_EQ(0, ring.AddTile(&above));
  EXPECT_EQ(2, ring.Tile(17)->MergeCount());
  EXPECT_EQ(1, ring.Tile(18)->MergeCount());
  EXPECT_EQ(1, ring.Tile(19)->MergeCount());
}

}  // namespace
