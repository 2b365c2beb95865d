#include "navdata/nav_xml_forms.h"

#include "navdata/lookup.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/latlon.h>
#include <k7/navdata/morse_code.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace k7nav {

void PutNumber(K7XmlText& text, int64_t value) {
  char digits[24];
  text.Append(digits, static_cast<size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
}

void PutDecimal(K7XmlText& text, int64_t value, int decimals) {
  char digits[32];
  char* const end = digits + sizeof digits;
  char* p = end;
  uint64_t rest = static_cast<uint64_t>(value < 0 ? -value : value);
  for (int i = 0; i < decimals; ++i, rest /= 10) *--p = static_cast<char>('0' + rest % 10);
  if (decimals > 0) *--p = '.';
  do *--p = static_cast<char>('0' + rest % 10);
  while (rest /= 10);
  if (value < 0) *--p = '-';
  text.Append(p, static_cast<size_t>(end - p));
}

void PutReal(K7XmlText& text, double value, int decimals) {
  char digits[400];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
  text.Append(digits, static_cast<size_t>(end.ptr - digits));
}

void PutLatitude(Rendering& r, double lat) {
  r.failed |= !K7LatLon(lat, 0).FormatLat("%H %02d %04.1M", r.scratch);
  r.text.Append(r.scratch);
}

void PutLongitude(Rendering& r, double lon) {
  r.failed |= !K7LatLon(0, lon).FormatLon("%H %03d %04.1M", r.scratch);
  r.text.Append(r.scratch);
}

void PutVariation(K7XmlText& text, int value, bool grid) {
  if (value == K7NavFix::TRUE_NORTH) return text.Append("Oriented to True North");
  if (value == K7NavFix::UNKNOWN_VARIATION) return text.Append("Unknown");
  if (grid && value == K7NavFix::GRID_NORTH) return text.Append("Oriented to Grid North");
  PutDecimal(text, std::abs(int64_t{value}), 1);
  PutDegreeSign(text);
  text.Append(value < 0 ? " W" : " E", 2);
}

bool PutBits(K7XmlText& text, std::span<const Bit> bits, uint32_t word, bool closed) {
  bool any = false;
  for (const Bit& bit : bits) {
    if (!(word & bit.bit)) continue;
    if (any) text.Append(", ", 2);
    text.Append(bit.text);
    any = true;
  }
  if (any && closed) text.Append(", ", 2);
  return any;
}

bool PutAlt(Rendering& r, K7Alt alt) {
  if (alt.Word() == 0) return false;  // the text of most, which is empty
  if (Kept(r, alt.ToString(r.scratch))) r.text.Append(r.scratch);
  return r.text.Size() > 0;
}

bool PutIdentOf(Rendering& r, const K7NavKey& key) {
  const K7NavFix* const fix = FindFix(r.data, key);
  return fix && Text<decltype(fix->ident)>(r, fix->ident);
}

void WriteWords(k7xml::XmlSink& out, K7XmlText& text, const K7NavKey& key) {
  text.Clear();
  PutNumber(text, key.Idx());
  out.Add("Index", nullptr, text.Text());
  text.Clear();
  PutNumber(text, key.NavType());
  out.Add("NavType", nullptr, text.Text());
}

void WriteKey(k7xml::XmlSink& out, K7XmlText& text, const char* element, const K7NavKey& key) {
  out.Open(element);
  WriteWords(out, text, key);
  out.Close(element);
}

bool MorseOfFix(Rendering& r, const void* record) {
  char ident[sizeof(K7NavFix::ident) + 1] = {};
  std::memcpy(ident, As<K7NavFix>(record).ident, sizeof(K7NavFix::ident));
  if (Kept(r, K7MorseCode::GetMorseCode(ident, r.scratch))) r.text.Append(r.scratch);
  return true;
}

// A store that does not know, or cannot tell, costs no more than the element.
bool LocationOf(Rendering& r, const void* record) {
  if (!r.data) return false;
  r.scratch.Clear();
  const int err = r.data->GetLocation(As<K7NavRec>(record), r.scratch);
  r.failed |= err == K7_ERR_MEMORY;
  if (err >= 0) r.text.Append(r.scratch);
  return r.text.Size() > 0;
}

}  // namespace k7nav
