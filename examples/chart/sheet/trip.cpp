#include "sheet/trip.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

Profile ProfileOf(const Route& route, const std::optional<int>& altitude) {
  Profile profile;
  profile.altitude = altitude;
  double distance = 0;
  for (size_t i = 0; i < route.fixes.size(); ++i) {
    if (i > 0) distance += route.legs[i - 1].distance;
    profile.fixes.push_back({route.fixes[i].ident, route.fixes[i].place, distance});
  }
  return profile;
}

int MinutesTo(double distance, double knots) { return static_cast<int>(std::lround(distance / knots * 60)); }

std::string TimeText(int minutes) { return std::string(K7FmtString("%d:%02d", minutes / 60, minutes % 60)); }

LegGround GroundUnder(const Profile& profile, size_t leg) {
  // Where legs meet, the point lies on either side of the fix by a rounding.
  static const double ROUNDING = 1e-6;
  const double from = profile.fixes[leg].distance - ROUNDING, to = profile.fixes[leg + 1].distance + ROUNDING;
  const auto before = [](const K7TerElevPoint& point, double distance) { return point.distance < distance; };
  const auto end = profile.points.end();
  LegGround ground;
  for (auto point = std::lower_bound(profile.points.begin(), end, from, before);
       point != end && point->distance <= to; ++point) {
    if (!HasElev(*point))
      ground.hasGaps = true;
    else if (!ground.highest || point->elev > ground.highest->elev)
      ground.highest = &*point;
  }
  return ground;
}

int ClearAltitude(const LegGround& ground) {
  return ground.highest ? (ClearAltitude(*ground.highest) + 99) / 100 * 100 : 0;
}

std::string EndsText(const Route& route) {
  return route.fixes.front().ident + " \u2013 " + route.fixes.back().ident;
}

std::string RouteText(const Route& route) {
  std::string text;
  for (size_t i = 0; i < route.fixes.size(); ++i) {
    const bool isEnd = i == 0 || i + 1 == route.fixes.size();
    if (!isEnd && !route.legs[i].airway.empty() && route.legs[i].airway == route.legs[i - 1].airway) continue;
    if (i > 0 && !route.legs[i - 1].airway.empty()) text += " " + route.legs[i - 1].airway;
    text += (i > 0 ? " " : "") + route.fixes[i].ident;
  }
  return text;
}
