#include "ink/pen.h"

void SetColor(cairo_t* cairo, const Color& color) {
  cairo_set_source_rgba(cairo, color.red / 255.0, color.green / 255.0, color.blue / 255.0,
                        color.alpha / 255.0);
}

void Stroke(cairo_t* cairo, const ThemeEntry& entry, double scale) {
  double dash[4];
  int dashes = 0;
  for (; dashes < 4 && entry.dash[static_cast<size_t>(dashes)] > 0; ++dashes)
    dash[dashes] = entry.dash[static_cast<size_t>(dashes)] * scale;
  cairo_set_dash(cairo, dash, dashes, 0);
  cairo_set_line_width(cairo, entry.width * scale);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cairo, dashes ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_ROUND);
  SetColor(cairo, entry.line);
  cairo_stroke(cairo);
}
