// Geographic lines and areas as device paths: cut where the projection cuts the world, bent where it bends.
#pragma once

#include "layers/view.h"

#include <vector>

using GeoLine = std::vector<GeoPoint>;

/// Turns lines and areas into paths of a Cairo context. Edges run straight in latitude and longitude, as
/// shapefiles mean them. Nothing is drawn across a seam, behind a limb or through the eye.
class GeoPath {
 public:
  explicit GeoPath(const View& view);

  /// Adds the area of a polygon: its rings, outer ones clockwise and holes counter-clockwise. The first and
  /// last point of a ring are the same.
  void AddArea(const std::vector<GeoLine>& rings) const;
  void AddLine(const GeoLine& line) const;
  /// Adds all that the projection can show: the sea's area.
  void AddWholeMap() const;

 private:
  const View& m_view;
  double m_step;  // degrees that an edge may span before it is divided, whatever its curve on the device
};

/// The line with its longitudes carried on across 180 degrees, so that neighbours never differ by more than
/// 180.
GeoLine Unroll(const GeoLine& line);
