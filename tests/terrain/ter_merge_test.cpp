#include "surface.h"

#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr int16_t NONE = -5000;

// A grid across 180, cut into 3 x 4 tiles, of which one is missing; some repeat a row or a column of the
// next.
struct Cut {
  static constexpr int ROWS = 30, COLS = 40;
  int16_t big[ROWS][COLS];
  std::vector<std::unique_ptr<K7TerTile>> tiles;

  Cut() {
    std::mt19937 random(7);
    for (auto& row : big)
      for (int16_t& post : row) post = random() % 50 ? static_cast<int16_t>(random() % 9000 - 4000) : NONE;
    for (int i = 0; i < 12; ++i) {
      const int row = i / 4 * 10, col = i % 4 * 10, rows = i < 2 ? 11 : 10, cols = i == 8 ? 11 : 10;
      if (i == 6) {
        for (int r = 0; r < 100; ++r) big[row + r / 10][col + r % 10] = NONE;
        continue;
      }
      const auto lon = [](int c) { return 176 + c * 0.2 >= 180 ? 176 + c * 0.2 - 360 : 176 + c * 0.2; };
      tiles.push_back(std::make_unique<K7TerTile>(
          K7ChartRect(10 + (row + rows) * 0.1, 10 + row * 0.1, lon(col + cols), lon(col)), rows, cols));
      EXPECT_EQ(0, tiles.back()->AllocMesh());
      for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) tiles.back()->GetMesh()[r][c] = big[row + r][col + c];
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

// Two tiles of one lattice and two of others onto grids of other spacings. Where lattices meet, at 47 N and
// 121 W, a post may be taken for half a spacing of the coarser one to either side.
TEST(TerMerge, APlaneStaysOneAtAnySpacing) {
  const auto a = MakeTile({48, 47, -121, -122}, 101, 101, Plane),
             b = MakeTile({48, 47, -120, -121}, 41, 61, Plane);
  const auto c = MakeTile({47, 46.5, -121, -122}, 45, 60, Plane),
             d = MakeTile({47, 46, -120, -121}, 90, 60, Plane);
  for (const int rows : {9, 33, 97, 350}) {
    K7TerTileEX tile;
    const K7ChartRect bounds(47.7, 46.6, -120.1, -121.8);
    ASSERT_EQ(0, tile.Init(bounds, rows, rows + 5));
    for (K7TerTile* source : {a.get(), b.get(), c.get(), d.get()}) ASSERT_EQ(0, tile.AddTileForMerge(source));
    ASSERT_EQ(0, tile.MergeTiles());
    const auto expected = MakeTile(bounds, rows, rows + 5, Plane);
    int worst = 0, worstSeam = 0;
    for (int r = 0; r < rows; ++r) {
      for (int col = 0; col < rows + 5; ++col) {
        const double lat = 46.6 + 1.1 * (r + 0.5) / rows, lon = -121.8 + 1.7 * (col + 0.5) / (rows + 5);
        const double reach = std::max(1.0 / 40, 1.7 / rows);
        const bool nearSeam = std::abs(lat - 47) < reach || (lat > 47 - reach && std::abs(lon + 121) < reach);
        int& error = nearSeam ? worstSeam : worst;
        error = std::max(error, std::abs(tile.GetMesh()[r][col] - expected->GetMesh()[r][col]));
      }
    }
    EXPECT_LE(worst, 1) << rows;  // posts are whole metres, on the way in and out
    EXPECT_LE(worstSeam, (900 + 700) * std::max(0.5 / 40, 0.5 * 1.7 / rows)) << rows;
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

// Smoothed tiles are the pieces of the grid smoothed in one; noise shrinks by the squares of the weights.
TEST(TerMerge, SmoothingKeepsPlanesSeamsAndHoles) {
  std::mt19937 random(3);
  const auto west = MakeTile({48, 47, -121, -122}, 50, 50, [&](double lat, double lon) {
    return Plane(lat, lon) + static_cast<int>(random() % 201) - 100;
  });
  const auto east = MakeTile({48, 47, -120, -121}, 50, 50, Plane);
  west->GetMesh()[20][20] = east->GetMesh()[7][0] = NONE;
  K7TerTileEX whole, left, right;
  ASSERT_EQ(0, whole.Init({48, 47, -120, -122}, 50, 100));
  ASSERT_EQ(0, left.Init(west->GetChartRect(), 50, 50));
  ASSERT_EQ(0, right.Init(east->GetChartRect(), 50, 50));
  for (K7TerTileEX* tile : {&whole, &left, &right}) {
    for (K7TerTile* source : {east.get(), west.get()}) ASSERT_EQ(0, tile->AddTileForMerge(source));
    ASSERT_EQ(0, tile->MergeTiles());
    ASSERT_EQ(0, tile->SmoothMesh());
  }
  double squares = 0;
  const auto plane = MakeTile({48, 47, -121, -122}, 50, 50, Plane);
  for (int r = 1; r < 49; ++r) {
    for (int c = 0; c < 100; ++c) {
      EXPECT_EQ(whole.GetMesh()[r][c], c < 50 ? left.GetMesh()[r][c] : right.GetMesh()[r][c - 50])
          << r << ' ' << c;
      if (c > 0 && c < 49 && std::abs(r - 20) + std::abs(c - 20) > 2)
        squares += std::pow(left.GetMesh()[r][c] - plane->GetMesh()[r][c], 2);
    }
  }
  EXPECT_EQ(NONE, left.GetMesh()[20][20]);
  EXPECT_NEAR(201.0 * 201 / 12 * 36 / 256, squares / (48 * 48 - 13), 60);
}

TEST(TerMerge, RefusesWhatCannotBe) {
  const double nan = std::nan("");
  K7TerTileEX tile;
  EXPECT_EQ(-11107, tile.MergeTiles());
  EXPECT_EQ(-11001, tile.AddTileForMerge(&tile));
  EXPECT_EQ(-11003, tile.Init({1, nan, 1, 0}, 5, 5));
  EXPECT_EQ(-11003, tile.Init({99, 0, 1, 0}, 5, 5));
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
  EXPECT_EQ(-11002, tile.MergeTiles());
  K7TerTile unread(K7ChartRect(1, 0, 1, 0), 9, 9);
  ASSERT_EQ(0, tile.Init({1, 0, 1, 0}, 3, 3));
  ASSERT_EQ(0, tile.AddTileForMerge(&broken));
  ASSERT_EQ(0, tile.AddTileForMerge(&unread));
  EXPECT_EQ(0, tile.MergeTiles()) << "tiles without a grid, or without a place, are left out";
  EXPECT_EQ(NONE, tile.GetMesh()[1][1]);
}

}  // namespace
