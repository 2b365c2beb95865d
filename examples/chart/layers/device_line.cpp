#include "layers/device_line.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

double Apart(const DevicePoint& a, const DevicePoint& b) { return std::hypot(b.x - a.x, b.y - a.y); }

double ToSegment(const DevicePoint& p, const DevicePoint& a, const DevicePoint& b) {
  const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
  const double t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
  return std::hypot(a.x + t * dx - p.x, a.y + t * dy - p.y);
}

}  // namespace

double DeviceLine::Length() const {
  double length = 0;
  for (size_t i = 1; i < points.size(); ++i) length += Apart(points[i - 1], points[i]);
  return length;
}

DeviceLine::Spot DeviceLine::SpotAt(double along) const {
  size_t i = 1;
  double length = 0;
  for (; i < points.size(); ++i) {
    length = Apart(points[i - 1], points[i]);
    if (along <= length || i + 1 == points.size()) break;
    along -= length;
  }
  const DevicePoint &a = points[i - 1], &b = points[i];
  const double t = length > 0 ? std::clamp(along / length, 0.0, 1.0) : 0;
  return {{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}, std::atan2(b.y - a.y, b.x - a.x)};
}

DeviceLine::Spot DeviceLine::TextSpotAt(double along) const {
  static const double UPRIGHT = std::numbers::pi / 2 + 1e-6;  // straight up or down reads from below
  Spot spot = SpotAt(along);
  if (spot.turn > UPRIGHT - 2e-6) spot.turn -= std::numbers::pi;
  if (spot.turn < -UPRIGHT) spot.turn += std::numbers::pi;
  return spot;
}

bool DeviceLine::IsStraight(double from, double to, double most) const {
  if (from < 0 || to > Length()) return false;
  const DevicePoint a = SpotAt(from).at, b = SpotAt(to).at;
  double along = 0;
  for (size_t i = 1; i + 1 < points.size(); ++i) {
    along += Apart(points[i - 1], points[i]);
    if (along > from && along < to && ToSegment(points[i], a, b) > most) return false;
  }
  return true;
}

DeviceLine DeviceLine::Trimmed(double start, double end) const {
  const double length = Length(), stop = length - end;
  DeviceLine out;
  if (start >= stop || points.size() < 2) return out;
  out.points.push_back(SpotAt(start).at);
  double along = 0;
  for (size_t i = 1; i + 1 < points.size(); ++i) {
    along += Apart(points[i - 1], points[i]);
    if (along > start && along < stop) out.points.push_back(points[i]);
  }
  out.points.push_back(SpotAt(stop).at);
  return out;
}

double DeviceLine::Distance(const DevicePoint& place) const {
  double nearest = INFINITY;
  for (size_t i = 1; i < points.size(); ++i)
    nearest = std::min(nearest, ToSegment(place, points[i - 1], points[i]));
  return nearest;
}

bool DeviceLine::IsClosed() const {
  static const double SAME = 1e-6;
  return points.size() > 3 && Apart(points.front(), points.back()) < SAME;
}

void DeviceLine::AddTo(K7Grfx& g) const {
  for (size_t i = 0; i < points.size(); ++i)
    i == 0 ? g.MoveTo(points[i].x, points[i].y) : g.LineTo(points[i].x, points[i].y);
}

DevicePoint Beside(const DeviceLine::Spot& spot, double along, double across) {
  const double c = std::cos(spot.turn), s = std::sin(spot.turn);
  return {spot.at.x + along * c - across * s, spot.at.y + along * s + across * c};
}
