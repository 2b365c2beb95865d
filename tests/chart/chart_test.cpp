// The chart and what stands around it: the same in any context, labels that are true, and none over another.

#include "layers/chart.h"

#include "ink/cairo_grfx.h"
#include "layers/earth_layer.h"
#include "layers/graticule_layer.h"
#include "layers/shape_layer.h"
#include "sheet/chart_sheet.h"
#include "sheet/scale_bar.h"

#include "projection/path_recorder.h"
#include "support/temp_dir.h"

#include <k7/foundation/error_string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>

namespace {

class Silent : public Progress {
 public:
  void Step(const std::string&) override {}
  void Within(double) override {}
};

// A context that knows which colour each place has, by the even-odd rule of each fill.
class FillRecorder : public PathRecorder {
 public:
  explicit FillRecorder(double x, double y) : m_x(x), m_y(y) {}
  void FillColor(double red, double, double blue, double) override { m_ink = red - blue; }
  void Fill() override {
    if (Encloses(m_x, m_y)) color = m_ink;
    Clear();
    ++fills;
  }
  void Stroke() override {
    Clear();
    ++strokes;
  }
  double color = NAN;
  int fills = 0, strokes = 0;

 private:
  double m_x, m_y, m_ink = NAN;
};

class ChartTest : public testing::Test {
 protected:
  ChartTest() : land(ThemeItem::Land, K7_SAMPLE_DATA "/ne_110m_land.shp") {
    EXPECT_EQ(land.Load(progress), "");
  }

  Silent progress;
  Theme theme;
  EarthLayer earth;
  ShapeLayer land;
  GraticuleLayer graticule;
  Chart chart{{&earth, &land, &graticule}, theme, progress};
  static constexpr int WIDTH = 300, HEIGHT = 200;
};

TEST_F(ChartTest, AnswersBeforeBetweenAndAfterDrawings) {
  FillRecorder recorder(0, 0);
  EXPECT_EQ(chart.GetProjection(), nullptr);
  EXPECT_TRUE(chart.GetExtent().IsEmpty());
  EXPECT_EQ(chart.Render(&recorder), K7_ERR_NOT_INITIALIZED);
  EXPECT_TRUE(chart.Pick(1, 1).empty());
  ASSERT_EQ(chart.Show({K7_PROJ_MERCATOR, {10, 178}, 600, {}}, WIDTH, HEIGHT, 1), "");
  EXPECT_EQ(chart.Render(nullptr), K7_ERR_BAD_ARGUMENT);
  ASSERT_EQ(chart.Render(&recorder), 0);
  const int fills = recorder.fills;
  EXPECT_NEAR(chart.GetExtent().North(), 20, 0.3);
  EXPECT_NEAR(chart.GetExtent().East(), -166.8, 0.3);
  ASSERT_EQ(chart.Render(&recorder), 0);
  EXPECT_EQ(recorder.fills, 2 * fills);
  EXPECT_NE(chart.Show({K7_PROJ_MERCATOR, {90, 0}, 600, {}}, WIDTH, HEIGHT, 1), "");
  EXPECT_TRUE(chart.GetExtent().IsEmpty());
  EXPECT_EQ(chart.Render(&recorder), K7_ERR_NOT_INITIALIZED);
}

TEST_F(ChartTest, LayersCanBeHiddenAndTheThemeKept) {
  ASSERT_EQ(chart.Show({}, WIDTH, HEIGHT, 1), "");
  FillRecorder recorder(10, 10);
  chart.ResetLayers(0);
  EXPECT_EQ(chart.Render(&recorder), 0);
  EXPECT_EQ(recorder.fills + recorder.strokes, 0);
  chart.ResetLayers(1);
  EXPECT_EQ(chart.Render(&recorder), 0);
  EXPECT_GT(recorder.fills, 2);

  const TempDir folder;
  const std::string path = folder.Path() + "/mine.xml";
  theme[ThemeItem::Land].minNMPerPixel = 1e6;
  chart.WriteUserThemePref(path.c_str());
  Theme read;
  EXPECT_EQ(read.Read(path), "");
  EXPECT_TRUE(read == theme);
  // The theme says at which scales a layer shows.
  FillRecorder without(10, 10);
  EXPECT_EQ(chart.Render(&without), 0);
  EXPECT_EQ(without.fills, 2);
}

// Land is painted warm and sea cold: Cairo's pixels, a recording context and picking say the same.
TEST_F(ChartTest, PictureRecordingAndPickingAgree) {
  for (const K7ProjType type : {K7_PROJ_LAMBERT, K7_PROJ_ORTHOGRAPHIC, K7_PROJ_MILLER, K7_PROJ_GNOMONIC}) {
    ASSERT_EQ(chart.Show({type, {30, 30}, type == K7_PROJ_MILLER ? 0.0 : 3000.0, {}}, WIDTH, HEIGHT, 0.01),
              "");
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, WIDTH, HEIGHT);
    cairo_t* const cairo = cairo_create(surface);
    CairoGrfx grfx(cairo, WIDTH, HEIGHT);
    chart.ResetLayers(1);
    ASSERT_EQ(chart.Render(&grfx), 0);
    cairo_surface_flush(surface);
    int pictures = 0, picks = 0, lands = 0;
    for (int y = 7; y < HEIGHT; y += 16)
      for (int x = 7; x < WIDTH; x += 16) {
        const unsigned char* const pixel =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface) + x * 4;
        FillRecorder recorder(x + 0.5, y + 0.5);
        chart.Render(&recorder);
        const bool isLand = recorder.color > 0;
        const bool isMap = recorder.color < 0.05 && recorder.color > -0.05 ? false : true;
        const std::vector<std::string> found = chart.Pick(x + 0.5, y + 0.5);
        pictures += (pixel[2] > pixel[0]) == isLand;
        picks += !isMap || !found.empty() == isLand;
        lands += isLand;
      }
    const int places = ((WIDTH - 8) / 16 + 1) * ((HEIGHT - 8) / 16 + 1);
    EXPECT_GE(pictures, places - 6) << type;  // a coast may run through a pixel
    EXPECT_GE(picks, places - 1) << type;
    EXPECT_GT(lands, places / 10) << type;
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }
}

// "W123°30'20\"" in degrees.
double DegreesOf(const std::string& text) {
  double parts[3] = {};
  size_t at = std::strchr("NSEW", text[0]) ? 1 : 0;
  for (double& part : parts) {
    size_t used = 0;
    if (at < text.size()) part = std::stod(text.substr(at), &used);
    at += used;
    while (at < text.size() && !std::isdigit(static_cast<unsigned char>(text[at]))) ++at;
  }
  const double size = parts[0] + parts[1] / 60 + parts[2] / 3600;
  return text[0] == 'S' || text[0] == 'W' ? -size : size;
}

class LabelTest : public ChartTest {
 protected:
  void Plan(const ChartRequest& request, int width, int height, double size) {
    ASSERT_EQ(chart.Show(request, width, height, 1), "");
    surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 8, 8);
    cairo = cairo_create(surface);
    plan = std::make_unique<LabelPlan>(cairo, PixelBox{-60, -40, width + 60.0, height + 60.0});
    chart.OfferLabels(size, *plan);
  }
  void TearDown() override {
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }

  // How far, in pixels, the line that a label names is from where the label stands.
  double Off(const Label& label) {
    const K7MapView& view = *chart.View();
    const PixelBox box = plan->BoxOf(label);
    const double x = std::clamp((box.left + box.right) / 2, 0.0, view.Width() * 1.0);
    const double y = std::clamp((box.top + box.bottom) / 2, 0.0, view.Height() * 1.0);
    const double value = DegreesOf(label.text);
    const bool outside =
        box.bottom < 0 || box.top > view.Height() || box.right < 0 || box.left > view.Width();
    // On the map a label stands beside its line.
    const double reach = outside ? 2 : std::hypot(box.right - box.left, box.bottom - box.top);
    double nearest = INFINITY;
    for (double dy = -reach; dy <= reach; dy += 0.5)
      for (double dx = -reach; dx <= reach; dx += 0.5) {
        double lat, lon, rightLat, rightLon, downLat, downLon;
        if (!view.FromDevice(x + dx, y + dy, lat, lon) ||
            !view.FromDevice(x + dx + 1, y + dy, rightLat, rightLon) ||
            !view.FromDevice(x + dx, y + dy + 1, downLat, downLon))
          continue;
        const bool parallel = std::strchr("NS", label.text[0]) != nullptr;
        const bool either = !std::strchr("NSEW", label.text[0]);
        const auto lonsApart = [](double a, double b) { return std::remainder(a - b, 360); };
        const double latOff = std::fabs(lat - value) / std::hypot(rightLat - lat, downLat - lat);
        const double lonOff =
            std::fabs(lonsApart(lon, value)) / std::hypot(lonsApart(rightLon, lon), lonsApart(downLon, lon));
        nearest = std::min(nearest, either ? std::min(latOff, lonOff) : parallel ? latOff : lonOff);
      }
    return nearest;
  }

  cairo_surface_t* surface = nullptr;
  cairo_t* cairo = nullptr;
  std::unique_ptr<LabelPlan> plan;
};

TEST_F(LabelTest, LabelsStandAtTheirLinesOnTheSheetAndClearOfEachOther) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const double range : {0.0, 2000.0, 250.0, 3.0, 1.0})
      for (const auto& [lat, lon] : {std::pair{48.5, -123.5}, {2.0, 179.0}, {-74.0, 20.0}, {0.0, 0.0}}) {
        SCOPED_TRACE(testing::Message()
                     << "type " << type << " range " << range << " at " << lat << " " << lon);
        TearDown();
        Plan({static_cast<K7ProjType>(type), {lat, lon}, range, {}}, 500, 330, 10);
        const std::vector<Label>& labels = plan->Labels();
        EXPECT_GE(labels.size(), 6u);
        bool parallels = false, meridians = false;
        for (size_t i = 0; i < labels.size(); ++i) {
          EXPECT_LT(Off(labels[i]), 2) << labels[i].text;
          EXPECT_TRUE(plan->Sheet().Holds(plan->BoxOf(labels[i]))) << labels[i].text;
          parallels = parallels || std::strchr("NS", labels[i].text[0]);
          meridians = meridians || std::strchr("EW", labels[i].text[0]);
          for (size_t k = 0; k < i; ++k)
            EXPECT_FALSE(plan->BoxOf(labels[i]).Meets(plan->BoxOf(labels[k])))
                << labels[i].text << labels[k].text;
        }
        EXPECT_TRUE(parallels && meridians);
      }
}

// All lines have their labels beside the frame, those in seconds too.
TEST_F(LabelTest, LabelsInSecondsFitBesideTheChart) {
  for (const double lat : {0.0, 48.5, -77.5}) {
    TearDown();
    Plan({K7_PROJ_LAMBERT, {lat, -100.5}, 1, {}}, 500, 330, 10);
    int left = 0, right = 0;
    for (const Label& label : plan->Labels()) {
      EXPECT_TRUE(label.x < 0 || label.x > 500 || label.y < 0 || label.y > 330) << label.text;
      left += label.x < 0;
      right += label.x > 500;
    }
    EXPECT_GE(left, 4) << lat;
    EXPECT_EQ(right, left) << lat;
  }
}

// Turned, banked, level with the horizon: lines of both kinds, each labelled at most once a side, and few
// enough to be read.
TEST_F(LabelTest, TiltedViewsHaveReadableLines) {
  const struct {
    double altitude, pitch, bank, heading;
  } EYES[] = {{3000, -60, 0, 0}, {3000, -25, 0, 0},   {3e4, -25, 30, 45}, {3e5, -25, 60, 90},
              {3e5, 0, 10, 0},   {3e6, -45, 25, 300}, {3e6, -30, 0, 180}, {1e7, -60, 0, 60},
              {1e7, -50, 90, 0}, {3000, 0, 0, 0}};
  for (const auto& eye : EYES)
    for (const auto& [lat, lon] : {std::pair{48.5, -123.5}, {-17.0, 180.0}}) {
      SCOPED_TRACE(testing::Message() << eye.altitude << " ft, pitch " << eye.pitch << " at " << lat);
      TearDown();
      Plan({K7_PROJ_PERSPECTIVE,
            {lat, lon},
            0,
            {{"Altitude (ft)", eye.altitude},
             {"Pitch", eye.pitch},
             {"Bank", eye.bank},
             {"Heading", eye.heading}}},
           500, 330, 10);
      std::map<std::string, int> parallels, meridians;
      for (const Label& label : plan->Labels()) {
        EXPECT_LT(Off(label), 2) << label.text;
        ++(std::strchr("NS", label.text[0]) ? parallels : meridians)[label.text];
      }
      EXPECT_GE(parallels.size(), 2u);
      EXPECT_GE(meridians.size(), 2u);
      EXPECT_LE(parallels.size(), 24u);
      EXPECT_LE(meridians.size(), 24u);
    }
}

// The seam of a world chart may lie just beyond a meridian, or be one.
TEST_F(LabelTest, WorldChartsKeepAllTheirMeridians) {
  Plan({K7_PROJ_MILLER, {0, -123.5}, 0, {}}, 1000, 500, 10);
  std::set<std::string> seen;
  for (const Label& label : plan->Labels()) seen.insert(label.text);
  for (const char* const meridian : {"E060°", "E120°", "180°", "W120°", "W060°", "0°"})
    EXPECT_TRUE(seen.count(meridian)) << meridian;
  TearDown();
  Plan({K7_PROJ_LAMBERT, {40, -123.5}, 0, {}}, 1000, 500, 10);
  EXPECT_TRUE(std::any_of(plan->Labels().begin(), plan->Labels().end(),
                          [](const Label& label) { return label.text == "E045°"; }));
  TearDown();
  Plan({K7_PROJ_MILLER, {0, 0}, 0, {}}, 1000, 500, 10);
  EXPECT_EQ(std::count_if(plan->Labels().begin(), plan->Labels().end(),
                          [](const Label& label) { return label.text == "180°"; }),
            2);
}

TEST(Graticule, StepsLeaveFourToEightLines) {
  for (double span = 20 / 3600.0; span < 360; span *= 1.07) {
    const double meridians = span / StepFor(LineKind::Meridian, span).lines;
    EXPECT_GE(meridians, 4) << span;
    EXPECT_LE(meridians, 8.6) << span;
    if (span > 180) continue;
    const double parallels = span / StepFor(LineKind::Parallel, span).lines;
    EXPECT_GE(parallels, 4) << span;
    EXPECT_LE(parallels, 8.6) << span;
  }
}

// At 60 degrees a plate carree map is twice as wide as it should be.
TEST_F(ChartTest, TheScaleBarSaysWhereDirectionsDiffer) {
  ASSERT_EQ(chart.Show({K7_PROJ_RECTANGULAR, {60, 0}, 100, {}}, WIDTH, HEIGHT, 1), "");
  EXPECT_NEAR(DirectionDifference(*chart.View()), 1.12, 0.03);  // 1 / cos 61.7 - 1 at the upper edge
  ASSERT_EQ(chart.Show({K7_PROJ_LAMBERT, {60, 0}, 100, {}}, WIDTH, HEIGHT, 1), "");
  EXPECT_LT(DirectionDifference(*chart.View()), 0.001);
  // 1852 m a pixel of 1/96 inch.
  EXPECT_EQ(Denominator(ScaleDenominator(1)), "7,000,000");
  EXPECT_EQ(Denominator(ScaleDenominator(0.0181)), "130,000");
}

// What is placed before stays clear of the bar, and no bar goes without its length: in windows of any width,
// for lengths of any number of digits.
TEST_F(ChartTest, ScaleBarsCoverNothingAndSayTheirLength) {
  for (const auto& [type, range] : {std::pair{K7_PROJ_RECTANGULAR, 60.0}, {K7_PROJ_STEREOGRAPHIC, 0.0}})
    for (const int width : {50, 100, 150, 400, 1400}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " in " << width);
      ASSERT_EQ(chart.Show({type, {46, 0}, range, {}}, width, 100, 1), "");
      cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1600, 120);
      cairo_t* const cairo = cairo_create(surface);
      LabelPlan plan(cairo, {0, 0, 1600, 120});
      ASSERT_TRUE(plan.Offer({"Of some length", 5, 40, {.size = 11, .bold = true}}));
      const PixelBox title = plan.BoxOf(plan.Labels()[0]);
      DrawScaleBar(cairo, theme, *chart.View(), width, 40, 9, plan);
      cairo_surface_flush(surface);
      int covered = 0, ink = 0;
      for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 1600; ++x) {
          if (!cairo_image_surface_get_data(surface)[y * cairo_image_surface_get_stride(surface) + x])
            continue;
          ++ink;
          covered += title.Meets({x + 0.0, y + 0.0, x + 1.0, y + 1.0});
        }
      EXPECT_EQ(covered, 0);
      const auto lengths = std::count_if(plan.Labels().begin(), plan.Labels().end(), [](const Label& label) {
        return label.text.size() > 3 && label.text.ends_with(" NM");
      });
      EXPECT_EQ(lengths > 0, ink > 0);
      EXPECT_TRUE(ink > 0 || width < 100);
      cairo_destroy(cairo);
      cairo_surface_destroy(surface);
    }
}

}  // namespace
