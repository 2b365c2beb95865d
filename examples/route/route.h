// FindRoute: from one place to another over the airways, with what a flight log says of each leg.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airway.h>

#include <optional>
#include <string>
#include <vector>

class AirwayGraph;
class NavStore;

struct RouteRequest {
  std::string from, to;  ///< identifiers of airports, navaids or fixes, or positions; UTF-8, in any case
  double directNM = 25;  ///< at most, of the direct leg to the airways, and of that from them
  std::optional<int> feet = {};  ///< altitude that the airways must be flown at; none: any
};

struct RouteFix {
  std::string ident;
  K7NavKey key;  ///< no record where the airways name none
  K7LatLon place;
  std::string kind = {};  ///< "airport", "VORTAC 116.8", "NDB 362", "fix"; empty where nothing is known
};

struct RouteLeg {
  std::string airway;   ///< empty for a direct leg
  double distance = 0;  ///< NM, along the great circle
  double course = -1;   ///< degrees on leaving the first fix; below 0 where there is none
  bool isTrue = false;  ///< where neither the airway nor a magnetic model knows better
  double arrival = -1;  ///< the same on reaching the second fix
  bool isArrivalTrue = false;
  K7Alt minimum, maximum;  ///< in the leg's direction; words of 0 where none are stated
};

struct Route {
  std::vector<RouteFix> fixes;
  std::vector<RouteLeg> legs;  ///< one fewer
  double distance = 0;
  std::string fromName, toName;    ///< "airport SEATTLE-TACOMA INTL", UTF-8
  std::vector<std::string> notes;  ///< what was chosen where an identifier stands for several places
};

/// Finds the shortest route. Each leg follows the airway that goes on for longest, so that a route changes
/// airways as seldom as its way lets it. Magnetic courses that no airway states are the model's of
/// `K7MagVar`. Empty, or in one line why there is no route, and how near one came.
std::string FindRoute(NavStore& store, const AirwayGraph& graph, const RouteRequest& request, Route& route);

/// "087", "087T" of a true course, "" of none.
std::string CourseText(const RouteLeg& leg);
std::string ArrivalText(const RouteLeg& leg);
/// "4000", "FL195"; "" where none is stated.
std::string AltitudeText(const K7Alt& altitude);
/// The route as a table of lines: a fix and the leg that leads to it on each.
std::string RouteTable(const Route& route);
