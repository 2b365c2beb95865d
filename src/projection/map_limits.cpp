#include "projection/map_limits.h"

#include <k7/geodesy/constants.h>
#include <k7/projection/azimuthal.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// Indexes of the general perspective's parameters.
constexpr int ALTITUDE = 0, PITCH = 3, FIELD_OF_VIEW = 4;

// By K7ProjType. Stereographic and gnomonic charts run out to infinity, as do Mercator's poles and Lambert's
// far one: they are cut where a picture still makes sense. Cones are those of the north. Of the globe a hair
// less is drawn than a round number: an area's edge along the limb then lies on one side of it.
constexpr double HAIR = 1e-7;
constexpr MapLimits LIMITS[] = {
    {0, 0, -80, 90, -30, 90},        // Lambert
    {0, 0, -89.98, 89.98, -80, 80},  // Mercator
    {90 - HAIR, 90, 0, 0, 0, 0},     // orthographic
    {0, 0, -90, 90, -90, 90},        // rectangular
    {0, 0, -90, 90, -90, 90},        // Miller
    {0, 0, -90, 90, -90, 90},        // Albers
    {0, 0, 0, 0, 0, 0},              // general perspective: by its altitude
    {170 - HAIR, 110, 0, 0, 0, 0},   // stereographic
    {85 - HAIR, 60, 0, 0, 0, 0},     // gnomonic
};
static_assert(std::size(LIMITS) == K7_PROJ_GNOMONIC + 1);

// Where the cone's point is, parallels are short.
bool IsSouthern(const K7Projection& cone) {
  const double middle = MiddleMeridian(cone, 0);
  const auto width = [&](double lat) {
    double ax, ay, bx, by, z;
    cone.LatLon2World(lat, middle - 90, ax, ay, z);
    cone.LatLon2World(lat, middle + 90, bx, by, z);
    return std::fabs(ax - bx);
  };
  return width(-60) < width(60);
}

}  // namespace

MapLimits LimitsOf(const K7Projection& projection) {
  MapLimits limits = LIMITS[projection.Type()];
  if (projection.Type() == K7_PROJ_PERSPECTIVE) {
    const double eye = K7PerspectiveProjection::Alt2Mag(projection.ParamValue(ALTITUDE));
    limits.drawnAngle = limits.worldAngle = std::acos(std::min(1 / eye, 1.0)) * K7_RAD_TO_DEG;
  }
  if (projection.IsConic() && IsSouthern(projection)) {
    limits = {0, 0, -limits.drawnNorth, -limits.drawnSouth, -limits.worldNorth, -limits.worldSouth};
  }
  return limits;
}

bool HasPicture(const K7Projection& projection) {
  if (projection.Type() < K7_PROJ_LAMBERT || projection.Type() > K7_PROJ_GNOMONIC) return false;
  const auto isParallel = [&](int index) { return std::fabs(projection.ParamValue(index)) < 90; };
  if (projection.IsConic()) return isParallel(0) && isParallel(1);
  if (projection.Type() == K7_PROJ_RECTANGULAR) return isParallel(0);
  if (projection.Type() != K7_PROJ_PERSPECTIVE) return true;
  const double pitch = projection.ParamValue(PITCH);
  const double fieldOfView = projection.ParamValue(FIELD_OF_VIEW);
  return projection.ParamValue(ALTITUDE) >= 1 && pitch >= -90 && pitch < 80 && fieldOfView > 0 &&
         fieldOfView < 90;
}

double MiddleMeridian(const K7Projection& projection, double centreLon) {
  if (!projection.IsConic()) return centreLon;
  // The world's origin is the cone's own.
  double lat, lon;
  projection.World2LatLon(0, 0, 0, lat, lon);
  return lon;
}
