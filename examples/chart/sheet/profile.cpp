#include "sheet/profile.h"

#include "app_common/position_text.h"

#include <k7/foundation/array.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double MOST_POINTS = 1e6;

std::string Miles(double nm) { return std::string(K7FmtString("%.1f", nm)); }

std::string Feet(int feet) { return std::to_string(feet) + " ft"; }

double Total(const std::vector<PointRun>& runs) {
  double nm = 0;
  for (const PointRun& run : runs) nm += run.to - run.from;
  return nm;
}

}  // namespace

int TakeGround(K7Terrain& terrain, double resolution, double spacing, Profile& profile, size_t& leg) {
  profile.points.clear();
  std::vector<ProfileFix>& fixes = profile.fixes;
  for (size_t i = 1; i < fixes.size(); ++i)
    fixes[i].distance = fixes[i - 1].distance + fixes[i - 1].place.Distance(fixes[i].place);
  spacing = std::max(spacing, profile.Length() / MOST_POINTS);
  K7Array line(sizeof(K7TerElevPoint), 1024);
  for (leg = 0; leg + 1 < fixes.size(); ++leg) {
    const int count =
        terrain.GetElevUnderLine(fixes[leg].place, fixes[leg + 1].place, resolution, spacing, line);
    if (count < 0) return count;
    // Where legs meet stands one point.
    for (int i = leg == 0 ? 0 : 1; i < count; ++i) {
      profile.points.push_back(static_cast<const K7TerElevPoint*>(line.Data())[i]);
      profile.points.back().distance += fixes[leg].distance;
    }
  }
  return 0;
}

int MetresOfFeet(int feet) {
  static const double FEET_PER_METRE = 3.2808399;
  return static_cast<int>(std::lround(feet / FEET_PER_METRE));
}

const K7TerElevPoint* HighestGround(const std::vector<K7TerElevPoint>& points) {
  const K7TerElevPoint* highest = nullptr;
  for (const K7TerElevPoint& point : points)
    if (HasElev(point) && (!highest || point.elev > highest->elev)) highest = &point;
  return highest;
}

std::vector<PointRun> RunsOf(const std::vector<K7TerElevPoint>& points,
                             const std::function<bool(const K7TerElevPoint&)>& wanted) {
  std::vector<PointRun> runs;
  bool isIn = false;
  for (size_t i = 0; i < points.size(); ++i) {
    const bool was = std::exchange(isIn, wanted(points[i]));
    const double nm = points[i].distance, border = i > 0 ? (points[i - 1].distance + nm) / 2 : nm;
    if (isIn && !was) runs.push_back({i, i, border, nm});
    if (!isIn && was) runs.back().to = border;
    if (!isIn) continue;
    runs.back().last = i;
    runs.back().to = nm;
  }
  return runs;
}

std::vector<PointRun> Gaps(const Profile& profile) {
  return RunsOf(profile.points, [](const K7TerElevPoint& point) { return !HasElev(point); });
}

int ClearAltitude(const K7TerElevPoint& point) {
  const int ground = std::max(point.elev, 0);
  return ground + (ground > MOUNTAIN_GROUND ? MOUNTAIN_CLEARANCE : CLEARANCE);
}

int ClearAltitude(const Profile& profile) {
  const K7TerElevPoint* const highest = HighestGround(profile.points);
  return highest ? ClearAltitude(*highest) : 0;
}

std::vector<PointRun> LowRuns(const Profile& profile) {
  if (!profile.altitude) return {};
  return RunsOf(profile.points, [&](const K7TerElevPoint& point) {
    return HasElev(point) && ClearAltitude(point) > *profile.altitude;
  });
}

std::string WayText(const Profile& profile) {
  std::string text;
  for (const ProfileFix& fix : profile.fixes) text += (text.empty() ? "" : " - ") + fix.ident;
  return text;
}

std::string HighestText(const Profile& profile) {
  const K7TerElevPoint* const highest = HighestGround(profile.points);
  if (!highest) return "no elevation anywhere";
  return "highest ground " + Feet(highest->elev) + " (" + std::to_string(MetresOfFeet(highest->elev)) +
         " m) at " + Miles(highest->distance) + " NM, " + PositionText({highest->lat, highest->lon});
}

std::string RunsText(const std::vector<PointRun>& runs) {
  static const size_t MOST = 3;
  std::string text;
  for (size_t i = 0; i < std::min(runs.size(), MOST); ++i)
    text += (i ? ", " : "") + Miles(runs[i].from) + "-" + Miles(runs[i].to);
  text += " NM";
  return runs.size() > MOST ? text + " and " + std::to_string(runs.size() - MOST) + " more" : text;
}

std::string GapText(const Profile& profile) {
  const std::vector<PointRun> gaps = Gaps(profile);
  if (gaps.empty() || !HighestGround(profile.points)) return {};
  return "no elevation at " + RunsText(gaps) +
         (gaps.size() > 1 ? ", " + Miles(Total(gaps)) + " NM in all" : std::string());
}

std::string ClearanceText(const Profile& profile) {
  if (!profile.altitude) return {};
  const std::string altitude = Feet(*profile.altitude);
  const std::vector<PointRun> low = LowRuns(profile);
  const int clear = (ClearAltitude(profile) + 99) / 100 * 100;
  if (!low.empty())
    return "WARNING: " + altitude + " does not clear the ground at " + RunsText(low) + "; " + Feet(clear) +
           " would";
  if (!HighestGround(profile.points))
    return "WARNING: nothing says whether " + altitude + " clears the ground";
  return altitude + " clears the ground" + (Gaps(profile).empty() ? "" : " where its elevation is known");
}
