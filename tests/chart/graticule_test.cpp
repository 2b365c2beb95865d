// The graticule: lines where the view has them, labels that are true and none over another.

#include "chart/chart_fixture.h"
#include "chart/drawing_trace.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <set>

namespace {

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
  void Plan(const ChartRequest& request, int width, int height) {
    ASSERT_EQ(chart.Show(request, width, height, 1), "");
    plan = std::make_unique<LabelPlan>(trace.Cairo(), PixelBox{-60, -40, width + 60.0, height + 60.0});
    chart.OfferLabels(SIZE, *plan);
  }

  bool IsOutside(const Label& label) const {
    const PixelBox box = plan->BoxOf(label),
                   map = {0, 0, chart.View()->Width() * 1.0, chart.View()->Height() * 1.0};
    return !box.Meets(map);
  }

  // How far, in pixels, the line that a label names is from where the label stands: at the nearest place of
  // the frame, or by its own foot on the map.
  double Off(const Label& label) const {
    const K7MapView& view = *chart.View();
    const PixelBox box = plan->BoxOf(label);
    const bool outside = IsOutside(label);
    const double x = outside ? std::clamp((box.left + box.right) / 2, 0.0, view.Width() * 1.0) : label.x;
    const double y = outside ? std::clamp((box.top + box.bottom) / 2, 0.0, view.Height() * 1.0) : label.y;
    const double reach = outside ? 2 : 5;
    const double value = DegreesOf(label.text);
    const bool parallel = std::strchr("NS", label.text[0]), either = !std::strchr("NSEW", label.text[0]);
    double nearest = INFINITY;
    for (double dy = -reach; dy <= reach; dy += 0.5)
      for (double dx = -reach; dx <= reach; dx += 0.5) {
        double lat, lon, rightLat, rightLon, downLat, downLon;
        if (!view.FromDevice(x + dx, y + dy, lat, lon) ||
            !view.FromDevice(x + dx + 1, y + dy, rightLat, rightLon) ||
            !view.FromDevice(x + dx, y + dy + 1, downLat, downLon))
          continue;
        const auto lonsApart = [](double a, double b) { return std::remainder(a - b, 360); };
        const double latOff = std::fabs(lat - value) / std::hypot(rightLat - lat, downLat - lat);
        const double lonOff =
            std::fabs(lonsApart(lon, value)) / std::hypot(lonsApart(rightLon, lon), lonsApart(downLon, lon));
        nearest = std::min(nearest, either ? std::min(latOff, lonOff) : parallel ? latOff : lonOff);
      }
    return nearest;
  }

  static constexpr double SIZE = 10;
  DrawingTrace trace{600, 500};
  std::unique_ptr<LabelPlan> plan;
};

TEST_F(LabelTest, LabelsStandAtTheirLinesOnTheSheetAndClearOfEachOther) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const double range : {0.0, 2000.0, 250.0, 3.0, 1.0})
      for (const auto& [lat, lon] : {std::pair{48.5, -123.5}, {2.0, 179.0}, {-74.0, 20.0}, {0.0, 0.0}}) {
        SCOPED_TRACE(testing::Message()
                     << "type " << type << " range " << range << " at " << lat << " " << lon);
        Plan({static_cast<K7ProjType>(type), {lat, lon}, range, {}}, 500, 330);
        const std::vector<Label>& labels = plan->Labels();
        EXPECT_GE(labels.size(), 6u);
        bool parallels = false, meridians = false;
        for (size_t i = 0; i < labels.size(); ++i) {
          EXPECT_LT(Off(labels[i]), 2) << labels[i].text;
          const PixelBox box = plan->BoxOf(labels[i]);
          EXPECT_TRUE(plan->Sheet().Holds(box)) << labels[i].text;
          // Beside the frame: neither on it nor far from it.
          const double away = std::max({-box.right, box.left - 500, -box.bottom, box.top - 330});
          EXPECT_TRUE(!IsOutside(labels[i]) || (away > 0.5 * SIZE && away < SIZE)) << labels[i].text << away;
          parallels = parallels || std::strchr("NS", labels[i].text[0]);
          meridians = meridians || std::strchr("EW", labels[i].text[0]);
          for (size_t k = 0; k < i; ++k)
            EXPECT_FALSE(plan->BoxOf(labels[i]).Meets(plan->BoxOf(labels[k])))
                << labels[i].text << labels[k].text;
        }
        EXPECT_TRUE(parallels && meridians);
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
      Plan({K7_PROJ_PERSPECTIVE,
            {lat, lon},
            0,
            {{"Altitude (ft)", eye.altitude},
             {"Pitch", eye.pitch},
             {"Bank", eye.bank},
             {"Heading", eye.heading}}},
           500, 330);
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
  Plan({K7_PROJ_MILLER, {0, -123.5}, 0, {}}, 1000, 500);
  std::set<std::string> seen;
  for (const Label& label : plan->Labels()) seen.insert(label.text);
  for (const char* const meridian : {"E060°", "E120°", "180°", "W120°", "W060°", "0°"})
    EXPECT_TRUE(seen.count(meridian)) << meridian;
  Plan({K7_PROJ_MILLER, {0, 0}, 0, {}}, 1000, 500);
  EXPECT_EQ(std::count_if(plan->Labels().begin(), plan->Labels().end(),
                          [](const Label& label) { return label.text == "180°"; }),
            2);
}

// However the middle of the picture falls beside the pole, meridians lie whole degrees apart.
TEST_F(LabelTest, PolesHaveMeridiansAllAround) {
  for (const K7ProjType type : {K7_PROJ_LAMBERT, K7_PROJ_ALBERS, K7_PROJ_STEREOGRAPHIC}) {
    Plan({type, {90, 0}, 1500, {}}, 500, 330);
    std::set<std::string> meridians;
    for (const Label& label : plan->Labels())
      if (!std::strchr("NS", label.text[0])) meridians.insert(label.text);
    EXPECT_TRUE(meridians.count("W090°") && meridians.count("E090°")) << type;
    EXPECT_LE(meridians.size(), 12u) << type;
  }
}

const std::set<int> COUNTED = {1, 2, 3, 5, 10, 15, 20, 30, 45, 60};

// Steps that a reader counts in, of degrees, minutes or seconds, four to eight of them over any span; ticks
// divide them into what is counted next.
TEST(Graticule, StepsAreCountedEasily) {
  const std::set<int> TICKS = {1, 5, 10, 30};
  const auto inUnits = [](double degrees) {
    const double seconds = std::round(degrees * 3600), unit = seconds < 60 ? 1 : seconds < 3600 ? 60 : 3600;
    EXPECT_NEAR(degrees * 3600, seconds, 1e-9);
    return std::fmod(seconds, unit) == 0 ? static_cast<int>(seconds / unit) : -1;
  };
  for (const LineKind kind : {LineKind::Parallel, LineKind::Meridian})
    for (double span = 6 / 3600.0; span < (kind == LineKind::Parallel ? 180 : 360); span *= 1.03) {
      const GraticuleStep step = StepFor(kind, span);
      EXPECT_GE(span / step.lines, 4) << span;
      EXPECT_LE(span / step.lines, 8.6) << span;
      EXPECT_TRUE(COUNTED.count(inUnits(step.lines))) << step.lines;
      EXPECT_TRUE(kind == LineKind::Meridian || step.lines <= 30) << step.lines;
      if (step.ticks == 0) continue;
      EXPECT_TRUE(TICKS.count(inUnits(step.ticks))) << step.ticks;
      const double parts = step.lines / step.ticks;
      EXPECT_NEAR(parts, std::round(parts), 1e-9) << step.lines;
      EXPECT_TRUE(parts > 1.5 && parts < 10.5) << step.lines;
    }
}

struct Strokes : PathRecorder {
  void Stroke() override { drawn.push_back(std::exchange(pieces, {})); }
  std::vector<std::vector<Piece>> drawn;
};

// Every line is a multiple of its family's step, and wherever the picture passes a multiple there is a line.
TEST_F(ChartTest, LinesRunWhereTheViewHasThem) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const double range : {0.0, 2000.0, 90.0, 1.0})
      for (const auto& [centerLat, centerLon] : {std::pair{48.5, -123.5}, {2.0, 179.0}, {-74.0, 20.0}}) {
        SCOPED_TRACE(testing::Message() << "type " << type << " range " << range << " at " << centerLat);
        Chart lines({&graticule}, theme, progress);
        ASSERT_EQ(lines.Show({static_cast<K7ProjType>(type), {centerLat, centerLon}, range, {}}, 320, 240, 1),
                  "");
        const K7MapView& view = *lines.View();
        Strokes strokes;
        ASSERT_EQ(lines.Render(&strokes), 0);
        std::map<double, PathRecorder> families[2];  // by latitude, by longitude
        for (const std::vector<PathRecorder::Piece>& drawn : strokes.drawn) {
          // Along a line one of the two stays.
          double spread[2] = {0, 0}, first[2] = {NAN, NAN}, at[2];
          for (const PathRecorder::Piece& piece : drawn)
            for (const PathRecorder::Point& p : piece.points) {
              if (!view.FromDevice(p.x, p.y, at[0], at[1]) || std::fabs(at[0]) > 89.99) continue;
              for (int k = 0; k < 2; ++k) {
                if (std::isnan(first[k]) || &p == &piece.points[piece.points.size() / 2]) first[k] = at[k];
                spread[k] = std::max(spread[k], std::fabs(std::remainder(at[k] - first[k], 360)));
              }
            }
          if (std::isnan(first[0])) continue;
          const int kind = spread[0] < spread[1] ? 0 : 1;
          EXPECT_LT(spread[kind], 0.02 * std::max(spread[1 - kind], 1e-3));
          const double value = std::round(first[kind] * 3600) / 3600;
          PathRecorder& line = families[kind][value < -179.999 ? 180 : value];
          line.pieces.insert(line.pieces.end(), drawn.begin(), drawn.end());
        }
        for (int kind = 0; kind < 2; ++kind) {
          double apart = 360, step = 0;
          for (auto a = families[kind].begin(); a != families[kind].end(); ++a)
            if (std::next(a) != families[kind].end()) apart = std::min(apart, std::next(a)->first - a->first);
          for (const double unit : {1 / 3600.0, 1 / 60.0, 1.0})
            for (const int count : COUNTED)
              if (std::fabs(apart / (count * unit) - 1) < 0.005) step = count * unit;
          ASSERT_GT(step, 0) << apart;
          EXPECT_GE(families[kind].size(), 3u) << kind;
          EXPECT_LE(families[kind].size(), 18u) << kind;
          for (const auto& [value, line] : families[kind])
            EXPECT_LT(std::fabs(std::remainder(value, step)), 0.002 * step) << value << " by " << step;
          for (int y = 4; y < 230; y += 8)
            for (int x = 4; x < 310; x += 8) {
              double here[2], there[2];
              const bool across = (x / 8 + y / 8) % 2;
              // Not where meridians end before a pole.
              if (!view.FromDevice(x, y, here[0], here[1]) ||
                  !view.FromDevice(x + 8 * across, y + 8 * !across, there[0], there[1]) ||
                  std::max(std::fabs(here[0]), std::fabs(there[0])) > (kind ? 79 : 89))
                continue;
              const double near = std::floor(here[kind] / step), far = std::floor(there[kind] / step);
              if (std::fabs(near - far) != 1) continue;
              const double value = std::max(near, far) * step;
              double best = INFINITY;
              for (const auto& [known, line] : families[kind])
                if (std::fabs(std::remainder(known - value, 360)) < 0.002 * step) best = line.Distance(x, y);
              EXPECT_LT(best, 9) << (kind ? "meridian " : "parallel ") << value << " at " << x << "," << y;
            }
        }
      }
}

// On a Mercator chart of half degrees up and whole ones across there is a tick every five and ten minutes.
TEST_F(LabelTest, TicksDivideTheFrame) {
  Plan({K7_PROJ_MERCATOR, {48.5, 179}, 100, {}}, 500, 330);
  std::set<std::vector<long>> drawn, expected;  // both ends in quarters of a pixel
  for (const auto& t : plan->Ticks())
    drawn.insert(
        {std::lround(t.x1 * 4), std::lround(t.y1 * 4), std::lround(t.x2 * 4), std::lround(t.y2 * 4)});
  const long out = std::lround(0.35 * SIZE * 4);
  for (int minutes = 40 * 60; minutes < 56 * 60; minutes += 5) {
    double x, y;
    if (!chart.View()->ToDevice(minutes / 60.0, 179, x, y)) continue;
    expected.insert({0, std::lround(y * 4), -out, std::lround(y * 4)});
    expected.insert({2000, std::lround(y * 4), 2000 + out, std::lround(y * 4)});
  }
  for (int minutes = 170 * 60; minutes < 188 * 60; minutes += 10) {
    double x, y;
    if (!chart.View()->ToDevice(48.5, minutes / 60.0, x, y)) continue;
    expected.insert({std::lround(x * 4), 0, std::lround(x * 4), -out});
    expected.insert({std::lround(x * 4), 1320, std::lround(x * 4), 1320 + out});
  }
  EXPECT_EQ(drawn, expected);
}

}  // namespace
