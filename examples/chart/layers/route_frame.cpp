#include "layers/route_frame.h"

#include <k7/geodesy/cromley.h>
#include <k7/geodesy/ecef.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double LEAST_NM = 8, MOST_NM = 10800;
constexpr double ROOM = 0.09;  // of the window, on every side
constexpr int STEPS_A_LEG = 8;
constexpr int ROUNDS = 4;  // each brings what the map's changing scale put off nearer

std::vector<K7LatLon> PlacesAlong(const Route& route) {
  std::vector<K7LatLon> places;
  for (size_t i = 0; i + 1 < route.fixes.size(); ++i) {
    const K7LatLon &from = route.fixes[i].place, &to = route.fixes[i + 1].place;
    const double course = from.InitCourse(to), distance = from.Distance(to);
    places.push_back(from);
    for (int step = 1; course >= 0 && step < STEPS_A_LEG; ++step)
      places.emplace_back().EndPoint(from, course, distance * step / STEPS_A_LEG);
  }
  if (!route.fixes.empty()) places.push_back(route.fixes.back().place);
  return places;
}

struct Bounds {
  double left = INFINITY, top = INFINITY, right = -INFINITY, bottom = -INFINITY;
};

Bounds BoundsOf(const K7MapView& view, const std::vector<K7LatLon>& places) {
  Bounds b;
  for (const K7LatLon& place : places) {
    double x = NAN, y = NAN;
    view.ToDevice(place.Lat(), place.Lon(), x, y);
    if (!std::isfinite(x) || !std::isfinite(y)) continue;
    b = {std::min(b.left, x), std::min(b.top, y), std::max(b.right, x), std::max(b.bottom, y)};
  }
  return b;
}

// Moves the chart over the route and widens or narrows it. False where there is no such chart.
bool Improve(const std::vector<K7LatLon>& places, int width, int height, ChartRequest& request) {
  const K7LatLon& c = request.center;
  const std::unique_ptr<K7Projection> projection(
      K7MapView::CreateProjection(request.type, c.Lat(), c.Lon(), request.rangeNM, nullptr));
  if (!projection || !SetParams(*projection, request.params).empty()) return false;
  K7MapView view(projection.get(), width, height);
  if (view.IsTilted()) request.rangeNM = 0;
  if (view.LookAt(c.Lat(), c.Lon(), request.rangeNM) != 0) return false;
  const Bounds b = BoundsOf(view, places);
  double lat, lon;
  if (!view.FromDevice((b.left + b.right) / 2, (b.top + b.bottom) / 2, lat, lon)) return false;
  request.center = {lat, lon};
  const double share = std::max((b.right - b.left) / width, (b.bottom - b.top) / height) / (1 - 2 * ROOM);
  if (std::isfinite(share)) request.rangeNM = std::clamp(request.rangeNM * share, LEAST_NM, MOST_NM);
  return !view.IsTilted();
}

}  // namespace

void FrameRoute(const Route& route, int width, int height, ChartRequest& request) {
  const std::vector<K7LatLon> places = PlacesAlong(route);
  K7Array points(sizeof(K7ECEF), 256);
  for (const K7LatLon& place : places) {
    const K7ECEF point(place.Lat(), place.Lon());
    points += &point;
  }
  K7ECEF middle;
  double radius = 0;
  if (points.Count() == 0 || GenMinSpanCircle(points, middle, radius) != 0) return;
  double lat, lon;
  middle.GetLatLon(lat, lon);
  request.center = {lat, lon};
  request.rangeNM = std::clamp(radius * 1.2, LEAST_NM, MOST_NM);
  for (int round = 0; round < ROUNDS; ++round)
    if (!Improve(places, width, height, request)) break;
  if (request.type == K7_PROJ_PERSPECTIVE && !request.params.empty()) request.rangeNM = 0;
}
