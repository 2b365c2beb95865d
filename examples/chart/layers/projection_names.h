// What people call the projections of the library, and how far their charts reach.
#pragma once

#include <k7/projection/projection.h>

#include <span>
#include <string>

struct NamedProjection {
  const char* name;
  K7ProjType type;
};

std::span<const NamedProjection> Projections();
/// Regardless of case; null for none.
const NamedProjection* FindProjection(const std::string& name);
/// "unknown projection 'x' (lambert, ...)"
std::string UnknownProjection(const std::string& name);
/// "lambert, mercator, ..."
std::string ProjectionNames();

/// Half way around the earth.
inline constexpr double MOST_RANGE_NM = 10800;
