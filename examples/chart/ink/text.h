// Lettering of the chart.
#pragma once

#include "ink/theme.h"

#include <cairo.h>

#include <string>

enum class Align { Left, Centre, Right };

struct Lettering {
  double size;
  Align align = Align::Left;
  bool bold = false;
  bool halo = false;                 ///< stands out from what lies under it
  ThemeItem item = ThemeItem::Text;  ///< whose colour it has
};

/// What a thing's lettering is written in: Text has a fill, all else a line.
const Color& InkOf(const Theme& theme, ThemeItem item);

/// Writes one line of UTF-8 text, its baseline at `y`.
void WriteText(cairo_t* cairo, const Theme& theme, const std::string& text, double x, double y,
               const Lettering& lettering);
double TextWidth(cairo_t* cairo, const std::string& text, double size, bool bold = false);

/// Text of the library, which is windows-1252, as UTF-8.
std::string Utf8(const char* text);
