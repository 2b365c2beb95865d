// The chart: the same in any context, and what is picked is what is painted.

#include "ink/cairo_grfx.h"
#include "layers/pick_grfx.h"

#include "chart/chart_fixture.h"
#include "support/temp_dir.h"

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace {

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
  FillRecorder hidden(10, 10), all(10, 10), without(10, 10);
  chart.ResetLayers(0);
  EXPECT_EQ(chart.Render(&hidden), 0);
  EXPECT_EQ(hidden.fills + hidden.strokes, 0);
  chart.ResetLayers(1);
  EXPECT_EQ(chart.Render(&all), 0);
  EXPECT_GT(all.fills, 2);

  const TempDir folder;
  const std::string path = folder.Path() + "/mine.xml";
  theme[ThemeItem::Land].minNMPerPixel = 1e6;
  chart.WriteUserThemePref(path.c_str());
  Theme read;
  EXPECT_EQ(read.Read(path), "");
  EXPECT_TRUE(read == theme);
  // The theme says at which scales a layer shows.
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
        const std::vector<Picked> found = chart.Pick(x + 0.5, y + 0.5);
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

// Rivers are lines over the land, lakes among them broad ones under it; both are found within four pixels, by
// the name that the attribute table has.
TEST_F(ChartTest, RiversAndTheirLakesAreDrawnApartAndFoundByName) {
  struct Inks : PathRecorder {
    void LineColor(double, double, double blue, double) override { ink = std::lround(blue * 255); }
    void LineStyle(double lineWidth, const double*, int) override { width = lineWidth; }
    void Stroke() override {
      strokes[{ink, width}] += !pieces.empty();
      if (!pieces.empty()) drawn.insert(drawn.end(), pieces.begin(), pieces.end());
      Clear();
    }
    long ink = 0;
    double width = 0;
    std::map<std::pair<long, double>, int> strokes;
    std::vector<Piece> drawn;
  };
  const std::string path = K7_SAMPLE_DATA "/ne_50m_rivers_lake_centerlines.shp";
  ShapeLayer rivers(ThemeItem::Rivers, path), other(ThemeItem::Other, path);
  ASSERT_EQ(rivers.Load(progress), "");
  ASSERT_EQ(other.Load(progress), "");
  K7ShpFile file;
  ASSERT_EQ(file.Read(path.c_str(), K7IO::Inst()), 0);
  int lakes = 0;
  for (int i = 0; i < file.StoredCount(); ++i)
    lakes += std::string(file.GetRecord(i)->Text(file.FindField("featurecla"))).starts_with("Lake");
  ASSERT_GT(lakes, 0);
  for (ShapeLayer* const layer : {&rivers, &other}) {
    const ThemeItem item = layer->Item();
    const double scale = item == ThemeItem::Rivers ? 1 : 2;
    Chart waters({layer}, theme, progress);
    ASSERT_EQ(waters.Show({K7_PROJ_MILLER, {0, 0}, 0, {}}, 4000, 3000, scale), "");
    EXPECT_EQ(waters.DataScale(), 50e6);
    Inks inks;
    ASSERT_EQ(waters.Render(&inks), 0);
    const auto strokes = [&](ThemeItem of) {
      return inks.strokes[{theme[of].line.blue, theme[of].width * scale}];
    };
    EXPECT_EQ(strokes(ThemeItem::LakeLines), item == ThemeItem::Rivers ? lakes : 0);
    EXPECT_EQ(strokes(item), file.StoredCount() - strokes(ThemeItem::LakeLines));
    inks.pieces = inks.drawn;
    for (int i = 0; i < file.StoredCount(); i += 29) {
      const K7ShpRecord& record = *file.GetRecord(i);
      std::string expected = "ne_50m_rivers_lake_centerlines";
      const std::string name = record.Text(file.FindField("name"));
      expected += (name.empty() ? ": " : ": " + name + ", ") + record.Text(file.FindField("featurecla"));
      const K7ShpXY& at = record.Obj()->Points()[record.Obj()->GetPointCount() / 2];
      double x, y;
      ASSERT_TRUE(waters.View()->ToDevice(at.y, at.x, x, y));
      for (double away = 0; away < 12; away += 1.7) {
        const std::vector<std::string> found = TextsUnder(waters, x + away, y - away);
        EXPECT_EQ(!found.empty(), inks.Distance(x + away, y - away) <= 4 * scale) << expected << away;
        EXPECT_TRUE(away > 0 || std::count(found.begin(), found.end(), expected)) << expected;
      }
    }
  }
}

// Pieces of one feature meet at 180 degrees, where the data are cut, but for rounding.
TEST(Pick, WherePiecesMeetThereIsNoGap) {
  for (const double apart : {-1e-9, 0.0, 1e-9}) {
    PickGrfx on(60, 50), beside(131, 50);
    for (PickGrfx* const pick : {&on, &beside})
      for (const auto& [left, right] : {std::pair{10.0, 60.0}, {60 + apart, 130.0}}) {
        pick->MoveTo(left, 20);
        pick->LineTo(right, 20);
        pick->LineTo(right, 90);
        pick->LineTo(left, 90);
        pick->ClosePath();
      }
    EXPECT_TRUE(on.Covers()) << apart;
    EXPECT_FALSE(beside.Covers()) << apart;
    EXPECT_NEAR(beside.Distance(), 1, 1e-12);
  }
}

}  // namespace
