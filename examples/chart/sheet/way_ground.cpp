#include "sheet/way_ground.h"

#include <k7/foundation/error_string.h>

// Twice as densely as posts stand, so that a way that runs aslant between them meets each.
std::string MeasureGround(Elevations& terrain, double resolution, Profile& profile) {
  static const double MINUTE = 60;
  const double seconds = terrain.PostSpacing(resolution);
  const double spacing = (seconds > 0 ? seconds : MINUTE) / MINUTE / 2;
  size_t leg = 0;
  const int code = TakeGround(terrain, resolution, spacing, profile, leg);
  if (code == 0) return {};
  const std::string from = profile.fixes[leg].ident, to = profile.fixes[leg + 1].ident;
  if (code == K7_ERR_INVALID_DATA)
    return from + " and " + to + " lie opposite each other: every great circle joins them";
  return "no profile from " + from + " to " + to + ": " + K7ErrorString::ErrorString(code);
}
