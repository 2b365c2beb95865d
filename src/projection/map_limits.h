// How much of the world each kind of projection can show.
#pragma once

#include <k7/projection/projection.h>

/// Angles in degrees from the centre for the globe projections, latitudes for the flat ones: what can be
/// drawn, and what a view of the whole world shows.
struct MapLimits {
  double drawnAngle, worldAngle;
  double drawnSouth, drawnNorth;
  double worldSouth, worldNorth;
};

MapLimits LimitsOf(const K7Projection& projection);

/// Parameters of which a picture can be made.
bool HasPicture(const K7Projection& projection);

/// The meridian half way between a flat map's sides. Cones have their own; the cylinders are rolled out
/// wherever one looks.
double MiddleMeridian(const K7Projection& projection, double centreLon);

/// The seam itself belongs to both sides of a flat map: it is left to each by a hair.
inline constexpr double HALF_WORLD = 180 - 1e-7;

/// Paths run this many pixels beyond the window, so that no stroke shows where they were cut.
inline constexpr double OVERHANG = 64;
