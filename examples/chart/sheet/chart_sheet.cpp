#include "sheet/chart_sheet.h"

#include "ink/cairo_grfx.h"
#include "ink/pen.h"
#include "sheet/scale_bar.h"

#include <k7/foundation/error_string.h>

#include <cmath>

namespace {

constexpr double ORDINARY_TEXT = 12;

// Room around the window, in letter sizes.
constexpr double SIDE_ROOM = 5.6;
constexpr double TOP_ROOM = 3.0;
constexpr double BOTTOM_ROOM = 7.2;
// From the window down to the first line of the margin.
constexpr double MARGIN_TOP = 3.9;

// From one line of the margin to the next.
constexpr double MARGIN_LINE = 1.4;
constexpr int MARGIN_LINES = 3;

constexpr int LEAST_PIXELS = 16;

void DrawFrame(cairo_t* cairo, const Theme& theme, const ChartWindow& window, const ChartBox& box) {
  cairo_rectangle(cairo, 0, 0, window.width, window.height);
  Stroke(cairo, theme[ThemeItem::Neatline], LineScale(box));
  const double gap = box.textSize * 0.35;
  cairo_rectangle(cairo, -gap, -gap, window.width + 2 * gap, window.height + 2 * gap);
  Stroke(cairo, theme[ThemeItem::Frame], LineScale(box));
}

std::string Number(double value) {
  K7String text;
  const bool whole = std::fabs(value) >= 1000 || std::fabs(value - std::round(value)) < 5e-5;
  text.Format(whole ? "%.0f" : "%.1f", value);
  return std::string(text);
}

std::string Params(const K7Projection& projection) {
  std::string text;
  for (int i = 0; i < projection.ParamCount(); ++i)
    text += std::string(projection.ParamName(i)) + " " + Number(projection.ParamValue(i)) + "   ";
  return text;
}

// A flat map of the whole world lies about its own middle, and only the meridian is the one asked for.
std::string CenterText(const K7MapView& view, const ChartRequest& request) {
  K7String lat, lon;
  request.center.FormatLat("%H%02d %04.1M", lat);
  request.center.FormatLon("%H%03d %04.1M", lon);
  const bool moved = view.CenterLat() != request.center.Lat();
  return moved ? "middle meridian " + std::string(lon)
               : "centre " + std::string(lat) + " " + std::string(lon);
}

std::string Joined(const std::string& a, const std::string& b) {
  return a.empty() || b.empty() ? a + b : a + "   " + b;
}

void DrawMargin(cairo_t* cairo, const Theme& theme, const ChartWindow& window, double size,
                const Chart& chart, const ChartRequest& request, double top, LabelPlan& plan) {
  const K7MapView& view = *chart.View();
  const K7Projection& projection = *view.Projection();
  plan.Offer({projection.Name(), 0, top, {.size = size * 1.25, .bold = true}});
  if (!view.IsTilted()) DrawScaleBar(cairo, theme, view, window.width, top, size, plan);
  const Lettering title = {.size = size * 1.25, .align = Align::Centre, .bold = true};
  if (!request.title.empty()) plan.Offer({request.title, window.width / 2.0, top, title});
  const std::string center = CenterText(view, request);
  const std::string data =
      view.IsTilted() ? std::string() : DataScaleText(chart.DataScale(), view.NMPerPixel());
  const Lettering small = {.size = size * 0.85};
  // What there is room for, on one line or two.
  const double first = top + size * MARGIN_LINE, second = first + size * MARGIN_LINE;
  if (!plan.Offer({Joined(Joined(Params(projection), center), data), 0, first, small})) {
    const bool placed = plan.Offer({Joined(Params(projection), center), 0, first, small}) ||
                        plan.Offer({center, 0, first, small});
    plan.Offer({data, 0, placed ? second : first, small});
  }
  DrawLegend(cairo, window, size, chart, top, plan);
}

}  // namespace

double LineScale(const ChartBox& box) { return box.textSize / ORDINARY_TEXT; }

ChartWindow WindowOf(const ChartBox& box) {
  const double size = box.textSize;
  return {static_cast<int>(std::round(box.x + SIDE_ROOM * size)),
          static_cast<int>(std::round(box.y + TOP_ROOM * size)),
          static_cast<int>(box.width - 2 * SIDE_ROOM * size),
          static_cast<int>(box.height - (TOP_ROOM + BOTTOM_ROOM) * size)};
}

LabelPlan PlanLabels(cairo_t* cairo, const ChartBox& box, Chart& chart) {
  const ChartWindow window = WindowOf(box);
  LabelPlan plan(cairo, {box.x - window.x, box.y - window.y, box.x + box.width - window.x,
                         box.y + box.height - window.y});
  chart.OfferLabels(box.textSize, plan);
  return plan;
}

void DrawLegend(cairo_t* cairo, const ChartWindow& window, double size, const Chart& chart, double top,
                LabelPlan& plan) {
  static const double SYMBOL = 0.7, TEXT = 1.6, STEP = 0.5;  // letter sizes
  CairoGrfx g(cairo, window.width, window.height);
  double x = 0;
  int line = 0;
  const auto place = [&](const LegendEntry& entry) {
    const double baseline = top + line * size * MARGIN_LINE;
    const Label label = {entry.text, x + TEXT * size + entry.room, baseline, {.size = size * 0.85}};
    const PixelBox text = plan.BoxOf(label),
                   whole = {x - STEP * size, text.top, text.right + STEP * size, text.bottom};
    if (text.right > window.width || !plan.IsFree(whole) || !plan.Offer(label)) return false;
    for (const LegendMark& mark : entry.marks)
      plan.Offer({mark.text, x + SYMBOL * size + mark.x, baseline, mark.lettering});
    plan.Keep(whole);
    entry.draw(g, x + SYMBOL * size, baseline - 0.32 * size);
    x = text.right + 2 * STEP * size;
    return true;
  };
  for (const LegendEntry& entry : chart.Legend())
    while (!place(entry)) {
      x += STEP * size;
      if (x < window.width) continue;
      x = 0;
      if (++line == MARGIN_LINES) return;
    }
}

std::string DrawChart(cairo_t* cairo, const ChartBox& box, const ChartRequest& request, const Theme& theme,
                      Chart& chart, const ChartMargin& margin) {
  const ChartWindow window = WindowOf(box);
  if (window.width < LEAST_PIXELS || window.height < LEAST_PIXELS)
    return "the picture is too small for its margins";
  if (std::string problem = chart.Show(request, window.width, window.height, LineScale(box));
      !problem.empty())
    return problem;

  LabelPlan plan = PlanLabels(cairo, box, chart);
  cairo_save(cairo);
  cairo_translate(cairo, window.x, window.y);
  cairo_save(cairo);
  cairo_rectangle(cairo, 0, 0, window.width, window.height);
  cairo_clip(cairo);
  CairoGrfx grfx(cairo, window.width, window.height);
  const int code = chart.Render(&grfx);
  cairo_restore(cairo);
  DrawFrame(cairo, theme, window, box);
  const double top = window.height + box.textSize * MARGIN_TOP;
  if (margin)
    margin(window, top, plan);
  else
    DrawMargin(cairo, theme, window, box.textSize, chart, request, top, plan);
  plan.Draw(theme, LineScale(box), chart.LabelOpacity());
  cairo_restore(cairo);
  return code == 0 ? std::string() : std::string(K7ErrorString::ErrorString(code));
}
