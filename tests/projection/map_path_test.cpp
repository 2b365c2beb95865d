// Paths against picking: a pixel is enclosed exactly when the position under it lies in the area, and every
// point of a line lies on it, in each projection, about centres at the seam, the poles and between.
#include <k7/projection.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "projection/path_recorder.h"

namespace {

constexpr int WIDTH = 241;
constexpr int HEIGHT = 160;

struct Case {
  K7ProjType type;
  double lat, lon;
  double range;
  double pitch = -90;  // of the general perspective
};

using Ring = std::vector<K7LatLon>;
constexpr int BOX_SIZE = 9;

class DrawnMap : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    const Case& c = GetParam();
    projection.reset(K7MapView::CreateProjection(c.type, c.lat, c.lon, c.range, nullptr));
    if (c.pitch != -90) {
      const double params[] = {3e6, 30, 10, c.pitch};  // altitude, heading, bank, pitch
      for (int i = 0; i < 4; ++i) projection->ParamValue(i, params[i]);
    }
    view = std::make_unique<K7MapView>(projection.get(), WIDTH, HEIGHT);
    ASSERT_EQ(view->LookAt(c.lat, c.lon, c.range), 0);
  }

  // Whether the pixel's corners and middle agree on lying in an area, and how.
  template <class Inside>
  bool Clear(int x, int y, Inside inside, bool& in) {
    int hits = 0;
    for (const auto& [dx, dy] : {std::pair{0.5, 0.5}, {-0.6, -0.6}, {1.6, -0.6}, {-0.6, 1.6}, {1.6, 1.6}}) {
      double lat, lon;
      hits += view->FromDevice(x + dx, y + dy, lat, lon) && inside(lat, lon);
    }
    in = hits == 5;
    return hits == 0 || hits == 5;
  }

  template <class Inside>
  int WrongPixels(Inside inside) {
    int wrong = 0;
    for (int y = 0; y < HEIGHT; y += 5)
      for (int x = 0; x < WIDTH; x += 5) {
        bool in = false;
        if (Clear(x, y, inside, in)) wrong += recorder.Encloses(x + 0.5, y + 0.5) != in;
      }
    return wrong;
  }

  // Rings of boxes, one behind the other.
  template <class Inside>
  void ExpectFilled(const Ring& points, Inside inside) {
    static const int SIZES[] = {BOX_SIZE, BOX_SIZE};
    recorder.Clear();
    const int rings = static_cast<int>(points.size()) / BOX_SIZE;
    const int count = K7MapPath(*view).Area(&recorder, points.data(), SIZES, rings);
    EXPECT_EQ(count, recorder.PointCount());
    EXPECT_LE(recorder.Beyond(WIDTH, HEIGHT), 64.001);
    for (const PathRecorder::Piece& piece : recorder.pieces) EXPECT_TRUE(piece.closed);
    // One on each side may lie in a sliver thinner than itself.
    EXPECT_LE(WrongPixels(inside), 2);
  }

  // At a limb, where two pixels may be a continent.
  bool Squeezed(double x, double y, const K7LatLon& place) {
    for (const auto& [dx, dy] : {std::pair{-2.0, 0.0}, {2.0, 0.0}, {0.0, -2.0}, {0.0, 2.0}}) {
      double lat, lon;
      if (!view->FromDevice(x + dx, y + dy, lat, lon)) return true;
      if (K7LatLon(lat, lon).Distance(place) > 500) return true;
    }
    return false;
  }

  // Places from 0 to 1 along a line that are seen and not drawn.
  template <class Place>
  int Missed(Place placeAt, double tolerance) {
    int missed = 0;
    for (int i = 0; i <= 200; ++i) {
      const K7LatLon place = placeAt(i / 200.0);
      double x, y;
      if (!view->ToDevice(place.Lat(), place.Lon(), x, y) || Squeezed(x, y, place)) continue;
      missed += !(recorder.Distance(x, y) < tolerance);
    }
    return missed;
  }

  PathRecorder recorder;
  std::unique_ptr<K7Projection> projection;
  std::unique_ptr<K7MapView> view;
};

// A box of latitude and longitude as a clockwise ring. An edge of half the world's width or more would be
// taken for one across 180.
Ring Box(double south, double north, double west, double east) {
  static const int PIECES = 3;
  Ring ring;
  for (int i = 0; i <= PIECES; ++i) ring.emplace_back(north, west + (east - west) * i / PIECES);
  for (int i = PIECES; i >= 0; --i) ring.emplace_back(south, west + (east - west) * i / PIECES);
  ring.push_back(ring.front());
  return ring;
}

TEST_P(DrawnMap, AreasFillWhatPickingFindsInThem) {
  const auto box = [](double south, double north, double west, double east) {
    return [=](double lat, double lon) { return lat >= south && lat <= north && lon >= west && lon <= east; };
  };
  // One in the middle, up to the seam on both sides, as data sets are cut there, and around a pole, closed
  // along it.
  for (const auto& [south, north, west, east] :
       {std::array{20, 70, -170, -60}, {-50, 65, 120, 180}, {-50, 65, -180, -150}, {-90, -62, -180, 180}})
    ExpectFilled(Box(south, north, west, east), box(south, north, west, east));
  // With a hole, which may hold all that shows; and with one ring or both the other way around.
  Ring rings = Box(-80, 89, -179, 179);
  const Ring hole = Box(-40, 88, -175, 175);
  rings.insert(rings.end(), hole.begin(), hole.end());
  const auto frame = [&](double lat, double lon) {
    return box(-80, 89, -179, 179)(lat, lon) && !box(-40, 88, -175, 175)(lat, lon);
  };
  for (const int turned : {BOX_SIZE, 0, BOX_SIZE}) {
    std::reverse(rings.begin() + turned, rings.begin() + turned + BOX_SIZE);
    ExpectFilled(rings, frame);
  }
}

// Airspaces run along whole degrees, and charts are centred on their corners; some run across the seam uncut.
// Routes are long, also where a chart shows a hundredth of them.
TEST_P(DrawnMap, AnEdgeThroughTheCentreIsAnEdge) {
  const double south = std::min(GetParam().lat, 78.0);
  const double lon = std::remainder(GetParam().lon, 360);
  ExpectFilled(Box(south, south + 12, lon - 10, lon + 10), [&](double pLat, double pLon) {
    return pLat > south && pLat < south + 12 && std::fabs(std::remainder(pLon - lon, 360)) < 10;
  });
  double x, y;
  if (std::fabs(view->CenterLat()) > 89.5 || !view->ToDevice(view->CenterLat(), lon, x, y)) return;
  const K7LatLon centre(view->CenterLat(), lon);
  K7LatLon route[2];
  route[0].EndPoint(centre, 250, 2000);
  route[1].EndPoint(centre, 70, 1300);
  recorder.Clear();
  K7MapPath(*view).GreatCircle(&recorder, route, 2);
  EXPECT_LT(recorder.Distance(x, y), 0.5);
}

// A line that leaves the window and comes back, again and again: every place of it that is seen is drawn.
TEST_P(DrawnMap, ZigzagsAreDrawnWhole) {
  const double lat = std::clamp(view->CenterLat(), -70.0, 70.0), lon = std::remainder(view->CenterLon(), 360);
  const double size = std::clamp(view->NMPerPixel() * WIDTH / 60, 0.1, 20.0);
  Ring line;
  for (int i = 0; i < 12; ++i) line.emplace_back(lat + (i % 2 ? size : -size), lon + size * (i - 6) / 4);
  line.push_back(line.front());
  recorder.Clear();
  const int count = K7MapPath(*view).Line(&recorder, line.data(), 13);
  EXPECT_EQ(count, recorder.PointCount());
  for (size_t i = 1; i < line.size(); ++i) {
    const K7LatLon& a = line[i - 1];
    const K7LatLon& b = line[i];
    const auto at = [&](double t) {
      return K7LatLon(a.Lat() + t * (b.Lat() - a.Lat()), a.Lon() + t * (b.Lon() - a.Lon()));
    };
    EXPECT_EQ(Missed(at, 0.7), 0) << i;
  }
}

TEST_P(DrawnMap, LinesStayOnTheirParallel) {
  for (double lat = -75; lat <= 75; lat += 15) {
    recorder.Clear();
    const K7LatLon line[] = {{lat, -180}, {lat, 0}, {lat, 180}};
    K7MapPath(*view).Line(&recorder, line, 3);
    int bad = 0;
    const auto check = [&](double x, double y) {
      double pLat, pLon, dx, dy;
      if (!view->FromDevice(x, y, pLat, pLon) || Squeezed(x, y, {pLat, pLon})) return;
      bad += view->ToDevice(lat, pLon, dx, dy) && std::hypot(dx - x, dy - y) > 2;
    };
    for (const PathRecorder::Piece& piece : recorder.pieces)
      for (size_t i = 0; i < piece.points.size(); ++i) {
        const PathRecorder::Point& p = piece.points[i];
        check(p.x, p.y);
        // Half way along a segment the line is still there.
        if (i > 0) check((p.x + piece.points[i - 1].x) / 2, (p.y + piece.points[i - 1].y) / 2);
      }
    EXPECT_EQ(bad, 0) << "parallel " << lat;
  }
  EXPECT_EQ(recorder.strayLines, 0);
}

// Every place of a route that is seen lies on its line, and the line nowhere else.
TEST_P(DrawnMap, RoutesRunAlongGreatCircles) {
  const K7LatLon from(GetParam().lat > 89 ? 80 : GetParam().lat, std::remainder(GetParam().lon, 360) - 20);
  for (const K7LatLon& to : {K7LatLon(35, 140), K7LatLon(-34, 151), K7LatLon(64, -21), K7LatLon(-10, 20)}) {
    const K7LatLon route[] = {from, to};
    recorder.Clear();
    K7MapPath(*view).GreatCircle(&recorder, route, 2);
    const double course = from.InitCourse(to), length = from.Distance(to);
    const auto at = [&](double t) {
      K7LatLon place;
      place.EndPoint(from, course, length * t);
      return place;
    };
    EXPECT_EQ(Missed(at, 1), 0) << to.Lat() << " " << to.Lon();
    // No point of it lies beyond its ends.
    for (const PathRecorder::Piece& piece : recorder.pieces)
      for (const PathRecorder::Point& p : piece.points) {
        double lat, lon;
        if (!view->FromDevice(p.x, p.y, lat, lon) || Squeezed(p.x, p.y, {lat, lon})) continue;
        const double way = from.Distance({lat, lon}) + K7LatLon(lat, lon).Distance(to);
        EXPECT_LT(way, length * 1.02 + 20 * view->NMPerPixel()) << to.Lat() << " " << to.Lon();
      }
  }
}

TEST_P(DrawnMap, TheWholeMapIsWherePickingFindsOne) {
  K7MapPath(*view).WholeMap(&recorder);
  EXPECT_LE(recorder.Beyond(WIDTH, HEIGHT), 64.001);
  const double south = GetParam().type == K7_PROJ_MERCATOR ? -89.9 : -90.1;
  const auto drawn = [&](double lat, double) {
    if (GetParam().type != K7_PROJ_LAMBERT) return lat > south && lat < -south;
    return GetParam().lat < 0 ? lat < 79.9 : lat > -79.9;
  };
  // Stereographic and gnomonic maps end where a picture makes no more sense.
  EXPECT_LE(WrongPixels(drawn), GetParam().type == K7_PROJ_STEREOGRAPHIC ? 60 : 2);
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const auto& [lat, lon] :
         {std::pair{48.5, -123.5}, {0.0, 180.0}, {-12.0, -537.0}, {89.9, 0.0}, {-90.0, 40.0}})
      for (const double range : {0.0, 1500.0, 5.0}) {
        const bool mercatorPole = type == K7_PROJ_MERCATOR && std::fabs(lat) > 85;
        if (!mercatorPole) cases.push_back({static_cast<K7ProjType>(type), lat, lon, range});
      }
  for (const double pitch : {-60.0, -25.0}) cases.push_back({K7_PROJ_PERSPECTIVE, 48.5, -123.5, 0, pitch});
  return cases;
}

INSTANTIATE_TEST_SUITE_P(AllProjections, DrawnMap, testing::ValuesIn(Cases()));

}  // namespace
