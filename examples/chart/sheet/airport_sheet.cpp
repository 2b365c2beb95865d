#include "sheet/airport_sheet.h"

#include "ink/pen.h"
#include "sheet/scale_bar.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double RADIAN = std::numbers::pi / 180;

// Letter sizes: the room above the chart, from the sheet's edges, and what ends of runways are lettered in.
constexpr double HEADER = 5.4, EDGE = 1.2, LETTERED = 4.6;
constexpr double LEAST_NM = 0.1;  // from the middle of a diagram to its edge

// "15.1° E"
std::string VariationText(double variation) {
  return std::string(K7FmtString("%.1f", std::fabs(variation))) + "\u00B0 " + (variation < 0 ? "W" : "E");
}

// True north, and magnetic north beside it, with the barb on its outer side only.
void DrawNorth(cairo_t* cairo, const Theme& theme, double x, double top, double size, double variation) {
  const double length = size * 3.4, bottom = top + length;
  const auto arrow = [&](double turn, double head) {
    const double tipX = x + length * std::sin(turn), tipY = bottom - length * std::cos(turn);
    cairo_move_to(cairo, x, bottom);
    cairo_line_to(cairo, tipX, tipY);
    for (const double side : {-1.0, 1.0}) {
      if (side * head > 0) continue;
      cairo_move_to(cairo, tipX, tipY);
      cairo_line_to(cairo, tipX + size * 0.7 * std::sin(turn + std::numbers::pi + side * 0.45),
                    tipY - size * 0.7 * std::cos(turn + std::numbers::pi + side * 0.45));
    }
    Stroke(cairo, theme[ThemeItem::Neatline], size / 9);
  };
  arrow(0, 0);
  if (variation != 0) arrow(variation * RADIAN, variation > 0 ? 1 : -1);
}

void DrawHeader(cairo_t* cairo, const ChartBox& box, const AirportFacts& facts, const Theme& theme,
                double right) {
  const double size = box.textSize, left = EDGE * size;
  // Long lines give way to the arrow.
  LabelPlan plan(cairo, {0, 0, right, box.y + size});
  const Lettering plain = {.size = size * 0.9};
  const std::string name = facts.name.empty() || facts.name == facts.ident ? "" : "  " + facts.name;
  double baseline = size * 1.9;
  for (const double large : {1.6, 1.2, 0.9}) {
    const Lettering title = {.size = size * large, .bold = true};
    if (plan.Offer({facts.ident + name, left, baseline, title})) break;
    if (large == 0.9) plan.Offer({facts.ident, left, baseline, title});
  }
  K7String lat, lon;
  facts.place.FormatLat("%H%02d %04.1M", lat);
  facts.place.FormatLon("%H%03d %04.1M", lon);
  const std::string place = std::string(lat) + " " + std::string(lon);
  baseline += size * 1.5;
  const std::string elev = facts.elev ? "elevation " + std::to_string(*facts.elev) + " ft   " : std::string();
  for (const std::string& line : {"Airport diagram   " + elev + place, elev + place, elev})
    if (plan.Offer({line, left, baseline, plain})) break;
  baseline += size * 1.4;
  double x = left;
  for (const std::string& frequency : facts.frequencies) {
    if (!plan.Offer({frequency, x, baseline, plain})) break;
    x += plan.Width(frequency, plain) + size * 1.2;
  }
  plan.Draw(theme, LineScale(box));
}

}  // namespace

ChartBox AirportBox(int width, int height) {
  const double size = std::max(9.0, std::min(width, height) / 80.0);
  return {0, HEADER * size, width * 1.0, height - HEADER * size, size};
}

void FitRequest(const K7ChartRect& extent, const ChartBox& box, ChartRequest& request) {
  const ChartWindow window = WindowOf(box);
  double lat = 0, lon = 0;
  extent.Center(lat, lon);
  request.center = {lat, lon};
  const double across = std::remainder(extent.East() - extent.West(), 360);
  const double north = std::max((extent.North() - extent.South()) * 30, LEAST_NM);
  const double east = std::max(std::fabs(across) * 30 * std::cos(lat * RADIAN), LEAST_NM);
  const auto pixels = [&](int side) { return std::max(side / 2.0 - LETTERED * box.textSize, side / 4.0); };
  const double nmPerPixel = std::max(north / pixels(window.height), east / pixels(window.width));
  request.rangeNM = nmPerPixel * std::min(window.width, window.height) / 2;
}

std::string DrawAirportSheet(cairo_t* cairo, const ChartBox& box, const AirportFacts& facts,
                             const ChartRequest& request, const Theme& theme, Chart& chart) {
  const double size = box.textSize;
  const auto margin = [&](const ChartWindow& window, double top, LabelPlan& plan) {
    DrawGroundScale(cairo, theme, *chart.View(), window.width, top, size, plan);
    const std::string scale = "1 : " + Denominator(ScaleDenominator(chart.View()->NMPerPixel()));
    plan.Offer({facts.source + "   " + scale, 0, top, {.size = size * 0.85}});
    DrawLegend(cairo, window, size, chart, top, plan);
  };
  std::string problem = DrawChart(cairo, box, request, theme, chart, margin);
  if (!problem.empty()) return problem;
  double right = box.width - EDGE * size;
  if (facts.variation) {
    const std::string text = "VAR " + VariationText(*facts.variation);
    const Lettering lettering = {.size = size * 0.8, .align = Align::Right};
    WriteText(cairo, theme, text, right, size * 4.6, lettering);
    right -= std::max(TextWidth(cairo, text, lettering.size), size * 4);
    DrawNorth(cairo, theme, (right + box.width - EDGE * size) / 2, size * 0.5, size * 0.9, *facts.variation);
  }
  DrawHeader(cairo, box, facts, theme, right - size);
  return {};
}
