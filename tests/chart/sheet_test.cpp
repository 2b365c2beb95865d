// What stands around the chart: bars as long as they say, a margin that tells what is shown, and ink where
// the plan has it.

#include "ink/cairo_grfx.h"
#include "sheet/chart_sheet.h"
#include "sheet/gallery.h"
#include "sheet/scale_bar.h"

#include "chart/chart_fixture.h"
#include "chart/drawing_trace.h"

#include <k7/geodesy/ecef.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace {

using SheetTest = ChartTest;

// Nautical miles a pixel at the centre, measured on the earth from one pixel to the next but one.
double Measured(const K7MapView& view, bool north) {
  const double x = view.Width() / 2.0, y = view.Height() / 2.0;
  double lat1, lon1, lat2, lon2;
  EXPECT_TRUE(view.FromDevice(x - !north, y - north, lat1, lon1));
  EXPECT_TRUE(view.FromDevice(x + !north, y + north, lat2, lon2));
  return K7ECEF(lat1, lon1).Distance(K7ECEF(lat2, lon2)) / 2;
}

struct Rectangle {
  double x, y, width, height;
};

std::vector<Rectangle> Rectangles(const std::vector<std::string>& script) {
  std::vector<Rectangle> found;
  for (const std::string& line : script)
    if (Rectangle r{};
        std::sscanf(line.c_str(), "n %lf %lf %lf %lf rectangle", &r.x, &r.y, &r.width, &r.height) == 4)
      found.push_back(r);
  return found;
}

// Four fields in turn, then their outline; the length beside it is that of the earth under it, a digit and
// zeros, and the longest that the room allows: there is none between it and two and a half times it.
TEST_F(SheetTest, ScaleBarsAreAsLongAsTheySay) {
  const struct {
    K7ProjType type;
    double lat, range;
    int width, bars;
    const char* scale;
  } CASES[] = {
      {K7_PROJ_LAMBERT, 60, 100, 300, 1, "1 : 7,000,000 at the centre"},
      {K7_PROJ_RECTANGULAR, 60, 100, 900, 2, "1 : 7,000,000 N-S at the centre"},
      // A meridian of a plate carree has one scale, a parallel is longer by the secant of its latitude.
      {K7_PROJ_RECTANGULAR, 0, 1200, 900, 1,
       "1 : 84,000,000 at the centre; elsewhere N-S and E-W differ by up to 6 %"},
      {K7_PROJ_RECTANGULAR, 0, 4200, 900, 1,
       "1 : 290,000,000 at the centre; elsewhere N-S and E-W differ up to 3-fold"},
      {K7_PROJ_RECTANGULAR, 46, 60, 150, 2, ""},
      {K7_PROJ_MERCATOR, 46, 3, 30, 0, ""},
  };
  for (const auto& c : CASES) {
    SCOPED_TRACE(testing::Message() << "type " << c.type << " range " << c.range << " in " << c.width);
    ASSERT_EQ(chart.Show({c.type, {c.lat, 0}, c.range, {}}, c.width, HEIGHT, 1), "");
    const double size = 10, right = c.width - 5;
    DrawingTrace trace(c.width, HEIGHT);
    LabelPlan plan(trace.Cairo(), {0, 0, c.width * 1.0, HEIGHT * 1.0});
    ASSERT_TRUE(c.width < 100 || plan.Offer({"A title", 5, 40, {.size = size}}));
    const size_t titles = plan.Labels().size();
    DrawScaleBar(trace.Cairo(), theme, *chart.View(), right, 40, size, plan);
    const std::vector<Rectangle> drawn = Rectangles(trace.Lines());
    ASSERT_EQ(drawn.size(), 5u * static_cast<size_t>(c.bars));
    std::vector<Label> lengths;
    std::string scale;
    for (const Label& label : plan.Labels()) {
      if (label.text.ends_with(" NM")) lengths.push_back(label);
      if (label.text.starts_with("1 : ")) scale = label.text;
    }
    EXPECT_EQ(scale, c.scale);
    ASSERT_EQ(lengths.size(), static_cast<size_t>(c.bars));
    ASSERT_EQ(plan.Labels().size() - titles, c.bars * (c.bars > 1 ? 2u : 1u) + !scale.empty());
    for (size_t bar = 0; bar < lengths.size(); ++bar) {
      const Rectangle* const fields = &drawn[5 * bar];
      const Rectangle& whole = fields[4];
      for (int i = 0; i < 4; ++i) EXPECT_NEAR(fields[i].x, whole.x + whole.width * i / 4, 0.01);
      const Label& length = lengths[bar];
      const double miles = std::stod(length.text);
      EXPECT_NEAR(miles, whole.width * Measured(*chart.View(), bar == 0), 0.002 * miles);
      const double digit = miles / std::pow(10, std::floor(std::log10(miles) + 1e-9));
      EXPECT_TRUE(std::fabs(digit - 1) < 1e-6 || std::fabs(digit - 2) < 1e-6 || std::fabs(digit - 5) < 1e-6);
      const PixelBox text = plan.BoxOf(length);
      EXPECT_NEAR(text.right, right, 2);
      EXPECT_LE(whole.x + whole.width, text.left + 0.2 * size);
      const double names = c.bars > 1 ? plan.Width("N-S", length.lettering) + 0.5 * size : 0;
      const double room = std::min(24 * size, c.width * (length.y > 40 ? 1 : 0.4)) - names -
                          plan.Width("0000 NM", length.lettering) - 0.5 * size;
      EXPECT_LE(whole.width, std::max(room, size * 1.2) + 0.1);
      EXPECT_GE(whole.width * 2.5, room - 0.1);
    }
  }
}

TEST(Scale, DenominatorsHaveTwoDigits) {
  EXPECT_EQ(Denominator(999.4), "1,000");
  EXPECT_EQ(Denominator(4.2), "4");
}

bool Has(const std::vector<DrawingTrace::Text>& texts, const std::string& part) {
  return std::any_of(texts.begin(), texts.end(), [&](const DrawingTrace::Text& text) {
    return text.text.find(part) != std::string::npos;
  });
}

TEST_F(SheetTest, TheMarginTellsWhatIsShown) {
  const struct {
    ChartRequest request;
    double width;
    std::vector<std::string> said, notSaid;
  } CASES[] = {
      {{K7_PROJ_LAMBERT, {48.5, -123.5}, 300, {{"Standard Parallel 1", 46.25}, {"Standard Parallel 2", 51}}},
       1600,
       {"Lambert Conformal",
        "Standard Parallel 1 46.2   Standard Parallel 2 51      centre N48 30.0 W123 30.0   lines made for 1 "
        ": "
        "110,000,000",
        "1 : 4,800,000 at the centre"},
       {"elsewhere", "middle"}},
      // Narrower, the data have a line of their own.
      {{K7_PROJ_LAMBERT, {-48.5, 3.25}, 300, {{"Standard Parallel 1", 46}, {"Standard Parallel 2", 51}}},
       800,
       {"Standard Parallel 1 46   Standard Parallel 2 51      centre S48 30.0 E003 15.0", "lines made for"},
       {"E003 15.0   lines"}},
      {{K7_PROJ_MILLER, {48.5, -123.5}, 0, {}},
       1600,
       {"Miller", "middle meridian W123 30.0"},
       {"lines", "centre N"}},
      {{K7_PROJ_PERSPECTIVE, {48.5, -123.5}, 0, {{"Altitude (ft)", 30000}, {"Pitch", -40.25}}},
       1600,
       {"General Perspective",
        "Altitude (ft) 30000   Heading 0   Bank 0   Pitch -40.2   Field of View Y (degs) 45"},
       {"lines", "1 : ", " NM"}},
  };
  for (const auto& c : CASES) {
    DrawingTrace trace(c.width, 1000);
    ASSERT_EQ(DrawChart(trace.Cairo(), {0, 0, c.width, 1000, 12.5}, c.request, theme, chart), "");
    const std::vector<DrawingTrace::Text> texts = trace.Texts();
    for (const std::string& text : c.said) EXPECT_TRUE(Has(texts, text)) << text << " in " << c.width;
    for (const std::string& text : c.notSaid) EXPECT_FALSE(Has(texts, text)) << text << " in " << c.width;
  }
  // Beside its margins a chart has at least 16 pixels each way.
  const DrawingTrace small(128, 118);
  EXPECT_EQ(DrawChart(small.Cairo(), {0, 0, 128, 118, 10}, {}, theme, chart), "");
  EXPECT_NE(DrawChart(small.Cairo(), {0, 0, 127, 118, 10}, {}, theme, chart), "");
  EXPECT_NE(DrawChart(small.Cairo(), {0, 0, 128, 117, 10}, {}, theme, chart), "");
}

// Nine charts in their places, each with its name at its foot.
TEST_F(SheetTest, TheGalleryHasNineChartsInRowsOfThree) {
  const char* const NAMES[] = {
      "Lambert Conformal", "Albers Equal-Area", "Stereographic",       "Mercator", "Miller",
      "Rectangular",       "Orthographic",      "General Perspective", "Gnomonic"};
  DrawingTrace trace(900, 600);
  ASSERT_EQ(DrawGallery(trace.Cairo(), {K7_PROJ_LAMBERT, {89, 20}, 300, {}}, 900, 600, theme, chart), "");
  std::map<std::string, DrawingTrace::Text> texts;
  for (const DrawingTrace::Text& text : trace.Texts()) texts[text.text] = text;
  for (int i = 0; i < 9; ++i) {
    ASSERT_TRUE(texts.count(NAMES[i])) << NAMES[i];
    EXPECT_NEAR(texts[NAMES[i]].x, 300 * (i % 3) + 5.6 * 6.5, 1) << NAMES[i];
    EXPECT_NEAR(texts[NAMES[i]].y, 200 * (i / 3 + 1) - 3.3 * 6.5, 1) << NAMES[i];
  }
  // About a pole Mercator shows what is nearest to it there.
  EXPECT_TRUE(Has(trace.Texts(), "centre N89 00.0 E020 00.0"));
  EXPECT_TRUE(Has(trace.Texts(), "centre N80 00.0 E020 00.0"));
}

struct Picture {
  Picture()
      : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 200, 100)), cairo(cairo_create(surface)) {}
  ~Picture() {
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }
  // Premultiplied ARGB.
  uint32_t At(int x, int y) const {
    cairo_surface_flush(surface);
    return reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(surface))[y * 200 + x];
  }
  PixelBox Ink() const {
    PixelBox box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (int y = 0; y < 100; ++y)
      for (int x = 0; x < 200; ++x)
        if (At(x, y))
          box = {std::min(box.left, x + 0.0), std::min(box.top, y + 0.0), std::max(box.right, x + 1.0),
                 std::max(box.bottom, y + 1.0)};
    return box;
  }
  cairo_surface_t* const surface;
  cairo_t* const cairo;
};

TEST(Ink, LettersFillTheirBoxes) {
  const Theme theme;
  for (const Align align : {Align::Left, Align::Centre, Align::Right})
    for (const bool bold : {false, true})
      for (const bool halo : {false, true}) {
        Picture picture;
        LabelPlan plan(picture.cairo, {0, 0, 200, 100});
        const Label label = {"Hgy|", 100, 50, {.size = 20, .align = align, .bold = bold, .halo = halo}};
        ASSERT_TRUE(plan.Offer(label));
        plan.Draw(theme, 1);
        const PixelBox box = plan.BoxOf(label), ink = picture.Ink();
        EXPECT_NEAR(ink.left, box.left, 5);
        EXPECT_NEAR(ink.right, box.right, 8);
        EXPECT_NEAR(ink.top, box.top, 4);
        EXPECT_NEAR(ink.bottom, box.bottom, 4);
        const double share = align == Align::Left ? 0 : align == Align::Right ? 1 : 0.5;
        EXPECT_NEAR(std::lerp(box.left, box.right, share), 100, 3);
        EXPECT_FALSE(plan.Offer({"off", 100, 5, {.size = 20}}));
      }
  EXPECT_EQ(Utf8("N48\xb0\x7f\x80\xff"), "N48°\x7f€ÿ");
}

// Holes stay open; triangles whichever way they run, pictures where they are put.
TEST(Ink, TheContextPaintsWhatItIsGiven) {
  Picture picture;
  CairoGrfx g(picture.cairo, 200, 100);
  g.FillColor(1, 0.2, 0, 1);
  for (const double inset : {0.0, 10.0}) {
    const double near = 10 + inset, far = 40 - inset;
    g.MoveTo(near, near);
    g.LineTo(far, near);
    g.LineTo(far, far);
    g.LineTo(near, far);
    g.ClosePath();
  }
  g.Fill();
  EXPECT_EQ(picture.At(15, 15), 0xFFFF3300u);
  EXPECT_EQ(picture.At(25, 25), 0u);
  const double triangles[] = {50, 10, 90, 10, 50, 50, 60, 10, 50, 50, 90, 10};
  g.Triangles(triangles, 2);
  EXPECT_EQ(picture.At(62, 20), 0xFFFF3300u);
  EXPECT_EQ(picture.At(80, 40), 0u);
  const uint32_t pixels[] = {0xFF102030, 0x80FF8000, 0x00FFFFFF, 0xFFFFFFFF};
  g.Image(pixels, 2, 2, 150, 50, 152, 52);
  const uint32_t seen[] = {0xFF102030, 0x80804000, 0, 0, 0xFFFFFFFF, 0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(picture.At(150 + i % 3, 50 + i / 3), seen[i]) << i;
}

}  // namespace
