// What maps are drawn with in tests: a view, and a graphics context that takes down the paths it is given,
// and knows what they enclose.
#pragma once

#include <k7/projection/grfx.h>
#include <k7/projection/map_view.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

/// A view that looks at a place.
struct Looking : K7MapView {
  Looking(K7Projection& projection, int width, int height, double lat, double lon, double range)
      : K7MapView(&projection, width, height) {
    EXPECT_EQ(LookAt(lat, lon, range), 0);
  }
};

class PathRecorder : public K7GrfxK7 {
 public:
  struct Point {
    double x, y;
  };
  struct Piece {
    std::vector<Point> points;
    bool closed = false;
  };

  PathRecorder() : K7GrfxK7(1, 1) {}

  void MoveTo(double dx, double dy) override { pieces.push_back({{{dx, dy}}, false}); }
  void LineTo(double dx, double dy) override {
    if (pieces.empty()) ++strayLines;
    if (!pieces.empty()) pieces.back().points.push_back({dx, dy});
  }
  void ClosePath() override {
    if (!pieces.empty()) pieces.back().closed = true;
  }
  void Clear() { pieces.clear(); }

  /// Even-odd rule over all pieces, closed or not.
  bool Encloses(double x, double y) const {
    bool in = false;
    for (const Piece& piece : pieces)
      for (size_t i = 0; i < piece.points.size(); ++i) {
        const Point& a = piece.points[i];
        const Point& b = piece.points[(i + 1) % piece.points.size()];
        if ((a.y > y) != (b.y > y) && x < a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y)) in = !in;
      }
    return in;
  }

  int PointCount() const {
    size_t count = 0;
    for (const Piece& piece : pieces) count += piece.points.size();
    return static_cast<int>(count);
  }
  /// How far a point lies outside a window, in pixels.
  double Beyond(double width, double height) const {
    double most = 0;
    for (const Piece& piece : pieces)
      for (const Point& p : piece.points)
        most = std::fmax(most, std::fmax(std::fmax(-p.x, p.x - width), std::fmax(-p.y, p.y - height)));
    return most;
  }
  /// Pixels from a place to the nearest line of the path; infinite when there is none.
  double Distance(double x, double y) const {
    double nearest = INFINITY;
    for (const Piece& piece : pieces)
      for (size_t i = 0; i + 1 < piece.points.size(); ++i) {
        const Point& a = piece.points[i];
        const Point& b = piece.points[i + 1];
        const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
        const double t =
            square > 0 ? std::fmin(std::fmax(((x - a.x) * dx + (y - a.y) * dy) / square, 0), 1) : 0;
        nearest = std::fmin(nearest, std::hypot(a.x + t * dx - x, a.y + t * dy - y));
      }
    return nearest;
  }

  std::vector<Piece> pieces;
  int strayLines = 0;
};
