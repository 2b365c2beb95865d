// K7MapFeatures: lines and areas in degrees, made ready once to be drawn many times.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/latlon.h>
#include <k7/projection/chart_rect.h>

struct K7MapFeatureStore;

/// Says what a feature is made of.
enum K7MapFeatureKind : int {
  K7_MAP_POINTS = 0,
  K7_MAP_LINES = 1,
  K7_MAP_AREA = 2,
};

/// K7MapFeatures are the features of a layer, repaired and measured when they are added, in the order of
/// their adding. Edges run straight in latitude and longitude, as shapefiles and airspaces mean them.
///
/// Points off the earth (not a number, latitudes beyond 90.0001, longitudes beyond 540) are left out. Lines
/// and rings that jump across 180 degrees are carried on there, so that neighbours never differ by more
/// than 180; a ring only if it then closes: one that runs around a pole is meant as it stands. Rings are
/// closed. Rings of an area whose first ring runs counter-clockwise are all turned around, so that outer
/// rings keep their area to the right. Edges along 180 degrees or a pole where a data set was cut (within
/// 0.001 and 0.002 degrees) are moved onto it; they belong to the area, not to its outline.
///
/// Adding needs the object alone; afterwards any number of threads may read and draw it.
class K7_API K7MapFeatures {
 public:
  K7MapFeatures();
  ~K7MapFeatures();
  K7MapFeatures(const K7MapFeatures&) = delete;
  K7MapFeatures& operator=(const K7MapFeatures&) = delete;

  /// Adds a feature of `parts` rows of points, laid end to end, `sizes` holding the length of each. Answers
  /// its number, from 0; a feature of which nothing is left has one too. Answers K7_ERR_BAD_ARGUMENT for
  /// null, negative sizes and other kinds, or K7_ERR_MEMORY, each with nothing added.
  int Add(K7MapFeatureKind kind, const K7LatLon* points, const int* sizes, int parts);
  /// Forgets all features and keeps their memory.
  void Clear();

  /// \name One feature
  /// @{
  int Count() const;
  /// Answer K7_MAP_POINTS, empty and 0 for a number that no feature has.
  K7MapFeatureKind Kind(int feature) const;
  K7ChartRect Bounds(int feature) const;
  int PointCount(int feature) const;
  /// Answers the repaired point; (0, 0) outside 0 to `PointCount` - 1. Longitudes may pass 180.
  K7LatLon Point(int feature, int i) const;
  /// Answers whether the position lies in an area: inside its outer rings, outside its holes.
  bool Contains(int feature, double lat, double lon) const;
  /// @}

 private:
  friend class K7MapPath;

  K7MapFeatureStore* m_store;
};
