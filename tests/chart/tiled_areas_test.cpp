// Land from tiles beside land drawn whole.

#include "layers/tiled_areas.h"
#include "projection/path_recorder.h"

#include <k7/geometry/shp_file.h>
#include <k7/io/io.h>
#include <k7/projection.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

class TiledAreasTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(file.Read(K7_SAMPLE_DATA "/ne_50m_land.shp", K7IO::Inst()), 0);
    for (int i = 0; i < file.StoredCount(); ++i) {
      const auto& shape = dynamic_cast<const K7ShpPoly&>(*file.GetRecord(i)->Obj());
      ASSERT_TRUE(tiled.Add(shape, i));
      std::vector<K7LatLon> points;
      std::vector<int> sizes;
      for (int k = 0; k < shape.GetPointCount(); ++k)
        points.emplace_back(shape.Points()[k].y, shape.Points()[k].x);
      for (int k = 0; k < shape.GetPolyCount(); ++k) sizes.push_back(shape.GetPolySize(k));
      ASSERT_EQ(whole.Add(K7_MAP_AREA, points.data(), sizes.data(), shape.GetPolyCount()), i);
    }
  }

  K7ShpFile file;
  TiledAreas tiled;
  K7MapFeatures whole;
};

int PointsOf(const K7MapFeatures& features) {
  int points = 0;
  for (int i = 0; i < features.Count(); ++i) points += features.PointCount(i);
  return points;
}

void Record(const K7MapView& view, const K7MapFeatures& features, PathRecorder& recorder) {
  K7MapPath path(view);
  for (int i = 0; i < features.Count(); ++i) path.Area(&recorder, features, i);
}

// In nine projections, over 180 and the poles: whatever is no coast in the whole's picture.
TEST_F(TiledAreasTest, LookLikeTheWhole) {
  static constexpr struct {
    double lat, lon, range;
  } PLACES[] = {{66, 180, 800}, {-17, 179.5, 300}, {90, 0, 1500},
                {-90, 0, 2500}, {10, 20, 9000},    {48, -123, 60}};
  int inside = 0;
  for (int kind = 0; kind < 9; ++kind)
    for (const auto& place : PLACES) {
      const std::unique_ptr<K7Projection> projection(K7MapView::CreateProjection(
          static_cast<K7ProjType>(kind), place.lat, place.lon, place.range, nullptr));
      K7MapView view(projection.get(), 400, 260);
      if (!projection || view.LookAt(place.lat, place.lon, place.range) != 0) continue;
      ASSERT_TRUE(tiled.Show(view));
      PathRecorder seen, meant;
      Record(view, tiled.Shown(), seen);
      Record(view, whole, meant);
      for (int y = 2; y < 260; y += 13)
        for (int x = 2; x < 400; x += 13) {
          const bool in = meant.Encloses(x, y);
          inside += in;
          if (seen.Encloses(x, y) == in) continue;
          bool isCoast = false;
          for (int k = 0; k < 16; ++k) {
            const double off = k < 8 ? 0.6 : 1.4, angle = k * 0.7853981633974483;
            isCoast = isCoast || meant.Encloses(x + off * std::cos(angle), y + off * std::sin(angle)) != in;
          }
          // Inlets narrower than that.
          for (const PathRecorder::Piece& piece : meant.pieces)
            for (const PathRecorder::Point& p : piece.points)
              isCoast = isCoast || std::hypot(p.x - x, p.y - y) < 0.5;
          EXPECT_TRUE(isCoast) << kind << " at " << place.lat << ", pixel " << x << " " << y;
        }
    }
  EXPECT_GT(inside, 5000);
}

// A near view looks at its tiles alone, a far one at few points of each.
TEST_F(TiledAreasTest, OnlyWhatShowsIsLookedAt) {
  K7LambertProjection cone(30, 50, -123, 40);
  K7MapView view(&cone, 800, 500);
  ASSERT_EQ(view.LookAt(48, -123, 60), 0);
  ASSERT_TRUE(tiled.Show(view));
  EXPECT_LT(PointsOf(tiled.Shown()), PointsOf(whole) / 30);
  EXPECT_GT(PointsOf(tiled.Shown()), 100);
  K7RectangularProjection plane;
  K7MapView world(&plane, 800, 500);
  ASSERT_EQ(world.LookAt(0, 0, 10000), 0);
  ASSERT_TRUE(tiled.Show(world));
  EXPECT_LT(PointsOf(tiled.Shown()), PointsOf(whole) / 3);
  EXPECT_GT(tiled.Shown().Count(), whole.Count() * 9 / 10);
}

}  // namespace
