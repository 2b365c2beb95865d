// The ground under a way from fix to fix, and what a pilot asks of it.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/terrain/ter_tile.h>
#include <k7/terrain/terrain.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct ProfileFix {
  std::string ident;  ///< UTF-8
  K7LatLon place;
  double distance = 0;  ///< from the first fix, nautical miles
};

struct Profile {
  std::vector<ProfileFix> fixes;       ///< two or more
  std::vector<K7TerElevPoint> points;  ///< from the first fix to the last, in order
  std::optional<int> altitude;         ///< planned, feet

  double Length() const { return fixes.empty() ? 0 : fixes.back().distance; }
};

/// Fills the points, and the distances of the fixes, along the great circles from fix to fix, at most
/// `spacing` nautical miles apart; farther where there would be more than a million. Answers 0, or a code of
/// `K7Terrain::GetElevUnderLine`; `leg` is the one that failed then.
int TakeGround(K7Terrain& terrain, double resolution, double spacing, Profile& profile, size_t& leg);

inline bool HasElev(const K7TerElevPoint& point) { return point.elev != K7_NO_ELEV; }
/// The metres of the post that the terrain answered in whole feet.
int MetresOfFeet(int feet);
/// Null where there is no elevation at all.
const K7TerElevPoint* HighestGround(const std::vector<K7TerElevPoint>& points);

/// A stretch of points of one kind, `first` to `last`.
struct PointRun {
  size_t first, last;
  double from, to;  ///< nautical miles; half way to the points of the other kind
};
std::vector<PointRun> RunsOf(const std::vector<K7TerElevPoint>& points,
                             const std::function<bool(const K7TerElevPoint&)>& wanted);
std::vector<PointRun> Gaps(const Profile& profile);

/// \name Clearance
/// 1000 ft over the ground, and over water that is deeper; 2000 ft over ground above 5000 ft, as in
/// mountainous areas.
/// @{
inline constexpr int CLEARANCE = 1000, MOUNTAIN_CLEARANCE = 2000, MOUNTAIN_GROUND = 5000;
int ClearAltitude(const K7TerElevPoint& point);
/// The lowest altitude that clears all ground that is known.
int ClearAltitude(const Profile& profile);
/// Where the planned altitude clears too little.
std::vector<PointRun> LowRuns(const Profile& profile);
/// @}

/// \name In words
/// @{
/// "KSEA - CYVR"
std::string WayText(const Profile& profile);
/// "highest ground 4567 ft (1392 m) at 45.2 NM, N48 12.345 W122 33.444", or that there is no elevation.
std::string HighestText(const Profile& profile);
/// Empty without gaps, and where all is one.
std::string GapText(const Profile& profile);
/// Empty without an altitude. Says "WARNING" where it does not clear the ground.
std::string ClearanceText(const Profile& profile);
/// "1.5-3.0, 7.2-9.9 NM"; of more than a few, the first and how many more.
std::string RunsText(const std::vector<PointRun>& runs);
/// @}
