// Records of obstacles and of aircraft formations.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Obstacle (types 22, 54, 55 and 56).
struct K7_API K7Obstacle : K7NavRec {
  int32_t lat = 0;  ///< 2^-23 degree
  int32_t lon = 0;
  int16_t elev = 0;    ///< of its top, feet above the sea
  int16_t height = 0;  ///< feet above the ground
  uint8_t typeCode = 0;
  uint8_t lightCode = 0;
  uint16_t horzAccuracy = 0;  ///< feet; 0 unknown
  uint16_t vertAccuracy = 0;
  uint8_t reserved[6] = {};

  /// 1 "Antenna", 2 "Bridge", 3 "Building", 4 "Catenary", 5 "Chimney", 6 "Cooling Tower", 7 "Crane", 8 "Dam",
  /// 9 "Dome", 10 "Elevator", 11 "Lighthouse", 12 "Mast", 13 "Monument", 14 "Pole", 15 "Rig", 16 "Sign",
  /// 17 "Spire", 18 "Stack", 19 "Tank", 20 "Tower", 21 "Transmission Line", 22 "Tree", 23 "Wind Turbine";
  /// "Obstacle" for any other.
  static const char* TypeString(int code);
  /// 1 "None", 2 "Lighted", 3 "Red", 4 "White Strobe", 5 "Red and White", 6 "Flood"; "Unknown" for any other.
  static const char* LightString(int code);
  /// "Tower 1250 ft (400 ft AGL)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Meeting point of a formation, relative to a reference (type 21).
struct K7_API K7Formation : K7NavRec {
  int32_t refLat = 0;  ///< 2^-23 degree
  int32_t refLon = 0;
  K7NavKey refKey;
  K7NavKey fixKey;
  int16_t bearing = 0;   ///< tenths of a degree, magnetic
  int16_t distance = 0;  ///< tenths of an NM
  char usage = 0;
  uint8_t reserved[3] = {};

  /// "Formation at " and the identifier of the reference where the store knows it, else its position.
  int GetDescription(K7NavData* data, K7String& out) const;
};
