// A view of the world: a projection, a graphics context, and what of the world shows.
#pragma once

#include "ink/cairo_grfx.h"

#include <k7/geodesy/ecef.h>
#include <k7/geodesy/latlon.h>
#include <k7/projection/projection.h>

#include <memory>
#include <vector>

struct GeoPoint {
  double lat, lon;
};

/// What a projection can show of the globe when it looks at it in the round: all within an angle of one
/// point.
struct GlobeCap {
  K7LatLon centre;
  K7ECEF axis;    // unit vector of the centre
  double radius;  // radians
  double cosRadius;
};

/// What a flat projection can show: the longitudes around its middle meridian, unrolled so that they may pass
/// 180.
struct FlatWindow {
  double west, east, south, north;
};

/// Sets up the projection's camera and viewing volume and answers where things are on the device.
class View {
 public:
  View(K7Projection& projection, CairoGrfx& grfx) : m_projection(projection), m_grfx(grfx) {}

  /// Looks at a position with `rangeNM` nautical miles from the centre to the nearer edge of the window, or,
  /// with 0, with the whole of what the projection can show. A tilted eye sees what its own field of view
  /// holds, whatever the range. False when the projection cannot.
  bool LookAt(double lat, double lon, double rangeNM);

  K7Projection& Projection() const { return m_projection; }
  CairoGrfx& Grfx() const { return m_grfx; }
  GeoPoint Centre() const { return m_centre; }
  /// Nautical miles that a pixel spans at the centre.
  double NMPerPixel() const { return m_nmPerPixel; }
  bool IsGlobe() const { return m_projection.IsAzimuthal(); }
  /// An eye that does not look straight down: the scale changes across the picture.
  bool IsTilted() const;
  const GlobeCap& Cap() const { return m_cap; }
  const FlatWindow& Window() const { return m_window; }

  DevicePoint ToDevice(GeoPoint point) const;
  /// Of a point of the globe's surface, as a unit vector; for globes only.
  DevicePoint ToDevice(const K7ECEF& surface) const {
    return m_grfx.Project(surface.X(), surface.Y(), surface.Z());
  }
  /// Pixel of a position; false when it lies off the map or outside the window.
  bool Shows(GeoPoint point, DevicePoint& at) const;
  /// What shows of the world, on the unrolled map.
  FlatWindow Extent() const;
  /// The position under a pixel; false off the map.
  bool FromDevice(double dx, double dy, GeoPoint& point) const;

 private:
  bool SetZoom(double zoom);
  bool CentreMap();
  std::vector<DevicePoint> WorldOutline() const;
  void FindLimits();
  double PixelsPerNM(double rangeNM) const;
  double ZoomToFit() const;
  double AngleAcross() const;

  K7Projection& m_projection;
  CairoGrfx& m_grfx;
  GeoPoint m_centre{};
  double m_nmPerPixel = 1;
  GlobeCap m_cap{};
  FlatWindow m_window{};
};

/// The projection of one of the nine kinds for a chart about a centre: conic cones are laid through it. Null
/// for an unknown kind or without memory.
std::unique_ptr<K7Projection> MakeProjection(K7ProjType type, double lat, double lon, double rangeNM);
