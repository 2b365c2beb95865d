// The one table of record types and of their fields.
#pragma once

#include <k7/navdata/nav_fields.h>
#include <k7/navdata/nav_rec.h>

#include <cstdint>

namespace k7nav {

struct Field {
  const char* name;
  K7NavFieldDataType kind;
  K7NavFieldStorage storage;
  uint16_t at;   // byte position in the record
  int32_t bits;  // -1 for a text held by pointer
  double scale;  // from the stored number to the caller's unit
  const char* note;
};

struct Type {
  const char* name;
  K7NavRec* (*create)();
  const Field* fields;
  int bytes;
  int fieldCount;
};

/// Null for a value that is no type.
const Type* FindType(uint32_t type);

}  // namespace k7nav
