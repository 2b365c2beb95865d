// Device-space geometry: points, rectangles, segments, polygons and circles of whole pixels.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>

#include <cstdint>

// x grows to the right, y downwards. Angles are degrees clockwise from "up", so that 90 points to the right.
// What these operations round is compared for equality elsewhere: the rules are part of the contract.
// "Rounded" is half away from zero; a value that no pixel has is limited to the nearest, not-a-number is 0.
// Whole-number differences wrap at 32 bits.
//
// Values: const operations may be called by any number of threads.

/// A pixel.
struct K7_API K7DevPt {
  int32_t x = 0;
  int32_t y = 0;

  K7DevPt() = default;
  constexpr K7DevPt(int32_t px, int32_t py) : x(px), y(py) {}
  /// The point at a distance from `origin` along an angle, rounded.
  K7DevPt(const K7DevPt& origin, double angle, double distance) { EndPoint(origin, angle, distance); }

  void EndPoint(const K7DevPt& origin, double angle, double distance);
  /// Stores both coordinates, rounded.
  void Init(double px, double py);
  bool operator==(const K7DevPt& other) const = default;
  double Distance(const K7DevPt& other) const;
  /// Bearing towards `other`, [0, 360); 90 between identical points.
  double Direction(const K7DevPt& other) const;
  /// Turns this point clockwise on the screen about `centre` by an angle in degrees, rounded.
  void Rotate(const K7DevPt& centre, double angle);
};
static_assert(sizeof(K7DevPt) == 8);

/// A rectangle with all four borders. Nothing orders its sides: with right below left it holds nothing. All
/// four 0 is "null", which has no other meaning in `Include` and `Union`.
struct K7_API K7DevRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;

  K7DevRect() = default;
  constexpr K7DevRect(int32_t l, int32_t t, int32_t r, int32_t b) : left(l), top(t), right(r), bottom(b) {}
  void Init(int32_t l, int32_t t, int32_t r, int32_t b) { *this = K7DevRect(l, t, r, b); }
  void SetNull() { *this = K7DevRect(); }
  bool IsNull() const { return *this == K7DevRect(); }

  int32_t Width() const;
  int32_t Height() const;
  /// Halves truncated toward zero.
  K7DevPt Center() const;
  void Offset(int32_t dx, int32_t dy);
  /// Moves the sides outwards by dx and dy; `Deflate` inwards.
  void Inflate(int32_t dx, int32_t dy);
  void Deflate(int32_t dx, int32_t dy);
  bool PointIn(int32_t px, int32_t py) const {
    return left <= px && px <= right && top <= py && py <= bottom;
  }
  bool PointIn(const K7DevPt& p) const { return PointIn(p.x, p.y); }
  /// Widens to hold a point; a null rectangle keeps (0, 0) inside.
  void Include(int32_t px, int32_t py);
  void Include(const K7DevPt& p) { Include(p.x, p.y); }
  /// Becomes the bounding box of both.
  void Union(const K7DevRect& a, const K7DevRect& b);
  /// Becomes what both hold: also an edge or a corner. False, and null, when that is nothing; false for the
  /// rectangle (0, 0, 0, 0), too.
  bool Intersect(const K7DevRect& a, const K7DevRect& b);
  bool operator==(const K7DevRect& other) const = default;
};

/// A segment, with the slope, intercept and length that its tests share. Change it by `Init` only.
struct K7_API K7DevLine {
  int32_t x1 = 0;
  int32_t y1 = 0;
  int32_t x2 = 0;
  int32_t y2 = 0;
  double slope = 0;      ///< dy / dx; 0 for a vertical segment
  double intercept = 0;  ///< y at x = 0; 0 for a vertical segment
  double length = 0;

  K7DevLine() = default;
  K7DevLine(int32_t px1, int32_t py1, int32_t px2, int32_t py2) { Init(px1, py1, px2, py2); }
  K7DevLine(const K7DevPt& from, const K7DevPt& to) { Init(from, to); }
  void Init(int32_t px1, int32_t py1, int32_t px2, int32_t py2);
  void Init(const K7DevPt& from, const K7DevPt& to) { Init(from.x, from.y, to.x, to.y); }

  bool Vertical() const { return x1 == x2; }
  /// y of the infinite line at x; means nothing for a vertical one.
  double YValue(double x) const { return x * slope + intercept; }
  /// Signed distances of a point: `along` from the start towards the end, to the point's foot; `across`
  /// positive above a segment that runs to the right. Not finite for a segment without length.
  void OrthoDist(int32_t px, int32_t py, double& across, double& along) const;
  void OrthoDist(const K7DevPt& p, double& across, double& along) const {
    OrthoDist(p.x, p.y, across, along);
  }
  /// The point at a fraction of the way, rounded; fractions beyond 0 and 1 go on.
  void PointAtFraction(double fraction, K7DevPt& out) const;
  /// Whether two segments meet, end points included; of segments with equal slopes never. `out` (optional)
  /// receives the crossing of the infinite lines, rounded, also when the segments end before it.
  bool Intersect(const K7DevLine& other, K7DevPt* out = nullptr) const;
  /// Number of crossings with a rectangle's border, 0 to 2, in the order left, top, right, bottom; a segment
  /// wholly inside has none. `out` (optional) has room for two. A crossing at a corner counts once with
  /// `out`, and may count twice without.
  int IntersectRect(const K7DevRect& rect, K7DevPt* out = nullptr) const;

 private:
  int CrossSides(const K7DevRect& rect, K7DevPt* out) const;
};

/// A ring of points; the last one joins the first.
class K7_API K7DevPolygon : public K7Array {
 public:
  K7DevPolygon();
  /// Copies; of null nothing.
  explicit K7DevPolygon(const K7DevPolygon* other);
  K7DevPolygon(const K7DevPt* points, int count);
  /// Append: nothing of null or of a count below 1.
  void Init(const K7DevPolygon* other);
  void Init(const K7DevPt* points, int count);

  /// 0, K7_ERR_BAD_ARGUMENT for null, or K7_ERR_MEMORY.
  int AddPoint(const K7DevPt* point);
  int AddPoint(const K7DevPt& point) { return AddPoint(&point); }
  /// Null outside; good until the polygon changes.
  K7DevPt* GetPoint(int index) const;

  /// Whether a point lies in the ring, by the even-odd rule; false with fewer than three points. The border
  /// belongs to it, save a vertex from which both edges run downwards on the screen: an edge holds its lower
  /// end and not its upper one.
  bool PointIn(const K7DevPt& p) const;
  /// Whether any edge i of this ring meets edge i of the other. Edges that the other does not have meet
  /// nothing.
  bool Intersect(const K7DevPolygon& other) const;
  /// 1 when a segment meets the ring, else 0, or a negative code. With `count` all crossings are counted,
  /// each rounded point once, and appended to `points` (of K7DevPt; optional), where points that stand
  /// already are not repeated.
  int Intersect(const K7DevLine& line, int* count = nullptr, K7Array* points = nullptr) const;
};

/// A circle.
struct K7_API K7DevCircle {
  double radius = 0;
  K7DevPt centre;

  K7DevCircle() = default;
  K7DevCircle(const K7DevPt& c, double r) { Init(c, r); }
  void Init(const K7DevPt& c, double r) {
    centre = c;
    radius = r;
  }
  /// Whether the disc and a rectangle share a point, with halves truncated to whole pixels.
  bool Intersect(const K7DevRect& rect) const;
};
