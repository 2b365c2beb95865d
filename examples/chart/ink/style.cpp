#include "ink/style.h"

namespace {

constexpr LineStyle COAST = {{0.27, 0.42, 0.52, 1}, 0.9, {}, 0};
constexpr LineStyle RIVER = {{0.42, 0.63, 0.78, 1}, 0.8, {}, 0};
constexpr LineStyle BORDER = {{0.60, 0.30, 0.42, 0.8}, 0.9, {7, 2.5, 1.5, 2.5}, 4};
constexpr LineStyle OTHER = {{0.55, 0.20, 0.55, 0.9}, 1.0, {}, 0};
constexpr Color OTHER_FILL = {0.55, 0.20, 0.55, 0.15};

}  // namespace

const LayerStyle& StyleOf(LayerKind kind) {
  static const LayerStyle land = {LAND, COAST};
  static const LayerStyle lakes = {SEA, RIVER};
  static const LayerStyle rivers = {SEA, RIVER};
  static const LayerStyle borders = {{}, BORDER};
  static const LayerStyle other = {OTHER_FILL, OTHER};
  switch (kind) {
    case LayerKind::Land:
      return land;
    case LayerKind::Lakes:
      return lakes;
    case LayerKind::Rivers:
      return rivers;
    case LayerKind::Borders:
      return borders;
    case LayerKind::Other:
      break;
  }
  return other;
}

void SetColor(cairo_t* cairo, const Color& color) {
  cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
}

void Stroke(cairo_t* cairo, const LineStyle& line, double scale) {
  double dash[4];
  for (int i = 0; i < line.dashes; ++i) dash[i] = line.dash[i] * scale;
  cairo_set_dash(cairo, dash, line.dashes, 0);
  cairo_set_line_width(cairo, line.width * scale);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cairo, line.dashes ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_ROUND);
  SetColor(cairo, line.color);
  cairo_stroke(cairo);
}

namespace {

void SelectFont(cairo_t* cairo, double size, bool bold) {
  cairo_select_font_face(cairo, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                         bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cairo, size);
}

}  // namespace

double TextWidth(cairo_t* cairo, const std::string& text, double size, bool bold) {
  SelectFont(cairo, size, bold);
  cairo_text_extents_t extents;
  cairo_text_extents(cairo, text.c_str(), &extents);
  return extents.x_advance;
}

void WriteText(cairo_t* cairo, const std::string& text, double x, double y, double size, Align align,
               bool bold, bool halo) {
  const double width = TextWidth(cairo, text, size, bold);
  cairo_move_to(cairo, x - (align == Align::Left ? 0 : align == Align::Centre ? width / 2 : width), y);
  if (halo) {
    cairo_text_path(cairo, text.c_str());
    cairo_set_line_width(cairo, size / 4);
    cairo_set_dash(cairo, nullptr, 0, 0);
    cairo_set_source_rgba(cairo, 1, 1, 1, 0.7);
    cairo_stroke_preserve(cairo);
    SetColor(cairo, INK);
    cairo_fill(cairo);
    return;
  }
  SetColor(cairo, INK);
  cairo_show_text(cairo, text.c_str());
  cairo_new_path(cairo);
}
