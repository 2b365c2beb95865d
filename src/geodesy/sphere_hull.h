// The convex hull of points of the sphere.
#pragma once

#include <k7/geodesy/ecef.h>

namespace k7geo {

/// Gives the outward unit normal of the face of the points' hull that is nearest to the earth's centre: it is
/// the middle of the largest circle on the sphere that holds none of them, when the centre lies within the
/// hull. `points` in random order make n log n expected of it. 1; 0 for points of one plane, which have no
/// faces; K7_ERR_MEMORY.
int NearestFace(const K7ECEF* points, int count, K7ECEF& normal);

}  // namespace k7geo
