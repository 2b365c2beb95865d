#include "layers/layer.h"

void UseFill(K7Grfx& g, const ThemeEntry& entry) {
  const Color& c = entry.fill;
  g.FillColor(c.red / 255.0, c.green / 255.0, c.blue / 255.0, c.alpha / 255.0);
}

void UseLine(K7Grfx& g, const ThemeEntry& entry, double scale) {
  const Color& c = entry.line;
  g.LineColor(c.red / 255.0, c.green / 255.0, c.blue / 255.0, c.alpha / 255.0);
  double dashes[std::tuple_size_v<decltype(entry.dash)>];
  int count = 0;
  for (const double length : entry.dash)
    if (length > 0) dashes[count++] = length * scale;
  g.LineStyle(entry.width * scale, count > 0 ? dashes : nullptr, count);
}
