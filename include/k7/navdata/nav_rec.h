// K7NavRec: what every navigation record begins with, and the beginnings that several types share.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/io/xml_output.h>
#include <k7/navdata/alt.h>
#include <k7/navdata/course.h>
#include <k7/navdata/nav_key.h>

#include <cstddef>
#include <cstdint>
#include <new>

class K7NavData;
class K7XmlElem;

/// Text of a record: a pointer to NUL-terminated windows-1252 text that the record does not own and that
/// whoever filled the record keeps alive as long as the record. 8 bytes on every target, so that layouts
/// agree; where a pointer is shorter the rest is neither set nor read.
class alignas(8) K7NavText {
 public:
  K7NavText() = default;
  K7NavText& operator=(const char* text) {
    m_text = text;
    return *this;
  }
  /// Null when absent.
  operator const char*() const { return m_text; }
  bool IsEmpty() const { return !m_text || !*m_text; }

 private:
  const char* m_text = nullptr;
};
static_assert(sizeof(K7NavText) == 8 && alignof(K7NavText) == 8);

/// What every record begins with. Records are plain structures of one layout on every target: a store may
/// copy them by bytes, and keeps the texts and arrays that they point to. A copy shares them. `reserved`
/// bytes are the store's own.
///
/// Whoever gets a record from `K7NavData::CreateRecord` deletes it, through this base or its own type.
struct K7_API K7NavRec {
  K7NavKey key;     ///< the record's own
  K7NavText notes;  ///< operational notes with their service segments ("CPDLC:" ...), or null

  K7NavType Type() const { return key.NavType(); }
  /// Orders records as their keys. The raw wrapped difference of the first word that differs: its sign
  /// counts.
  static int Comp(const void* a, const void* b);
  /// Replaces `out` with the record as an XML document of the elements that all types share: "NavKey" (full
  /// only), "Type", and the notes by service. 0 or K7_ERR_MEMORY with `out` empty. `K7NavData::ToXML` renders
  /// whole records.
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7String& out) const;

  // A record may be deleted through its base, so its memory is released without its size.
  static void* operator new(size_t size, const std::nothrow_t&) noexcept;
  static void* operator new(size_t, void* at) noexcept { return at; }
  static void operator delete(void* record) noexcept;
  static void operator delete(void* record, const std::nothrow_t&) noexcept { operator delete(record); }

 protected:
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7XmlElem& root) const;
};

/// Beginning of the types that have a place: navaids, fixes, airports, runways, localizers, markers.
struct K7NavFix : K7NavRec {
  int32_t lat = 0;  ///< 2^-23 degree
  int32_t lon = 0;
  char ident[9] = {};
  char icao[3] = {};   ///< ICAO region
  int16_t elev = 0;    ///< feet; below -4898 unknown
  int16_t magVar = 0;  ///< tenths of a degree, east positive; 3700 true north, 3900 unknown
  K7NavKey fir;        ///< the airspaces that hold the place
  K7NavKey uir;

  static constexpr int16_t LOWEST_ELEV = -4898;
  static constexpr int16_t TRUE_NORTH = 3700;
  static constexpr int16_t GRID_NORTH = 3800;
  static constexpr int16_t UNKNOWN_VARIATION = 3900;
};

/// Beginning of the types with a boundary: airspaces, FIRs, tailored boundaries, ETOPS areas.
struct K7NavArea : K7NavRec {
  K7NavText name;
  K7NavText ident;
  char icao[3] = {};
  uint8_t type = 0;
  uint32_t flags = 0;
  K7NavText sector;
  int32_t north = 0;  ///< bounds, 2^-23 degree; east below west across 180
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  uint32_t firstSeg = 0;  ///< index of the first boundary segment (type 27); the others follow it
  uint32_t segCount = 0;
};

/// True when `record` has the beginning K7NavFix: types 0 to 8 and 20.
constexpr bool K7IsFix(K7NavType type) { return type <= K7NAV_MARKER || type == K7NAV_LOW_USE_AIRPORT; }
