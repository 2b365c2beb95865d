#include "sheet/scale_bar.h"

#include "ink/pen.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double NOTABLE = 0.02;

// The longest of 1, 2 or 5 times a power of ten.
double RoundLength(double most) {
  const double power = std::pow(10, std::floor(std::log10(most)));
  for (const double digit : {5.0, 2.0})
    if (digit * power <= most) return digit * power;
  return power;
}

std::string LengthText(double length) {
  K7String text;
  text.Format(length < 0.1 ? "%.2f NM" : length < 1 ? "%.1f NM" : "%.0f NM", length);
  return std::string(text);
}

double Difference(double north, double east) { return std::max(north / east, east / north) - 1; }

// One row: what is measured, the bar, its length.
struct Bar {
  const char* name;
  double nmPerPixel;
};

void DrawBar(cairo_t* cairo, const Theme& theme, const Bar& bar, double right, double baseline, double size,
             double room, LabelPlan& plan) {
  static const int FIELDS = 4;
  const Lettering lettering = {.size = size * 0.85, .align = Align::Right};
  const double textRoom = plan.Width("0000 NM", lettering) + size * 0.5;
  const double length = RoundLength(std::max(room - textRoom, size) * bar.nmPerPixel);
  const double pixels = length / bar.nmPerPixel;
  const double end = right - textRoom, left = end - pixels;
  const double height = size * 0.45, top = baseline - size * 0.55;
  for (int i = 0; i < FIELDS; ++i) {
    cairo_rectangle(cairo, left + pixels * i / FIELDS, top, pixels / FIELDS, height);
    SetColor(cairo, theme[i % 2 ? ThemeItem::Paper : ThemeItem::Text].fill);
    cairo_fill(cairo);
  }
  cairo_rectangle(cairo, left, top, pixels, height);
  Stroke(cairo, theme[ThemeItem::Neatline], size / 12);
  plan.Keep({left, baseline - size, end, baseline + size * 0.3});
  plan.Offer({LengthText(length), right, baseline, lettering});
  plan.Offer({bar.name, left - size * 0.5, baseline, lettering});
}

}  // namespace

double ScaleDenominator(double nmPerPixel) {
  static const double METRES_PER_NM = 1852;
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
                  double size, double room, LabelPlan& plan) {
  double north = view.NMPerPixel(), east = north;
  double exactNorth, exactEast;
  // Along the meridian the view knows its own scale, also where a pole has no east.
  if (view.Scale(view.CenterLat(), view.CenterLon(), exactNorth, exactEast))
    east = north * exactEast / exactNorth;
  const bool both = Difference(north, east) > NOTABLE;
  double baseline = top;
  DrawBar(cairo, theme, {both ? "N-S" : "", north}, right, baseline, size, room, plan);
  baseline += size * 1.35;
  if (both) {
    DrawBar(cairo, theme, {"E-W", east}, right, baseline, size, room, plan);
    baseline += size * 1.35;
  }
  const Lettering lettering = {.size = size * 0.85, .align = Align::Right};
  const std::string scale =
      "1 : " + Denominator(ScaleDenominator(north)) + (both ? " N-S" : "") + " at the centre";
  const double difference = DirectionDifference(view);
  K7String more;
  more.Format("; elsewhere N-S and E-W differ by up to %.0f %%", difference * 100);
  const bool varies = !both && difference > NOTABLE;
  if (varies && plan.Offer({scale + std::string(more), right, baseline, lettering})) return;
  plan.Offer({scale, right, baseline, lettering});
}
