#include "ink/cairo_grfx.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

// Joins of thinner lines cannot be told apart, and round ones cost many points.
constexpr double ROUND_FROM = 1.5;

// Straight alpha to Cairo's, which is multiplied in.
uint32_t Premultiplied(uint32_t pixel) {
  const uint32_t alpha = pixel >> 24;
  if (alpha == 255) return pixel;
  uint32_t out = alpha << 24;
  for (int shift = 0; shift < 24; shift += 8) out |= ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift;
  return out;
}

}  // namespace

void CairoGrfx::Use(const Rgba& color) {
  cairo_set_source_rgba(m_cairo, color.red, color.green, color.blue, color.alpha);
}

void CairoGrfx::MoveTo(double dx, double dy) { cairo_move_to(m_cairo, dx, dy); }
void CairoGrfx::LineTo(double dx, double dy) { cairo_line_to(m_cairo, dx, dy); }
void CairoGrfx::ClosePath() { cairo_close_path(m_cairo); }

void CairoGrfx::Fill() {
  Use(m_fill);
  cairo_set_fill_rule(m_cairo, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_fill(m_cairo);
}

void CairoGrfx::Stroke() {
  Use(m_line);
  cairo_stroke(m_cairo);
}

void CairoGrfx::FillColor(double red, double green, double blue, double alpha) {
  m_fill = {red, green, blue, alpha};
}

void CairoGrfx::LineColor(double red, double green, double blue, double alpha) {
  m_line = {red, green, blue, alpha};
}

void CairoGrfx::LineStyle(double width, const double* dashes, int count) {
  cairo_set_dash(m_cairo, dashes, count, 0);
  cairo_set_line_width(m_cairo, width);
  cairo_set_line_join(m_cairo, width < ROUND_FROM ? CAIRO_LINE_JOIN_BEVEL : CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(m_cairo, count > 0 ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_ROUND);
}

void CairoGrfx::Triangles(const double* points, int count) {
  for (int i = 0; i < count; ++i, points += 6) {
    const double* second = points + 2;
    const double* third = points + 4;
    // All run one way around: where triangles overlap none is to undo another.
    if ((second[0] - points[0]) * (third[1] - points[1]) < (third[0] - points[0]) * (second[1] - points[1]))
      std::swap(second, third);
    MoveTo(points[0], points[1]);
    LineTo(second[0], second[1]);
    LineTo(third[0], third[1]);
    ClosePath();
  }
  Use(m_fill);
  cairo_set_fill_rule(m_cairo, CAIRO_FILL_RULE_WINDING);
  cairo_fill(m_cairo);
}

void CairoGrfx::Image(const uint32_t* pixels, int width, int height, double left, double top, double right,
                      double bottom) {
  std::vector<uint32_t> rows(static_cast<size_t>(width) * static_cast<size_t>(height));
  std::transform(pixels, pixels + rows.size(), rows.begin(), Premultiplied);
  cairo_surface_t* const image = cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(rows.data()), CAIRO_FORMAT_ARGB32, width, height, width * 4);
  cairo_save(m_cairo);
  cairo_translate(m_cairo, left, top);
  cairo_scale(m_cairo, (right - left) / width, (bottom - top) / height);
  cairo_set_source_surface(m_cairo, image, 0, 0);
  cairo_paint(m_cairo);
  cairo_restore(m_cairo);
  cairo_surface_destroy(image);
}
