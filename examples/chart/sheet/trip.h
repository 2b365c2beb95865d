// A trip over a route: times, and the ground that each leg crosses.
#pragma once

#include "route/route.h"
#include "sheet/profile.h"

/// The route stays the caller's.
struct Trip {
  const Route& route;
  double knots = 120;  ///< ground speed, above 0
  Profile profile{};   ///< of the route's fixes in their order, with the planned altitude; no points without
                       ///< terrain
  std::vector<std::string> sources{};  ///< what all was taken from, a line each, UTF-8
};

/// The fixes of the route and their distances, without points.
Profile ProfileOf(const Route& route, const std::optional<int>& altitude);

/// Whole minutes to a place so many nautical miles from the start. A leg takes the minutes between its ends,
/// so that what a table states adds up.
int MinutesTo(double distance, double knots);
/// "0:07", "12:30": hours and minutes.
std::string TimeText(int minutes);

struct LegGround {
  const K7TerElevPoint* highest = nullptr;  ///< null where no elevation is known
  bool hasGaps = false;                     ///< ground may be higher where its elevation is not known
};
/// Under leg number `leg`, its ends included.
LegGround GroundUnder(const Profile& profile, size_t leg);
/// The lowest altitude that clears what is known of it, up to the next hundred feet. 0 where nothing is.
int ClearAltitude(const LegGround& ground);

/// "KSEA – CYVR"
std::string EndsText(const Route& route);
/// "KSEA SEA V23 PAE V495 YYJ CYVR": fixes where the airway changes, and the airways between them.
std::string RouteText(const Route& route);
