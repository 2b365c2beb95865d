#include "web/json.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

bool IsTail(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// How many bytes the character takes that the text begins with; 0 when it begins with none. Longer forms than
// needed, halves of surrogate pairs and what lies beyond U+10FFFF are no characters.
size_t CharacterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(i < text.size() ? text[i] : 0); };
  const unsigned char first = byte(0), second = byte(1);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4 || !IsTail(second)) return 0;
  if (first < 0xE0) return 2;
  if (!IsTail(byte(2))) return 0;
  if (first < 0xF0) return (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ? 0 : 3;
  const bool outside = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return outside || !IsTail(byte(3)) ? 0 : 4;
}

}  // namespace

void JsonWriter::Separate() {
  if (!m_text.empty() && std::string_view("{[:").find(m_text.back()) == std::string_view::npos) m_text += ',';
}

void JsonWriter::Quote(std::string_view text) {
  static const char* const DIGITS = "0123456789abcdef";
  m_text += '"';
  while (!text.empty()) {
    const size_t length = CharacterLength(text);
    const auto first = static_cast<unsigned char>(text.front());
    if (length == 0) {
      m_text += "\xEF\xBF\xBD";
    } else if (first < 0x20 || first == 0x7F) {
      m_text += {'\\', 'u', '0', '0', DIGITS[first >> 4], DIGITS[first & 15]};
    } else {
      if (first == '"' || first == '\\') m_text += '\\';
      m_text += text.substr(0, length);
    }
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  m_text += '"';
}

JsonWriter& JsonWriter::Begin(char bracket) {
  Separate();
  m_text += bracket;
  return *this;
}

JsonWriter& JsonWriter::End(char bracket) {
  m_text += bracket;
  return *this;
}

JsonWriter& JsonWriter::Key(std::string_view name) {
  Separate();
  Quote(name);
  m_text += ':';
  return *this;
}

JsonWriter& JsonWriter::Text(std::string_view text) {
  Separate();
  Quote(text);
  return *this;
}

JsonWriter& JsonWriter::Number(double value, int decimals) {
  static const int MOST_DECIMALS = 15;
  if (!std::isfinite(value)) return Null();
  Separate();
  char buffer[400];  // the largest double has 309 digits before the point
  const auto end = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed,
                                 std::clamp(decimals, 0, MOST_DECIMALS));
  std::string_view digits(buffer, static_cast<size_t>(end.ptr - buffer));
  if (digits.find('.') != std::string_view::npos) {
    digits = digits.substr(0, digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.remove_suffix(1);
  }
  m_text += digits == "-0" ? "0" : digits;
  return *this;
}

JsonWriter& JsonWriter::Integer(long long value) {
  Separate();
  m_text += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  Separate();
  m_text += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::Null() {
  Separate();
  m_text += "null";
  return *this;
}
