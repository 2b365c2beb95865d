#include <gtest/gtest.h>
#include <k7/core.h>

#include <limits>
#include <memory>

namespace {

K7TerTile* Filled(const K7ChartRect& bounds, int rows, int columns) {
  K7TerTile* tile = new K7TerTile(bounds, rows, columns);
  EXPECT_EQ(tile->AllocMesh(), 0);
  for (int i = 0; i < rows * columns; ++i)
    tile->GetMesh()[i / columns][i % columns] = static_cast<int16_t>(i);
  return tile;
}

// Each post answers in the middle of its cell and at the cell's south-west corner, and no other does.
TEST(TerTile, CellsOfPosts) {
  for (const K7ChartRect bounds : {K7ChartRect(2, 1, 8, 4), K7ChartRect(-8, -16, -178, 178)}) {
    const std::unique_ptr<K7TerTile> tile(Filled(bounds, 8, 16));
    const double height = bounds.North() - bounds.South();
    for (int i = 0; i < 8 * 16; ++i)
      for (const double part : {0.0, 0.5}) {
        double lon = bounds.West() + 4.0 * (i % 16 + part) / 16;
        if (lon > 180) lon -= 360;
        EXPECT_EQ(tile->GetElev(bounds.South() + height * (i / 16 + part) / 8, lon, false, 0), i);
      }
  }
}

TEST(TerTile, EdgesBelongToTheLastCellsAndNothingLiesBeyond) {
  const std::unique_ptr<K7TerTile> tile(Filled(K7ChartRect(1, 0, 1, 0), 4, 4));
  EXPECT_EQ(tile->GetElev(1, 1, false, 0), 15);
  EXPECT_EQ(tile->GetElev(0, 0, false, 0), 0);
  EXPECT_EQ(tile->GetElev(1.001, 0.5, false, 0), K7_NO_ELEV);
  EXPECT_EQ(tile->GetElev(0.5, -0.5, false, 0), K7_NO_ELEV);
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const double bad : {nan, inf, -inf, 1e300}) {
    EXPECT_EQ(tile->GetElev(bad, 0.5, false, 0), K7_NO_ELEV);
    EXPECT_EQ(tile->GetElev(0.5, bad, false, 0), K7_NO_ELEV);
  }
  EXPECT_EQ(K7TerTile(K7ChartRect(1, 0, 1, 0), 4, 4).GetElev(0.5, 0.5, true, 0), K7_NO_ELEV);
}

TEST(TerTile, Feet) {
  K7TerTile tile(K7ChartRect(1, 0, 1, 0), 1, 1);
  ASSERT_EQ(tile.AllocMesh(), 0);
  EXPECT_EQ(tile.GetElev(0.5, 0.5, false, 1), K7_NO_ELEV);
  // 3.2808399 ft a metre by hand: 3280.8, -32.8, 1.64 and 29,032 of the highest mountain's 8,849 m.
  for (const auto& [metres, feet] : {std::pair{1000, 3281}, {-10, -32}, {-1, -2}, {0, 0}, {8849, 29032}}) {
    tile.GetMesh()[0][0] = static_cast<int16_t>(metres);
    EXPECT_EQ(tile.GetElev(0.5, 0.5, false, 1), feet);
    EXPECT_EQ(tile.GetElev(0.5, 0.5, false, 2), metres);
  }
}

TEST(TerTile, OverlapsInLongitudeOnly) {
  const K7TerTile tile(K7ChartRect(1, 0, 20, 10), 1, 1), across(K7ChartRect(1, 0, -170, 170), 1, 1);
  const K7ChartRect inside(60, 50, 15, 12), west(1, 0, 11, 5), east(1, 0, 25, 19), beside(1, 0, 9, 5);
  EXPECT_FALSE(tile.Overlaps(nullptr));
  for (const K7ChartRect* const rect : {&inside, &west, &east}) EXPECT_TRUE(tile.Overlaps(rect));
  EXPECT_FALSE(tile.Overlaps(&beside));
  const K7ChartRect before(1, 0, 179, 175), behind(1, 0, -172, -175), both(1, 0, -175, 160),
      away(1, 0, 20, 10);
  for (const K7ChartRect* const rect : {&before, &behind, &both}) EXPECT_TRUE(across.Overlaps(rect));
  EXPECT_FALSE(across.Overlaps(&away));
}

TEST(TerTile, SizeInACache) {
  EXPECT_EQ(K7TerTile(K7ChartRect(), 100, 200).CacheSize(), 60072);
  EXPECT_EQ(K7TerTile(K7ChartRect(), 32767, 32767).CacheSize(), INT32_MAX);
}

}  // namespace
