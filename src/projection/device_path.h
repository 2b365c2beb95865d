// The last stages of a path: bent, thinned, cut to the window's surroundings, handed to the context.
#pragma once

#include <k7/geodesy/ecef.h>
#include <k7/projection/grfx.h>
#include <k7/projection/projection.h>

#include "foundation/buffer.h"

/// Homogeneous pixels: (x / w, y / w) on the device, behind the eye when w <= 0.
struct DevicePoint {
  double x, y, w;
};

struct GeoPoint {
  double lat, lon;
};

/// The window and a band around it, and the plane before the eye.
class Guards {
 public:
  Guards() = default;
  Guards(int width, int height);

  static constexpr int COUNT = 5;
  /// Closer to the eye's plane than this nothing is drawn, in earth radii: a hand above the ground.
  static constexpr double NEAREST = 1e-8;

  double Inside(int plane, const DevicePoint& p) const {
    switch (plane) {
      case 0:
        return p.w - NEAREST;
      case 1:
        return p.x - m_low * p.w;
      case 2:
        return m_right * p.w - p.x;
      case 3:
        return p.y - m_low * p.w;
      default:
        return m_bottom * p.w - p.y;
    }
  }
  DevicePoint Cross(const DevicePoint& a, const DevicePoint& b, int plane) const {
    const double insideA = Inside(plane, a);
    const double t = insideA / (insideA - Inside(plane, b));
    return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.w + t * (b.w - a.w)};
  }
  bool Holds(const DevicePoint& p) const {
    return p.w >= NEAREST && p.x >= m_low * p.w && p.x <= m_right * p.w && p.y >= m_low * p.w &&
           p.y <= m_bottom * p.w;
  }
  /// Both points beyond the same plane: nothing between them shows.
  bool Hides(const DevicePoint& a, const DevicePoint& b) const {
    for (int plane = 0; plane < COUNT; ++plane)
      if (Inside(plane, a) < 0 && Inside(plane, b) < 0) return true;
    return false;
  }

 private:
  double m_low = 0, m_right = 0, m_bottom = 0;
};

/// Takes a run of points with their places on the device, one after the other, and adds it to the path of a
/// context as a line or a ring. Points are either positions of a flat map or of the globe's surface: halfway
/// between two of them lies what the edge means.
class DevicePath {
 public:
  void SetUp(const K7Projection& projection, const K7GrfxK7& camera);

  void Add(const GeoPoint& point, const DevicePoint& at) { Take(point, at, m_lastGeo); }
  void Add(const K7ECEF& point) { Take(point, ToDevice(point), m_lastSurface); }
  /// Hands on the run and begins another.
  void FinishLine(K7Grfx& g);
  void FinishRing(K7Grfx& g);

  DevicePoint ToDevice(const K7ECEF& p) const {
    DevicePoint at;
    m_camera->Project(p.X(), p.Y(), p.Z(), at.x, at.y, at.w);
    return at;
  }
  DevicePoint ToDevice(const GeoPoint& p) const {
    double x, y, z;
    m_projection->LatLon2World(p.lat, p.lon, x, y, z);
    return ToDevice(K7ECEF(x, y, z));
  }

  /// Since `Reset`: whether memory has run out, and how many points were handed on.
  bool Failed() const { return m_failed; }
  int Count() const { return m_count; }
  void Reset();

 private:
  template <class Point>
  void Take(const Point& point, const DevicePoint& at, Point& last);
  template <class Point>
  void Halve(const Point& a, const Point& b, const DevicePoint& da, const DevicePoint& db, int halvings);
  void Start();
  void Finish();

  const K7Projection* m_projection = nullptr;
  const K7GrfxK7* m_camera = nullptr;
  Guards m_guards;
  Buffer<DevicePoint> m_points;
  GeoPoint m_lastGeo{};  // the last point taken, whichever is in use
  K7ECEF m_lastSurface;
  DevicePoint m_droppedAt{};  // too close to the last, but it may turn out to be the end
  bool m_hasDropped = false;
  bool m_allInside = true;
  bool m_failed = false;
  int m_count = 0;
};
