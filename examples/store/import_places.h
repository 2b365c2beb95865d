// Where an import finds again what it has read: fixes and navaids by identifier and place, airports with
// their runways.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_rec.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class PlaceIndex {
 public:
  void Add(const K7NavFix& fix);
  /// The nearest of that identifier within `distance` NM; of equally near ones that of the lower key. The
  /// no-record key when there is none.
  K7NavKey Nearest(std::string_view ident, const K7LatLon& at, double distance);

 private:
  struct Place {
    char ident[9];
    int32_t lat, lon;
    K7NavKey key;
  };
  std::vector<Place> m_places;
  bool m_sorted = true;
};

struct AirportIndex {
  struct Runway {
    std::string number;
    K7NavKey key;
  };
  struct Airport {
    K7NavKey key;
    std::vector<Runway> runways;

    /// The no-record key for a number that it does not have.
    K7NavKey RunwayKey(std::string_view number) const;
  };
  /// Null for one that is not known.
  const Airport* Find(std::string_view ident) const;

  std::unordered_map<std::string, Airport> airports;
};

/// Two digits, "3R" as "03R".
std::string RunwayNumber(std::string_view number);
