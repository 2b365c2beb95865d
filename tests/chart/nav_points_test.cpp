// Airports, navaids and fixes: what is shown where there is no room for all, and that nothing is overprinted.

#include "chart/drawing_trace.h"
#include "chart/memory_store.h"
#include "layers/airport_layer.h"
#include "layers/airway_layer.h"
#include "layers/fix_layer.h"
#include "layers/navaid_layer.h"

#include "chart/chart_fixture.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

constexpr double RADIAN = 3.14159265358979323846 / 180;

// Keeps what is stroked, by the blue of its ink.
struct InkRecorder : PathRecorder {
  void LineColor(double, double, double blue, double) override { ink = std::lround(blue * 255); }
  void Fill() override { Clear(); }
  void Stroke() override {
    std::vector<Piece>& to = strokes[ink];
    to.insert(to.end(), pieces.begin(), pieces.end());
    Clear();
  }
  std::map<long, std::vector<Piece>> strokes;
  long ink = 0;
};

class NavPointsTest : public testing::Test {
 protected:
  // Places crowd about the middle, as in the world about its cities.
  void Scatter(int count) {
    std::mt19937 random(5);
    std::normal_distribution<double> away(0, 1.5);
    for (int i = 0; i < count; ++i) {
      const double lat = 48 + away(random), lon = -123 + away(random);
      const std::string ident = "K" + std::to_string(i);
      if (i % 4 == 0) {
        K7VHFNavaid& vor = store.AddFix<K7VHFNavaid>(K7NAV_VOR, ident.c_str(), lat, lon);
        vor.flags = K7VHFNavaid::VOR | (i % 8 ? K7VHFNavaid::DME : K7VHFNavaid::TACAN);
        vor.freq = 11680;
        vor.name = "SOMEWHERE";
      } else if (i % 4 == 1) {
        store.Add<K7AirwaySeg>(K7NAV_LOW_AIRWAY).fromKey =
            store.AddFix<K7Waypoint>(K7NAV_ENROUTE_FIX, ident.c_str(), lat, lon).key;
      } else {
        K7Airport& airport = store.AddFix<K7Airport>(K7NAV_AIRPORT, ident.c_str(), lat, lon);
        airport.longestRunway = static_cast<int16_t>(random() % 140);
        airport.name = "FIELD";
        fields.push_back(&airport);
      }
    }
  }
  bool IsShown(const K7Airport& field) {
    double x = 0, y = 0;
    if (!chart.View()->ToDevice(K7NavData::FixPt2DecDeg(field.lat), K7NavData::FixPt2DecDeg(field.lon), x, y))
      return false;
    const std::vector<std::string> found = TextsUnder(chart, x, y);
    return std::any_of(found.begin(), found.end(), [&](const std::string& text) {
      return text.starts_with(std::string(field.ident) + " (FIELD) airport");
    });
  }
  const std::vector<PathRecorder::Piece>& Drawn(ThemeItem item) {
    recorder = InkRecorder();
    EXPECT_EQ(chart.Render(&recorder), 0);
    return recorder.strokes[theme[item].line.blue];
  }

  NoProgress progress;
  Theme theme;
  MemoryStore store;
  std::vector<const K7Airport*> fields;
  InkRecorder recorder;
  AirportLayer airports{&store};
  NavaidLayer navaids{&store};
  FixLayer fixes{&store};
  AirwayLayer airways{&store};
  Chart chart{{&airways, &fixes, &navaids, &airports}, theme, progress};
  static constexpr int WIDTH = 900, HEIGHT = 700;
};

// The inner points of one box, as another sees them.
bool Covers(const TurnedBox& box, const TurnedBox& other) {
  for (int i = -9; i <= 9; ++i)
    for (int k = -4; k <= 4; ++k) {
      const double along = other.halfLength * i / 9, across = other.halfWidth * k / 4;
      const double dx = other.x + along * other.cos - across * other.sin - box.x;
      const double dy = other.y + along * other.sin + across * other.cos - box.y;
      if (std::fabs(dx * box.cos + dy * box.sin) < box.halfLength &&
          std::fabs(dy * box.cos - dx * box.sin) < box.halfWidth)
        return true;
    }
  return false;
}

// What is shown, navaids apart, has its label beside it: none lies on a symbol or on another.
TEST_F(NavPointsTest, LabelsMeetNeitherSymbolsNorOneAnother) {
  theme[ThemeItem::CompassRoses].maxNMPerPixel = -1;  // rings are no symbols
  Scatter(1500);
  std::mt19937 bits(8);
  std::uniform_real_distribution<> degrees(-1.5, 1.5);
  for (int i = 0; i < 60; ++i) {
    const K7LatLon from(48 + degrees(bits), -123 + degrees(bits));
    store.AddAirway(("V" + std::to_string(i)).c_str(), from, {48 + degrees(bits), -123 + degrees(bits)});
  }
  int turned = 0, unnamed = 0, left = 0;
  for (const double range : {8.0, 25.0, 100.0, 300.0}) {
    ASSERT_EQ(chart.Show({K7_PROJ_LAMBERT, {48, -123}, range, {}}, WIDTH, HEIGHT, 1), "");
    const DrawingTrace trace(WIDTH, HEIGHT);
    LabelPlan plan(trace.Cairo(), {-50, -50, WIDTH + 50.0, HEIGHT + 50.0});
    left +=
        static_cast<int>(std::count_if(fields.begin(), fields.end(), [&](auto* f) { return IsShown(*f); }));
    chart.OfferLabels(12, plan);
    Drawn(ThemeItem::Airports);
    recorder.strokes.erase(theme[ThemeItem::Airways].line.blue);
    EXPECT_GT(plan.Labels().size(), 10u) << range;
    std::set<std::string> written;
    for (const Label& label : plan.Labels()) {
      written.insert(label.text);
      const TurnedBox box = plan.PlaceOf(label);
      const PixelBox bounds = box.Bounds();
      turned += label.turn != 0;
      EXPECT_TRUE((PixelBox{0, 0, WIDTH, HEIGHT}.Holds(bounds)));
      for (const Label& other : plan.Labels()) {
        const TurnedBox there = plan.PlaceOf(other);
        EXPECT_FALSE(&other != &label && bounds.Meets(there.Bounds()) && Covers(box, there))
            << label.text << " and " << other.text;
      }
      for (const auto& [ink, strokes] : recorder.strokes)
        for (const PathRecorder::Piece& piece : strokes)
          for (const auto& [x, y] : piece.points)
            EXPECT_FALSE(Covers(box, PixelBox{x, y, x, y})) << label.text << " at " << range;
    }
    for (const K7Airport* const field : fields) {
      left -= IsShown(*field);
      unnamed += IsShown(*field) && !written.count(field->ident);
    }
  }
  EXPECT_GT(turned, 60);
  EXPECT_EQ(unnamed, 0);
  EXPECT_GT(left, 0);
}

// Whoever is left out has a neighbour with a runway no shorter.
TEST_F(NavPointsTest, TheImportantSurvive) {
  Scatter(1500);
  ASSERT_EQ(chart.Show({K7_PROJ_MERCATOR, {48, -123}, 100, {}}, WIDTH, HEIGHT, 1), "");
  struct Seen {
    double x, y;
    int runway;
    bool drawn;
  };
  std::vector<Seen> seen;
  for (const K7Airport* const field : fields) {
    Seen s{0, 0, field->longestRunway, IsShown(*field)};
    const double lat = K7NavData::FixPt2DecDeg(field->lat), lon = K7NavData::FixPt2DecDeg(field->lon);
    if (s.runway < 25 || !chart.View()->ToDevice(lat, lon, s.x, s.y)) continue;
    seen.push_back(s);
  }
  int left = 0;
  for (const Seen& s : seen) {
    left += !s.drawn;
    EXPECT_TRUE(s.drawn || std::any_of(seen.begin(), seen.end(), [&](const Seen& other) {
                  return other.drawn && other.runway >= s.runway &&
                         std::hypot(other.x - s.x, other.y - s.y) < 40;
                }));
  }
  EXPECT_GT(left, 100);
}

// A step from the station along each radial, on the ground, falls where the rose says, in any projection.
TEST_F(NavPointsTest, RosesLieOnTheGroundTurnedByTheDeclination) {
  const struct {
    K7ProjType type;
    double range;
    ProjectionParams params;
  } views[] = {{K7_PROJ_LAMBERT, 80, {}},
               {K7_PROJ_RECTANGULAR, 80, {}},
               {K7_PROJ_PERSPECTIVE, 0, {{"Pitch", -50}, {"Altitude (ft)", 300000}, {"Heading", 30}}}};
  const K7LatLon at(60.2, -121.5);
  K7VHFNavaid& vor = store.AddFix<K7VHFNavaid>(K7NAV_VOR, "SEA", at.Lat(), at.Lon());
  vor.flags = K7VHFNavaid::VOR;
  vor.declination = 195;
  for (const auto& [type, range, params] : views) {
    ASSERT_EQ(chart.Show({type, {60, -122}, range, params}, WIDTH, HEIGHT, 1), "");
    double x, y, least = INFINITY, most = 0;
    ASSERT_TRUE(chart.View()->ToDevice(at.Lat(), at.Lon(), x, y));
    const std::vector<PathRecorder::Piece>& strokes = Drawn(ThemeItem::CompassRoses);
    const auto ring = std::max_element(strokes.begin(), strokes.end(), [](const auto& a, const auto& b) {
      return a.points.size() < b.points.size();
    });
    ASSERT_NE(ring, strokes.end()) << type;
    const size_t count = ring->points.size();
    for (size_t i = 0; i < count; ++i) {
      K7LatLon step;
      step.EndPoint(at, 19.5 + 360.0 * static_cast<double>(i) / static_cast<double>(count), 0.02);
      double sx, sy;
      chart.View()->ToDevice(step.Lat(), step.Lon(), sx, sy);
      const double rx = ring->points[i].x - x, ry = ring->points[i].y - y;
      EXPECT_NEAR(std::remainder(std::atan2(ry, rx) - std::atan2(sy - y, sx - x), 360 * RADIAN), 0,
                  0.3 * RADIAN)
          << type << " " << i;
      const double share = std::hypot(sx - x, sy - y) / std::hypot(rx, ry);
      least = std::min(least, share);
      most = std::max(most, share);
    }
    EXPECT_LT(most / least, 1.01) << type;
  }
}

// Of parallel and crossing runways each is drawn once, from threshold to threshold.
TEST_F(NavPointsTest, RunwaysAreDrawnTrueToTheGround) {
  K7Airport& field = store.AddFix<K7Airport>(K7NAV_AIRPORT, "KABC", 48, -123);
  field.longestRunway = 100;
  const struct {
    const char* ident;
    double lat, lon, course;
  } ends[] = {{"09L", 48, -123.02, 90}, {"09R", 47.995, -123.02, 90}, {"27L", 47.995, -122.98, 270},
              {"18", 48.01, -123, 180}, {"27R", 48, -122.98, 270},    {"36", 47.99, -123, 0}};
  for (const auto& [ident, lat, lon, course] : ends) {
    K7Runway& runway = store.AddFix<K7Runway>(K7NAV_RUNWAY, ident, lat, lon);
    runway.airport = field.key;
    runway.length = 9000;
    runway.trueBrg = static_cast<int16_t>(course * 10);
  }
  ASSERT_EQ(chart.Show({K7_PROJ_LAMBERT, {48, -123}, 5, {}}, WIDTH, HEIGHT, 1), "");
  const std::vector<PathRecorder::Piece>& edges = Drawn(ThemeItem::Airports);
  EXPECT_EQ(edges.size(), 3u);
  for (const auto& end : ends) {
    double x, y;
    chart.View()->ToDevice(end.lat, end.lon, x, y);
    int found = 0;
    for (const PathRecorder::Piece& edge : edges)
      for (const PathRecorder::Point& p : edge.points) found += std::hypot(p.x - x, p.y - y) < 0.1;
    EXPECT_EQ(found, 1) << end.ident;
  }
}

TEST_F(NavPointsTest, PickSaysWhatIsThere) {
  K7Airport& sea = store.AddFix<K7Airport>(K7NAV_AIRPORT, "KSEA", 47.45, -122.31);
  sea.name = "SEATTLE-TACOMA INTL";
  sea.elev = 433;
  sea.longestRunway = 119;
  K7NDB& ndb = store.AddFix<K7NDB>(K7NAV_ENROUTE_NDB, "BF", 47.6, -122.31);
  ndb.freq = 3625;
  store.AddFix<K7Waypoint>(K7NAV_ENROUTE_FIX, "JAWBN", 47.3, -122.31);
  AirportLayer none(nullptr);
  Chart empty({&none}, theme, progress);
  for (Chart* const c : {&chart, &empty})
    ASSERT_EQ(c->Show({K7_PROJ_LAMBERT, {47.45, -122.31}, 12, {}}, WIDTH, HEIGHT, 1), "");
  using Found = std::vector<std::string>;
  const auto under = [](Chart& c, double lat) {
    double x = 0, y = 0;
    c.View()->ToDevice(lat, -122.31, x, y);
    return TextsUnder(c, x + 2, y);
  };
  EXPECT_EQ(under(chart, 47.45),
            Found{"KSEA (SEATTLE-TACOMA INTL) airport, 433 ft, longest runway 11900 ft"});
  EXPECT_EQ(under(chart, 47.6), Found{"BF NDB, 362.5 kHz"});
  double x = 0, y = 0;
  chart.View()->ToDevice(47.6, -122.31, x, y);
  K7String document;
  ASSERT_EQ(store.ToXML(&ndb, K7XML_DISPLAY, document), 0);
  EXPECT_EQ(chart.Pick(x, y).at(0).records(K7XML_DISPLAY), Found{std::string(document)});
  EXPECT_EQ(under(chart, 47.3), Found{"JAWBN fix"});
  EXPECT_EQ(under(chart, 47.35), Found{});
  EXPECT_EQ(under(empty, 47.45), Found{});
  Found kinds;
  for (const LegendEntry& entry : chart.Legend()) kinds.push_back(entry.text);
  EXPECT_EQ(kinds, (Found{"airport", "NDB", "fix"}));
}

// A picture of 40 x 20 pixels whose right half is transparent, in place of a VOR's symbol.
TEST_F(NavPointsTest, PicturesStandForSymbols) {
  TempDir dir;
  K7Bitmap image;
  ASSERT_EQ(image.Create(40, 20, 32), 0);
  for (int i = 0; i < 800; ++i) image.Colors()[i] = K7Color(9, 8, 7, i % 40 < 20 ? 255 : 0);
  ASSERT_EQ(image.WritePNG((dir / "vor.png").c_str()), 0);
  std::ofstream(dir / "t.xml") << "<Options><VOR Group=\"Symbols\">vor.png</VOR></Options>";
  ASSERT_EQ(theme.Read(dir / "t.xml"), "");
  ASSERT_EQ(theme.Save(dir / "saved.xml"), "");
  Theme saved;
  ASSERT_EQ(saved.Read(dir / "saved.xml"), "");
  EXPECT_EQ(saved, theme);
  EXPECT_NE(saved, Theme());

  struct ImageGrfx : K7GrfxK7 {
    using K7GrfxK7::K7GrfxK7;
    void Image(const uint32_t* p, int w, int h, double l, double t, double r, double b) override {
      EXPECT_EQ(w * 100 + h, 4020);
      EXPECT_EQ(p[0], 0xFF090807);
      boxes.insert(boxes.end(), {l, t, r, b});
    }
    std::vector<double> boxes;
  } g(WIDTH, HEIGHT);
  store.AddFix<K7VHFNavaid>(K7NAV_VOR, "ABC", 48, -123).flags = K7VHFNavaid::VOR;
  ASSERT_EQ(chart.Show({K7_PROJ_LAMBERT, {48, -123}, 60, {}}, WIDTH, HEIGHT, 2), "");
  ASSERT_EQ(chart.Render(&g), 0);
  const double x = WIDTH / 2.0, y = HEIGHT / 2.0;
  ASSERT_EQ(g.boxes.size(), 4u);
  const double expected[] = {x - 40, y - 20, x + 40, y + 20};
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(g.boxes[i], expected[i], 1e-6);
  EXPECT_EQ(chart.Pick(x - 38, y + 18).size(), 1u);
  EXPECT_EQ(chart.Pick(x + 10, y).size(), 0u);

  g.boxes.clear();
  ASSERT_EQ(chart.Legend().size(), 1u);
  chart.Legend()[0].draw(g, 100, 100);
  ASSERT_EQ(g.boxes.size(), 4u);
  EXPECT_NEAR(g.boxes[2] - g.boxes[0], 32, 1e-9);
  EXPECT_NEAR(g.boxes[1] + g.boxes[3], 200, 1e-9);
}

}  // namespace
