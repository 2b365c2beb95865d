#include "store/import_places.h"

#include "store/import_run.h"

#include <algorithm>
#include <cctype>
#include <cstring>

void PlaceIndex::Add(const K7NavFix& fix) {
  Place place{{}, fix.lat, fix.lon, fix.key};
  std::memcpy(place.ident, fix.ident, sizeof place.ident);
  m_places.push_back(place);
  m_sorted = false;
}

K7NavKey PlaceIndex::Nearest(std::string_view ident, const K7LatLon& at, double distance) {
  const auto name = [](const Place& place) { return std::string_view(place.ident); };
  if (!m_sorted) {
    std::sort(m_places.begin(), m_places.end(), [&](const Place& a, const Place& b) {
      return name(a) != name(b) ? name(a) < name(b) : a.key < b.key;
    });
    m_sorted = true;
  }
  auto place = std::lower_bound(m_places.begin(), m_places.end(), ident,
                                [&](const Place& a, std::string_view b) { return name(a) < b; });
  K7NavKey found;
  for (; place != m_places.end() && name(*place) == ident; ++place) {
    const double away =
        at.Distance({K7NavData::FixPt2DecDeg(place->lat), K7NavData::FixPt2DecDeg(place->lon)});
    if (away > distance || (away == distance && !found.NoRecord())) continue;
    found = place->key;
    distance = away;
  }
  return found;
}

K7NavKey AirportIndex::Airport::RunwayKey(std::string_view number) const {
  const std::string wanted = RunwayNumber(number);
  for (const Runway& runway : runways)
    if (runway.number == wanted) return runway.key;
  return {};
}

const AirportIndex::Airport* AirportIndex::Find(std::string_view ident) const {
  const auto found = airports.find(std::string(ident));
  return found == airports.end() ? nullptr : &found->second;
}

std::string RunwayNumber(std::string_view number) {
  const auto isDigit = [&](size_t i) {
    return i < number.size() && std::isdigit(static_cast<unsigned char>(number[i]));
  };
  return (isDigit(0) && !isDigit(1) ? "0" : "") + std::string(number);
}
