// K7MapView: what a window shows of the world.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/ecef.h>
#include <k7/geodesy/latlon.h>
#include <k7/projection/chart_rect.h>
#include <k7/projection/grfx.h>
#include <k7/projection/projection.h>

/// A K7MapView is a projection, a window and a camera over it: where a position falls, what position a
/// pixel shows, how large a mile is and where north lies. It has a camera of its own, so that it outlives
/// the graphics contexts that are drawn on, and `K7MapPath` turns lines and areas into device paths by it.
///
///     K7MapView view(projection, width, height);
///     if (view.LookAt(48.5, -123.5, 300) != 0) return;   // K7ErrorString has the words
///     view.ToDevice(47.45, -122.3, x, y);                // true: the place is seen, at pixel (x, y)
///     view.SetUp(grfx);                                  // the same camera for the host's own context
///
/// Device coordinates are those of `K7Grfx`. The middle of the window shows the centre exactly, also in
/// windows of odd size. The projection stays the host's and must outlive the view; after its parameters
/// change, look again. A value; several threads may call const operations.
class K7_API K7MapView {
 public:
  /// Takes the window's size in pixels.
  K7MapView(K7Projection* projection, int width, int height);

  /// \name Looking
  /// @{
  /// Shows `range` nautical miles from the centre to the nearer edge of the window, at the scale that the map
  /// has along the centre's meridian; with 0, the whole of what the projection can show, for which a flat
  /// map's centre moves along its meridian to the middle of the map. A tilted eye sees what its field of view
  /// holds and takes no range.
  ///
  /// Answers 0; K7_ERR_BAD_ARGUMENT without projection or window, for a position outside +-90 and +-540
  /// degrees, a turn outside +-360 or a negative range; K7_ERR_PROJECTION_RANGE when this centre, range and
  /// parameters give no picture, and below 1e-9 nautical miles a pixel, where positions have no more digits.
  /// Failed, the view shows nothing: nothing is seen, `GetExtent` is empty.
  int LookAt(double lat, double lon, double range);
  /// Does the same with a given magnification in place of a range, as `K7Grfx::GetZoom` counts it.
  int LookAtZoom(double lat, double lon, double zoom);
  /// States the scale of the present look, nautical miles a pixel, by which hosts choose what they show:
  /// windows that are pieces of one picture are to choose alike, although its scale changes across it. Only
  /// `NMPerPixel` answers otherwise, until the next look. Ignored unless the view is set and the number is
  /// above 0 and finite.
  void SetNMPerPixel(double nmPerPixel);
  /// Turns the picture about the middle of the window, from the next look on: the direction `degrees`
  /// clockwise of what would be up comes up. Where north would be up at the centre, as on the globes, the
  /// cylinders and a cone about its own meridian, that is a true course.
  void SetTurn(double degrees) { m_turn = degrees; }
  /// Answers whether the view looked at something, successfully.
  bool IsSet() const { return m_isSet; }
  /// @}

  /// \name What the view is
  /// @{
  K7Projection* Projection() const { return m_projection; }
  int Width() const { return m_camera.Width(); }
  int Height() const { return m_camera.Height(); }
  double CenterLat() const { return m_lat; }
  double CenterLon() const { return m_lon; }
  double Zoom() const { return m_zoom; }
  double Turn() const { return m_turn; }
  /// Answers the nautical miles that a pixel spans along the meridian at the centre; for a tilted eye,
  /// across the picture where the ground is nearest; or what `SetNMPerPixel` stated.
  double NMPerPixel() const { return m_nmPerPixel; }
  /// Answers true when the projection works on the globe in the round; else, and without one, the world is
  /// a plane.
  bool IsGlobe() const { return m_projection && m_projection->IsAzimuthal(); }
  /// Answers true for the general perspective with a pitch other than straight down: the scale changes
  /// across the picture.
  bool IsTilted() const;
  /// @}

  /// \name Positions and pixels
  /// @{
  /// Gives the device point of a position, written wherever the position has one. Answers true when it is
  /// seen: on the map, before the eye and within the window.
  bool ToDevice(double lat, double lon, double& dx, double& dy) const;
  /// Gives the position under a device point, which may lie outside the window, as
  /// `K7Projection::Device2LatLon` does. False before the first view.
  bool FromDevice(double dx, double dy, double& lat, double& lon) const;
  /// @}

  /// \name What the window shows
  /// @{
  /// Answers what the window shows: a box that holds every position seen. It is empty before the first
  /// view; west -180 and east 180 when all longitudes are seen.
  K7ChartRect GetExtent() const;
  /// Gives the same before it is wrapped: longitudes around the centre's, from `west` up to `east`, at most
  /// 360 apart, so that they may pass 180. False before the first view.
  bool GetExtent(double& north, double& south, double& east, double& west) const;
  /// Gives the nautical miles that a pixel spans at a position, to the north and to the east. False off the
  /// map, at the poles and where a scale is not finite.
  bool Scale(double lat, double lon, double& north, double& east) const;
  /// Gives the direction of true north at a position, in degrees clockwise from up on the device, -180 to
  /// 180: compass roses and courses turn by it. False as in `Scale`.
  bool TrueNorth(double lat, double lon, double& angle) const;
  /// @}

  /// \name Contexts
  /// @{
  /// Gives a context this view's camera and viewing volume, whatever its zoom, so that its `UnProject` agrees
  /// with the view. Null, and a view without a picture, do nothing.
  void SetUp(K7Grfx* g) const;
  /// Answers a context that has this view's camera: what projections ask for, and the way to the device. It
  /// lives as long as the view.
  K7GrfxK7* Context() const { return &m_camera; }
  /// @}

  /// Makes a projection for a chart about a place, which the caller deletes. Cones are laid through the
  /// chart (C. H. Deetz and O. S. Adams, Elements of Map Projection, 1938: standard parallels a sixth of
  /// the height inside its edges); the others are those of `K7Projection::Create`, whose failures these
  /// are.
  static K7Projection* CreateProjection(K7ProjType type, double lat, double lon, double range, int* error);

 private:
  friend class K7MapPath;

  // What a globe projection can show: all within an angle of the centre.
  struct Cap {
    K7ECEF axis;
    double radius;  // radians
    double cosRadius;
  };
  // Latitudes, and longitudes that may pass 180.
  struct Box {
    double north, south, east, west;
  };
  // A place along the edge of the window.
  struct FrameSample {
    double dx, dy;
    K7LatLon place;
    bool onMap;
  };
  struct FrameBounds;

  int Place(double lat, double lon, double zoom);
  bool SetZoom(double zoom);
  bool CenterMap();
  double PixelsPerNM(double range) const;
  double NearestNMPerPixel() const;
  double ZoomToFit() const;
  template <class Visit>
  void VisitOutline(Visit visit) const;
  bool Pick(double dx, double dy, double& lat, double& lon) const;
  bool FindLimits();
  bool ShowsSomething() const;
  void SampleFrame(double beyond, FrameBounds& bounds) const;
  Box FrameBox(double beyond, double slack, double middle) const;
  bool OnMapAt(double dx, double dy, K7LatLon& place) const;
  K7LatLon MapEdge(const FrameSample& on, const FrameSample& off) const;
  Box CapBox() const;
  bool OnMap(double lat, double lon) const;
  bool LocalFrame(double lat, double lon, double (&north)[2], double (&east)[2]) const;

  K7Projection* m_projection;
  mutable K7GrfxK7 m_camera;  // const but for the interface
  double m_lat = 0;
  double m_lon = 0;
  double m_zoom = 1;
  double m_turn = 0;  // degrees
  double m_nmPerPixel = 0;
  bool m_isSet = false;
  bool m_parallel = true;   // the volume that SetUp repeats
  double m_volume[6] = {};  // left to far, at zoom 1
  double m_lookAt[9] = {};  // eye, centre, up
  Cap m_cap{};
  Box m_map{};   // what a flat projection can draw, from seam to seam
  Box m_seen{};  // what the window and its overhang may show; nothing else need be looked at
};
