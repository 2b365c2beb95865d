#include "layers/airway_legs.h"

#include <k7/geodesy/magvar.h>
#include <k7/navdata/nav_data.h>
#include <k7/projection/chart_rect.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>

namespace {

K7LatLon Place(int32_t lat, int32_t lon) {
  return {K7NavData::FixPt2DecDeg(lat), K7NavData::FixPt2DecDeg(lon)};
}

// The two ends in one order, whichever way a record runs.
using Ends = std::array<int32_t, 4>;

Ends EndsOf(const K7AirwaySeg& s, bool& turned) {
  const Ends forth = {s.fromLat, s.fromLon, s.toLat, s.toLon},
             back = {s.toLat, s.toLon, s.fromLat, s.fromLon};
  turned = back < forth;
  return turned ? back : forth;
}

AirwayLeg NewLeg(const K7AirwaySeg& s, bool turned) {
  AirwayLeg leg;
  leg.from = {s.fromKey, s.fromIdent, Place(s.fromLat, s.fromLon)};
  leg.to = {s.toKey, s.toIdent, Place(s.toLat, s.toLon)};
  if (turned) std::swap(leg.from, leg.to);
  leg.distance = s.distance ? s.distance / 100.0 : leg.from.place.Distance(leg.to.place);
  leg.direction = '\0';
  return leg;
}

// One way only if all airways agree.
char DirectionOf(const K7AirwaySeg& s, bool turned) {
  if (s.direction != K7AirwaySeg::FORWARD && s.direction != K7AirwaySeg::BACKWARD)
    return K7AirwaySeg::BOTH_WAYS;
  return (s.direction == K7AirwaySeg::FORWARD) != turned ? K7AirwaySeg::FORWARD : K7AirwaySeg::BACKWARD;
}

void AddAirway(const K7AirwaySeg& s, bool turned, AirwayLeg& leg) {
  leg.segments.push_back(s.key);
  if (std::find(leg.names.begin(), leg.names.end(), s.ident) == leg.names.end())
    leg.names.emplace_back(s.ident);
  // Either way is flown at the higher of both.
  const K7Alt minimum =
      s.meaOpposite.Value() > s.mea.Value() && !s.meaOpposite.IsSpecialValue() ? s.meaOpposite : s.mea;
  const auto same = [&](const K7Alt& other) { return other.Word() == minimum.Word(); };
  if (minimum.Value() != 0 && std::none_of(leg.minima.begin(), leg.minima.end(), same))
    leg.minima.push_back(minimum);
  if (leg.course.Word() == 0) leg.course = turned ? s.courseOpposite : s.course;
  if (leg.back.Word() == 0) leg.back = turned ? s.course : s.courseOpposite;
  const char direction = DirectionOf(s, turned);
  leg.direction = leg.direction == '\0' || leg.direction == direction ? direction : K7AirwaySeg::BOTH_WAYS;
  (s.Type() == K7NAV_LOW_AIRWAY ? leg.low : leg.high) = true;
}

double Round360(double degrees) {
  const double round = std::fmod(std::round(degrees) + 720, 360);
  return round == 0 ? 360 : round;
}

}  // namespace

std::vector<AirwayLeg> AirwayLegs(K7NavData& data, const K7ChartRect& area) {
  std::vector<AirwayLeg> legs;
  std::map<Ends, size_t> known;
  for (const K7NavType type : {K7NAV_LOW_AIRWAY, K7NAV_HIGH_AIRWAY}) {
    const std::unique_ptr<K7NavQueryResult> result(data.AreaQuery(type, area));
    while (const K7NavRec* const rec = result ? result->Next() : nullptr) {
      const auto& segment = static_cast<const K7AirwaySeg&>(*rec);
      bool turned = false;
      const auto [place, isNew] = known.try_emplace(EndsOf(segment, turned), legs.size());
      if (isNew) legs.push_back(NewLeg(segment, turned));
      AddAirway(segment, turned, legs[place->second]);
    }
  }
  return legs;
}

std::string JoinedNames(const AirwayLeg& leg) {
  std::string text;
  for (const std::string& name : leg.names) text += (text.empty() ? "" : "-") + name;
  return text;
}

std::string MinimumText(const AirwayLeg& leg) {
  std::string text;
  for (const K7Alt& minimum : leg.minima) {
    K7String one;
    minimum.ToString(one, true);
    if (!one.IsEmpty()) text += (text.empty() ? "" : "/") + std::string(one);
  }
  return text;
}

std::string CourseText(const AirwayLeg& leg, bool fromFirst) {
  const AirwayLeg::End &here = fromFirst ? leg.from : leg.to, &there = fromFirst ? leg.to : leg.from;
  const K7Course& known = fromFirst ? leg.course : leg.back;
  double course = known;
  bool isTrue = known.Reference() == K7Course::TRUE_NORTH;
  if (known.Word() == 0) {
    course = here.place.InitCourse(there.place);
    if (course < 0) return {};
    const Tarsvald::MagVar* const model = K7MagVar::GetMagVar();
    double variation = 0;
    isTrue = !model || !model->Position(&variation, here.place.Lat(), here.place.Lon(), 0, 0);
    course -= variation;
  }
  K7String text;
  text.Format("%03.0f\xC2\xB0%s", Round360(course), isTrue ? "T" : "");
  return std::string(text);
}
