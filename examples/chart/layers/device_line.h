// Lines as they lie on the device: what is written along them, and set beside them, follows them.
#pragma once

#include <k7/projection/grfx.h>

#include <vector>

struct DevicePoint {
  double x, y;
};

/// A row of device points.
class DeviceLine {
 public:
  /// A place on a line and its direction there, in radians clockwise from the right.
  struct Spot {
    DevicePoint at;
    double turn;
  };

  std::vector<DevicePoint> points;

  double Length() const;
  /// At so many pixels from the start.
  Spot SpotAt(double along) const;
  /// The same, turned so that text stands upright on it.
  Spot TextSpotAt(double along) const;
  /// Bends by at most so many pixels off the straight line over a stretch, and has that stretch.
  bool IsStraight(double from, double to, double most) const;
  /// What is left without a length at either end; nothing of a line that is not longer than both.
  DeviceLine Trimmed(double start, double end) const;
  double Distance(const DevicePoint& place) const;
  bool IsClosed() const;
  void AddTo(K7Grfx& g) const;
};

/// A place beside a spot: pixels along its direction, and down across it.
DevicePoint Beside(const DeviceLine::Spot& spot, double along, double across);

/// A graphics context that draws nothing and takes down the lines.
class LineSink : public K7GrfxK7 {
 public:
  LineSink() : K7GrfxK7(1, 1) {}

  void MoveTo(double dx, double dy) override { lines.push_back({{{dx, dy}}}); }
  void LineTo(double dx, double dy) override { lines.back().points.push_back({dx, dy}); }
  void ClosePath() override { lines.back().points.push_back(lines.back().points.front()); }

  std::vector<DeviceLine> lines;
};
