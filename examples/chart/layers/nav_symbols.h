// Symbols of navigation data as printed charts have them.
#pragma once

#include "ink/theme.h"

#include <k7/projection/grfx.h>

#include <cmath>
#include <span>

/// From one end to the other, and its breadth, in device pixels.
struct RunwayLine {
  double x1, y1, x2, y2, width;
};

/// A compass rose as it lies on the ground: where its radials 360 and 090 meet the ring, seen from its
/// middle, in device pixels. Only where a map keeps angles these are at right angles, and the ring is round.
struct RoseShape {
  double northX = 0, northY = 0;
  double eastX = 0, eastY = 0;

  double Right(double radial) const;  ///< of the place on the ring, by degrees
  double Down(double radial) const;
};

// In the order of SymbolKind.
enum class AirportSymbol { Towered, Other, Heliport, Seaplane, Private };
enum class NavaidSymbol { VOR, VORDME, VORTAC, TACAN, DME, NDB };

SymbolKind KindOfSymbol(AirportSymbol symbol);
SymbolKind KindOfSymbol(NavaidSymbol symbol);
inline SymbolKind KindOfFix(bool solid) { return solid ? SymbolKind::AirwayFix : SymbolKind::Fix; }

/// Draws symbols in a theme entry's ink: its line, and its fill as what is left open; or the theme's pictures
/// in their place. Sizes are those of a sheet of ordinary size, times `scale`.
class SymbolPen {
 public:
  /// The pictures stay the caller's. None is drawn larger than so many pixels of an ordinary sheet.
  SymbolPen(K7Grfx& g, const ThemeEntry& entry, double scale, const SymbolImages& images,
            double largestImage = INFINITY);

  /// \name Symbols about a device point
  /// @{
  /// `runway`: the direction of the longest runway, degrees clockwise from up; not a number without one.
  void Airport(AirportSymbol symbol, double x, double y, double radius, double runway);
  void Navaid(NavaidSymbol symbol, double x, double y);
  void Fix(double x, double y, bool solid);
  void Rose(double x, double y, const RoseShape& rose);
  /// The runways of an airport, true to the ground.
  void Runways(std::span<const RunwayLine> runways, bool solid);
  /// @}

 private:
  enum class Ink { Outline, Open, Solid };
  struct Point {
    double x, y;
  };

  // In units of an ordinary pixel about the symbol's middle.
  void At(double x, double y, double turn);
  Point Device(double x, double y) const;
  void Polygon(const Point* points, int count, Ink ink);
  void Regular(int corners, double radius, double first, Ink ink);
  void Circle(double radius, Ink ink) { Regular(CIRCLE_CORNERS, radius, 0, ink); }
  void Lines(const Point (*lines)[2], int count, double width, bool open);
  void Bars(Ink ink);
  bool Image(SymbolKind kind, double x, double y);
  void Dots();
  void UseInk(bool open, double width);

  static constexpr int CIRCLE_CORNERS = 36;

  K7Grfx& m_g;
  const ThemeEntry& m_entry;
  double m_scale;
  const SymbolImages& m_images;
  double m_largestImage;
  double m_x = 0, m_y = 0, m_cos = 1, m_sin = 0;
};
