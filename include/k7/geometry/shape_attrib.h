// K7ShapeAttrib: the value of one attribute of a shape record.
#pragma once

#include <k7/export.h>

#include <cstdint>

/// Says what an attribute holds, and so which conversion of K7ShapeAttrib reads it.
enum K7ShapeAttribType { K7_ATTRIB_INT, K7_ATTRIB_INT64, K7_ATTRIB_DOUBLE, K7_ATTRIB_TEXT };

/// One value without its type, which the table of the record knows: read as anything but what was stored it
/// means nothing, and as a text it must not be. A text stays its table's.
union K7ShapeAttrib {
  /// Makes 0, which is also the null text.
  K7ShapeAttrib() : m_int64(0) {}
  explicit K7ShapeAttrib(int value) : m_int64(0) { m_int = value; }
  explicit K7ShapeAttrib(unsigned int value) : m_int64(0) { m_uint = value; }
  explicit K7ShapeAttrib(int64_t value) : m_int64(value) {}
  explicit K7ShapeAttrib(double value) : m_double(value) {}
  explicit K7ShapeAttrib(const char* value) : m_int64(0) { m_text = value; }

  operator int64_t() const { return m_int64; }
  operator int() const { return m_int; }
  operator unsigned int() const { return m_uint; }
  operator double() const { return m_double; }
  operator char const*() const { return m_text; }

 private:
  int64_t m_int64;
  int m_int;
  unsigned int m_uint;
  double m_double;
  const char* m_text;
};
static_assert(sizeof(K7ShapeAttrib) == 8);
