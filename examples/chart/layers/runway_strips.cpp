#include "layers/runway_strips.h"

#include "layers/nav_places.h"

#include <k7/navdata/airport.h>

#include <cstring>

namespace {

// "34R" of "16L", as the other end is called; empty for what is no runway's name. Names may begin with "RW".
std::string OppositeOf(const std::string& ident) {
  static const char SIDES[] = "LRL";
  const size_t first = ident.find_first_of("0123456789");
  if (first == std::string::npos) return {};
  size_t behind = first;
  int number = 0;
  for (; behind < ident.size() && K7String::IsDigit(ident[behind]) && behind < first + 2; ++behind)
    number = number * 10 + (ident[behind] - '0');
  number = (number + 17) % 36 + 1;
  std::string side = ident.substr(behind);
  if (!side.empty() && std::strchr("LR", side[0])) side[0] = *(std::strchr(SIDES, side[0]) + 1);
  return ident.substr(0, first) + (number < 10 ? "0" : "") + std::to_string(number) + side;
}

RunwayEnd EndOf(const K7Runway& record) {
  RunwayEnd end;
  end.ident.assign(record.ident, strnlen(record.ident, sizeof record.ident));
  end.at = {K7NavData::FixPt2DecDeg(record.lat), K7NavData::FixPt2DecDeg(record.lon)};
  end.magneticCourse = record.magBrg / 10.0;
  end.displaced = std::max<int>(record.displacedThreshold, 0);
  if (record.landingThresholdElev >= K7NavFix::LOWEST_ELEV) end.elev = record.landingThresholdElev;
  return end;
}

void AddEnd(const K7Runway& record, std::vector<RunwayStrip>& runways) {
  RunwayEnd end = EndOf(record);
  for (RunwayStrip& other : runways) {
    auto& [first, second] = other.ends;
    if (OppositeOf(first.ident) != end.ident) continue;
    if (end.at.Distance(first.at) > 1.5 * other.length / FEET_PER_NM) end.at = second.at;
    second = std::move(end);
    return;
  }
  if (record.length <= 0) return;
  const double course = record.trueBrg / 10.0, miles = record.length / FEET_PER_NM;
  RunwayStrip strip{{std::move(end), {}}, course, record.length, record.width};
  auto& [first, second] = strip.ends;
  const K7LatLon place = first.at;
  if (strip.IsHelipad()) first.at.EndPoint(place, course + 180, miles / 2);
  second.at.EndPoint(first.at, course, miles);
  runways.push_back(std::move(strip));
}

}  // namespace

std::vector<RunwayStrip> RunwaysOf(K7NavData& data, const K7NavKey& airport) {
  std::vector<RunwayStrip> runways;
  VisitRecords<K7Runway>(data.AirportRunways(airport), [&](const K7Runway& end) { AddEnd(end, runways); });
  return runways;
}
