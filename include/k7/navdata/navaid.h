// Records of navaids and fixes.
#pragma once

#include <k7/navdata/nav_rec.h>

/// VOR, DME, TACAN and what they make together (type 0).
struct K7_API K7VHFNavaid : K7NavFix {
  /// Bits of `flags`. An ILS has one of its two bits set by the kind of its distance part's site.
  static constexpr uint32_t VOR = 0x1;
  static constexpr uint32_t DME = 0x2;
  static constexpr uint32_t ILS = 0xC0;
  static constexpr uint32_t TACAN = 0x100;

  char state[4] = {};
  char country[4] = {};
  K7NavKey airport;  ///< of a terminal navaid
  K7NavText name;
  K7NavText city;
  uint32_t freq = 0;  ///< 0.01 MHz
  int16_t declination =
      0;  ///< of the station's radials, tenths of a degree east; 3700 true, 3800 grid, 3900 unknown
  int16_t freqProt = 0;  ///< frequency protection, NM
  uint32_t flags = 0;
  int16_t range = 0;  ///< usable range, NM; 0 unknown
  uint8_t reserved[2] = {};

  /// "VORTAC", "VORDME", "ILSTACAN", "ILSDME", "VOR", "DME" or "TACAN" by the flags; empty when none is set.
  const char* DetailedType() const;
  /// "SEA (SEATTLE)". 0 or K7_ERR_MEMORY, as of every `GetDescription`; `data` may be null where nothing is
  /// looked up.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// NDB (types 1 and 2).
struct K7_API K7NDB : K7NavFix {
  char state[4] = {};
  char country[4] = {};
  uint32_t flags = 0;
  uint32_t freq = 0;  ///< 0.1 kHz
  K7NavKey airport;   ///< of a terminal NDB
  K7NavText name;
  K7NavText city;
  int16_t range = 0;  ///< usable range, NM; 0 unknown
  uint8_t reserved[6] = {};

  /// "PAE (PAINE)".
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Named point of a route or procedure (types 3 and 4).
struct K7_API K7Waypoint : K7NavFix {
  K7NavText name;
  K7NavKey airport;  ///< of a terminal fix
  uint32_t flags = 0;
  uint32_t flags2 = 0;
  K7Alt mra;  ///< minimum reception altitude
  uint8_t reserved[4] = {};

  /// "JAWBN", or "JAWBN (name)" with a name that differs.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Localizer with its glideslope (type 7).
struct K7_API K7LocalizerGlideslope : K7NavFix {
  static constexpr uint32_t GLIDESLOPE = 0x1;  ///< bits of `flags`
  static constexpr uint32_t DME = 0x2;
  static constexpr uint32_t BACK_COURSE = 0x4;

  K7NavKey airport;  ///< also listed as the runway's key, which the field table lays over it
  K7NavKey runway;
  uint32_t freq = 0;  ///< 0.01 MHz
  int32_t gsLat = 0;  ///< 2^-23 degree
  int32_t gsLon = 0;
  int16_t locBrg = 0;      ///< tenths of a degree, magnetic
  int16_t locTrueBrg = 0;  ///< tenths of a degree
  int16_t gsBeam = 0;      ///< beam width, hundredths of a degree
  int16_t locOffset = 0;   ///< feet from the runway's end
  int16_t gsOffset = 0;
  int16_t locWidth = 0;      ///< hundredths of a degree
  int16_t gsAngle = 0;       ///< hundredths of a degree
  int16_t threshXingHt = 0;  ///< feet above the threshold
  int32_t declination = 0;   ///< tenths of a degree, east positive
  int32_t gsElev = 0;        ///< feet
  uint32_t flags = 0;

  /// "IABC Localizer", or "IABC ILS" with a glideslope.
  int GetDescription(K7NavData* data, K7String& out) const;
};

/// Locator or marker beacon (type 8).
struct K7_API K7LocatorMarker : K7NavFix {
  static constexpr uint32_t OUTER = 0x1;  ///< bits of `flags`
  static constexpr uint32_t MIDDLE = 0x2;
  static constexpr uint32_t INNER = 0x4;
  static constexpr uint32_t LOCATOR = 0x8;  ///< with an NDB at the marker

  K7NavKey airport;
  K7NavKey runway;
  uint32_t flags = 0;
  uint32_t freq = 0;  ///< of the locator, 0.1 kHz
  K7NavText name;
  int16_t trueBrg = 0;  ///< of the marker's minor axis, tenths of a degree
  char runwayIdent[6] = {};
};
