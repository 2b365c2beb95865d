#include "layers/nav_symbols.h"

#include "layers/layer.h"
#include "layers/symbol_size.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace {

constexpr double RADIAN = std::numbers::pi / 180;

// The hexagon of a VOR, its corners left and right; with a DME it stands in a square, and smaller between the
// bars of a TACAN.
constexpr double HEXAGON = 7;
constexpr double SQUARE = 7;
constexpr double BARRED_HEXAGON = 5.4;
constexpr double BAR = 2.3;
constexpr double CENTRE_DOT = 1.2;

// The dots around an NDB: the outermost stand around an airport of the same place.
constexpr struct {
  double radius;
  int count;
} STIPPLES[] = {{3.4, 9}, {5.2, 14}, {7.1, 19}};
constexpr double STIPPLE = 1.1;
constexpr double NDB_RING = 1.9;

constexpr double FIX = SymbolRadius(K7NAV_ENROUTE_FIX);

// What is written within the ring of an airport that not everybody can use, for a ring of radius 1.
constexpr double LETTER_H[][4] = {{-0.35, -0.5, -0.35, 0.5}, {0.35, -0.5, 0.35, 0.5}, {-0.35, 0, 0.35, 0}};
constexpr double LETTER_R[][4] = {{-0.3, -0.5, -0.3, 0.55},  {-0.3, -0.5, 0.15, -0.5},
                                  {0.15, -0.5, 0.33, -0.25}, {0.33, -0.25, 0.15, 0.03},
                                  {0.15, 0.03, -0.3, 0.03},  {0, 0.03, 0.35, 0.55}};
constexpr double ANCHOR[][4] = {{0, -0.6, 0, 0.6},    {-0.28, -0.35, 0.28, -0.35}, {-0.5, 0.15, -0.28, 0.5},
                                {-0.28, 0.5, 0, 0.6}, {0, 0.6, 0.28, 0.5},         {0.28, 0.5, 0.5, 0.15}};

// Ticks of a compass rose: at multiples of so many degrees, so long, on roses of at least this radius.
constexpr struct {
  int degrees;
  double length, fromRadius;
} TICKS[] = {{30, 8, 0}, {10, 5.5, 0}, {5, 3.5, 60}};

}  // namespace

SymbolKind KindOfSymbol(AirportSymbol symbol) {
  return static_cast<SymbolKind>(static_cast<int>(SymbolKind::ToweredAirport) + static_cast<int>(symbol));
}

SymbolKind KindOfSymbol(NavaidSymbol symbol) {
  return static_cast<SymbolKind>(static_cast<int>(SymbolKind::VOR) + static_cast<int>(symbol));
}

SymbolPen::SymbolPen(K7Grfx& g, const ThemeEntry& entry, double scale, const SymbolImages& images,
                     double largestImage)
    : m_g(g), m_entry(entry), m_scale(scale), m_images(images), m_largestImage(largestImage) {}

// False for a kind without a picture.
bool SymbolPen::Image(SymbolKind kind, double x, double y) {
  const SymbolImage* const image = m_images.Of(kind);
  if (!image) return false;
  const int width = image->bitmap.Width(), height = image->bitmap.Height();
  const double scale = m_scale * std::min(1.0, m_largestImage / std::max(width, height));
  m_g.Image(image->bitmap.Pixels(), width, height, x - width * scale / 2, y - height * scale / 2,
            x + width * scale / 2, y + height * scale / 2);
  return true;
}

void SymbolPen::At(double x, double y, double turn) {
  m_x = x;
  m_y = y;
  m_cos = std::cos(turn * RADIAN) * m_scale;
  m_sin = std::sin(turn * RADIAN) * m_scale;
}

SymbolPen::Point SymbolPen::Device(double x, double y) const {
  return {m_x + x * m_cos - y * m_sin, m_y + x * m_sin + y * m_cos};
}

// `width` of the line, in ordinary pixels; dashes are for lines on the ground.
void SymbolPen::UseInk(bool open, double width) {
  ThemeEntry ink = m_entry;
  if (open) ink.line = m_entry.fill;
  ink.width = width;
  ink.dash = {};
  UseLine(m_g, ink, m_scale);
  ink.fill = m_entry.line;
  UseFill(m_g, ink);
}

void SymbolPen::Polygon(const Point* points, int count, Ink ink) {
  const auto trace = [&] {
    for (int i = 0; i < count; ++i) {
      const Point p = Device(points[i].x, points[i].y);
      if (i == 0)
        m_g.MoveTo(p.x, p.y);
      else
        m_g.LineTo(p.x, p.y);
    }
    m_g.ClosePath();
  };
  UseInk(false, m_entry.width);
  if (ink == Ink::Open) UseFill(m_g, m_entry);
  if (ink != Ink::Outline) {
    trace();
    m_g.Fill();
  }
  if (ink != Ink::Solid) {
    trace();
    m_g.Stroke();
  }
}

void SymbolPen::Regular(int corners, double radius, double first, Ink ink) {
  Point points[CIRCLE_CORNERS];
  for (int i = 0; i < corners; ++i) {
    const double angle = (first + i * 360.0 / corners) * RADIAN;
    points[i] = {radius * std::sin(angle), -radius * std::cos(angle)};
  }
  Polygon(points, corners, ink);
}

void SymbolPen::Lines(const Point (*lines)[2], int count, double width, bool open) {
  UseInk(open, width);
  for (int i = 0; i < count; ++i) {
    const Point from = Device(lines[i][0].x, lines[i][0].y), to = Device(lines[i][1].x, lines[i][1].y);
    m_g.MoveTo(from.x, from.y);
    m_g.LineTo(to.x, to.y);
  }
  m_g.Stroke();
}

void SymbolPen::Airport(AirportSymbol symbol, double x, double y, double radius, double runway) {
  if (Image(KindOfSymbol(symbol), x, y)) return;
  At(x, y, 0);
  Circle(radius, symbol == AirportSymbol::Towered ? Ink::Solid : Ink::Open);
  const auto write = [&]<size_t COUNT>(const double(&strokes)[COUNT][4]) {
    Point lines[COUNT][2];
    for (size_t i = 0; i < COUNT; ++i) {
      lines[i][0] = {strokes[i][0] * radius, strokes[i][1] * radius};
      lines[i][1] = {strokes[i][2] * radius, strokes[i][3] * radius};
    }
    Lines(lines, COUNT, 1, false);
  };
  switch (symbol) {
    case AirportSymbol::Heliport:
      return write(LETTER_H);
    case AirportSymbol::Seaplane:
      return write(ANCHOR);
    case AirportSymbol::Private:
      return write(LETTER_R);
    default:
      break;
  }
  if (std::isnan(runway)) return;
  At(x, y, runway);
  const double half = radius * 0.62;
  const Point lines[][2] = {{{0, -half}, {0, half}}};
  Lines(lines, 1, radius * 0.34, symbol == AirportSymbol::Towered);
}

// All edges first: where runways cross, neither ends.
void SymbolPen::Runways(std::span<const RunwayLine> runways, bool solid) {
  static const double NARROWEST = 2, EDGE = 1.8;
  At(0, 0, 0);
  for (const bool edge : {true, false})
    for (const RunwayLine& r : runways) {
      const double width = std::max(r.width / m_scale, NARROWEST);
      const Point line[][2] = {{{r.x1 / m_scale, r.y1 / m_scale}, {r.x2 / m_scale, r.y2 / m_scale}}};
      Lines(line, 1, edge ? width + EDGE : width, edge == solid);
    }
}

// On every other side of the hexagon.
void SymbolPen::Bars(Ink ink) {
  const double side = BARRED_HEXAGON / 2, inner = BARRED_HEXAGON * std::sqrt(0.75);
  for (const double normal : {60.0, 180.0, 300.0}) {
    const double sin = std::sin(normal * RADIAN), cos = std::cos(normal * RADIAN);
    const auto corner = [&](double along, double out) {
      return Point{along * cos + out * sin, along * sin - out * cos};
    };
    const Point bar[] = {corner(-side, inner), corner(-side, inner + BAR), corner(side, inner + BAR),
                         corner(side, inner)};
    Polygon(bar, 4, ink);
  }
}

void SymbolPen::Dots() {
  UseInk(false, STIPPLE);
  for (const auto& [radius, count] : STIPPLES)
    for (int i = 0; i < count; ++i) {
      const double angle = i * 360.0 / count * RADIAN;
      const Point p = Device(radius * std::sin(angle), -radius * std::cos(angle));
      // A line without length is a dot.
      m_g.MoveTo(p.x, p.y);
      m_g.LineTo(p.x, p.y);
    }
  m_g.Stroke();
}

void SymbolPen::Navaid(NavaidSymbol symbol, double x, double y) {
  if (Image(KindOfSymbol(symbol), x, y)) return;
  At(x, y, 0);
  const double square = symbol == NavaidSymbol::DME ? 4.6 : SQUARE;
  const Point box[] = {{-square, -square}, {square, -square}, {square, square}, {-square, square}};
  switch (symbol) {
    case NavaidSymbol::VORDME:
      Polygon(box, 4, Ink::Open);
      [[fallthrough]];
    case NavaidSymbol::VOR:
      Regular(6, HEXAGON, 90, Ink::Open);
      break;
    case NavaidSymbol::VORTAC:
      Regular(6, BARRED_HEXAGON, 90, Ink::Open);
      Bars(Ink::Solid);
      break;
    case NavaidSymbol::TACAN:
      Regular(6, BARRED_HEXAGON, 90, Ink::Open);
      Bars(Ink::Open);
      break;
    case NavaidSymbol::DME:
      Polygon(box, 4, Ink::Open);
      break;
    case NavaidSymbol::NDB:
      Dots();
      Circle(NDB_RING, Ink::Open);
      return Circle(CENTRE_DOT * 0.6, Ink::Solid);
  }
  Circle(CENTRE_DOT, Ink::Solid);
}

void SymbolPen::Fix(double x, double y, bool solid) {
  if (Image(KindOfFix(solid), x, y)) return;
  At(x, y, 0);
  Regular(3, FIX, 0, solid ? Ink::Solid : Ink::Open);
}

double RoseShape::Right(double radial) const {
  return northX * std::cos(radial * RADIAN) + eastX * std::sin(radial * RADIAN);
}

double RoseShape::Down(double radial) const {
  return northY * std::cos(radial * RADIAN) + eastY * std::sin(radial * RADIAN);
}

void SymbolPen::Rose(double x, double y, const RoseShape& rose) {
  At(x, y, 0);
  const double size = std::sqrt(std::fabs(rose.northX * rose.eastY - rose.northY * rose.eastX)) / m_scale;
  const auto at = [&](double radial, double inward) {
    const double share = (1 - inward / size) / m_scale;
    return Point{rose.Right(radial) * share, rose.Down(radial) * share};
  };
  Point ring[120];
  for (int i = 0; i < 120; ++i) ring[i] = at(i * 3, 0);
  Polygon(ring, 120, Ink::Outline);
  Point ticks[72][2];
  int count = 0;
  for (int degrees = 0; degrees < 360; degrees += 5) {
    const auto* const tick = std::find_if(std::begin(TICKS), std::end(TICKS), [&](const auto& row) {
      return degrees % row.degrees == 0 && size >= row.fromRadius;
    });
    if (tick == std::end(TICKS)) continue;
    ticks[count][0] = at(degrees, 0);
    ticks[count++][1] = at(degrees, tick->length);
  }
  Lines(ticks, count, m_entry.width, false);
  // The arrow of the radial 360.
  const double spread = 2.6 / size / RADIAN;
  const Point arrow[] = {at(0, 1), at(-spread, 9), at(spread, 9)};
  Polygon(arrow, 3, Ink::Solid);
}
