// K7Course: a course with its reference, packed in one word.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

#include <cstdint>

class K7NavData;
class K7XmlElem;
enum K7XmlOutputType_t : int;

/// Course of a navigation record: 24 bits of tenths of a degree, 8 bits that name the north above them.
class K7_API K7Course {
 public:
  /// References. Any other has no text.
  static constexpr uint32_t MAGNETIC = 0;
  static constexpr uint32_t TRUE_NORTH = 1;

  K7Course() = default;
  explicit K7Course(uint32_t tenths, uint32_t reference = MAGNETIC)
      : m_word((tenths & 0xFFFFFF) | reference << 24) {}

  uint32_t Word() const { return m_word; }
  uint32_t Tenths() const { return m_word & 0xFFFFFF; }
  uint32_t Reference() const { return m_word >> 24; }
  /// Degrees.
  operator double() const { return Tenths() * 0.1; }

  /// Whole degrees, truncated, with the degree sign of windows-1252: "359\xB0", "090\xB0T" for a true course.
  /// Of any other reference nothing is written and `out` keeps its text. 0 or K7_ERR_MEMORY.
  int ToString(K7String& out) const;
  /// The nearest of "N", "NE" ... "NW"; a course between two belongs to the earlier one. K7_ERR_OUT_OF_RANGE,
  /// with `out` unchanged, above 360 degrees.
  int GetCardinalDir(K7String& out) const;
  /// Adds the element `name`, labelled with its name, with the text of `ToString`. 0 or K7_ERR_MEMORY.
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7XmlElem& parent, const char* name) const;

 private:
  uint32_t m_word = 0;
};
static_assert(sizeof(K7Course) == 4);
