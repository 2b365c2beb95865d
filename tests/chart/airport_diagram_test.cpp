// Airport diagrams: the sample's aerodrome sets of KSEA, and runways alone.

#include "chart/chart_fixture.h"
#include "chart/memory_store.h"
#include "ink/cairo_grfx.h"
#include "layers/aerodrome_layer.h"
#include "layers/runway_layer.h"
#include "support/temp_dir.h"

#include <k7/navdata/airport.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

constexpr char SETS[] = K7_SAMPLE_DATA "/aerodrome";
constexpr double RADIAN = 3.14159265358979323846 / 180;

struct End {
  const char* ident;
  double lat, lon;
};
// As data/sample/navdata/apt.dat has them.
constexpr End KSEA[] = {{"16L", 47.46380, -122.30775}, {"34R", 47.43118, -122.30804},
                        {"16C", 47.46381, -122.31099}, {"34C", 47.43797, -122.31121},
                        {"16R", 47.46384, -122.31786}, {"34L", 47.44054, -122.31806}};
constexpr End KORS[] = {{"16", 48.71228, -122.91058}, {"34", 48.70435, -122.91063}};

class AirportDiagramTest : public testing::Test {
 protected:
  AirportDiagramTest()
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, SIDE, SIDE)), cairo(cairo_create(surface)) {}
  ~AirportDiagramTest() override {
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }

  template <size_t N>
  std::vector<RunwayStrip> StripsOf(const End (&ends)[N], int feet) {
    const K7NavKey airport(99, K7NAV_AIRPORT);
    for (const End& end : ends) {
      K7Runway& runway = store.AddFix<K7Runway>(K7NAV_RUNWAY, end.ident, end.lat, end.lon);
      runway.airport = airport;
      runway.length = static_cast<int16_t>(feet);
      runway.width = 100;
      runway.trueBrg = end.ident[0] == '1' ? 1800 : 0;
      runway.landingThresholdElev = K7NavFix::LOWEST_ELEV - 1;
    }
    return RunwaysOf(store, airport);
  }
  void Show(std::vector<Layer*> layers, double lat, double lon, double range) {
    chart = std::make_unique<Chart>(std::move(layers), theme, progress);
    ASSERT_EQ(chart->Show({K7_PROJ_STEREOGRAPHIC, {lat, lon}, range, {}}, SIDE, SIDE, 1), "");
  }
  // On a plane: over an airport the earth is one to a thousandth of a pixel.
  void Place(const End& end, double& x, double& y) const {
    const double pixelsPerMinute = 1 / chart->View()->NMPerPixel(), lat = chart->View()->CenterLat();
    x = SIDE / 2.0 + (end.lon - chart->View()->CenterLon()) * 60 * std::cos(lat * RADIAN) * pixelsPerMinute;
    y = SIDE / 2.0 - (end.lat - lat) * 60 * pixelsPerMinute;
  }
  bool IsRunway(double x, double y) {
    cairo_surface_flush(surface);
    const unsigned char* const row = cairo_image_surface_get_data(surface) +
                                     std::lround(std::floor(y)) * cairo_image_surface_get_stride(surface);
    const unsigned char* const bgr = row + std::lround(std::floor(x)) * 4;
    const Color& dark = theme[ThemeItem::Runways].fill;
    return bgr[2] == dark.red && bgr[1] == dark.green && bgr[0] == dark.blue;
  }
  // All runways lie north and south.
  template <size_t N>
  void ExpectEnds(const End (&ends)[N]) {
    Clear();
    CairoGrfx g(cairo, SIDE, SIDE);
    ASSERT_EQ(chart->Render(&g), 0);
    for (const End& end : ends) {
      double x, y;
      Place(end, x, y);
      const double inward = end.ident[0] == '1' ? 1 : -1;
      // Where a threshold is displaced, the runway begins behind it.
      const bool isDisplaced = std::string(end.ident) == "34L";
      EXPECT_EQ(IsRunway(x, y + inward * 2.5), !isDisplaced) << end.ident;
      EXPECT_TRUE(IsRunway(x, y + inward * 40)) << end.ident;
      EXPECT_FALSE(IsRunway(x, y - inward * 2.5)) << end.ident;
    }
  }
  void Clear() {
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
  }
  std::vector<Label> Labels() {
    LabelPlan plan(cairo, {0, 0, SIDE, SIDE});
    chart->OfferLabels(14, plan);
    return plan.Labels();
  }

  static constexpr int SIDE = 1200;
  NoProgress progress;
  Theme theme;
  MemoryStore store;
  AerodromeLayer aerodrome;
  std::unique_ptr<Chart> chart;
  cairo_surface_t* surface;
  cairo_t* cairo;
};

TEST_F(AirportDiagramTest, RunwaysEndWhereTheDataHaveThem) {
  RunwayLayer strip(StripsOf(KORS, 2893), RunwayLayer::Areas::Paved);
  Show({&strip}, 48.7083, -122.9106, 0.5);
  ExpectEnds(KORS);
  ASSERT_EQ(aerodrome.Load(SETS, "ksea"), "");
  Show({&aerodrome}, 47.4475, -122.313, 1.2);
  ExpectEnds(KSEA);
}

// Whichever way a runway runs, its measures stand clear of it and close by.
TEST_F(AirportDiagramTest, MeasuresStandBesideTheRunway) {
  constexpr End LEVEL[] = {{"09", 48.7, -122.92}, {"27", 48.7, -122.90}};
  constexpr End ASLANT[] = {{"05", 48.695, -122.92}, {"23", 48.705, -122.90}};
  for (const auto& ends : {LEVEL, ASLANT}) {
    const std::string idents = ends[0].ident;
    RunwayLayer strip(idents == "09" ? StripsOf(LEVEL, 4800) : StripsOf(ASLANT, 5600),
                      RunwayLayer::Areas::Paved);
    Show({&strip}, 48.7, -122.91, 0.6);
    double x[2], y[2];
    for (const int i : {0, 1}) Place(ends[i], x[i], y[i]);
    const double length = std::hypot(x[1] - x[0], y[1] - y[0]);
    const double halfWidth = 50 / 6076.12 / chart->View()->NMPerPixel();
    int measures = 0;
    for (const Label& label : Labels()) {
      if (label.text.find(" x 100 ft") == std::string::npos) continue;
      ++measures;
      const double off =
          std::fabs((x[1] - x[0]) * (label.y - y[0]) - (y[1] - y[0]) * (label.x - x[0])) / length;
      EXPECT_GT(off, halfWidth) << idents;
      EXPECT_LT(off, halfWidth + 25) << idents;
    }
    EXPECT_EQ(measures, 1) << idents;
    store = MemoryStore();
  }
}

TEST_F(AirportDiagramTest, LettersWhatTheSetsKnowAndNothingElse) {
  std::vector<RunwayStrip> strips = StripsOf(KSEA, 9000);
  ASSERT_EQ(strips.size(), 3u);
  ASSERT_EQ(aerodrome.Load(SETS, "KSEA"), "");
  aerodrome.Complete(strips);
  RunwayLayer runways(strips, RunwayLayer::Areas::None);
  Show({&aerodrome, &runways}, 47.4475, -122.313, 1.2);
  int elevations = 0;
  std::vector<std::string> written;
  for (const Label& label : Labels()) {
    written.push_back(label.text);
    elevations += label.text.starts_with("ELEV ");
    EXPECT_EQ(label.text.find_first_of("$;"), std::string::npos) << label.text;
    EXPECT_EQ(label.text.find("-32"), std::string::npos) << label.text;
    // Painted for who lands: upside down in the north.
    for (const End& end : KSEA)
      if (label.text == end.ident) {
        EXPECT_NEAR(std::cos(label.turn), end.ident[0] == '1' ? -1 : 1, 1e-3) << end.ident;
      }
  }
  EXPECT_EQ(elevations, 5);  // one is unknown
  for (const char* const text :
       {"16L", "34R", "16C", "34C", "16R", "34L", "ELEV 433", "displaced 394 ft", "HS 1", "Ramp 121.225",
        "Cargo Ramp", "S6, S6L", "K", "Laka Hangar", "Deice 1"})
    EXPECT_EQ(std::count(written.begin(), written.end(), text), 1) << text;
  // Metres of the set: 45.72 across is 150 ft.
  EXPECT_TRUE(std::any_of(written.begin(), written.end(),
                          [](const std::string& text) { return text.ends_with(" x 150 ft"); }));
  // Half as large, no end goes without its name.
  Show({&aerodrome, &runways}, 47.4475, -122.313, 2.6);
  const std::vector<Label> small = Labels();
  for (const End& end : KSEA)
    EXPECT_TRUE(std::any_of(small.begin(), small.end(), [&](const Label& label) {
      return label.text == end.ident;
    })) << end.ident;
}

TEST_F(AirportDiagramTest, PicksAndExplainsWhatIsThere) {
  ASSERT_EQ(aerodrome.Load(SETS, "KSEA"), "");
  Show({&aerodrome}, 47.4475, -122.313, 1.2);
  double x, y;
  Place({"", 47.4600, -122.31787}, x, y);
  EXPECT_EQ(TextsUnder(*chart, x, y), std::vector<std::string>{"Runway 16R.34L (Open)"});
  std::vector<std::string> kinds;
  for (const LegendEntry& entry : chart->Legend()) kinds.push_back(entry.text);
  std::sort(kinds.begin(), kinds.end());
  EXPECT_EQ(kinds, (std::vector<std::string>{"apron", "building", "closed", "deicing area",
                                             "displaced threshold area", "exit line", "frequency area",
                                             "holding position", "hotspot", "runway", "stand", "taxiway"}));
}

TEST_F(AirportDiagramTest, SetsAreAnAirportsByTheirNameAndAttribute) {
  ASSERT_EQ(aerodrome.Load(SETS, "CYVR"), "");
  EXPECT_TRUE(aerodrome.IsEmpty());
  const TempDir dir;
  for (const char* const ending : {".shp", ".shx", ".dbf"}) {
    std::filesystem::copy(std::string(SETS) + "/ksea_runway" + ending,
                          dir / ("Runway" + std::string(ending)));
    std::filesystem::copy(std::string(SETS) + "/ksea_apron" + ending,
                          dir / ("cyvr_apron" + std::string(ending)));
  }
  ASSERT_EQ(aerodrome.Load(dir.Path(), "KSEA"), "");
  EXPECT_TRUE(aerodrome.Has(K7_SHAPE_RUNWAY));
  EXPECT_FALSE(aerodrome.Has(K7_SHAPE_APRON));
  ASSERT_EQ(aerodrome.Load(dir.Path(), "CYVR"), "");
  EXPECT_TRUE(aerodrome.IsEmpty());  // its records say whose they are
  std::ofstream(dir / "Runway.dbf") << "no table";
  EXPECT_NE(aerodrome.Load(dir.Path(), "KSEA").find("Runway.shp'"), std::string::npos);
  EXPECT_NE(aerodrome.Load(dir / "nowhere", "KSEA").find("nowhere'"), std::string::npos);
}

}  // namespace
