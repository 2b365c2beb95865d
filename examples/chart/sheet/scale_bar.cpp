#include "sheet/scale_bar.h"

#include "ink/style.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

// The longest of 1, 2 or 5 times a power of ten.
double RoundLength(double most) {
  const double power = std::pow(10, std::floor(std::log10(most)));
  for (const double digit : {5.0, 2.0})
    if (digit * power <= most) return digit * power;
  return power;
}

// "1 : 2,400,000", to two digits: the pixel is no finer.
std::string Fraction(double nmPerPixel) {
  static const double METRES_PER_NM = 1852;
  static const double METRES_PER_PIXEL = 0.0254 / 96;
  const double exact = nmPerPixel * METRES_PER_NM / METRES_PER_PIXEL;
  const double unit = std::pow(10, std::max(std::floor(std::log10(exact)) - 1, 0.0));
  K7String digits;
  digits.Format("%.0f", std::round(exact / unit) * unit);
  std::string text = "1 : ";
  for (int i = 0, length = digits.Len(); i < length; ++i) {
    if (i > 0 && (length - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

}  // namespace

void DrawScaleBar(cairo_t* cairo, double nmPerPixel, double right, double y, double size, double room) {
  static const int FIELDS = 4;
  const double length = RoundLength(std::min(room, size * 22) * nmPerPixel);
  const double pixels = length / nmPerPixel;
  const double left = right - pixels;
  const double height = size * 0.45;
  for (int i = 0; i < FIELDS; ++i) {
    cairo_rectangle(cairo, left + pixels * i / FIELDS, y - height, pixels / FIELDS, height);
    SetColor(cairo, i % 2 ? PAPER : INK);
    cairo_fill(cairo);
  }
  cairo_rectangle(cairo, left, y - height, pixels, height);
  Stroke(cairo, FRAME_LINE, size / 12);
  K7String whole;
  whole.Format(length < 1 ? "%.2f NM" : "%.0f NM", length);
  WriteText(cairo, "0", left, y - size * 0.75, size * 0.85, Align::Centre);
  WriteText(cairo, std::string(whole), right, y - size * 0.75, size * 0.85, Align::Right);
  WriteText(cairo, Fraction(nmPerPixel) + " at the centre", right, y + size * 1.5, size * 0.85, Align::Right);
}
