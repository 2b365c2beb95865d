// Records of airports and runways.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Airport (type 5). Its runways and frequencies are the store's: `K7NavData::AirportRunways`,
/// `AirportComms`.
struct K7_API K7Airport : K7NavFix {
  static constexpr uint32_t DAYLIGHT_SAVING = 0x40;  ///< bits of `flags`
  static constexpr uint32_t PUBLIC = 0x400;
  static constexpr uint32_t MILITARY = 0x800;
  static constexpr uint32_t PRIVATE = 0x1000;
  static constexpr uint32_t HELIPORT = 0x10000;
  static constexpr uint32_t SEAPLANE_BASE = 0x20000;
  static constexpr uint32_t TOWER = 0x40000;

  char iata[4] = {};
  char state[4] = {};
  char country[4] = {};
  uint32_t patternAlt = 0;  ///< height of the traffic pattern above the airport, feet
  K7NavText name;
  K7NavText city;
  K7Alt speedLimitAlt;     ///< the field table reads its low half, as of the two below
  int16_t utcOffset = 0;   ///< minutes to add to local time for UTC
  int16_t speedLimit = 0;  ///< knots
  K7Alt transAlt;
  K7Alt transLevel;
  uint32_t flags = 0;
  uint32_t serviceFlags = 0;
  int16_t longestRunway = 0;  ///< hundreds of feet
  uint8_t reserved[6] = {};

  /// "KSEA (SEATTLE-TACOMA INTL)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// One end of a runway, at its threshold (type 6).
struct K7_API K7Runway : K7NavFix {
  /// Bits of `flags`: use, unless `UNRESTRICTED`, and lights.
  static constexpr uint16_t UNRESTRICTED = 0x1;
  static constexpr uint16_t EMERGENCY_ONLY = 0x2;
  static constexpr uint16_t GLIDER_ONLY = 0x4;
  static constexpr uint16_t ULTRALIGHT_ONLY = 0x8;
  static constexpr uint16_t EDGE_LIGHTS = 0x10;
  static constexpr uint16_t APPROACH_LIGHTS = 0x20;
  static constexpr uint16_t CENTERLINE_LIGHTS = 0x40;
  static constexpr uint16_t REIL = 0x80;
  static constexpr uint16_t TOUCHDOWN_LIGHTS = 0x100;
  static constexpr uint16_t PART_TIME_LIGHTS = 0x200;
  static constexpr uint16_t PILOT_CONTROLLED_LIGHTS = 0x400;
  static constexpr uint16_t PRIOR_REQ_CENTERLINE = 0x800;
  static constexpr uint16_t PRIOR_REQ_REIL = 0x4000;
  static constexpr uint16_t PRIOR_REQ_TOUCHDOWN = 0x8000;

  K7NavKey airport;
  char airportIdent[6] = {};  ///< without its NUL when it has six characters
  int16_t length = 0;         ///< feet; 0 unknown
  int16_t width = 0;
  int16_t magBrg = 0;  ///< tenths of a degree
  int16_t trueBrg = 0;
  int16_t surface = 0;  ///< code of `SurfaceString`
  uint16_t flags = 0;
  int16_t tdzElev = 0;               ///< feet; below -4898 unknown
  int16_t displacedThreshold = 0;    ///< feet
  int16_t stopway = 0;               ///< feet
  int16_t landingThresholdElev = 0;  ///< feet; below -4898 unknown
  uint8_t reserved[2] = {};
  float gradient = 0;  ///< percent, up positive
  uint8_t reserved2[4] = {};

  static constexpr int16_t SURFACE_UNKNOWN = 17;
  /// "Asphalt", "Turf" ... for codes 0 to 25; "Unknown" for any other.
  static const char* SurfaceString(int code);
  /// "KSEA Runway 16L".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Private strip or other airport of low use (type 20).
struct K7_API K7LowUseAirport : K7NavFix {
  char state[3] = {};
  char tarsIdent[5] = {};
  K7NavText county;
  K7NavText sectional;  ///< name of the chart that shows it
  char cityDirection[4] = {};
  uint16_t owner = 0;  ///< 1 public, 2 private, 3 air force, 4 navy, 5 army
  uint16_t use = 0;    ///< 1 public, 2 private
  K7NavText name;
  K7NavText city;
  char effectiveDate[10] = {};
  int16_t patternAlt = 0;     ///< height above the airport, feet
  uint16_t cityDistance = 0;  ///< NM
  uint16_t flags = 0;
  int16_t longestRunway = 0;  ///< hundreds of feet
  uint8_t reserved[6] = {};

  /// "WA09 (ROCHE HARBOR)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// What an operator keeps of an airport (type 42).
struct K7_API K7CompanyAirport : K7NavRec {
  K7NavText frequencies;
  K7NavText telephones;
  uint8_t flags = 0;
  uint8_t reserved[3] = {};
  char ident[6] = {};
  char icao[4] = {};
  uint8_t reserved2[2] = {};
};

/// A fleet of an operator (type 43). Aircraft type and fleet are one text.
struct K7_API K7Fleet : K7NavRec {
  char fleet[3] = {};
  uint8_t reserved[21] = {};
};

/// How a fleet uses an airport (type 44). Aircraft type and fleet are one text.
struct K7_API K7FleetAirport : K7NavRec {
  char fleet[20] = {};
  int16_t airportType = 0;  ///< code of `TypeString`
  uint8_t reserved[2] = {};
  char ident[6] = {};
  uint8_t flags = 0;
  uint8_t reserved2 = 0;
  K7NavKey airport;
  uint8_t reserved3[8] = {};

  /// 1 "Regular", 2 "Alternate", 3 "Refuel", 4 "Emergency"; null for any other.
  static const char* TypeString(int code);
};
