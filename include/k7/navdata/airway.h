// Records of airways and of what is flown along them: holdings, restrictions, procedures, cruise levels.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Segment of an airway between two fixes (types 9, 10, 52 and 53).
struct K7_API K7AirwaySeg : K7NavRec {
  /// Values of `direction`.
  static constexpr char BOTH_WAYS = ' ';
  static constexpr char FORWARD = 'F';
  static constexpr char BACKWARD = 'B';

  char ident[7] = {};
  char atcAdvisory = 0;
  K7NavKey fromKey;
  K7NavKey toKey;
  int32_t fromLat = 0;  ///< 2^-23 degree
  int32_t fromLon = 0;
  int32_t toLat = 0;
  int32_t toLon = 0;
  uint32_t flags = 0;
  uint32_t sequence = 0;  ///< place in the airway, from 0
  char fromIdent[9] = {};
  char toIdent[9] = {};
  uint8_t reserved[2] = {};
  K7Alt mea;                ///< minimum enroute altitude, in the segment's direction
  K7Alt meaOpposite;        ///< against it, where it differs
  K7Alt moca;               ///< minimum obstacle clearance altitude
  K7Alt maa;                ///< maximum authorised altitude
  K7Course course;          ///< at the first fix
  K7Course courseOpposite;  ///< at the second fix, back
  uint32_t distance = 0;    ///< 0.01 NM
  K7NavKey fir;
  K7NavKey header;  ///< of the airway (type 29)
  K7NavKey cruiseTable;
  float rnp = 0;  ///< NM; 0 none
  uint8_t reserved2[30] = {};
  char routeType = 0;
  char direction = BOTH_WAYS;
  uint8_t reserved3[12] = {};

  /// "V23 SEA - PAE".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Airway as a whole (type 29).
struct K7_API K7AirwayHeader : K7NavRec {
  char ident[7] = {};
  char region = 0;
  K7NavKey fromKey;
  K7NavKey toKey;
  uint16_t flags = 0;
  uint16_t segCount = 0;
  uint32_t firstSeg = 0;  ///< index of the first segment; the others follow it in order
};

/// Restriction of a stretch of an airway (type 28).
struct K7_API K7AirwayRestriction : K7NavRec {
  char airwayIdent[9] = {};
  char restrictionType = 0;
  uint8_t reserved[14] = {};
  K7NavKey startKey;
  K7NavKey endKey;
  char startIdent[9] = {};
  char endIdent[9] = {};
  uint8_t reserved2[2] = {};
  K7Alt alt1;
  K7Alt alt2;
  uint32_t flags = 0;
  uint8_t reserved3[120] = {};
  K7NavText note;
  K7NavKey segment;
};

/// Altitude at which a fix is crossed at least (type 30).
struct K7_API K7MinCrossingAlt : K7NavRec {
  K7NavKey fix;
  char airwayIdent[8] = {};
  char airwayDirection[2] = {};
  uint16_t flags = 0;
  K7Alt alt;
};

/// Holding pattern (type 17).
struct K7_API K7HoldingPattern : K7NavRec {
  K7NavKey fix;
  K7NavKey airport;  ///< of a terminal holding
  uint32_t flags = 0;
  char fixIdent[9] = {};
  char icao[3] = {};
  K7Course inbound;
  K7Alt minAlt;
  K7Alt maxAlt;
  int16_t legTime = 0;    ///< tenths of a minute; 0 when the leg has a length
  int16_t legLength = 0;  ///< tenths of an NM; 0 when the leg has a time
  int16_t speed = 0;      ///< knots; 0 none stated
  char turn = 'R';        ///< 'R' or 'L'
  uint8_t reserved = 0;
  int32_t lat = 0;  ///< of the fix, 2^-23 degree
  int32_t lon = 0;
  uint8_t reserved2[20] = {};

  /// "Holding at JAWBN".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Leg of a SID, STAR or approach (types 24, 25 and 26).
struct K7_API K7ProcedureLeg : K7NavRec {
  char airportIdent[9] = {};
  char turn = 0;            ///< 'L', 'R' or 0
  char altDescription = 0;  ///< '+' at or above, '-' at or below, 'B' between, '@' or 0 at
  char routeType = 0;
  K7Alt alt1;
  K7Alt alt2;
  uint16_t sequence = 0;
  int16_t speedLimit = 0;  ///< knots; 0 none
  K7NavKey fix;
  K7NavKey recommendedFix;
  K7NavKey arcCenterFix;
  K7NavKey airport;
  uint32_t flags = 0;
  int16_t rnp = 0;            ///< hundredths of an NM; 0 none
  int16_t verticalAngle = 0;  ///< hundredths of a degree, down negative
  uint16_t pathTerm = 0;      ///< code of `PathTermString`
  int16_t theta = 0;          ///< tenths of a degree from the recommended navaid, magnetic
  int16_t rho = 0;            ///< tenths of an NM from it
  int16_t magCourse = 0;      ///< tenths of a degree
  int16_t timeDist = 0;       ///< tenths of an NM, or of a minute for legs that hold by time
  char transitionIdent[6] = {};
  char procedureIdent[7] = {};
  char runwayIdent[7] = {};
  char fixIdent[9] = {};
  uint8_t reserved = 0;

  /// The two letters of ARINC 424's path terminators for codes 0 to 22 in their alphabetical order ("AF",
  /// "CA" ... "VR"); "Unknown" for any other.
  static const char* PathTermString(int code);
};

/// Minimum off-route altitude of a cell of one degree (types 18 and 49).
struct K7_API K7Mora : K7NavRec {
  int16_t lat = 0;  ///< the cell's southern and western side, whole degrees
  int16_t lon = 0;
  K7Alt alt;
};

/// Levels of a cruise table for courses in [from, to].
struct K7CruiseLevels {
  uint16_t courseFrom = 0;  ///< tenths of a degree
  uint16_t courseTo = 0;
  K7Alt lowest;
  K7Alt step;
  K7Alt highest;
};

/// Cruise table (type 19).
struct K7_API K7CruiseTable : K7NavRec {
  static constexpr int MAX_LEVELS = 36;

  char ident[4] = {};
  int16_t englishCount = 0;  ///< rows in use, at most MAX_LEVELS
  int16_t metricCount = 0;
  K7NavText tableNotes;
  K7CruiseLevels english[MAX_LEVELS];
  K7CruiseLevels metric[MAX_LEVELS];
  int32_t trueCourse = 0;  ///< 1: courses are true, else magnetic
  uint8_t reserved[4] = {};
};

/// Route through controlled airspace (type 39).
struct K7_API K7TransitRoute : K7NavRec {
  K7NavText name;
  K7NavText ident;
  K7NavText country;
  K7NavText remarks;
  K7NavText vertLimit;
  K7NavText designator;
  K7NavText designator2;
  uint32_t firstSeg = 0;
  int32_t north = 0;  ///< bounds, 2^-23 degree
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  uint32_t segCount = 0;
  uint32_t flags = 0;
  uint16_t type = 0;
  uint8_t reserved[4] = {};
  int16_t direction = 0;  ///< 0 both ways, 1 forward, 2 backward
  uint8_t reserved2[4] = {};

  /// The vertical limit as stated; empty without one. 0 or K7_ERR_MEMORY.
  int VertLimitStr(K7String& out) const;
  /// Name with designator: "EAST TRANSITION (E1)".
  int GetDescription(K7NavData* data, K7String& out) const;
};
