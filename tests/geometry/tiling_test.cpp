// Features in tiles: what is inside stays inside, no point is lost, neighbours meet.

#include <k7/foundation/error_string.h>
#include <k7/geodesy/cromley.h>
#include <k7/geometry/shp_file.h>
#include <k7/geometry/tiling.h>
#include <k7/io/io.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using Line = std::vector<K7LatLon>;

// Rings or lines laid end to end, with the feature that refers to them.
template <class Feature>
struct Parts {
  std::vector<K7LatLon> points;
  std::vector<int> sizes;
  Feature feature;

  explicit Parts(const std::vector<Line>& parts) {
    for (const Line& part : parts) {
      points.insert(points.end(), part.begin(), part.end());
      sizes.push_back(static_cast<int>(part.size()));
    }
    EXPECT_EQ(feature.SetPoints(points.data(), sizes.data(), static_cast<int>(sizes.size())), 0);
  }
};
using Area = Parts<K7PolyPolygon>;
using Lines = Parts<K7Polyline>;

// Twice the area in square degrees, positive for a clockwise ring.
long double Turning(const Line& ring) {
  long double sum = 0;
  for (size_t i = 0; i < ring.size(); ++i) {
    const K7LatLon &a = ring[i], &b = ring[(i + 1) % ring.size()];
    sum += (static_cast<long double>(b.Lon()) - a.Lon()) *
           (static_cast<long double>(a.Lat()) + b.Lat() - 2.0L * ring[0].Lat());
  }
  return sum;
}

// The even-odd rule, by a ray to the south.
bool IsIn(const Line& ring, double lat, double lon) {
  bool in = false;
  for (size_t i = 0; i < ring.size(); ++i) {
    const K7LatLon &a = ring[i], &b = ring[(i + 1) % ring.size()];
    if ((a.Lon() > lon) == (b.Lon() > lon)) continue;
    if (a.Lat() + (b.Lat() - a.Lat()) * (lon - a.Lon()) / (b.Lon() - a.Lon()) < lat) in = !in;
  }
  return in;
}

Line PointsOf(const K7TileString& piece) {
  Line points;
  double lat, lon;
  for (int i = 0; piece.GetPoint(i, lat, lon); ++i) points.emplace_back(lat, lon);
  return points;
}

Line RingOf(const K7TileFeature& feature, int part) {
  Line ring;
  for (int i = 0; i < feature.PartSize(part); ++i)
    ring.emplace_back(feature.Lat(feature.PartStart(part) + i), feature.Lon(feature.PartStart(part) + i));
  return ring;
}

struct Tiles : K7PolygonTileMngr {
  explicit Tiles(K7TileKind kind, double height, double width = 0, double tolerance = 0)
      : K7PolygonTileMngr(kind) {
    EXPECT_EQ(Init(height, width, tolerance), 0);
  }
  template <class Visit>
  void VisitPieces(Visit visit) {
    for (int row = 0; row < RowCount(); ++row)
      for (int col = 0; col < ColCount(row); ++col) {
        K7ShapeTile* const tile = GetTile(row, col, false);
        if (auto* const areas = dynamic_cast<K7PolygonTile*>(tile))
          for (int i = 0; i < areas->PieceCount(); ++i) visit(*tile, *areas->Piece(i));
        if (auto* const lines = dynamic_cast<K7PolylineTile*>(tile))
          for (int i = 0; i < lines->PieceCount(); ++i) visit(*tile, *lines->Piece(i));
      }
  }
  using K7PolygonTileMngr::ProcessBorderCorners;
};

// Pieces lie in their tiles, hold every point of the feature, and share each crossing with a neighbour.
void CheckPieces(Tiles& tiles, const K7TileFeature& feature, const std::string& what) {
  std::map<int, int> uses;
  tiles.VisitPieces([&](const K7ShapeTile& tile, const K7TileString& piece) {
    for (const K7LatLon& p : PointsOf(piece)) {
      ASSERT_LE(p.Lat(), tile.North() + 1.1e-8) << what;
      ASSERT_GE(p.Lat(), tile.South() - 1e-12) << what;
      ASSERT_LE(p.Lon(), tile.East() + 1.1e-8) << what;
      ASSERT_GE(p.Lon(), tile.West() - 1e-12) << what;
      ASSERT_TRUE(p.Lat() <= piece.Bounds().north && p.Lat() >= piece.Bounds().south);
      ASSERT_TRUE(p.Lon() <= piece.Bounds().east && p.Lon() >= piece.Bounds().west);
    }
    for (int i = 0; i < piece.PointCount(); ++i) ++uses[piece.Indexes()[i]];
  });
  for (int part = 0; part < feature.PartCount(); ++part) {
    const Line line = RingOf(feature, part);
    const bool repeats = line.size() > 1 && line.front().Lat() == line.back().Lat() &&
                         line.front().Lon() == line.back().Lon() &&
                         dynamic_cast<K7PolygonTile*>(tiles.GetTile(0.0, 0.0));
    for (int i = 0; i < feature.PartSize(part) - repeats; ++i)
      ASSERT_EQ(uses[feature.PartStart(part) + i], 1) << what << ", point " << i;
  }
  for (const auto& [index, count] : uses) ASSERT_LE(count, index < feature.PointCount() ? 1 : 2) << what;
}

TEST(Tiling, TheGridFollowsTheLatitude) {
  static constexpr struct {
    double height, width;
    int row, cols;
    double colWidth;
  } ROWS[] = {{10, 0, 9, 36, 10}, {10, 0, 17, 12, 30}, {10, 15, 3, 24, 15}, {30, 0, 0, 12, 30},
              {7, 0, 24, 12, 30}, {1, 0, 90, 360, 1},  {10, 0, 13, 30, 12}, {10, 7, 0, 51, 7}};
  for (const auto& row : ROWS) {
    const Tiles tiles(K7_TILE_POINTS, row.height, row.width);
    EXPECT_EQ(tiles.RowCount(), static_cast<int>(180 / row.height));
    EXPECT_EQ(tiles.ColCount(row.row), row.cols) << row.height;
    EXPECT_EQ(tiles.ColWidth(row.row), row.colWidth) << row.height;
  }
  Tiles tiles(K7_TILE_POINTS, 10);
  static constexpr struct {
    double lat, lon;
    int row, col;
  } PLACES[] = {{0, 0, 9, 18},     {-1e-9, -1e-9, 9, 18},   {-2e-8, -2e-8, 8, 17}, {90, 180, 17, 11},
                {-90, -180, 0, 0}, {90.1, 0, -1, -1},       {NAN, 0, -1, -1},      {0, NAN, 9, -1},
                {5, 180.1, 9, -1}, {5, -170.00000002, 9, 0}};
  for (const auto& place : PLACES) {
    EXPECT_EQ(tiles.GetTileRow(place.lat), place.row) << place.lat;
    EXPECT_EQ(tiles.GetTileCol(place.lon, place.row), place.col) << place.lon;
    int err = 1;
    const K7ShapeTile* const tile = tiles.GetTile(place.lat, place.lon, &err);
    EXPECT_EQ(err, place.col < 0 ? K7_ERR_BAD_ARGUMENT : 0);
    ASSERT_EQ(tile == nullptr, place.col < 0);
    if (!tile) continue;
    EXPECT_TRUE(place.lat >= tile->South() && place.lat <= tile->North() && place.lon >= tile->West() &&
                place.lon <= tile->East());
    EXPECT_EQ(tile->South(), tiles.GetTileLat(place.row));
    EXPECT_EQ(tile->West(), tiles.GetTileLon(place.col, place.row));
  }
  EXPECT_EQ(tiles.GetTileLat(9), -0.00000001);
  EXPECT_EQ(tiles.GetTileLon(19, 9), 9.99999999);
  const double ends[] = {tiles.GetTileLat(0), tiles.GetTileLat(18), tiles.GetTileLon(0, 9),
                         tiles.GetTileLon(36, 9)};
  EXPECT_EQ((std::vector<double>(ends, ends + 4)), (std::vector<double>{-90, 90, -180, 180}));
  EXPECT_EQ(tiles.GetTile(9, 18, true)->North(), 10 - 0.00000001);
  EXPECT_EQ(tiles.GetTile(17, 11, true)->East(), 180);
  int err;
  EXPECT_EQ(tiles.GetTile(3, 3, false, &err), nullptr);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(tiles.GetTile(18, 0, true, &err), nullptr);
  EXPECT_EQ(err, K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(tiles.Init(-1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(tiles.Init(1e-12), K7_ERR_MEMORY);
  EXPECT_EQ(tiles.Init(0), 0);
  K7PointRec point;
  EXPECT_EQ(tiles.TilizePoint(&point), K7_ERR_BAD_ARGUMENT);
}

TEST(Tiling, PointsAreFoundByTheirTiles) {
  Tiles tiles(K7_TILE_POINTS, 10);
  K7PointRec points[] = {{1, 1}, {9, 9}, {-5, 179}, {-5, -179}, {91, 0}};
  for (K7PointRec& point : points)
    EXPECT_EQ(tiles.TilizePoint(&point), point.lat > 90 ? K7_ERR_BAD_ARGUMENT : 0);
  const auto* const tile = static_cast<K7PointTile*>(tiles.GetTile(5.0, 5.0));
  ASSERT_EQ(tile->Count(), 2);
  EXPECT_EQ(tile->Point(1), &points[1]);
  K7PtrArray found;
  EXPECT_EQ(tiles.GetTiles(K7ChartRect(0, -10, -175, 175), found), 0);  // across 180
  EXPECT_EQ(found.Count(), 2);
  const Area none({});
  K7PolyPtMngr created;
  EXPECT_EQ(tiles.TilizePolygon(&none.feature, &created), K7_ERR_BAD_ARGUMENT);
}

TEST(Tiling, LinesAreCutWhereTheyCross) {
  Tiles tiles(K7_TILE_POLYLINES, 10, 10);
  K7PolyPtMngr points;
  const Lines straight({{{0, 5}, {0, 25}}});
  ASSERT_EQ(tiles.TilizePolyline(&straight.feature, &points), 0);
  std::vector<Line> pieces;
  tiles.VisitPieces(
      [&](const K7ShapeTile&, const K7TileString& piece) { pieces.push_back(PointsOf(piece)); });
  ASSERT_EQ(pieces.size(), 3u);
  const double lons[] = {5, 10, 10, 20, 20, 25};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(pieces[i / 2][i % 2].Lon(), lons[i]);

  std::mt19937 random(7);
  std::uniform_real_distribution<double> lat(-90, 90), lon(-180, 180);
  for (const double height : {10.0, 1.0, 45.0, 7.0}) {
    Line line;
    double length = 0, cut = 0;
    for (int i = 0; i < 40; ++i) {
      line.emplace_back(i % 3 ? lat(random) : std::round(lat(random)),
                        i % 4 ? lon(random) : std::round(lon(random)));
      if (i > 0)
        length += std::hypot(line[line.size() - 2].Lat() - line.back().Lat(),
                             line[line.size() - 2].Lon() - line.back().Lon());
    }
    Tiles grid(K7_TILE_POLYLINES, height);
    const Lines lines({line});
    ASSERT_EQ(grid.TilizePolyline(&lines.feature, &points), 0);
    CheckPieces(grid, lines.feature, "line");
    grid.VisitPieces([&](const K7ShapeTile&, const K7TileString& piece) {
      const Line p = PointsOf(piece);
      for (size_t i = 1; i < p.size(); ++i)
        cut += std::hypot(p[i].Lat() - p[i - 1].Lat(), p[i].Lon() - p[i - 1].Lon());
    });
    EXPECT_NEAR(cut, length, 1e-9 * length);
  }
}

// Random rings, also crossing themselves and each other, many with corners on borders of tiles: a place is
// inside the feature where it is inside the pieces of its tile.
TEST(Tiling, WhatIsInsideStaysInside) {
  std::mt19937 random(3);
  const auto number = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  for (int round = 0; round < 400; ++round) {
    const double height = std::vector<double>{10, 30, 45, 7, 90, 180}[static_cast<size_t>(round % 6)];
    const double grain = round % 3 ? 0 : height / 2, reach = round % 2 ? 170 : 25;
    std::vector<Line> rings(1 + static_cast<size_t>(round % 4));
    for (Line& ring : rings)
      for (int i = 0, n = 3 + round % 9; i < n; ++i) {
        double y = number(-std::min(reach, 90.0), std::min(reach, 90.0)),
               x = number(-reach, reach) + (reach < 90 ? 20 : 0);
        if (grain > 0)
          y = std::clamp(std::round(y / grain) * grain, -90.0, 90.0), x = std::round(x / grain) * grain;
        ring.emplace_back(y, x);
      }
    Area area(rings);
    Tiles tiles(K7_TILE_POLYGONS, height, round % 5 ? 0 : 30);
    K7PolyPtMngr points;
    ASSERT_EQ(tiles.TilizePolygon(&area.feature, &points), 0);
    CheckPieces(tiles, area.feature, "round " + std::to_string(round));
    for (int probe = 0; probe < 200; ++probe) {
      const double y = number(-90, 90), x = number(-180, 180);
      bool in = false, tiled = false;
      for (const Line& ring : rings) in ^= IsIn(ring, y, x);
      const int row = tiles.GetTileRow(y);
      const auto* const tile =
          static_cast<K7PolygonTile*>(tiles.GetTile(row, tiles.GetTileCol(x, row), false));
      for (int i = 0; tile && i < tile->PieceCount(); ++i) tiled ^= IsIn(PointsOf(*tile->Piece(i)), y, x);
      ASSERT_EQ(tiled, in) << "round " << round << " at " << y << " " << x;
    }
  }
}

// Outer rings and holes keep their direction, so that areas add up with their sign.
TEST(Tiling, AreasOfPiecesAddUp) {
  for (const char* const name : {"ne_110m_land", "ne_50m_land"})
    for (const double height : {10.0, 3.0, 90.0}) {
      K7ShpFile file;
      ASSERT_EQ(file.Read((std::string(K7_SAMPLE_DATA) + "/" + name + ".shp").c_str(), K7IO::Inst()), 0);
      K7PolyPtMngr points;
      for (int i = 0; i < file.StoredCount(); ++i) {
        K7PolyPolygon polygon;
        ASSERT_EQ(polygon.SetShape(*dynamic_cast<const K7ShpPoly*>(file.GetRecord(i)->Obj())), 0);
        Tiles tiles(K7_TILE_POLYGONS, height);
        ASSERT_EQ(tiles.TilizePolygon(&polygon, &points), 0);
        CheckPieces(tiles, polygon, name);
        long double area = 0, sum = 0;
        for (int part = 0; part < polygon.PartCount(); ++part) area += Turning(RingOf(polygon, part));
        tiles.VisitPieces(
            [&](const K7ShapeTile&, const K7TileString& piece) { sum += Turning(PointsOf(piece)); });
        EXPECT_NEAR(static_cast<double>(sum / area), 1, 1e-9) << name << " " << i;
      }
    }
}

TEST(Tiling, CornersAndWholeTiles) {
  // Over a north-western corner, in both directions: one corner is inside.
  for (const bool turned : {false, true}) {
    Line ring = {{5, 1}, {5, -3}, {13, -3}, {13, 5}, {8, 5}, {8, 1}};
    if (turned) std::reverse(ring.begin(), ring.end());
    Tiles tiles(K7_TILE_POLYGONS, 10, 10);
    K7PolyPtMngr points;
    const Area area({ring});
    ASSERT_EQ(tiles.TilizePolygon(&area.feature, &points), 0);
    const auto* const tile = static_cast<K7PolygonTile*>(tiles.GetTile(9, 18, false));
    ASSERT_EQ(tile->PieceCount(), 1);
    int corners = 0;
    for (const K7LatLon& p : PointsOf(*tile->Piece(0))) corners += p.Lat() == 10 && p.Lon() == 0;
    EXPECT_EQ(corners, 1);
    EXPECT_EQ(tile->Piece(0)->PointCount(), 3 + 2 + 1);
  }
  // A ring that swallows tiles, with a hole in one of them and one that touches a border from inside.
  Tiles tiles(K7_TILE_POLYGONS, 10, 10);
  K7PolyPtMngr points;
  const Area area(
      {{{-25, -25}, {25, -25}, {25, 25}, {-25, 25}}, {{2, 2}, {2, 4}, {4, 3}}, {{10, -5}, {7, -6}, {7, -4}}});
  ASSERT_EQ(tiles.TilizePolygon(&area.feature, &points), 0);
  const auto count = [&](double lat, double lon) {
    const int row = tiles.GetTileRow(lat);
    const auto* const tile =
        static_cast<K7PolygonTile*>(tiles.GetTile(row, tiles.GetTileCol(lon, row), false));
    return tile ? tile->PieceCount() : 0;
  };
  EXPECT_EQ(count(15, 15), 1);
  EXPECT_EQ(count(5, 5), 2);
  EXPECT_EQ(count(5, -5), 2);
  EXPECT_EQ(count(35, 5), 0);
  const auto* const swallowed = static_cast<K7PolygonTile*>(tiles.GetTile(5.0, 5.0));
  EXPECT_EQ(swallowed->Piece(0)->PointCount(), 4);  // the larger one first
  EXPECT_EQ(swallowed->BorderCount(), 0);

  // Pieces joined to what is there, by hand: from the west side clockwise to the north side.
  const K7ShapeTile* const tile = tiles.GetTile(9, 18, true);
  K7TileBrdrPt north(*tile, 10, 6, K7_SIDE_NORTH, false), west(*tile, 4, 0, K7_SIDE_WEST, true);
  EXPECT_NEAR(north.Perimeter(), 6, 2e-8);
  EXPECT_NEAR(west.Perimeter(), 34, 2e-8);
  K7PtrArray border;
  border += &north;
  border += &west;
  K7TileRect bounds;
  K7IntArray indexes;
  EXPECT_EQ(tiles.ProcessBorderCorners(0, border, tile, &points, &bounds, indexes), 3);
  EXPECT_EQ(tiles.ProcessBorderCorners(1, border, tile, &points, &bounds, indexes), 1);
  EXPECT_EQ(tiles.ProcessBorderCorners(2, border, tile, &points, &bounds, indexes), 0);
  EXPECT_EQ(tiles.ProcessBorderCorners(0, border, nullptr, &points, &bounds, indexes), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(indexes.Count(), 4);
  EXPECT_EQ(points.Lat(points.Count() - 1), 10);
  EXPECT_EQ(points.Lon(points.Count() - 1), 0);
}

// Rings as they run on the globe, against their areas on a plane on which longitudes run on.
TEST(Tiling, FeaturesAreCutAt180) {
  static constexpr double CAP = 2 * 360 * 20.0;  // what is beyond 70 degrees
  const struct {
    std::vector<Line> rings;
    double area;  // twice, clockwise positive
  } CASES[] = {
      {{{{-16, 179}, {-16, -178}, {-17, -178}, {-17, 179}}}, 2 * 3},
      {{{{-16, 179}, {-17, 179}, {-17, -178}, {-16, -178}}}, -2 * 3},
      {{{{-16, 539}, {-16, 542}, {-17, 542}, {-17, 539}}}, 2 * 3},
      {{{{-10, 170}, {-10, -170}, {-20, -170}, {-20, 170}},
        {{-14, -179}, {-14, 179}, {-16, 179}, {-16, -179}}},
       2 * (200 - 4)},
      {{{{-70, -170}, {-70, -60}, {-70, 60}, {-70, 175}}}, CAP},
      {{{{70, 175}, {70, 60}, {70, -60}, {70, -170}}}, CAP},
      {{{{-90, -180}, {-70, -180}, {-70, 0}, {-70, 180}, {-90, 180}}}, CAP},
      {{{{-1, 1}, {1, 1}, {1, 3}, {-1, 3}}}, 2 * 4},
      {{{{-10, -180}, {20, -180}, {20, 180}, {-10, 180}}}, 2 * 30 * 360.0},
  };
  for (const auto& c : CASES) {
    Area area(c.rings);
    ASSERT_EQ(area.feature.CutAtSeam(), 0);
    long double cut = 0, sum = 0;
    for (int part = 0; part < area.feature.PartCount(); ++part) cut += Turning(RingOf(area.feature, part));
    EXPECT_NEAR(static_cast<double>(cut), c.area, 1e-9);
    Tiles tiles(K7_TILE_POLYGONS, 10);
    K7PolyPtMngr points;
    ASSERT_EQ(tiles.TilizePolygon(&area.feature, &points), 0);
    tiles.VisitPieces(
        [&](const K7ShapeTile&, const K7TileString& piece) { sum += Turning(PointsOf(piece)); });
    EXPECT_NEAR(static_cast<double>(sum), c.area, 1e-9);
  }
  Lines line({{{10, 170}, {20, -170}, {30, 170}}});
  ASSERT_EQ(line.feature.CutAtSeam(), 0);
  ASSERT_EQ(line.feature.PartCount(), 3);
  double length = 0;
  for (int part = 0; part < 3; ++part) {
    const Line run = RingOf(line.feature, part);
    for (size_t i = 1; i < run.size(); ++i)
      length += std::hypot(run[i].Lat() - run[i - 1].Lat(), run[i].Lon() - run[i - 1].Lon());
  }
  EXPECT_NEAR(length, 2 * std::hypot(10, 20), 1e-9);
}

// The corners of a polar area lie on the pole and at 180, where the globe has none.
TEST(Tiling, CornersOfThePlaneStay) {
  const Area cap({{{-90, -180}, {-80, -180}, {-80.1, 0}, {-80, 180}, {-90, 180}}});
  Tiles tiles(K7_TILE_POLYGONS, 10);
  K7PolyPtMngr points;
  ASSERT_EQ(tiles.TilizePolygon(&cap.feature, &points), 0);
  int kept = 0;
  tiles.VisitPieces([&](const K7ShapeTile&, K7TileString& piece) {
    K7IntArray indexes;
    ASSERT_EQ(piece.Rank(), 0);
    ASSERT_EQ(piece.Select(1000, indexes), 0);
    for (int i = 0; i < indexes.Count(); ++i) kept += piece.IsOwnPoint(indexes[i]);
  });
  EXPECT_EQ(kept, 4);
}

// A tolerance chosen afterwards leaves what one given before leaves, and pieces still meet.
TEST(Tiling, AnyToleranceFromOneRanking) {
  Line coast;
  for (int i = 0; i < 700; ++i) {
    const double a = i * 0.0089759790102565518, r = 12 + std::sin(i * 1.7) + 0.3 * std::sin(i * 23.0);
    coast.emplace_back(10 + r * std::cos(a), 20 + r * std::sin(a));
  }
  const Area area({coast, {{10, 24}, {11, 26}, {12, 24}}});
  K7PolyPtMngr points, others;
  Tiles all(K7_TILE_POLYGONS, 10);
  ASSERT_EQ(all.TilizePolygon(&area.feature, &points), 0);
  for (const double tolerance : {5.0, 30.0}) {
    Tiles some(K7_TILE_POLYGONS, 10, 0, tolerance);
    ASSERT_EQ(some.TilizePolygon(&area.feature, &others), 0);
    std::multiset<std::vector<std::pair<double, double>>> left, chosen;
    const auto sorted = [](const Line& line) {
      std::vector<std::pair<double, double>> pairs;
      for (const K7LatLon& p : line) pairs.emplace_back(p.Lat(), p.Lon());
      std::sort(pairs.begin(), pairs.end());
      return pairs;
    };
    some.VisitPieces(
        [&](const K7ShapeTile&, const K7TileString& piece) { left.insert(sorted(PointsOf(piece))); });
    all.VisitPieces([&](const K7ShapeTile&, K7TileString& piece) {
      ASSERT_EQ(piece.Rank(), 0);
      K7IntArray kept;
      ASSERT_EQ(piece.Select(tolerance, kept), 0);
      const Line whole = PointsOf(piece);
      Line line;
      for (int i = 0; i < kept.Count(); ++i) line.push_back(whole[static_cast<size_t>(kept[i])]);
      if (!line.empty()) chosen.insert(sorted(line));
    });
    EXPECT_EQ(left, chosen) << tolerance;
  }
}

TEST(Tiling, HostilePlacesGiveACode) {
  for (const double bad : {std::nan(""), HUGE_VAL, 91.0}) {
    Tiles tiles(K7_TILE_POLYGONS, 10), lines(K7_TILE_POLYLINES, 10);
    K7PolyPtMngr points;
    const std::vector<Line> rings = {{{0, 0}, {bad, 20}, {20, 20}}};
    Area area(rings);
    const Lines line(rings);
    EXPECT_EQ(tiles.TilizePolygon(&area.feature, &points), K7_ERR_BAD_ARGUMENT);
    EXPECT_EQ(lines.TilizePolyline(&line.feature, &points), K7_ERR_BAD_ARGUMENT);
    tiles.VisitPieces([](const K7ShapeTile&, const K7TileString&) { FAIL(); });
    EXPECT_EQ(points.Count(), 0);
    Area across({{{0, 0}, {bad, -179}, {20, 179}}});
    EXPECT_EQ(across.feature.CutAtSeam(), K7_ERR_INVALID_DATA);
    EXPECT_EQ(across.feature.PointCount(), 3);
  }
  // From corner to corner of the world again and again.
  Line zigzag;
  for (int i = 0; i < 8000; ++i) zigzag.emplace_back(i % 2 ? -90 : 90, i % 2 ? -180 : 180);
  const Area area({zigzag});
  Tiles tiles(K7_TILE_POLYGONS, 1);
  K7PolyPtMngr points;
  EXPECT_EQ(tiles.TilizePolygon(&area.feature, &points), K7_ERR_MEMORY);
}

}  // namespace
