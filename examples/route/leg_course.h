// The course of a leg at one of its ends.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/course.h>

struct LegCourse {
  double degrees;  ///< below 0 where there is none, as between opposite places
  bool isTrue;     ///< no magnetic model says better
};
/// What an airway states, or else the great circle's by the magnetic model.
LegCourse CourseAt(const K7LatLon& place, const K7LatLon& towards, const K7Course& stated);
