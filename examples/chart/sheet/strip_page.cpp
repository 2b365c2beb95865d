#include "sheet/strip_page.h"

#include "ink/pen.h"
#include "layers/route_frame.h"
#include "sheet/chart_sheet.h"
#include "sheet/scale_bar.h"
#include "sheet/trip.h"

#include <k7/foundation/string.h>
#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// Pixels. The chart's lettering stands beside its window, so that its box may reach further out than tables.
constexpr double EDGE = 19, HEADER = 96, TEXT = 11;
constexpr double MAP_WIDTH = 120, MAP_HEIGHT = 84;
constexpr double ARROW = 26;  // half its length

ChartBox BoxOn(const Paper& paper) {
  const double top = EDGE + HEADER;
  return {EDGE, top, paper.width - 2 * EDGE, paper.height - TripPages::MARGIN - 16 - top, TEXT};
}

double NMPerPixel(double scale) { return scale / ScaleDenominator(1); }

void Trace(cairo_t* cairo, const K7MapView& view, const std::vector<K7LatLon>& places) {
  for (const K7LatLon& place : places) {
    double x = NAN, y = NAN;
    view.ToDevice(place.Lat(), place.Lon(), x, y);
    if (std::isfinite(x + y)) cairo_line_to(cairo, x, y);
  }
}

// Where the strips lie, and this one among them.
void DrawKeyMap(cairo_t* cairo, const Theme& theme, const StripPages& pages, size_t index) {
  ChartRequest request;
  request.type = K7_PROJ_STEREOGRAPHIC;
  FrameRoute(pages.route, static_cast<int>(MAP_WIDTH), static_cast<int>(MAP_HEIGHT), request);
  const std::unique_ptr<K7Projection> projection(K7Projection::Create(request.type, nullptr));
  K7MapView view(projection.get(), static_cast<int>(MAP_WIDTH), static_cast<int>(MAP_HEIGHT));
  // Twice as wide: the strips reach beyond the route.
  if (!projection || view.LookAt(request.center.Lat(), request.center.Lon(), request.rangeNM * 1.6) != 0)
    return;
  cairo_save(cairo);
  cairo_rectangle(cairo, 0, 0, MAP_WIDTH, MAP_HEIGHT);
  SetColor(cairo, theme[ThemeItem::Land].fill);
  cairo_fill_preserve(cairo);
  cairo_clip(cairo);
  const auto outline = [&](const RouteStrip& strip, ThemeEntry line, double width) {
    cairo_new_path(cairo);
    std::vector<K7LatLon> corners;
    for (const auto& [right, up] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
      corners.push_back(CornerOf(strip, pages.frame, right, up));
    Trace(cairo, view, corners);
    cairo_close_path(cairo);
    line.width = width;
    Stroke(cairo, line, 1);
  };
  for (const RouteStrip& strip : pages.strips) outline(strip, theme[ThemeItem::Frame], 0.5);
  std::vector<K7LatLon> fixes;
  for (const RouteFix& fix : pages.route.fixes) fixes.push_back(fix.place);
  Trace(cairo, view, fixes);
  ThemeEntry line = theme[ThemeItem::Route];
  line.width = 1.2;
  Stroke(cairo, line, 1);
  outline(pages.strips[index], theme[ThemeItem::Text], 1.6);
  cairo_restore(cairo);
  cairo_rectangle(cairo, 0, 0, MAP_WIDTH, MAP_HEIGHT);
  ThemeEntry frame = theme[ThemeItem::Neatline];
  frame.width = 0.6;
  Stroke(cairo, frame, 1);
}

// `angle`: of true north, degrees clockwise from up.
void DrawNorthArrow(cairo_t* cairo, const Theme& theme, double x, double y, double angle) {
  const double turn = angle * K7_DEG_TO_RAD, s = std::sin(turn), c = std::cos(turn);
  const auto at = [&](double right, double up) {
    cairo_line_to(cairo, x + c * right + s * up, y + s * right - c * up);
  };
  ThemeEntry line = theme[ThemeItem::Text];
  line.line = line.fill;
  line.width = 1.2;
  at(0, -ARROW);
  at(0, ARROW * 0.5);
  Stroke(cairo, line, 1);
  at(0, ARROW * 0.75);
  at(ARROW * 0.22, 0);
  at(0, ARROW * 0.18);
  at(-ARROW * 0.22, 0);
  cairo_close_path(cairo);
  SetColor(cairo, line.fill);
  cairo_fill(cairo);
  // Upright beyond the tip.
  const double out = ARROW * 1.05;
  WriteText(cairo, theme, "N", x + s * out, y - c * out + 4,
            {.size = 11, .align = Align::Centre, .bold = true});
}

void DrawHeader(TripPages& pages, const StripPages& strips, size_t index, const K7MapView& view) {
  cairo_t* const cairo = pages.Cairo();
  const RouteStrip& strip = strips.strips[index];
  const double left = TripPages::MARGIN, right = pages.Width() - TripPages::MARGIN;
  WriteText(cairo, pages.Look(),
            EndsText(strips.route) + "   strip " + std::to_string(index + 1) + " of " +
                std::to_string(strips.strips.size()),
            left, EDGE + 30, {.size = 18, .bold = true});
  std::string what(K7FmtString("%.0f to %.0f NM of %.0f", strip.from, strip.to, strips.route.distance));
  what += "   1 : " + Denominator(strips.scale) + (strips.frame.trackUp ? "   track up" : "   north up");
  WriteText(cairo, pages.Look(), what, left, EDGE + 50, {.size = 12});
  if (strips.strips.size() > 1) {
    cairo_save(cairo);
    cairo_translate(cairo, right - MAP_WIDTH, EDGE + 6);
    DrawKeyMap(cairo, pages.Look(), strips, index);
    cairo_restore(cairo);
  }
  double angle = 0;
  if (view.TrueNorth(strip.center.Lat(), strip.center.Lon(), angle))
    DrawNorthArrow(cairo, pages.Look(), right - MAP_WIDTH - 2 * ARROW, EDGE + 6 + MAP_HEIGHT / 2, angle);
}

}  // namespace

StripFrame FrameOnPaper(const Paper& paper, double scale, bool trackUp) {
  const ChartWindow window = WindowOf(BoxOn(paper));
  return {window.width * NMPerPixel(scale), window.height * NMPerPixel(scale), trackUp};
}

double UsualScale(const Route& route, const Paper& paper, bool trackUp) {
  static const double SCALES[] = {5e5, 1e6, 2e6, 5e6, 1e7, 2e7, 5e7};
  static const size_t MANY = 12;
  const auto isFit = [&](double scale) {
    const size_t count = CutStrips(route, FrameOnPaper(paper, scale, trackUp)).size();
    return count > 0 && count <= MANY;
  };
  const auto* const fitting = std::find_if(std::begin(SCALES), std::end(SCALES), isFit);
  return fitting == std::end(SCALES) ? SCALES[0] : *fitting;
}

std::string DrawStrip(TripPages& pages, const StripPages& strips, size_t index, Chart& chart) {
  const RouteStrip& strip = strips.strips[index];
  ChartRequest request = strips.request;
  request.center = strip.center;
  request.turn = strip.turn;
  request.rangeNM = std::min(strips.frame.width, strips.frame.height) / 2;
  if (std::string problem = DrawChart(pages.Cairo(), BoxOn(pages.Sheet()), request, pages.Look(), chart);
      !problem.empty())
    return problem;
  DrawHeader(pages, strips, index, *chart.View());
  return {};
}
