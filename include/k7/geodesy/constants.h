// The numbers of the spherical earth that navigation and the map projections share.
#pragma once

/// Every angle is converted and every distance in nautical miles scaled with these exact values, so that
/// classes do not differ by their constants. The sphere on which maps are laid out has a radius of its own,
/// K7_EARTH_RADIUS_M in k7/projection/projection.h.
inline constexpr double K7_PI = 3.141592653589793;
inline constexpr double K7_DEG_TO_RAD = 0.017453292519943295;
inline constexpr double K7_RAD_TO_DEG = 57.29577951308232;

/// The radius of the sphere in nautical miles: the length of one radian of arc.
inline constexpr double K7_EARTH_RADIUS_NM = 3437.74677;

/// Where the cosine of an angle reaches this size, acos loses digits and the length of the cross product
/// serves instead.
inline constexpr double K7_SMALL_ANGLE_COS = 0.707;

/// What a course is between points that have none (the same point, antipodes, from a pole). Like every
/// negative angle it has 360 added before it is returned: callers see -639 and test for a negative course.
inline constexpr double K7_NO_COURSE = -999.0;
