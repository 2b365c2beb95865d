#include "layers/aerodrome_marks.h"

#include <cmath>
#include <numbers>

void AddCircle(K7Grfx& g, double x, double y, double radius) {
  static const int CHORDS = 48;
  for (int i = 0; i < CHORDS; ++i) {
    const double turn = 2 * std::numbers::pi * i / CHORDS;
    const double dx = x + radius * std::cos(turn), dy = y + radius * std::sin(turn);
    if (i == 0)
      g.MoveTo(dx, dy);
    else
      g.LineTo(dx, dy);
  }
  g.ClosePath();
}

void AddBox(K7Grfx& g, double x, double y, double halfWidth, double halfHeight) {
  g.MoveTo(x - halfWidth, y - halfHeight);
  g.LineTo(x + halfWidth, y - halfHeight);
  g.LineTo(x + halfWidth, y + halfHeight);
  g.LineTo(x - halfWidth, y + halfHeight);
  g.ClosePath();
}

void AddCross(K7Grfx& g, double x, double y, double arm) {
  g.MoveTo(x - arm, y - arm);
  g.LineTo(x + arm, y + arm);
  g.MoveTo(x - arm, y + arm);
  g.LineTo(x + arm, y - arm);
}
