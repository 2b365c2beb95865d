#include "sheet/profile_axes.h"

#include "ink/pen.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double ORDINARY_TEXT = 12;

// Room around the plot and places of its figures, in letter sizes.
constexpr double SIDE_ROOM = 5, TOP_ROOM = 7.4, BOTTOM_ROOM = 4.6;
constexpr double SMALL = 0.85;
constexpr double MIDDLE = 0.28;  // from a text's middle down to its baseline
constexpr double TICK = 0.4, FIGURE = 0.8;
constexpr double UNIT_LINE = 0.6, MILES_LINE = 1.5;
constexpr double FEET_APART = 3, MILES_APART = 6;

// Feet. Of flat land a picture would make mountains; water below the ways that are flown is shown to a share.
constexpr double LEAST_HEIGHT = 1000;
constexpr double WATER_SHARE = 0.12, HEADROOM = 0.14;

// The least of 1, 2 or 5 times a power of ten.
double RoundStep(double least) {
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double digit : {1.0, 2.0, 5.0})
    if (digit * power >= least) return digit * power;
  return 10 * power;
}

class Axes {
 public:
  Axes(cairo_t* cairo, const ProfileFrame& frame, double size, const Theme& theme, LabelPlan& plan)
      : m_cairo(cairo), m_frame(frame), m_plot(frame.plot), m_size(size), m_theme(theme), m_plan(plan) {}

  void DrawFeet();
  void DrawMiles();

 private:
  void Line(double x1, double y1, double x2, double y2, ThemeItem item) {
    cairo_move_to(m_cairo, x1, y1);
    cairo_line_to(m_cairo, x2, y2);
    Stroke(m_cairo, m_theme[item], m_size / ORDINARY_TEXT);
  }
  bool Write(const std::string& text, double x, double y, Align align) {
    return m_plan.Offer({text, x, y, {.size = m_size * SMALL, .align = align}});
  }
  void WriteOnBothSides(const std::string& text, double y) {
    Write(text, m_plot.left - FIGURE * m_size, y, Align::Right);
    Write(text, m_plot.right + FIGURE * m_size, y, Align::Left);
  }

  cairo_t* m_cairo;
  const ProfileFrame& m_frame;
  const PixelBox& m_plot;
  double m_size;
  const Theme& m_theme;
  LabelPlan& m_plan;
};

void Axes::DrawFeet() {
  const double feetPerPixel = (m_frame.top - m_frame.bottom) / (m_plot.bottom - m_plot.top);
  const double step = std::max(RoundStep(feetPerPixel * FEET_APART * m_size), 10.0);
  for (double feet = std::ceil(m_frame.bottom / step) * step; feet <= m_frame.top; feet += step) {
    const double y = m_frame.Y(feet), tick = TICK * m_size;
    Line(m_plot.left, y, m_plot.right, y, ThemeItem::Graticule);
    Line(m_plot.left - tick, y, m_plot.left, y, ThemeItem::Neatline);
    Line(m_plot.right, y, m_plot.right + tick, y, ThemeItem::Neatline);
    WriteOnBothSides(std::to_string(std::lround(feet)), y + MIDDLE * m_size * SMALL);
  }
  WriteOnBothSides("feet", m_plot.top - UNIT_LINE * m_size);
}

// The whole length first: beside it the last of the round figures may have no room.
void Axes::DrawMiles() {
  const double milesPerPixel = m_frame.length / (m_plot.right - m_plot.left);
  const double step = std::max(RoundStep(milesPerPixel * MILES_APART * m_size), 0.1);
  const auto mark = [&](double nm, const std::string& text) {
    const double x = m_frame.X(nm);
    if (Write(text, x, m_plot.bottom + MILES_LINE * m_size, Align::Centre))
      Line(x, m_plot.bottom, x, m_plot.bottom + TICK * m_size, ThemeItem::Neatline);
  };
  mark(m_frame.length, std::string(K7FmtString("%.1f NM", m_frame.length)));
  for (int i = 0; i * step < m_frame.length; ++i) mark(i * step, std::string(K7FmtString("%.9g", i * step)));
}

}  // namespace

ProfileFrame FrameOf(const PixelBox& box, double size, const Profile& profile) {
  ProfileFrame frame{};
  frame.plot = {box.left + SIDE_ROOM * size, box.top + TOP_ROOM * size, box.right - SIDE_ROOM * size,
                box.bottom - BOTTOM_ROOM * size};
  frame.length = profile.Length();
  double highest = std::max(LEAST_HEIGHT, profile.altitude.value_or(0) * 1.0), lowest = 0;
  for (const K7TerElevPoint& point : profile.points) {
    if (!HasElev(point)) continue;
    highest = std::max(highest, point.elev * 1.0);
    lowest = std::min(lowest, point.elev * 1.0);
  }
  frame.bottom = std::max(lowest, -highest * WATER_SHARE);
  frame.top = highest * (1 + HEADROOM);
  return frame;
}

void DrawAxes(cairo_t* cairo, const ProfileFrame& frame, double textSize, const Theme& theme,
              LabelPlan& plan) {
  Axes axes(cairo, frame, textSize, theme, plan);
  axes.DrawFeet();
  axes.DrawMiles();
}
