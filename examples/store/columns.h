// The columns of the database's tables: every field and member of a record type, where it lies and in which
// form.
#pragma once

#include <k7/navdata/nav_fields.h>
#include <k7/navdata/nav_rec.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Beside the forms of fields: bytes as they are, in a blob of exactly `width` bytes.
inline constexpr auto K7STORE_BYTES = static_cast<K7NavFieldStorage>(100);

struct Column {
  std::string name;
  K7NavFieldStorage storage = K7STORE_ABSENT;
  uint16_t at = 0;
  uint16_t width = 0;  ///< characters of a text in the record, without its NUL; bytes of a blob
  double scale = 1.0;
};

/// How the records of a type are found on the map.
enum class Place { NONE, POINT, LINE, AREA, CELL };

struct TypeTable {
  K7NavType type = K7NAV_NO_TYPE;
  std::string name;             ///< of the table; empty for a type without records
  std::vector<Column> columns;  ///< behind the index and the notes
  Place place = Place::NONE;
  size_t bytes = 0;                     ///< of a record
  std::unique_ptr<K7NavRec> prototype;  ///< an empty record

  /// Null when there is none of that name.
  const Column* Find(const std::string& column) const;
  /// Where its records lie: an R*Tree with id, west, east, south, north in 2^-23 degree. A record whose
  /// bounds cross 180 has two rows there, the second with SECOND_HALF added to its index.
  std::string AreaName() const { return name + "_area"; }
  /// The notes and all columns, as `ReadRow` expects them.
  std::string ColumnList() const;
};

inline constexpr int64_t SECOND_HALF = int64_t(1) << 32;

/// The table of a type; one without a name for what is no type.
const TypeTable& TableOf(K7NavType type);

/// "ICAO Region" as "icao_region".
std::string SnakeCase(const char* name);

/// A member of a record that no field shows, or shows in part. It replaces a field's column of the same name.
struct Member {
  const char* name;
  K7NavFieldStorage storage;
  uint16_t at;
  uint16_t width;
};
/// Those of a type.
std::vector<Member> MembersOf(K7NavType type);
