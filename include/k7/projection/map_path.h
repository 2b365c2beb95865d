// K7MapPath: lines and areas of the world as paths of a graphics context.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/latlon.h>

class K7Grfx;
class K7MapFeatures;
class K7MapView;

/// Turns positions into paths on the device, as a view shows them: cut where the projection cuts the world
/// (horizon, seam, poles) and a little outside the window, bent as finely as a pixel needs, without points
/// that lie closer together than a third of a pixel. Nothing is drawn across a seam, behind a limb or through
/// the eye. What lies outside the window by its bounds costs one test.
///
///     K7MapPath path(view);
///     for (int i = 0; i < land.Count(); ++i)
///       if (path.Area(&grfx, land, i) > 0) grfx.Fill();
///
/// Each operation adds to the path of `g`, which it leaves for `Fill` or `Stroke`, and returns how many
/// points it has added: 0 when nothing of it shows. K7_ERR_BAD_ARGUMENT for null, a negative count and a view
/// without a picture; K7_ERR_MEMORY, with the path incomplete.
///
/// The view must outlive the object and stay as it is while paths are made. Memory is kept from one call to
/// the next. One object, one thread.
class K7_API K7MapPath {
 public:
  explicit K7MapPath(const K7MapView& view);
  ~K7MapPath();
  K7MapPath(const K7MapPath&) = delete;
  K7MapPath& operator=(const K7MapPath&) = delete;

  /// Takes up another view, or the same after it has looked elsewhere.
  void SetView(const K7MapView& view);

  /// \name Features
  /// @{
  /// Adds the area of a feature, for `K7Grfx::Fill`; nothing for other kinds.
  int Area(K7Grfx* g, const K7MapFeatures& features, int feature);
  /// Adds the lines of a feature, or an area's outline without the edges at which its data set was cut.
  int Outline(K7Grfx* g, const K7MapFeatures& features, int feature);
  /// @}

  /// \name Positions
  /// @{
  /// Adds an area from its rings, laid end to end, `sizes` holding the points of each; it is repaired as
  /// `K7MapFeatures::Add` does it. What is drawn more than once is better made a feature.
  int Area(K7Grfx* g, const K7LatLon* points, const int* sizes, int rings);
  /// Adds a line whose edges run straight in latitude and longitude, across 180 by the shorter way.
  int Line(K7Grfx* g, const K7LatLon* points, int count);
  /// Adds a route: between its points the line runs along great circles. Antipodes have no great circle of
  /// their own; between them it runs over the north pole. Points off the earth are left out, as of
  /// features.
  int GreatCircle(K7Grfx* g, const K7LatLon* points, int count);
  /// Adds the outline of all that the projection can show: the sea's area, and the limb.
  int WholeMap(K7Grfx* g);
  /// @}

 private:
  struct Stages;
  Stages* m_stages;
};
