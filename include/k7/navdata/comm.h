// Records of communication frequencies.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Frequency of an airport (type 11).
struct K7_API K7AirportComm : K7NavRec {
  K7NavKey airport;
  K7NavText callsign;
  char airportIdent[6] = {};
  int16_t commType = 0;       ///< code of `TypeString`
  int32_t distance = 0;       ///< NM within which it is used; 0 none stated
  int32_t freq = 0;           ///< in the unit of `commInfo`, as `K7EnrouteComm::FormatCommFrequency` reads it
  uint32_t flags = 0;         ///< bit 0x100: also receives on another frequency
  uint32_t serviceFlags = 0;  ///< of `K7EnrouteComm::ServiceIndicatorString`
  int32_t commInfo = 0;       ///< units of the frequency, 0 to 9
  int16_t startSector = 0;    ///< degrees magnetic; both 0 all around
  int16_t endSector = 0;
  K7Alt alt1;
  K7Alt alt2;
  int32_t magVar = 0;  ///< tenths of a degree, east positive
  uint8_t reserved[4] = {};

  /// Codes beside those that airports share with enroute stations.
  static constexpr int16_t APPROACH = 2;
  static constexpr int16_t ATIS = 7;
  static constexpr int16_t AWOS = 9;
  static constexpr int16_t CLEARANCE = 11;
  static constexpr int16_t DEPARTURE = 14;
  static constexpr int16_t GROUND = 22;
  static constexpr int16_t TOWER = 37;
  static constexpr int16_t UNICOM = 40;

  /// "Tower", "Ground" ... for the codes above, else the text of `K7EnrouteComm::CommTypeString`.
  static const char* TypeString(int code);
};

/// Frequency of an enroute station (type 12).
struct K7_API K7EnrouteComm : K7NavRec {
  uint32_t flags = 0;
  uint32_t commInfo = 0;  ///< units of the frequency as the field table does not state them: 1, 0.01 MHz
  K7NavKey fir;
  char firIdent[6] = {};
  uint8_t reserved[2] = {};
  K7NavText remoteName;
  K7NavText callsign;
  int32_t lat = 0;  ///< of the remote site, 2^-23 degree
  int32_t lon = 0;
  uint16_t commType = 0;  ///< code of `CommTypeString`
  uint8_t reserved2[6] = {};
  uint32_t serviceFlags = 0;
  uint32_t freq = 0;  ///< 0.01 MHz
  K7Alt alt1;
  K7Alt alt2;
  uint8_t reserved3[8] = {};

  /// Bits of `serviceFlags`.
  static constexpr uint32_t AEIS = 0x1;  ///< aeronautical enroute information service
  static constexpr uint32_t EFAS = 0x4;  ///< enroute flight advisory service
  static constexpr uint32_t FIS = 0x8;
  static constexpr uint32_t MANDATORY_FREQ = 0x800;
  static constexpr uint32_t SECONDARY = 0x1000;
  static constexpr uint32_t AIR_GROUND = 0x2000;
  static constexpr uint32_t VDF = 0x4000;
  static constexpr uint32_t AIR_AIR = 0x8000;
  static constexpr uint32_t DISCRETE = 0x10000;
  static constexpr uint32_t MILITARY = 0x20000;

  /// "ACC", "FSS", "VOLMET" ...; "Unknown" for a code without a text.
  static const char* CommTypeString(int code);
  /// Replaces `out` with the services of a flag word in the order of their bits, each followed by ", ". Other
  /// bits say nothing. 0 or K7_ERR_MEMORY.
  static int ServiceIndicatorString(uint32_t serviceFlags, K7String& out);
  /// Replaces `out` with a frequency. Units 0: kHz, the last digit dropped (118025 is 118.02); 1: 0.01 MHz;
  /// 2: kHz with all three decimals; 3 to 9: 0.01 kHz. `withUnits` appends " MHz" or " kHz"; flag bit 0x100
  /// appends " (R)". Units beyond 9 leave `out` as it is. 0 or K7_ERR_MEMORY.
  static int FormatCommFrequency(int freq, int units, int flags, K7String& out, bool withUnits);
  /// The service ("Enroute Comm" when none is known), and the callsign when there is one: "FSS (SEATTLE)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Frequency of an operator, in words.
struct K7CompanyFreq {
  K7NavText value;
  K7NavText callsign;
  K7NavText hours;
};

/// Frequencies of an operator in an area (type 51).
struct K7_API K7CompanyComm : K7NavArea {
  K7CompanyFreq primary;
  K7CompanyFreq secondary;
  K7CompanyFreq tertiary;
  int32_t freqCount = 0;
  uint8_t reserved[20] = {};

  /// The name.
  int GetDescription(K7NavData* data, K7String& out) const;
};
