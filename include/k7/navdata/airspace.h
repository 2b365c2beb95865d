// Records of airspaces and of boundaries that operators draw.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Controlled airspace (type 13).
struct K7_API K7CtrlAirspace : K7NavArea {
  /// Values of `type`.
  static constexpr uint8_t CLASS_A = 0;
  static constexpr uint8_t CLASS_B = 1;
  static constexpr uint8_t CLASS_C = 2;
  static constexpr uint8_t CONTROL_AREA = 3;
  static constexpr uint8_t TERMINAL_AREA = 4;
  static constexpr uint8_t RADAR_ZONE = 5;
  static constexpr uint8_t CONTROL_ZONE = 6;

  K7NavKey comm;  ///< of the unit that controls it
  K7NavText agency;
  K7NavText activity;
  K7NavText times;
  K7Alt floor;
  K7Alt ceiling;
  uint8_t reserved[56] = {};
  float rnp = 0;  ///< NM; 0 none
  char cpdlc[5] = {};
  char airspaceClass = 0;  ///< 'A' to 'G'; 0 none
  uint8_t reserved2[22] = {};

  /// "Class B", "Control Zone" ... for the values above; "Unknown" for any other.
  static const char* TypeString(int type);
  /// "SEATTLE Class B", with the class's letter where it has one.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Special use airspace (type 14).
struct K7_API K7SUAirspace : K7NavArea {
  /// Values of `type`.
  static constexpr uint8_t ALERT = 0;
  static constexpr uint8_t CAUTION = 1;
  static constexpr uint8_t DANGER = 2;
  static constexpr uint8_t MILITARY = 3;
  static constexpr uint8_t PROHIBITED = 4;
  static constexpr uint8_t RESTRICTED = 5;
  static constexpr uint8_t TRAINING = 6;
  static constexpr uint8_t WARNING = 7;
  static constexpr uint8_t UNKNOWN = 8;
  static constexpr uint8_t GLIDER = 9;

  K7NavText agency;
  K7NavText activity;
  K7NavText times;
  K7Alt floor;
  K7Alt ceiling;
  uint8_t reserved[66] = {};
  char level = 0;  ///< 'H' high, 'L' low, 'B' both
  uint8_t reserved2[21] = {};

  /// "Restricted", "Danger" ... for the values above; "Unknown" for any other.
  static const char* TypeString(int type);
  /// "R6714 (YAKIMA)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// FIR, UIR or communication sector (types 15, 16 and 57).
struct K7_API K7FIR : K7NavArea {
  static constexpr uint32_t IS_FIR = 0x1;  ///< bits of `flags`
  static constexpr uint32_t IS_UIR = 0x2;
  static constexpr uint32_t OCEANIC = 0x4;

  K7NavText address;
  K7Alt firUpper;
  K7Alt uirLower;
  K7Alt uirUpper;
  uint8_t reserved[4] = {};
  char repUnitsSpeed = 0;  ///< '1' knots, '2' Mach, '3' km/h; other characters not stated
  char repUnitsAlt = 0;    ///< '1' flight levels, '2' metres, '3' feet
  char entryRep = 0;       ///< 'Y' when entering is reported
  char cpdlc[5] = {};
  uint8_t reserved2[64] = {};

  /// True for an oceanic region: by its flag, by the identifier "ZOZ", or by a name that holds "OCEANIC".
  bool IsOceanic() const;
  /// "KZSE FIR"; "UIR" where only that flag is set; the identifier alone with neither.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Piece of a boundary (type 27). Its end is the start of the next piece, and the last one's that of the
/// first.
struct K7_API K7AirspaceSeg : K7NavRec {
  /// Values of `via`: how the boundary goes on from the start.
  static constexpr char GREAT_CIRCLE = 'G';
  static constexpr char RHUMB_LINE = 'H';
  static constexpr char CLOCKWISE_ARC = 'R';
  static constexpr char COUNTER_ARC = 'L';
  static constexpr char CIRCLE = 'C';  ///< about the centre; the boundary's only piece

  K7NavKey airspace;
  uint32_t sequence = 0;
  char via = GREAT_CIRCLE;
  uint8_t reserved[3] = {};
  int32_t lat = 0;  ///< start, 2^-23 degree
  int32_t lon = 0;
  int32_t endLat = 0;
  int32_t endLon = 0;
  int32_t centerLat = 0;  ///< of an arc or circle
  int32_t centerLon = 0;
  float radius = 0;    ///< NM
  float startBrg = 0;  ///< degrees true from the centre
  float endBrg = 0;
  uint8_t reserved2[12] = {};

  /// "Great Circle", "Rhumb Line", "Clockwise Arc", "Counter-Clockwise Arc", "Circle" or "Unknown".
  static const char* ViaString(char via);
};

/// Area of special activity: parachuting, gliding, models (type 41).
struct K7_API K7SpecialActivityArea : K7NavRec {
  int32_t lat = 0;  ///< 2^-23 degree
  int32_t lon = 0;
  K7NavText ident;
  K7NavText name;
  K7NavText city;
  K7NavText country;
  uint32_t flags = 0;
  uint16_t type = 0;  ///< code of `TypeString`
  uint8_t reserved[2] = {};

  /// 1 "Parachuting", 2 "Gliding", 3 "Model Flying", 4 "Ballooning", 5 "Ultralight Flying", 6 "Aerobatics";
  /// "Unknown" for any other.
  static const char* TypeString(int code);
  /// "ident (name)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// End of a boundary that an operator draws (type 45).
struct K7_API K7TailoredEndpoint : K7NavRec {
  int32_t lat = 0;  ///< 2^-23 degree
  int32_t lon = 0;
  K7NavText ident;
  K7NavText fleet;
  uint8_t type = 0;
  uint8_t reserved[3] = {};
  uint8_t flags = 0;
  uint8_t reserved2[3] = {};

  /// The identifier.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Line at a stated distance from the shore (type 46).
struct K7_API K7TailoredLine : K7NavRec {
  K7NavText name;
  K7NavText ident;
  K7NavText fleet;
  int32_t north = 0;  ///< bounds, 2^-23 degree
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  K7Alt floor;
  K7Alt ceiling;
  uint32_t firstSeg = 0;
  uint32_t segCount = 0;
  uint16_t flags =
      0;  ///< the field table reads 32 bits here: the region's two characters are their upper half
  char icao[3] = {};
  uint8_t reserved[3] = {};

  /// The name, else the identifier.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Point at which an operator's flights turn or report (type 47).
struct K7_API K7TransientPoint : K7NavRec {
  int32_t lat = 0;  ///< 2^-23 degree
  int32_t lon = 0;
  uint8_t reserved[4] = {};
  uint32_t type = 0;
  K7NavText ident;
  K7NavText name;
  K7NavText airport1;
  K7NavText airport2;
};

/// Area that an operator draws (type 48).
struct K7_API K7TailoredAirspace : K7NavArea {
  K7NavText fleet;
  K7Alt floor;
  K7Alt ceiling;
  uint8_t reserved[16] = {};

  /// The name, else the identifier.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Area within a stated flying time of an adequate airport (type 50).
struct K7_API K7ETOPS : K7NavArea {
  K7NavText aircraftType;
  int32_t minutes = 0;
  int32_t distance = 0;  ///< NM

  /// "ident (180 min)".
  int GetDescription(K7NavData* data, K7String& out) const;
};
