#include "sheet/scale_bar.h"

#include "ink/pen.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double NOTABLE = 0.02;
constexpr double METRES_PER_NM = 1852, METRES_PER_FOOT = 0.3048;

// The longest of 1, 2 or 5 times a power of ten.
double RoundLength(double most) {
  const double power = std::pow(10, std::floor(std::log10(most)));
  for (const double digit : {5.0, 2.0})
    if (digit * power <= most) return digit * power;
  return power;
}

std::string LengthText(double length, const char* unit) {
  K7String text;
  text.Format("%.9g %s", length, unit);
  return std::string(text);
}

// Percents beyond a hundred are hard to think of.
std::string DifferenceText(double difference) {
  K7String text;
  if (difference < 1)
    text.Format("by up to %.0f %%", difference * 100);
  else
    text.Format("up to %.0f-fold", difference + 1);
  return std::string(text);
}

double Difference(double north, double east) { return std::max(north / east, east / north) - 1; }

constexpr double LINE = 1.35;  // from one row to the next, in letter sizes

// One row: what is measured, the bar, its length.
struct Bar {
  const char* name;
  double perPixel;  // of its unit
  const char* unit = "NM";
};

// Draws nothing and says so where the row would cover something or the bar be no more than a dot.
bool DrawBar(cairo_t* cairo, const Theme& theme, const Bar& bar, double right, double baseline, double size,
             double room, LabelPlan& plan) {
  static const int FIELDS = 4;
  static const double SHORTEST = 1.2, GAP = 0.5, ABOVE = 0.8, BELOW = 0.3;
  const Lettering lettering = {.size = size * 0.85, .align = Align::Right};
  const auto widthOf = [&](const std::string& text) {
    return text.empty() ? 0 : plan.Width(text, lettering) + size * GAP;
  };
  const double nameRoom = widthOf(bar.name);
  const double usual = widthOf("0000 " + std::string(bar.unit));
  const double length = RoundLength(std::max(room - usual - nameRoom, size) * bar.perPixel);
  const std::string text = LengthText(length, bar.unit);
  const double textRoom = std::max(usual, widthOf(text));
  const double pixels = length / bar.perPixel;
  const double end = right - textRoom, left = end - pixels;
  if (pixels < size * SHORTEST ||
      !plan.IsFree(PixelBox{left - nameRoom, baseline - size * ABOVE, right, baseline + size * BELOW}))
    return false;
  const double height = size * 0.45, top = baseline - size * 0.55;
  for (int i = 0; i < FIELDS; ++i) {
    cairo_rectangle(cairo, left + pixels * i / FIELDS, top, pixels / FIELDS, height);
    SetColor(cairo, theme[i % 2 ? ThemeItem::Paper : ThemeItem::Text].fill);
    cairo_fill(cairo);
  }
  cairo_rectangle(cairo, left, top, pixels, height);
  Stroke(cairo, theme[ThemeItem::Neatline], size / 12);
  plan.Keep(PixelBox{left, baseline - size * ABOVE, end, baseline + size * BELOW});
  plan.Offer({text, right, baseline, lettering});
  if (*bar.name) plan.Offer({bar.name, left - size * GAP, baseline, lettering});
  return true;
}

}  // namespace

double ScaleDenominator(double nmPerPixel) {
  static const double METRES_PER_PIXEL = 0.0254 / 96;
  return nmPerPixel * METRES_PER_NM / METRES_PER_PIXEL;
}

std::string Denominator(double scale) {
  const double unit = std::pow(10, std::max(std::floor(std::log10(scale)) - 1, 0.0));
  K7String digits;
  digits.Format("%.0f", std::round(scale / unit) * unit);
  std::string text;
  for (int i = 0, length = digits.Len(); i < length; ++i) {
    if (i > 0 && (length - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

// Enlarging a chart adds no detail: who reads it must know.
std::string DataScaleText(double dataScale, double nmPerPixel) {
  return dataScale > ScaleDenominator(nmPerPixel) ? "lines made for 1 : " + Denominator(dataScale)
                                                  : std::string();
}

double DirectionDifference(const K7MapView& view) {
  static const int STEPS = 6;
  double most = 0;
  for (int row = 0; row <= STEPS; ++row)
    for (int column = 0; column <= STEPS; ++column) {
      double lat, lon, north, east;
      if (view.FromDevice(view.Width() * 1.0 * column / STEPS, view.Height() * 1.0 * row / STEPS, lat, lon) &&
          view.Scale(lat, lon, north, east))
        most = std::max(most, Difference(north, east));
    }
  return most;
}

void DrawScaleBar(cairo_t* cairo, const Theme& theme, const K7MapView& view, double right, double top,
                  double size, LabelPlan& plan) {
  static const int MOST_LINES = 3;
  double north = view.NMPerPixel(), east = north;
  double exactNorth, exactEast;
  // Along the meridian the view knows its own scale, also where a pole has no east.
  if (view.Scale(view.CenterLat(), view.CenterLon(), exactNorth, exactEast))
    east = north * exactEast / exactNorth;
  const bool both = Difference(north, east) > NOTABLE;
  const double baselines[] = {top, top + size * LINE, top + size * LINE * 2};
  int line = 0;
  // Beside the title, or where that leaves no room, under it and as long as the window is wide.
  const auto draw = [&](const Bar& bar) {
    for (; line < MOST_LINES; ++line) {
      const double room = std::min(view.Width() * (line == 0 ? 0.4 : 1.0), size * 24);
      if (DrawBar(cairo, theme, bar, right, baselines[line], size, room, plan)) {
        ++line;
        return;
      }
    }
  };
  draw({both ? "N-S" : "", north});
  if (both) draw({"E-W", east});
  if (line == MOST_LINES) return;
  const Lettering lettering = {.size = size * 0.85, .align = Align::Right};
  const std::string scale =
      "1 : " + Denominator(ScaleDenominator(north)) + (both ? " N-S" : "") + " at the centre";
  const double difference = DirectionDifference(view);
  const bool varies = !both && difference > NOTABLE;
  if (varies && plan.Offer({scale + "; elsewhere N-S and E-W differ " + DifferenceText(difference), right,
                            baselines[line], lettering}))
    return;
  plan.Offer({scale, right, baselines[line], lettering});
}

void DrawGroundScale(cairo_t* cairo, const Theme& theme, const K7MapView& view, double right, double top,
                     double size, LabelPlan& plan) {
  const double metres = view.NMPerPixel() * METRES_PER_NM, room = std::min(view.Width() * 0.4, size * 24);
  DrawBar(cairo, theme, {"", metres / METRES_PER_FOOT, "ft"}, right, top, size, room, plan);
  DrawBar(cairo, theme, {"", metres, "m"}, right, top + size * LINE, size, room, plan);
}
