// Records of notes: regional notes, and smart notes with what they apply to.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Regional or reference note, a document of its own (type 37).
struct K7RegionalNote : K7NavRec {
  K7NavText uri;
  K7NavText mimeType;
  K7NavText content;
  K7NavText language;
  K7NavText title;
  K7NavText contentType;
  K7NavText altitude;
  K7NavText noteType;
  K7NavText revDate;
  uint32_t displayMode = 0;
  uint8_t reserved[4] = {};
};

/// Entry of the notes' index (type 38).
struct K7NoteIndex : K7NavRec {
  K7NavText uri;
  K7NavText offset;
  K7NavText category;
  K7NavText value;
};

/// Smart note: a short operational text with what it is about (type 68).
struct K7_API K7SmartNotes : K7NavRec {
  char ident[13] = {};
  uint8_t reserved[3] = {};
  int16_t elementType = 0;  ///< codes of the members below
  int16_t category = 0;
  int16_t subcategory = 0;
  int16_t phaseOfFlight = 0;
  int16_t flightRules = 0;
  char text[4097] = {};
  uint8_t reserved2 = 0;
  int32_t north = 0;  ///< bounds, 2^-23 degree
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  uint8_t reserved3[36] = {};

  /// Bounds in degrees.
  double North() const;
  double South() const;
  double East() const;
  double West() const;

  /// The text of a code; "Unknown" for one without a text.
  const char* GetCategoryStr() const;
  const char* GetElementTypeStr() const;
  const char* GetFlightRulesStr() const;
  const char* GetPhaseOfFlightStr() const;
  const char* GetSubcategoryStr() const;
};

/// What a smart note applies to (type 69).
struct K7_API K7SmartNoteLink : K7NavRec {
  int16_t areaCode = 0;  ///< codes of the members below
  int16_t coverageCode = 0;
  int16_t cardinalDirection = 0;
  int16_t distDescrip = 0;
  int16_t units = 0;
  uint8_t reserved[2] = {};
  float distance = 0;
  uint8_t reserved2[40] = {};
  K7NavKey smartNote;
  K7NavKey navData;
  K7NavKey fromFix;
  K7NavKey toFix;
  K7NavKey radiusBasis;
  char ident[13] = {};
  uint8_t reserved3[199] = {};

  /// Replace `out` with the text of a code; empty for one without a text. 0 or K7_ERR_MEMORY.
  int GetAreaCodeString(K7String& out) const;
  int GetCardinalDirectionString(K7String& out) const;
  int GetCoverageCodeString(K7String& out) const;
  int GetDistDescripString(K7String& out) const;
  int GetUnitsString(K7String& out) const;
};

/// Frequency that a smart note names (type 70).
struct K7_API K7SmartNoteComm : K7NavRec {
  K7NavKey smartNote;
  K7NavKey navData;
  K7NavKey commRec;
  int32_t north = 0;  ///< bounds, 2^-23 degree
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  uint8_t reserved[8] = {};

  /// Bounds in degrees.
  double North() const;
  double South() const;
  double East() const;
  double West() const;
};

/// Altitude that a smart note names (type 71).
struct K7_API K7SmartNoteAltitude : K7NavRec {
  int16_t description = 0;  ///< codes of the members below
  int16_t type = 0;
  int16_t unit = 0;
  int16_t reference = 0;
  float altitude = 0;
  K7NavKey smartNote;

  /// Replace `out` with the text of a code; empty for one without a text. 0 or K7_ERR_MEMORY.
  int GetAltitudeDescriptionString(K7String& out) const;
  int GetAltitudeTypeString(K7String& out) const;
  int GetAltitudeReferenceString(K7String& out) const;
  int GetAltitudeUnitString(K7String& out) const;
};

/// Track of an aircraft's approach or transition (type 72).
struct K7Track : K7NavRec {
  K7NavText name;
  K7NavText ident;
  uint8_t reserved[152] = {};
  uint8_t trackType = 0;
  char transitionName[21] = {};
  char transitionIdent[21] = {};
  uint8_t reserved2 = 0;
  float geodeticLength = 0;  ///< NM
  uint8_t reserved3[32] = {};
};

/// Bearing and distance (type 73).
struct K7Bearing : K7NavRec {
  float bearing = 0;   ///< degrees
  float distance = 0;  ///< NM
};
