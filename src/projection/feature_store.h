// What K7MapFeatures holds and K7MapPath draws.
#pragma once

#include <k7/projection/map_features.h>

#include "foundation/buffer.h"

#include <cmath>

/// Latitudes and longitudes in arrays of their own: they are projected many at a time.
struct PointSpan {
  const double* lat;
  const double* lon;
  int count;
};

struct DegreeBox {
  double north = -1e9, south = 1e9, east = -1e9, west = 1e9;

  bool IsEmpty() const { return south > north; }
  void Include(double lat, double lon) {
    if (lat > north) north = lat;
    if (lat < south) south = lat;
    if (lon > east) east = lon;
    if (lon < west) west = lon;
  }
  void Include(const DegreeBox& box) {
    if (box.IsEmpty()) return;
    Include(box.north, box.east);
    Include(box.south, box.west);
  }
};

struct FeaturePart {
  int first, count;
  DegreeBox box;
};

struct Feature {
  K7MapFeatureKind kind;
  int firstPart, partCount;        // rows of points; the rings of an area, each with its first point again
  int firstOutline, outlineCount;  // of an area: what of its rings is an outline
  DegreeBox box;
  bool isHalf;  // an area that reaches 180 degrees on one side only
};

struct K7MapFeatureStore {
  Buffer<double> lat, lon;
  Buffer<FeaturePart> parts;
  Buffer<Feature> features;

  const Feature* At(int i) const { return i >= 0 && i < features.Count() ? &features[i] : nullptr; }
  PointSpan Points(const FeaturePart& part) const {
    return {lat.Data() + part.first, lon.Data() + part.first, part.count};
  }
  /// Even-odd rule in plane latitude and longitude over the rings of an area.
  bool Contains(const Feature& area, double placeLat, double placeLon) const;
};
