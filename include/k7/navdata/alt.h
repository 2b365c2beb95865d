// K7Alt: an altitude with its reference, packed in one word.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

#include <cstdint>

class K7NavData;
class K7XmlElem;
enum K7XmlOutputType_t : int;

/// Altitude of a navigation record: 24 bits of feet (metres with `METRIC`), 8 bits of flags above them.
class K7_API K7Alt {
 public:
  /// Bits of the flags.
  static constexpr uint32_t ABOVE_GROUND = 0x1;
  static constexpr uint32_t FLIGHT_LEVEL = 0x2;
  static constexpr uint32_t METRIC = 0x4;
  static constexpr uint32_t ABOVE_AERODROME = 0x8;

  /// Values that stand for a word instead of a height. Those without a name here have no text.
  static constexpr uint32_t CLASS_B = 0x7FFFF5;
  static constexpr uint32_t ATC = 0x7FFFF6;
  static constexpr uint32_t TMZ = 0x7FFFF7;
  static constexpr uint32_t MSL = 0x7FFFFB;
  static constexpr uint32_t NOTAM = 0x7FFFFC;
  static constexpr uint32_t UNLIMITED = 0x7FFFFD;
  static constexpr uint32_t GROUND = 0x7FFFFE;
  static constexpr uint32_t UNKNOWN = 0x7FFFFF;

  K7Alt() = default;
  explicit K7Alt(uint32_t value, uint32_t flags = 0) : m_word((value & 0xFFFFFF) | flags << 24) {}

  uint32_t Word() const { return m_word; }
  uint32_t Value() const { return m_word & 0xFFFFFF; }
  uint32_t Flags() const { return m_word >> 24; }
  /// The value without its flags: feet, or metres with `METRIC`; also for the special values.
  operator double() const { return Value(); }
  /// True for the values 0x7FFFF5 to 0x7FFFFF, whatever the flags.
  bool IsSpecialValue() const { return Value() >= CLASS_B && Value() <= UNKNOWN; }

  /// The altitude as pilots read it: "FL120", "FL3650m", "100 AGL", "GND", "2500 ft", "Unlimited".
  /// `numberOnly` leaves out the unit of a plain altitude and writes 0 for 0, which is otherwise empty;
  /// `metric` says "m" without converting. 0 or K7_ERR_MEMORY.
  int ToString(K7String& out, bool numberOnly = false, bool metric = false) const;
  /// The text of `ToString` with both options off.
  K7String GetAltString() const;
  /// Adds the element `name`, labelled with its name, with the text of `ToString`. `metric` as there. 0 or
  /// K7_ERR_MEMORY.
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7XmlElem& parent, const char* name,
            bool metric = false) const;

 private:
  uint32_t m_word = 0;
};
static_assert(sizeof(K7Alt) == 4);
