// Positions under device points, for every projection and camera.
#include <k7/geodesy/constants.h>
#include <k7/projection/grfx.h>
#include <k7/projection/projection.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double ROUNDING =
    1e-9;  // degrees, a tenth of a millimetre: the poles and the map's sides belong to it

struct Vec {
  double x, y, z;
};

Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec Along(const Vec& from, double s, const Vec& step) {
  return {from.x + s * step.x, from.y + s * step.y, from.z + s * step.z};
}

bool UnProject(K7Grfx& g, double dx, double dy, double depth, Vec& p) {
  return g.UnProject(dx, dy, depth, p.x, p.y, p.z);
}

// Where the ray through a pixel meets z = 0.
bool MeetPlane(K7Grfx& g, double dx, double dy, Vec& hit) {
  Vec nearPoint, farPoint;
  if (!UnProject(g, dx, dy, 0.0, nearPoint) || !UnProject(g, dx, dy, 1.0, farPoint)) return false;
  const Vec step = farPoint - nearPoint;
  hit = Along(nearPoint, -nearPoint.z / step.z, step);
  hit.z = 0.0;
  return std::isfinite(hit.x) && std::isfinite(hit.y);
}

// Where the ray through a pixel meets the unit globe: |near + s step|^2 = 1 in s, the share of the way from
// the near to the far clip distance. Which of the two roots is seen depends on where the camera stands, which
// the projection knows: a context's numbers may be too coarse to tell. Parallel rays come from outside, at
// the first root. Within the globe (gnomonic) or on it (stereographic) the eye sees the last one. An eye
// outside sees the root of lesser distance in front of it, near + s (far - near), if that is above 0; with an
// upward pitch the near distance, or both, lie behind the eye.
bool MeetGlobe(const K7Projection& projection, K7Grfx& g, double dx, double dy, Vec& hit) {
  Vec nearPoint, farPoint;
  if (!UnProject(g, dx, dy, 0.0, nearPoint) || !UnProject(g, dx, dy, 1.0, farPoint)) return false;
  const Vec step = farPoint - nearPoint;
  const double stepSquare = Dot(step, step);
  const double closest = -Dot(nearPoint, step) / stepSquare;
  const Vec closestPoint = Along(nearPoint, closest, step);
  const double chordSquare = 1.0 - Dot(closestPoint, closestPoint);
  if (!(chordSquare >= 0.0)) return false;
  const double halfChord = std::sqrt(chordSquare / stepSquare);

  double s = closest - halfChord;
  if (projection.Type() == K7_PROJ_STEREOGRAPHIC || projection.Type() == K7_PROJ_GNOMONIC) {
    s = closest + halfChord;
  } else if (projection.Type() == K7_PROJ_PERSPECTIVE) {
    const double depth = projection.FarClip() - projection.NearClip();
    if (depth < 0.0) s = closest + halfChord;
    if (!(projection.NearClip() + s * depth > 0.0)) return false;
  }
  hit = Along(nearPoint, s, step);
  return true;
}

// On the map are the world points that the forward direction gives back. The inverse's own verdict is no
// help: it refuses latitudes that are drawn, and accepts a cone's gap.
bool OnFlatMap(const K7Projection& projection, const Vec& p, double& lat, double& lon) {
  projection.World2LatLon(p.x, p.y, p.z, lat, lon);
  if (!(std::fabs(lat) <= 90.0 + ROUNDING)) return false;
  lat = std::clamp(lat, -90.0, 90.0);
  constexpr double TOLERANCE = 1e-6;  // the ellipsoidal inverse is a series
  const double allowed = TOLERANCE * (1.0 + std::fabs(p.x) + std::fabs(p.y));
  // On a cone's side the last bit decides on which of the two the forward direction puts it.
  for (const double turn : {0.0, ROUNDING, -ROUNDING}) {
    Vec again;
    if (!projection.LatLon2World(lat, lon + turn, again.x, again.y, again.z)) return false;
    if (std::fabs(again.x - p.x) <= allowed && std::fabs(again.y - p.y) <= allowed) return true;
  }
  return false;
}

bool FindOnPlane(const K7Projection& projection, double dx, double dy, K7Grfx& g, int width, int height,
                 double& lat, double& lon) {
  Vec hit;
  if (!MeetPlane(g, dx, dy, hit) || !OnFlatMap(projection, hit, lat, lon)) return false;
  if (!projection.IsCylindrical()) return true;
  // The plane goes on beyond the map that is drawn about the window's centre.
  double centreLat = NAN;
  double centreLon = NAN;
  if (!MeetPlane(g, width / 2.0, height / 2.0, hit)) return false;
  projection.World2LatLon(hit.x, hit.y, hit.z, centreLat, centreLon);
  return std::fabs(lon - centreLon) <= 180.0 + ROUNDING;
}

bool FindOnGlobe(const K7Projection& projection, double dx, double dy, K7Grfx& g, double& lat, double& lon) {
  Vec hit;
  if (!MeetGlobe(projection, g, dx, dy, hit)) return false;
  // Not asin: it has half the digits near the poles.
  lat = std::atan2(hit.z, std::hypot(hit.x, hit.y)) * K7_RAD_TO_DEG;
  lon = std::atan2(hit.y, hit.x) * K7_RAD_TO_DEG;
  return true;
}

}  // namespace

bool K7Projection::Device2LatLon(double dx, double dy, K7Grfx* g, int width, int height, double& lat,
                                 double& lon) const {
  if (!g || width <= 0 || height <= 0) return false;
  double foundLat = NAN;
  double foundLon = NAN;
  const bool found = IsAzimuthal() ? FindOnGlobe(*this, dx, dy, *g, foundLat, foundLon)
                                   : FindOnPlane(*this, dx, dy, *g, width, height, foundLat, foundLon);
  if (!found || !std::isfinite(foundLat) || !std::isfinite(foundLon)) return false;
  lat = foundLat;
  lon = std::remainder(foundLon, 360.0);
  return true;
}
