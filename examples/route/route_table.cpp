// Routes in words and figures.
#include <k7/foundation/string.h>

#include <cmath>

#include "route/route.h"

namespace {

std::string Course(double degrees, bool isTrue) {
  if (degrees < 0) return {};
  const int whole = static_cast<int>(std::lround(degrees)) % 360;
  K7String text;
  text.Format("%03d%s", whole == 0 ? 360 : whole, isTrue ? "T" : "");
  return std::string(text);
}

}  // namespace

std::string CourseText(const RouteLeg& leg) { return Course(leg.course, leg.isTrue); }

std::string ArrivalText(const RouteLeg& leg) { return Course(leg.arrival, leg.isArrivalTrue); }

std::string AltitudeText(const K7Alt& altitude) {
  K7String text;
  if (altitude.Value() != 0) altitude.ToString(text, true);
  return std::string(text);
}

std::string RouteTable(const Route& route) {
  if (route.fixes.empty()) return {};
  const RouteFix &first = route.fixes.front(), &last = route.fixes.back();
  K7String line;
  line.Format("%.1f NM, %.1f NM by the great circle\n", route.distance, first.place.Distance(last.place));
  std::string table = first.ident + " (" + route.fromName + ") to " + last.ident + " (" + route.toName +
                      "), " + std::string(line);
  for (const std::string& note : route.notes) table += note + "\n";
  table += "\nfix         airway    course  distance    total   minimum   maximum\n" + first.ident + "\n";
  double total = 0;
  for (size_t i = 0; i < route.legs.size(); ++i) {
    const RouteLeg& leg = route.legs[i];
    total += leg.distance;
    line.Format("%-11s %-9s %6s%10.1f%9.1f%10s%10s", route.fixes[i + 1].ident.c_str(),
                leg.airway.empty() ? "direct" : leg.airway.c_str(), CourseText(leg).c_str(), leg.distance,
                total, AltitudeText(leg.minimum).c_str(), AltitudeText(leg.maximum).c_str());
    std::string row(line);
    row.erase(row.find_last_not_of(' ') + 1);
    table += row + "\n";
  }
  return table;
}
