#include <k7/foundation/error_string.h>
#include <k7/geometry/dev_geometry.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double TO_RADIANS = 0.017453292519943295;
constexpr double TO_DEGREES = 57.29577951308232;

int32_t ToPixel(double v) {
  if (std::isnan(v)) return 0;
  return static_cast<int32_t>(std::clamp(v, -2147483648.0, 2147483647.0));
}

// Half away from zero.
int32_t Round(double v) { return ToPixel(v > 0 ? v + 0.5 : v - 0.5); }

// 32-bit sums and differences wrap, whatever coordinates a host has.
int32_t Plus(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
int32_t Minus(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// Down, and up only beyond a half: an exact half goes down.
double RoundHalfDown(double v) {
  const double down = std::floor(v);
  return down + (v - down > 0.5);
}

// Whether v lies outside the closed range of two ends, in either order.
bool IsBeyond(int32_t end1, int32_t end2, double v) { return (end1 - v) * (end2 - v) > 0; }

}  // namespace

void K7DevPt::EndPoint(const K7DevPt& origin, double angle, double distance) {
  const double a = angle * TO_RADIANS;
  *this =
      K7DevPt(Plus(origin.x, Round(std::sin(a) * distance)), Minus(origin.y, Round(std::cos(a) * distance)));
}

void K7DevPt::Init(double px, double py) { *this = K7DevPt(Round(px), Round(py)); }

double K7DevPt::Distance(const K7DevPt& other) const {
  const double dx = Minus(other.x, x), dy = Minus(y, other.y);
  return std::sqrt(dx * dx + dy * dy);
}

double K7DevPt::Direction(const K7DevPt& other) const {
  const double bearing = 90 - std::atan2(Minus(y, other.y), Minus(other.x, x)) * TO_DEGREES;
  return bearing < 0 ? bearing + 360 : bearing;
}

void K7DevPt::Rotate(const K7DevPt& centre, double angle) {
  const double a = angle * TO_RADIANS, c = std::cos(a), s = std::sin(a);
  const double dx = Minus(x, centre.x), dy = Minus(centre.y, y);
  *this = K7DevPt(Plus(centre.x, Round(dx * c + dy * s)), Minus(centre.y, Round(dy * c - dx * s)));
}

int32_t K7DevRect::Width() const { return Minus(right, left); }
int32_t K7DevRect::Height() const { return Minus(bottom, top); }
K7DevPt K7DevRect::Center() const { return {Plus(left, right) / 2, Plus(top, bottom) / 2}; }

void K7DevRect::Offset(int32_t dx, int32_t dy) {
  Init(Plus(left, dx), Plus(top, dy), Plus(right, dx), Plus(bottom, dy));
}
void K7DevRect::Inflate(int32_t dx, int32_t dy) {
  Init(Minus(left, dx), Minus(top, dy), Plus(right, dx), Plus(bottom, dy));
}
void K7DevRect::Deflate(int32_t dx, int32_t dy) {
  Init(Plus(left, dx), Plus(top, dy), Minus(right, dx), Minus(bottom, dy));
}

void K7DevRect::Include(int32_t px, int32_t py) { Union(*this, {px, py, px, py}); }

void K7DevRect::Union(const K7DevRect& a, const K7DevRect& b) {
  Init(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
       std::max(a.bottom, b.bottom));
}

bool K7DevRect::Intersect(const K7DevRect& a, const K7DevRect& b) {
  Init(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
       std::min(a.bottom, b.bottom));
  if (right < left || bottom < top) SetNull();
  return !IsNull();
}

void K7DevLine::Init(int32_t px1, int32_t py1, int32_t px2, int32_t py2) {
  x1 = px1;
  y1 = py1;
  x2 = px2;
  y2 = py2;
  const double dx = Minus(x2, x1), dy = Minus(y2, y1);
  length = std::sqrt(dx * dx + dy * dy);
  slope = Vertical() ? 0 : dy / dx;
  intercept = Vertical() ? 0 : y1 - x1 * slope;
}

void K7DevLine::OrthoDist(int32_t px, int32_t py, double& across, double& along) const {
  const double ux = Minus(x1, x2) / length, uy = Minus(y2, y1) / length;
  const double dx = Minus(px, x1), dy = Minus(py, y1);
  across = dx * uy + dy * ux;
  along = dy * uy - dx * ux;
}

void K7DevLine::PointAtFraction(double fraction, K7DevPt& out) const {
  out.Init(x1 + Minus(x2, x1) * fraction, y1 + Minus(y2, y1) * fraction);
}

bool K7DevLine::Intersect(const K7DevLine& other, K7DevPt* out) const {
  if (Vertical() ? other.Vertical() : !other.Vertical() && slope == other.slope) return false;
  double x, y;
  if (Vertical()) {
    x = x1;
    y = other.YValue(x);
  } else {
    x = other.Vertical() ? other.x1 : (other.intercept - intercept) / (slope - other.slope);
    y = slope * x + intercept;
  }
  if (out) out->Init(x, y);
  // Rounded otherwise than the point, on purpose: callers depend on which of two neighbours owns a half.
  x = RoundHalfDown(x);
  if (IsBeyond(x1, x2, x) || IsBeyond(other.x1, other.x2, x)) return false;
  y = RoundHalfDown(y);
  return !IsBeyond(y1, y2, y) && !IsBeyond(other.y1, other.y2, y);
}

namespace {

// A segment parallel to an axis against the two sides that it runs towards, and the two that it runs along.
// Positions run along the segment, `at` is across it. The crossings, as positions and places across.
struct Crossing {
  int32_t along, across;
};

int CrossParallel(int32_t at, int32_t from, int32_t to, int32_t near, int32_t far, int32_t side1,
                  int32_t side2, Crossing (&found)[2]) {
  if (at == side1 || at == side2) {
    found[0] = {std::max(near, from), at};
    found[1] = {std::min(to, far), at};
    return 2;
  }
  if (to < far) {
    found[0] = {near, at};
    return 1;
  }
  if (from > near) {
    found[0] = {far, at};
    return 1;
  }
  found[0] = {near, at};
  found[1] = {far, at};
  return 2;
}

}  // namespace

int K7DevLine::IntersectRect(const K7DevRect& rect, K7DevPt* out) const {
  const auto [minX, maxX] = std::minmax(x1, x2);
  const auto [minY, maxY] = std::minmax(y1, y2);
  if (maxY < rect.top || minY > rect.bottom || maxX < rect.left || minX > rect.right) return 0;
  if (minY > rect.top && maxY < rect.bottom && minX > rect.left && maxX < rect.right) return 0;
  if (!Vertical() && y1 != y2) return CrossSides(rect, out);

  Crossing found[2];
  const int count = Vertical()
                        ? CrossParallel(x1, minY, maxY, rect.top, rect.bottom, rect.left, rect.right, found)
                        : CrossParallel(y1, minX, maxX, rect.left, rect.right, rect.top, rect.bottom, found);
  for (int i = 0; out && i < count; i++) {
    out[i] = Vertical() ? K7DevPt(found[i].across, found[i].along) : K7DevPt(found[i].along, found[i].across);
  }
  return count;
}

int K7DevLine::CrossSides(const K7DevRect& rect, K7DevPt* out) const {
  const auto [minX, maxX] = std::minmax(x1, x2);
  const auto [minY, maxY] = std::minmax(y1, y2);
  const double yLeft = slope * rect.left + intercept, yRight = slope * rect.right + intercept;
  const double xTop = (rect.top - intercept) / slope, xBottom = (rect.bottom - intercept) / slope;
  const auto isAcross = [&](double x) { return rect.left <= x && x <= rect.right; };
  int count = 0;
  const auto add = [&](double x, double y) {
    if (out) {
      out[count].Init(x, y);
      if (count == 1 && out[0] == out[1]) return;  // a corner, met twice
    }
    count++;
  };
  // The left side leaves its lower corner to the bottom.
  if (yLeft >= rect.top && yLeft < rect.bottom && minX <= rect.left) add(rect.left, yLeft);
  if (isAcross(xTop) && minY <= rect.top && rect.top <= maxY) add(xTop, rect.top);
  if (count < 2 && rect.top <= yRight && yRight <= rect.bottom && minX <= rect.right && rect.right <= maxX) {
    add(rect.right, yRight);
  }
  if (count < 2 && isAcross(xBottom) && minY <= rect.bottom && rect.bottom <= maxY) add(xBottom, rect.bottom);
  return count;
}

K7DevPolygon::K7DevPolygon() : K7Array(sizeof(K7DevPt), 8) {}
K7DevPolygon::K7DevPolygon(const K7DevPolygon* other) : K7DevPolygon() { Init(other); }
K7DevPolygon::K7DevPolygon(const K7DevPt* points, int count) : K7DevPolygon() { Init(points, count); }

void K7DevPolygon::Init(const K7DevPolygon* other) {
  if (other) Init(other->GetPoint(0), other->Count());
}

void K7DevPolygon::Init(const K7DevPt* points, int count) {
  if (points && count > 0) Insert(points, -1, count);
}

int K7DevPolygon::AddPoint(const K7DevPt* point) {
  if (!point) return K7_ERR_BAD_ARGUMENT;
  const K7DevPt kept = *point;  // it may be one of ours, which growing moves
  return std::min(K7Array::operator+=(&kept), 0);
}

K7DevPt* K7DevPolygon::GetPoint(int index) const {
  return ValidIdx(index) ? reinterpret_cast<K7DevPt*>(At(index)) : nullptr;
}

bool K7DevPolygon::PointIn(const K7DevPt& p) const {
  if (Count() < 3) return false;
  bool inside = false;
  const K7DevPt* const points = GetPoint(0);
  const K7DevPt* prev = points + Count() - 1;
  bool wasAbove = prev->y < p.y;
  for (const K7DevPt *cur = points, *const end = points + Count(); cur < end; prev = cur++) {
    const bool isAbove = cur->y < p.y;
    if (isAbove != wasAbove) {
      wasAbove = isAbove;
      if (cur->x > p.x && prev->x > p.x) continue;
      const double fraction = static_cast<double>(Minus(p.y, cur->y)) * Minus(prev->x, cur->x);
      const double x = fraction / Minus(prev->y, cur->y) + cur->x;
      if (p.x == x) return true;
      if (p.x > x) inside = !inside;
    } else if (cur->y == p.y && prev->y == p.y) {
      const auto [low, high] = std::minmax(prev->x, cur->x);
      if (low <= p.x && p.x <= high) return true;
    }
  }
  return inside;
}

bool K7DevPolygon::Intersect(const K7DevPolygon& other) const {
  // Edges meet in pairs of the same index: callers cut rings that run side by side.
  const int pairs = std::min(Count(), other.Count());
  for (int i = 0; i < pairs; i++) {
    const K7DevLine edge(*GetPoint(i), *GetPoint((i + 1) % Count()));
    if (edge.Intersect(K7DevLine(*other.GetPoint(i), *other.GetPoint((i + 1) % other.Count())))) return true;
  }
  return false;
}

int K7DevPolygon::Intersect(const K7DevLine& line, int* count, K7Array* points) const {
  K7Array own(sizeof(K7DevPt), 32);
  K7Array& found = points ? *points : own;
  if (count) *count = 0;
  for (int i = 0; i < Count(); i++) {
    K7DevPt crossing;
    if (!line.Intersect(K7DevLine(*GetPoint(i), *GetPoint((i + 1) % Count())), &crossing)) continue;
    if (!count) return 1;
    bool isKnown = false;
    for (int j = 0; j < found.Count() && !isKnown; j++)
      isKnown = *static_cast<K7DevPt*>(found.Get(j)) == crossing;
    if (isKnown) continue;
    if (const int err = found += &crossing; err < 0) return err;
    ++*count;
  }
  return count && *count >= 1 ? 1 : 0;
}

bool K7DevCircle::Intersect(const K7DevRect& rect) const {
  const K7DevPt middle = rect.Center();
  const int64_t dx = std::abs(int64_t{Minus(centre.x, middle.x)});
  const int64_t dy = std::abs(int64_t{Minus(centre.y, middle.y)});
  const int32_t halfWidth = rect.Width() / 2, halfHeight = rect.Height() / 2;
  if (static_cast<double>(dx) > halfWidth + radius || static_cast<double>(dy) > halfHeight + radius)
    return false;
  if (dx <= halfWidth || dy <= halfHeight) return true;
  const uint32_t x = static_cast<uint32_t>(dx - halfWidth), y = static_cast<uint32_t>(dy - halfHeight);
  return radius * radius >= static_cast<int32_t>(x * x + y * y);
}
