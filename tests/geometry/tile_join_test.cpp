// Pieces joined again, against the features before they were cut.

#include <k7/geometry/shp_file.h>
#include <k7/geometry/tile_join.h>
#include <k7/geometry/tiling.h>
#include <k7/io/io.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

// What lies inside the pieces of the tiles taken is what the polygon has there, and nothing outside; no two
// tiles have a border between them, so that with all tiles just the polygon's own points and crossings are
// left.
TEST(TileJoin, TakenTilesHoldTheirShareOfTheLandAndNoMore) {
  K7ShpFile file;
  ASSERT_EQ(file.Read(K7_SAMPLE_DATA "/ne_110m_land.shp", K7IO::Inst()), 0);
  std::mt19937 random(5);
  std::uniform_real_distribution<double> lat(-90, 90), lon(-180, 180);
  int inside = 0, corners = 0;
  for (int i = 0; i < file.StoredCount(); ++i) {
    const auto& shape = static_cast<const K7ShpPoly&>(*file.GetRecord(i)->Obj());
    K7PolyPolygon polygon;
    ASSERT_EQ(polygon.SetShape(shape), 0);
    ASSERT_EQ(polygon.CutAtSeam(), 0);
    K7PolygonTileMngr tiles;
    K7PolyPtMngr created;
    ASSERT_EQ(tiles.Init(10), 0);
    ASSERT_EQ(tiles.TilizePolygon(&polygon, &created), 0);
    std::vector<K7LatLon> points;
    std::vector<int> sizes;
    for (int p = 0; p < polygon.PointCount(); ++p) points.emplace_back(polygon.Lat(p), polygon.Lon(p));
    for (int p = 0; p < polygon.PartCount(); ++p) sizes.push_back(polygon.PartSize(p));
    K7MapFeatures features;
    ASSERT_EQ(features.Add(K7_MAP_AREA, points.data(), sizes.data(), static_cast<int>(sizes.size())), 0);
    const auto taken = [](int row, int col, int share) { return share == 0 || (row * 7 + col * 5) % 3 != 0; };
    for (const int share : {0, 1}) {
      K7TileJoin join;
      for (int row = 0; row < tiles.RowCount(); ++row)
        for (int col = 0; col < tiles.ColCount(row); ++col) {
          auto* const tile = static_cast<K7PolygonTile*>(tiles.GetTile(row, col, false));
          for (int k = 0; tile && taken(row, col, share) && k < tile->PieceCount(); ++k)
            ASSERT_EQ(join.Add(*tile->Piece(k), 0), 0);
        }
      ASSERT_EQ(join.AddTo(features, K7_MAP_AREA), 1 + share);
      for (int k = 0; k < 20000; ++k) {
        const double y = lat(random), x = lon(random);
        const int row = tiles.GetTileRow(y);
        const bool expected = features.Contains(0, y, x) && taken(row, tiles.GetTileCol(x, row), share);
        inside += expected;
        ASSERT_EQ(features.Contains(1 + share, y, x), expected) << i << ' ' << y << ' ' << x << ' ' << share;
      }
    }
    for (int k = 0; k < features.PointCount(1); ++k) {
      const K7LatLon p = features.Point(1, k);
      // Straight borders: those of the coast are not so deep in the land.
      if (std::remainder(p.Lat(), 10) != 0 && std::remainder(p.Lon(), 1) != 0) continue;
      bool isDeep = std::fabs(p.Lat()) < 90 && std::fabs(p.Lon()) < 180;
      for (const double north : {-1e-4, 1e-4})
        for (const double east : {-1e-4, 1e-4})
          isDeep = isDeep && features.Contains(0, p.Lat() + north, p.Lon() + east);
      corners += isDeep;
    }
  }
  EXPECT_GT(inside, 10000);
  EXPECT_EQ(corners, 0);
}

// Each crossing once: nothing ends at a border. And a tolerance leaves out what lies between.
TEST(TileJoin, LinesAreWholeAgain) {
  std::mt19937 random(8);
  std::uniform_real_distribution<double> lat(-80, 80), lon(-85, 85);
  std::vector<K7LatLon> points;
  for (int i = 0; i < 120; ++i) points.emplace_back(lat(random), lon(random));
  const int sizes[] = {50, 1, 2, 67};
  K7Polyline line;
  ASSERT_EQ(line.SetPoints(points.data(), sizes, 4), 0);
  K7PolygonTileMngr tiles(K7_TILE_POLYLINES);
  K7PolyPtMngr created;
  ASSERT_EQ(tiles.Init(10), 0);
  ASSERT_EQ(tiles.TilizePolyline(&line, &created), 0);
  ASSERT_GT(created.Count(), 1000);
  K7MapFeatures features;
  for (const double tolerance : {0.0, 1e5}) {
    K7TileJoin join;
    for (int row = 0; row < tiles.RowCount(); ++row)
      for (int col = 0; col < tiles.ColCount(row); ++col) {
        auto* const tile = static_cast<K7PolylineTile*>(tiles.GetTile(row, col, false));
        for (int k = 0; tile && k < tile->PieceCount(); ++k) {
          ASSERT_EQ(tile->Piece(k)->Rank(), 0);
          ASSERT_EQ(join.Add(*tile->Piece(k), tolerance), 0);
        }
      }
    ASSERT_GE(join.AddTo(features, K7_MAP_LINES), 0);
  }
  // The single point is no line; of the others the ends stay.
  EXPECT_EQ(features.PointCount(0), 119 + created.Count());
  EXPECT_EQ(features.PointCount(1), 6 + created.Count());
}

}  // namespace
