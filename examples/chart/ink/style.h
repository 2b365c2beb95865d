// Colours, lines and lettering of the chart.
#pragma once

#include <cairo.h>

#include <string>

enum class LayerKind { Land, Lakes, Rivers, Borders, Other };

struct Color {
  double red, green, blue, alpha;
};

/// Widths and dashes in pixels of a sheet of ordinary size.
struct LineStyle {
  Color color;
  double width;
  double dash[4];
  int dashes;
};

struct LayerStyle {
  Color fill;
  LineStyle line;
};

inline constexpr Color PAPER = {0.992, 0.990, 0.980, 1};
inline constexpr Color SEA = {0.812, 0.890, 0.929, 1};
inline constexpr Color LAND = {0.957, 0.937, 0.863, 1};
inline constexpr Color INK = {0.13, 0.18, 0.24, 1};

inline constexpr LineStyle LAKE_LINE = {{0.612, 0.773, 0.871, 1}, 3.2, {}, 0};
inline constexpr LineStyle GRATICULE_LINE = {{0.25, 0.35, 0.45, 0.35}, 0.6, {}, 0};
inline constexpr LineStyle LIMB_LINE = {{0.35, 0.48, 0.58, 1}, 1.2, {}, 0};
inline constexpr LineStyle FRAME_LINE = {INK, 1, {}, 0};
inline constexpr LineStyle FRAME_OUTER_LINE = {INK, 2.5, {}, 0};

const LayerStyle& StyleOf(LayerKind kind);

void SetColor(cairo_t* cairo, const Color& color);
/// Strokes the current path and drops it.
void Stroke(cairo_t* cairo, const LineStyle& line, double scale);

enum class Align { Left, Centre, Right };
/// Writes one line of UTF-8 text, its baseline at `y`. With `halo` it stands out from what lies under it.
void WriteText(cairo_t* cairo, const std::string& text, double x, double y, double size, Align align,
               bool bold = false, bool halo = false);
double TextWidth(cairo_t* cairo, const std::string& text, double size, bool bold = false);
