#include "sheet/georeference.h"

#include <k7/foundation/string.h>

#include <cmath>
#include <cstring>
#include <numbers>

namespace {

constexpr double RADIUS = 6378137;  // metres
constexpr double RADIANS = std::numbers::pi / 180;
constexpr double MOST_OFF = 0.05;  // pixels

struct MapPoint {
  double x, y;
};

double ParamOf(const K7Projection& projection, const char* name) {
  for (int i = 0; i < projection.ParamCount(); ++i)
    if (std::strcmp(projection.ParamName(i), name) == 0) return projection.ParamValue(i);
  return 0;
}

// J. P. Snyder, Map Projections: A Working Manual, equations 20-3 to 20-5, 21-2 to 21-4 and 22-3 to 22-5.
MapPoint OnPlane(K7ProjType type, const K7LatLon& centre, const K7LatLon& p) {
  const double lat = p.Lat() * RADIANS, lat0 = centre.Lat() * RADIANS,
               lon = (p.Lon() - centre.Lon()) * RADIANS;
  const double cosC = std::sin(lat0) * std::sin(lat) + std::cos(lat0) * std::cos(lat) * std::cos(lon);
  const double k = type == K7_PROJ_STEREOGRAPHIC ? 2 / (1 + cosC) : type == K7_PROJ_GNOMONIC ? 1 / cosC : 1;
  return {RADIUS * k * std::cos(lat) * std::sin(lon),
          RADIUS * k * (std::cos(lat0) * std::sin(lat) - std::sin(lat0) * std::cos(lat) * std::cos(lon))};
}

MapPoint OnMap(const K7MapView& view, const K7LatLon& p) {
  const K7Projection& projection = *view.Projection();
  if (view.IsGlobe()) return OnPlane(projection.Type(), {view.CenterLat(), view.CenterLon()}, p);
  double x, y, z;
  // A cylinder begins half a turn from the middle of the chart.
  const double lon = projection.IsCylindrical() ? std::remainder(p.Lon() - view.CenterLon(), 360) : p.Lon();
  projection.LatLon2World(p.Lat(), lon, x, y, z);
  // Cones are of radius 1; the rectangular map is larger than at its standard parallel.
  const double scale = projection.IsConic() ? RADIUS
                       : projection.Type() == K7_PROJ_RECTANGULAR
                           ? std::cos(ParamOf(projection, "Standard Parallel") * RADIANS)
                           : 1;
  return {x * scale, y * scale};
}

bool At(const K7MapView& view, double dx, double dy, MapPoint& point) {
  double lat, lon, againX, againY;
  if (!view.FromDevice(dx, dy, lat, lon) || !view.ToDevice(lat, lon, againX, againY) ||
      std::hypot(againX - dx, againY - dy) > MOST_OFF)
    return false;
  point = OnMap(view, {lat, lon});
  return std::isfinite(point.x) && std::isfinite(point.y);
}

std::string Parameter(const char* name, double value) {
  return std::string(K7FmtString(",PARAMETER[\"%s\",%.12g]", name, value));
}

std::string CentreOf(const K7MapView& view) {
  return Parameter("latitude_of_origin", view.CenterLat()) + Parameter("central_meridian", view.CenterLon());
}

// The position at the middle of its coordinates says about which meridian and parallel a cone is laid.
std::string ConeOf(const K7Projection& cone, const char* latitude, const char* longitude) {
  double lat = 0, lon = 0;
  cone.World2LatLon(0, 0, 0, lat, lon);
  return Parameter("standard_parallel_1", ParamOf(cone, "Standard Parallel 1")) +
         Parameter("standard_parallel_2", ParamOf(cone, "Standard Parallel 2")) + Parameter(latitude, lat) +
         Parameter(longitude, lon);
}

std::string MethodOf(const K7MapView& view) {
  const K7Projection& projection = *view.Projection();
  switch (projection.Type()) {
    case K7_PROJ_LAMBERT:
      return "\"Lambert_Conformal_Conic_2SP\"]" +
             ConeOf(projection, "latitude_of_origin", "central_meridian");
    case K7_PROJ_ALBERS:
      return "\"Albers_Conic_Equal_Area\"]" + ConeOf(projection, "latitude_of_center", "longitude_of_center");
    case K7_PROJ_MERCATOR:
      return "\"Mercator_1SP\"]" + Parameter("central_meridian", view.CenterLon()) +
             Parameter("scale_factor", 1);
    case K7_PROJ_MILLER:
      return "\"Miller_Cylindrical\"]" + Parameter("longitude_of_center", view.CenterLon());
    case K7_PROJ_RECTANGULAR:
      return "\"Equirectangular\"]" +
             Parameter("standard_parallel_1", ParamOf(projection, "Standard Parallel")) +
             Parameter("central_meridian", view.CenterLon());
    case K7_PROJ_STEREOGRAPHIC:
      return "\"Stereographic\"]" + CentreOf(view) + Parameter("scale_factor", 1);
    case K7_PROJ_ORTHOGRAPHIC:
      return "\"Orthographic\"]" + CentreOf(view);
    case K7_PROJ_GNOMONIC:
      return "\"Gnomonic\"]" + CentreOf(view);
    default:
      return {};
  }
}

std::string SystemOf(const K7MapView& view) {
  const std::string method = MethodOf(view);
  if (method.empty()) return {};
  return std::string("PROJCS[\"Chart\",GEOGCS[\"Sphere\",DATUM[\"Sphere\",SPHEROID[\"Sphere\",6378137,0]],") +
         "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[" + method +
         Parameter("false_easting", 0) + Parameter("false_northing", 0) + ",UNIT[\"metre\",1]]";
}

// Whether all of the window lies as its middle does; text and numbers of another map would put a chart
// elsewhere without a word.
bool Agrees(const K7MapView& view, const double (&t)[6]) {
  static const int STEPS = 8;
  const double determinant = t[1] * t[5] - t[2] * t[4];
  for (int row = 0; row < STEPS; ++row)
    for (int column = 0; column < STEPS; ++column) {
      const double dx = view.Width() * (column + 0.5) / STEPS, dy = view.Height() * (row + 0.5) / STEPS;
      MapPoint p{};
      if (!At(view, dx, dy, p)) continue;
      const double x = p.x - t[0] - t[1] * dx - t[2] * dy, y = p.y - t[3] - t[4] * dx - t[5] * dy;
      if (!(std::hypot(x * t[5] - y * t[2], y * t[1] - x * t[4]) <= MOST_OFF * std::fabs(determinant)))
        return false;
    }
  return true;
}

}  // namespace

std::optional<Georeference> GeoreferenceOf(const K7MapView& view, int left, int top) {
  static const double STEP = 1.0 / 8;  // of the window, from its middle
  Georeference georeference = {{}, SystemOf(view)};
  const double x = view.Width() / 2.0, y = view.Height() / 2.0;
  const double right = view.Width() * STEP, down = view.Height() * STEP;
  MapPoint middle{}, east{}, south{};
  if (georeference.system.empty() || !At(view, x, y, middle) || !At(view, x + right, y, east) ||
      !At(view, x, y + down, south))
    return {};
  double(&t)[6] = georeference.toMap;
  t[1] = (east.x - middle.x) / right;
  t[2] = (south.x - middle.x) / down;
  t[4] = (east.y - middle.y) / right;
  t[5] = (south.y - middle.y) / down;
  t[0] = middle.x - t[1] * x - t[2] * y;
  t[3] = middle.y - t[4] * x - t[5] * y;
  if (!Agrees(view, t)) return {};
  t[0] -= t[1] * left + t[2] * top;
  t[3] -= t[4] * left + t[5] * top;
  return georeference;
}

std::string WorldFileOf(const Georeference& georeference) {
  const double(&t)[6] = georeference.toMap;
  return std::string(K7FmtString("%.15g\n%.15g\n%.15g\n%.15g\n%.15g\n%.15g\n", t[1], t[4], t[2], t[5],
                                 t[0] + (t[1] + t[2]) / 2, t[3] + (t[4] + t[5]) / 2));
}

std::string SidecarOf(const Georeference& georeference) {
  const double(&t)[6] = georeference.toMap;
  return "<PAMDataset>\n  <SRS>" + georeference.system + "</SRS>\n  <GeoTransform>" +
         std::string(
             K7FmtString("%.15g, %.15g, %.15g, %.15g, %.15g, %.15g", t[0], t[1], t[2], t[3], t[4], t[5])) +
         "</GeoTransform>\n</PAMDataset>\n";
}
