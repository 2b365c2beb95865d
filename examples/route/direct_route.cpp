#include "route/direct_route.h"

#include "route/fix_kind.h"
#include "route/leg_course.h"
#include "route/route_ends.h"
#include "store/nav_store.h"

#include <cmath>

namespace {

RouteLeg LegBetween(const K7LatLon& from, const K7LatLon& to) {
  const LegCourse out = CourseAt(from, to, {}), back = CourseAt(to, from, {});
  RouteLeg leg;
  leg.distance = from.Distance(to);
  leg.course = out.degrees;
  leg.isTrue = out.isTrue;
  if (back.degrees >= 0) leg.arrival = std::fmod(back.degrees + 180, 360);
  leg.isArrivalTrue = back.isTrue;
  return leg;
}

}  // namespace

std::string DirectRoute(NavStore& store, const std::vector<std::string>& points, Route& route) {
  route = Route();
  std::vector<RouteEnd> places;
  if (std::string problem = FindPlaces(store, points, places); !problem.empty()) return problem;
  for (const RouteEnd& place : places) {
    if (!route.fixes.empty()) {
      route.legs.push_back(LegBetween(route.fixes.back().place, place.place));
      route.distance += route.legs.back().distance;
    }
    route.fixes.push_back(
        {place.ident, place.key, place.place, store.IsOpen() ? FixKind(store, place.key) : std::string()});
    if (!place.note.empty()) route.notes.push_back(place.note);
  }
  if (places.empty()) return "a route has points";
  route.fromName = places.front().what;
  route.toName = places.back().what;
  return {};
}
