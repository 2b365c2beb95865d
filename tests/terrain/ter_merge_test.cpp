#include "surface.h"

#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr int16_t NONE = -5000;

// A grid across 180, cut along common posts into 3 x 4 tiles, of which one is missing.
struct Cut {
  static constexpr int ROWS = 31, COLS = 41;
  int16_t big[ROWS][COLS];
  std::vector<std::unique_ptr<K7TerTile>> tiles;

  Cut() {
    std::mt19937 random(7);
    for (auto& row : big)
      for (int16_t& post : row) post = random() % 50 ? static_cast<int16_t>(random() % 9000 - 4000) : NONE;
    for (int i = 0; i < 12; ++i) {
      const int row = i / 4 * 10, col = i % 4 * 10;
      if (i == 6) {
        // Its own posts are nobody else's; those of its edges are.
        for (int r = 1; r < 10; ++r)
          for (int c = 1; c < 10; ++c) big[row + r][col + c] = NONE;
        continue;
      }
      const auto lon = [](int c) { return 176 + c * 0.2 >= 180 ? 176 + c * 0.2 - 360 : 176 + c * 0.2; };
      tiles.push_back(std::make_unique<K7TerTile>(
          K7ChartRect(10 + (row + 10) * 0.1, 10 + row * 0.1, lon(col + 10), lon(col)), 11, 11));
      EXPECT_EQ(0, tiles.back()->AllocMesh());
      for (int r = 0; r < 11; ++r)
        for (int c = 0; c < 11; ++c) tiles.back()->GetMesh()[r][c] = big[row + r][col + c];
    }
  }
};

TEST(TerMerge, TilesMakeTheGridAgainThatTheyWereCutFrom) {
  const Cut cut;
  for (const bool backwards : {false, true}) {
    K7TerTileEX tile;  // bounds, rows and columns follow from the tiles
    const size_t n = cut.tiles.size();
    for (size_t i = 0; i < n; ++i)
      ASSERT_EQ(0, tile.AddTileForMerge(cut.tiles[backwards ? n - 1 - i : i].get()));
    EXPECT_EQ(11, tile.MergeCount());
    ASSERT_EQ(0, tile.MergeTiles());
    ASSERT_EQ(Cut::ROWS, tile.RowCount());
    ASSERT_EQ(Cut::COLS, tile.ColCount());
    int wrong = 0;
    for (int r = 0; r < Cut::ROWS; ++r)
      for (int c = 0; c < Cut::COLS; ++c) wrong += tile.GetMesh()[r][c] != cut.big[r][c];
    EXPECT_EQ(0, wrong);
  }
}

double Plane(double lat, double lon) { return 900 * (lat - 47) + 700 * (lon + 122); }

// Two finer tiles and a coarser one side by side onto grids of other spacings, finer and coarser than either.
TEST(TerMerge, APlaneStaysOneAtAnySpacing) {
  const auto a = MakeTile({48, 47, -121, -122}, 101, 101, Plane),
             b = MakeTile({48, 47, -120, -121}, 41, 61, Plane);
  const auto c = MakeTile({47, 46, -120, -122}, 61, 91, Plane);
  for (const int rows : {9, 33, 97, 350}) {
    K7TerTileEX tile;
    const K7ChartRect bounds(47.7, 46.4, -120.1, -121.8);
    ASSERT_EQ(0, tile.Init(bounds, rows, rows + 5));
    for (K7TerTile* source : {a.get(), b.get(), c.get()}) ASSERT_EQ(0, tile.AddTileForMerge(source));
    ASSERT_EQ(0, tile.MergeTiles());
    const auto expected = MakeTile(bounds, rows, rows + 5, Plane);
    int worst = 0;
    for (int r = 0; r < rows; ++r)
      for (int col = 0; col < rows + 5; ++col)
        worst = std::max(worst, std::abs(tile.GetMesh()[r][col] - expected->GetMesh()[r][col]));
    EXPECT_LE(worst, 1) << rows;  // posts are whole metres, on the way in and out
  }
}

TEST(TerMerge, WhatIsFinerThanTheTargetIsAveraged) {
  int side = 0;
  const auto chequers =
      MakeTile({1, 0, 1, 0}, 401, 401, [&](double, double) { return side++ % 2 ? 500 : -500; });
  K7TerTileEX tile;
  ASSERT_EQ(0, tile.Init({1, 0, 1, 0}, 41, 41));
  ASSERT_EQ(0, tile.AddTileForMerge(chequers.get()));
  ASSERT_EQ(0, tile.MergeTiles());
  for (int i = 1; i < 40; ++i) EXPECT_NEAR(0, tile.GetMesh()[i][17], 5) << i;
}

TEST(TerMerge, SmoothingKeepsPlanesEdgesAndHoles) {
  std::mt19937 random(3);
  const auto rough = [&](double lat, double lon) {
    return Plane(lat, lon) + static_cast<int>(random() % 201) - 100;
  };
  const auto tile = MakeTile<K7TerTileEX>({48, 47, -121, -122}, 51, 51, rough);
  const auto right = MakeTile<K7TerTileEX>({48, 47, -120, -121}, 51, 51, rough);
  for (int r = 0; r < 51; ++r) right->GetMesh()[r][0] = tile->GetMesh()[r][50];
  tile->GetMesh()[20][20] = right->GetMesh()[7][9] = NONE;
  ASSERT_EQ(0, tile->SmoothMesh());
  ASSERT_EQ(0, right->SmoothMesh());
  double squares = 0;
  const auto plane = MakeTile({48, 47, -121, -122}, 51, 51, Plane);
  for (int r = 0; r < 51; ++r) {
    EXPECT_EQ(tile->GetMesh()[r][50], right->GetMesh()[r][0]) << r;
    for (int c = 1; c < 50 && r > 0 && r < 50; ++c)
      squares += r == 20 && c == 20 ? 0 : std::pow(tile->GetMesh()[r][c] - plane->GetMesh()[r][c], 2);
  }
  EXPECT_EQ(NONE, tile->GetMesh()[20][20]);
  // The weights' squares sum to 36 / 256: noise of variance 201^2 / 12 shrinks by it.
  EXPECT_NEAR(201.0 * 201 / 12 * 36 / 256, squares / (49 * 49), 60);
}

TEST(TerMerge, RefusesWhatCannotBe) {
  const double nan = std::nan("");
  K7TerTileEX tile;
  EXPECT_EQ(-11107, tile.MergeTiles());
  EXPECT_EQ(-11001, tile.AddTileForMerge(&tile));
  EXPECT_EQ(-11003, tile.Init({1, nan, 1, 0}, 5, 5));
  EXPECT_EQ(-11003, tile.Init({91, 0, 1, 0}, 5, 5));
  EXPECT_EQ(-11003, tile.Init({1, 0, 1, 0}, 5, 32768));
  K7TerTile absurd(K7ChartRect(1e-9, 0, 1e-9, 0), 32767, 32767),
      broken(K7ChartRect(nan, nan, nan, nan), 3, 3);
  ASSERT_EQ(0, broken.AllocMesh());
  ASSERT_EQ(0, tile.Init({1, 0, 1, 0}, 0, 0));
  ASSERT_EQ(0, tile.AddTileForMerge(&absurd));
  ASSERT_EQ(0, tile.AddTileForMerge(&broken));
  EXPECT_EQ(-11002, tile.MergeTiles());
  ASSERT_EQ(0, tile.Init({1, 0, 1, 0}, 3, 3));
  ASSERT_EQ(0, tile.AddTileForMerge(&absurd));
  ASSERT_EQ(0, tile.AddTileForMerge(&broken));
  EXPECT_EQ(0, tile.MergeTiles()) << "tiles without a grid, or without a place, are left out";
  EXPECT_EQ(NONE, tile.GetMesh()[1][1]);
}

}  // namespace
