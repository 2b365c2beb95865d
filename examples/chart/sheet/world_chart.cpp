#include "sheet/world_chart.h"

#include "ink/style.h"
#include "layers/graticule.h"
#include "sheet/scale_bar.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

constexpr double ORDINARY_TEXT = 12;

// Room around the window, in letter sizes.
constexpr double SIDE_ROOM = 5.2;
constexpr double TOP_ROOM = 3.0;
constexpr double BOTTOM_ROOM = 6.2;

void DrawFrame(cairo_t* cairo, const ChartBox& window, double scale) {
  cairo_rectangle(cairo, window.x, window.y, window.width, window.height);
  Stroke(cairo, FRAME_LINE, scale);
  const double gap = window.textSize * 0.35;
  cairo_rectangle(cairo, window.x - gap, window.y - gap, window.width + 2 * gap, window.height + 2 * gap);
  Stroke(cairo, FRAME_OUTER_LINE, scale);
}

std::string Number(double value) {
  K7String text;
  const bool whole = std::fabs(value) >= 1000 || std::fabs(value - std::round(value)) < 5e-5;
  text.Format(whole ? "%.0f" : "%.1f", value);
  return std::string(text);
}

}  // namespace

std::string WorldChart::Draw(cairo_t* cairo, const ChartBox& box) {
  const double size = box.textSize;
  m_scale = size / ORDINARY_TEXT;
  ChartBox window = {box.x + SIDE_ROOM * size, box.y + TOP_ROOM * size, box.width - 2 * SIDE_ROOM * size,
                     box.height - (TOP_ROOM + BOTTOM_ROOM) * size, size};
  // Whole pixels, so that the frame is sharp and the context's window is exact.
  window.x = std::round(window.x);
  window.y = std::round(window.y);
  const int width = static_cast<int>(window.width);
  const int height = static_cast<int>(window.height);
  if (width < 16 || height < 16) return "the picture is too small for its margins";
  window.width = width;
  window.height = height;

  CairoGrfx grfx(cairo, width, height);
  if (std::string problem = SetUp(grfx); !problem.empty()) return problem;

  cairo_save(cairo);
  cairo_translate(cairo, window.x, window.y);
  cairo_save(cairo);
  cairo_rectangle(cairo, 0, 0, width, height);
  cairo_clip(cairo);
  const int code = Render(&grfx);
  cairo_restore(cairo);
  if (m_request.graticule) Graticule(*m_view).DrawLabels(size);
  cairo_restore(cairo);
  DrawFrame(cairo, window, m_scale);
  DrawMargin(cairo, window);
  m_view.reset();
  return code == 0 ? std::string() : std::string(K7ErrorString::ErrorString(code));
}

std::string WorldChart::SetUp(CairoGrfx& grfx) {
  const GeoPoint c = m_request.centre;
  m_projection = MakeProjection(m_request.type, c.lat, c.lon, m_request.rangeNM);
  if (!m_projection) return "out of memory";
  if (std::string problem = SetParams(*m_projection, m_request.params); !problem.empty()) return problem;
  m_view = std::make_unique<View>(*m_projection, grfx);
  if (m_view->IsTilted() && m_request.rangeNM > 0)
    return "a tilted view shows what its field of view holds: it takes no --range";
  if (m_view->LookAt(c.lat, c.lon, m_request.rangeNM))
    return !m_view->IsTilted() || ShowsEarth()
               ? std::string()
               : "the eye sees nothing but sky: the chart needs a lower Pitch, a lower Altitude (ft) or a "
                 "wider Field of View Y (degs)";
  m_view.reset();
  const char* const cause = K7ErrorString::ErrorString(K7_ERR_PROJECTION_RANGE);
  return std::string("this centre, range and parameters give no ") + m_projection->Name() +
         " chart: " + cause;
}

// A tilted eye may look past the earth.
bool WorldChart::ShowsEarth() const {
  static const int STEPS = 50;
  GeoPoint point;
  for (int row = 0; row <= STEPS; ++row)
    for (int column = 0; column <= STEPS; ++column)
      if (m_view->FromDevice(1.0 * m_view->Grfx().Width() * column / STEPS,
                             1.0 * m_view->Grfx().Height() * row / STEPS, point))
        return true;
  return false;
}

K7ChartRect WorldChart::GetExtent() const {
  if (!m_view) return {};
  const FlatWindow extent = m_view->Extent();
  if (extent.east - extent.west >= 360) return {extent.north, extent.south, 180, -180};
  return {extent.north, extent.south, std::remainder(extent.east, 360), std::remainder(extent.west, 360)};
}

int WorldChart::Render(K7Grfx* g) {
  CairoGrfx* const grfx = static_cast<CairoGrfx*>(g);
  cairo_t* const cairo = grfx->Cairo();
  const GeoPath path(*m_view);

  SetColor(cairo, PAPER);
  cairo_paint(cairo);
  path.AddWholeMap();
  SetColor(cairo, SEA);
  cairo_fill(cairo);
  for (const ShapeLayer* layer : m_layers) {
    m_progress.Step(std::string(m_projection->Name()) + ", " +
                    std::filesystem::path(layer->Path()).stem().string());
    layer->Draw(*m_view, m_scale, m_progress);
  }
  if (m_request.graticule) Graticule(*m_view).DrawLines(m_scale);
  path.AddWholeMap();
  Stroke(cairo, LIMB_LINE, m_scale);
  return cairo_status(cairo) == CAIRO_STATUS_SUCCESS ? 0 : K7_ERR_NATIVE_API;
}

std::string WorldChart::Params() const {
  std::string text;
  for (int i = 0; i < m_projection->ParamCount(); ++i)
    text += std::string(m_projection->ParamName(i)) + " " + Number(m_projection->ParamValue(i)) + "   ";
  return text;
}

std::string WorldChart::CentreText() const {
  const K7LatLon centre(m_view->Centre().lat, m_view->Centre().lon);
  K7String lat, lon;
  centre.FormatLat("%H%02d %04.1M", lat);
  centre.FormatLon("%H%03d %04.1M", lon);
  return "centre " + std::string(lat) + " " + std::string(lon);
}

void WorldChart::DrawMargin(cairo_t* cairo, const ChartBox& window) const {
  const double size = window.textSize;
  const double small = size * 0.85;
  const double y = window.y + window.height + size * 3.9;
  WriteText(cairo, m_projection->Name(), window.x, y, size * 1.25, Align::Left, true);
  std::string particulars = Params() + CentreText();
  // The right part of the margin is the scale's.
  if (TextWidth(cairo, particulars, small) > window.width * 0.62) particulars = CentreText();
  WriteText(cairo, particulars, window.x, y + size * 1.5, small, Align::Left);
  if (m_view->IsTilted()) return;
  DrawScaleBar(cairo, m_view->NMPerPixel(), window.x + window.width, y, size, window.width * 0.4);
}
