#include "ink/text.h"

#include "ink/pen.h"
#include "store/text_1252.h"

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

const Color& InkOf(const Theme& theme, ThemeItem item) {
  return item == ThemeItem::Text ? theme[item].fill : theme[item].line;
}

void WriteText(cairo_t* cairo, const Theme& theme, const std::string& text, double x, double y,
               const Lettering& lettering) {
  const double width = TextWidth(cairo, text, lettering.size, lettering.bold);
  const double share = lettering.align == Align::Left ? 0 : lettering.align == Align::Centre ? 0.5 : 1;
  cairo_move_to(cairo, x - width * share, y);
  if (lettering.halo) {
    cairo_text_path(cairo, text.c_str());
    cairo_set_line_width(cairo, lettering.size / 4);
    cairo_set_dash(cairo, nullptr, 0, 0);
    SetColor(cairo, theme[ThemeItem::Halo].fill);
    cairo_stroke_preserve(cairo);
    SetColor(cairo, InkOf(theme, lettering.item));
    cairo_fill(cairo);
    return;
  }
  SetColor(cairo, InkOf(theme, lettering.item));
  cairo_show_text(cairo, text.c_str());
  cairo_new_path(cairo);
}

std::string Utf8(const char* text) { return Utf8Of1252(text); }
