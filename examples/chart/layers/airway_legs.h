// The airways of an area as a chart shows them: each stretch between two fixes once, whatever number of
// airways follows it.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airway.h>

#include <string>
#include <vector>

class K7ChartRect;
class K7NavData;

struct AirwayLeg {
  struct End {
    K7NavKey fix;
    std::string ident;
    K7LatLon place;
  };
  End from, to;
  std::vector<K7NavKey> segments;  ///< of all airways
  std::vector<std::string> names;  ///< of all airways, the low ones first
  std::vector<K7Alt> minima;       ///< minimum altitudes that differ, in the order of the names
  K7Course course, back;           ///< as the records have them; words 0 for none
  double distance = 0;             ///< NM
  bool low = false, high = false;
  char direction = K7AirwaySeg::BOTH_WAYS;
};

/// Empty where the store does not answer.
std::vector<AirwayLeg> AirwayLegs(K7NavData& data, const K7ChartRect& area);

/// "V2-V23"
std::string JoinedNames(const AirwayLeg& leg);
/// "4000", "FL195", "4000/FL195"; empty when unknown.
std::string MinimumText(const AirwayLeg& leg);
/// The course on leaving an end for the other, in whole degrees, 001 to 360, magnetic unless there is neither
/// a record's nor a model's word on it: then true, with a "T".
std::string CourseText(const AirwayLeg& leg, bool fromFirst);
