// How the members of records read: one form a row of nav_xml.h.
#pragma once

#include "navdata/nav_xml.h"

#include <cstring>
#include <type_traits>

namespace k7nav {

struct Bit {
  uint32_t bit;
  const char* text;
};

// Pieces of a text.
void PutNumber(K7XmlText& text, int64_t value);
/// `value` has `decimals` decimals; as many are written.
void PutDecimal(K7XmlText& text, int64_t value, int decimals);
void PutReal(K7XmlText& text, double value, int decimals);
void PutLatitude(Rendering& r, double lat);
void PutLongitude(Rendering& r, double lon);
/// "3.5\xB0 W", or the words of the values that are no angle; `grid` as of a station's declination.
void PutVariation(K7XmlText& text, int value, bool grid);
/// The texts of the set bits, divided by ", "; `closed` has one behind the last, too. False when none is set.
bool PutBits(K7XmlText& text, std::span<const Bit> bits, uint32_t word, bool closed = false);
/// False without a text.
bool PutAlt(Rendering& r, K7Alt alt);
bool PutIdentOf(Rendering& r, const K7NavKey& key);
inline void PutDegreeSign(K7XmlText& text) { text.Append("\xB0", 1); }
/// What K7String operations answer.
inline bool Kept(Rendering& r, int result) {
  r.failed |= result < 0;
  return result >= 0;
}

template <class M>
const M& As(const void* member) {
  return *static_cast<const M*>(member);
}

// Texts. One in the record may fill its room and have no NUL.
template <class M>
bool AnyText(Rendering& r, const void* member) {
  const M& value = As<M>(member);
  if constexpr (std::is_same_v<M, K7NavText>) {
    if (const char* text = value) r.text.Append(text);
  } else {
    static_assert(sizeof(M) <= 4097 && std::is_array_v<M>);
    r.text.Append(value, strnlen(value, sizeof value));
  }
  return true;
}
template <class M>
bool Text(Rendering& r, const void* member) {
  return AnyText<M>(r, member) && r.text.Size() > 0;
}
template <class M>
bool Character(Rendering& r, const void* member) {
  const char c = As<M>(member);
  if (c == 0 || c == ' ') return false;
  r.text.Append(&c, 1);
  return true;
}

// Numbers that are always there.
template <class M>
bool AnyFeet(Rendering& r, const void* member) {
  PutNumber(r.text, As<M>(member));
  r.text.Append(" ft", 3);
  return true;
}
template <class M>
bool AnyHundredFeet(Rendering& r, const void* member) {
  PutNumber(r.text, int64_t{As<M>(member)} * 100);
  r.text.Append(" ft", 3);
  return true;
}
template <class M>
bool AnyMiles(Rendering& r, const void* member) {
  PutNumber(r.text, As<M>(member));
  r.text.Append(" NM", 3);
  return true;
}
template <class M>
bool AnySpeed(Rendering& r, const void* member) {
  PutNumber(r.text, As<M>(member));
  r.text.Append(As<M>(member) == 1 ? " kt" : " kts");
  return true;
}
template <class M>
bool Bearing(Rendering& r, const void* member) {
  PutDecimal(r.text, As<M>(member), 1);
  PutDegreeSign(r.text);
  return true;
}
template <class M>
bool BearingTrue(Rendering& r, const void* member) {
  Bearing<M>(r, member);
  r.text.Append(" T", 2);
  return true;
}
template <class M>
bool Variation(Rendering& r, const void* member) {
  PutVariation(r.text, As<M>(member), false);
  return true;
}
template <class M>
bool Declination(Rendering& r, const void* member) {
  PutVariation(r.text, As<M>(member), true);
  return true;
}
/// Hundredths of a megahertz.
template <class M>
bool Megahertz(Rendering& r, const void* member) {
  const int64_t value = As<M>(member);
  value % 10 ? PutDecimal(r.text, value, 2) : PutDecimal(r.text, value / 10, 1);
  r.text.Append(" MHz", 4);
  return true;
}

// Numbers of which 0, or what is below, says that they are not known.
template <class M>
bool Positive(Rendering& r, const void* member, const char* unit, int decimals = 0) {
  const int64_t value = As<M>(member);
  if (value <= 0) return false;
  PutDecimal(r.text, value, decimals);
  r.text.Append(unit);
  return true;
}
template <class M>
bool Count(Rendering& r, const void* member) {
  return Positive<M>(r, member, "");
}
template <class M>
bool Feet(Rendering& r, const void* member) {
  return Positive<M>(r, member, " ft");
}
template <class M>
bool FeetAboveGround(Rendering& r, const void* member) {
  return Positive<M>(r, member, " ft AGL");
}
template <class M>
bool HundredFeet(Rendering& r, const void* member) {
  return As<M>(member) > 0 && AnyHundredFeet<M>(r, member);
}
template <class M>
bool Miles(Rendering& r, const void* member) {
  return Positive<M>(r, member, " NM");
}
template <class M>
bool TenthMiles(Rendering& r, const void* member) {
  return Positive<M>(r, member, " NM", 1);
}
template <class M>
bool HundredthMiles(Rendering& r, const void* member) {
  return Positive<M>(r, member, " NM", 2);
}
template <class M>
bool RealMiles(Rendering& r, const void* member) {
  if (!(As<M>(member) > 0)) return false;
  PutReal(r.text, static_cast<double>(As<M>(member)), 1);
  r.text.Append(" NM", 3);
  return true;
}
template <class M>
bool Minutes(Rendering& r, const void* member) {
  return Positive<M>(r, member, " min");
}
template <class M>
bool TenthMinutes(Rendering& r, const void* member) {
  return Positive<M>(r, member, " min", 1);
}
template <class M>
bool Knots(Rendering& r, const void* member) {
  return As<M>(member) > 0 && AnySpeed<M>(r, member);
}
/// Tenths of a kilohertz.
template <class M>
bool Kilohertz(Rendering& r, const void* member) {
  const int64_t value = As<M>(member);
  if (value <= 0) return false;
  value % 10 ? PutDecimal(r.text, value, 1) : PutNumber(r.text, value / 10);
  r.text.Append(" kHz", 4);
  return true;
}
template <class M>
bool NonZeroFeet(Rendering& r, const void* member) {
  return As<M>(member) != 0 && AnyFeet<M>(r, member);
}
/// North is 360 where 0 says nothing.
template <class M>
bool KnownBearing(Rendering& r, const void* member) {
  return As<M>(member) != 0 && Bearing<M>(r, member);
}
/// Hundredths of a degree, of either sign.
template <class M>
bool HundredthDegrees(Rendering& r, const void* member) {
  if (As<M>(member) == 0) return false;
  PutDecimal(r.text, As<M>(member), 2);
  PutDegreeSign(r.text);
  return true;
}
template <class M>
bool RealDegrees(Rendering& r, const void* member) {
  PutReal(r.text, static_cast<double>(As<M>(member)), 1);
  PutDegreeSign(r.text);
  return true;
}
/// Elevations have a lowest value instead. The required form of a fix's has no digit for 0.
template <class M>
bool KnownFeet(Rendering& r, const void* member) {
  return As<M>(member) >= K7NavFix::LOWEST_ELEV && AnyFeet<M>(r, member);
}
template <class M>
bool Elevation(Rendering& r, const void* member) {
  if (As<M>(member) != 0) return KnownFeet<M>(r, member);
  r.text.Append(" ft", 3);
  return true;
}

// Altitudes and courses.
template <class M>
bool AnyAlt(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, K7Alt>);
  PutAlt(r, As<M>(member));
  return true;
}
template <class M>
bool Alt(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, K7Alt>);
  return PutAlt(r, As<M>(member));
}
template <class M>
bool Course(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, K7Course>);
  r.scratch.Clear();
  if (Kept(r, As<M>(member).ToString(r.scratch))) r.text.Append(r.scratch);
  return r.text.Size() > 0;
}

// Codes and flags in words; a code without a word is left out.
template <class M, const char* (*WORDS)(int)>
bool Code(Rendering& r, const void* member) {
  const char* word = WORDS(static_cast<int>(As<M>(member)));
  if (word) r.text.Append(word);
  return word;
}
template <class M, const auto& BITS>
bool Flags(Rendering& r, const void* member) {
  return PutBits(r.text, BITS, As<M>(member));
}

// Positions: the longitude follows the latitude.
template <class M>
bool Latitude(Rendering& r, const void* member) {
  PutLatitude(r, K7NavData::FixPt2DecDeg(As<M>(member)));
  return true;
}
template <class M>
bool Longitude(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, int32_t>);
  PutLongitude(r, K7NavData::FixPt2DecDeg((&As<M>(member))[1]));
  return true;
}
template <class M>
bool LatLong(Rendering& r, const void* member) {
  Latitude<M>(r, member);
  r.text.Append("   ", 3);
  return Longitude<M>(r, member);
}
template <class M>
bool IsPlace(const void* member) {
  return (&As<M>(member))[0] != 0 || (&As<M>(member))[1] != 0;
}
template <class M>
bool KnownLatitude(Rendering& r, const void* member) {
  return IsPlace<M>(member) && Latitude<M>(r, member);
}
template <class M>
bool KnownLongitude(Rendering& r, const void* member) {
  return IsPlace<M>(member) && Longitude<M>(r, member);
}
template <class M>
bool KnownLatLong(Rendering& r, const void* member) {
  return IsPlace<M>(member) && LatLong<M>(r, member);
}

// Keys of other records, as elements of their own; and the identifiers that the store knows of them.
void WriteWords(k7xml::XmlSink& out, K7XmlText& text, const K7NavKey& key);
void WriteKey(k7xml::XmlSink& out, K7XmlText& text, const char* element, const K7NavKey& key);
template <class M>
bool AnyKey(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, K7NavKey>);
  WriteKey(r.out, r.text, r.row->element, As<M>(member));
  return false;
}
template <class M>
bool Key(Rendering& r, const void* member) {
  return !As<M>(member).NoRecord() && AnyKey<M>(r, member);
}
template <class M>
bool IdentOf(Rendering& r, const void* member) {
  static_assert(std::is_same_v<M, K7NavKey>);
  return PutIdentOf(r, As<M>(member));
}

// Of whole records.
/// What a query finds of the record, nested.
template <K7NavQueryResult* (K7NavData::*QUERY)(const K7NavKey&), Order ORDER>
bool Related(Rendering& r, const void* record) {
  if (r.data && r.nests) Nest(r, (r.data->*QUERY)(As<K7NavRec>(record).key), r.row->element, ORDER);
  return false;
}
bool MorseOfFix(Rendering& r, const void* record);
bool LocationOf(Rendering& r, const void* record);

}  // namespace k7nav
