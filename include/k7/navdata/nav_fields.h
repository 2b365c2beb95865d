// Generic field access: every field of every record type, by number or name.
#pragma once

#include <k7/navdata/nav_key.h>

/// What a caller gets of a field.
enum K7NavFieldDataType : int {
  K7FIELD_CHAR = 0,
  K7FIELD_STRING = 1,
  K7FIELD_INTEGER = 2,
  K7FIELD_UNSIGNED = 3,
  K7FIELD_REAL = 4,
  K7FIELD_KEY = 5,
};

/// How a field lies in its record.
enum K7NavFieldStorage : int {
  K7STORE_CHAR = 0,
  K7STORE_TEXT = 1,  ///< characters in the record, and a NUL where they leave room for it
  K7STORE_ABSENT = 2,
  K7STORE_POINTER = 3,
  K7STORE_FIXED_DEGREES = 4,  ///< signed 32 bits of 2^-23 degree
  K7STORE_U8 = 5,
  K7STORE_U16 = 6,
  K7STORE_U32 = 7,
  K7STORE_I16 = 8,
  K7STORE_I32 = 9,
  K7STORE_ALT_VALUE = 10,  ///< the low 24 bits of a K7Alt
  K7STORE_ALT_FLAG = 11,   ///< its high 8 bits
  K7STORE_FLOAT = 12,
  K7STORE_KEY = 13,
};

/// Value of a field: the member of its kind counts.
union K7NavField {
  K7NavField() : d(0) {}

  char c;
  const char* str;  ///< into the record, or what its pointer points to; null when absent
  int32_t i;
  uint32_t u;
  double d;
  K7NavKey key;
};

/// Place and form of a field, for tools that list, store or fill records.
struct K7NavFieldLayout {
  K7NavFieldStorage storage = K7STORE_ABSENT;
  int at = 0;          ///< byte position in the record
  int bits = 0;        ///< width; -1 for a text held by pointer
  double scale = 1.0;  ///< from the stored number to the caller's unit
};
