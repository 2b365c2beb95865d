#include "route/leg_course.h"

#include <k7/geodesy/magvar.h>

#include <cmath>

LegCourse CourseAt(const K7LatLon& place, const K7LatLon& towards, const K7Course& stated) {
  if (stated.Word() != 0) return {stated, stated.Reference() == K7Course::TRUE_NORTH};
  const double degrees = place.InitCourse(towards);
  if (degrees < 0) return {degrees, false};
  const Tarsvald::MagVar* const model = K7MagVar::GetMagVar();
  double variation = 0;
  const bool isTrue = !model || !model->Position(&variation, place.Lat(), place.Lon(), 0, 0);
  return {std::fmod(degrees - variation + 720, 360), isTrue};
}
