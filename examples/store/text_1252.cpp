#include "store/text_1252.h"

#include <algorithm>
#include <iterator>

namespace {

// Characters of the bytes 0x80 to 0x9F.
constexpr char16_t HIGH[] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                             0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                             0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                             0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

char16_t CharacterOf(unsigned char byte) { return byte >= 0x80 && byte < 0xA0 ? HIGH[byte - 0x80] : byte; }

constexpr unsigned NO_CHARACTER = 0xFFFFFFFF;

char ByteOf(unsigned character) {
  if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<char>(character);
  const auto* found = std::find(std::begin(HIGH), std::end(HIGH), character);
  return found == std::end(HIGH) ? '?' : static_cast<char>(0x80 + (found - HIGH));
}

// Length of the sequence that begins with `lead`; 1 for what cannot begin one.
size_t SequenceLength(unsigned char lead) {
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  return lead >= 0xF0 && lead < 0xF5 ? 4 : 1;
}

// The character at `i`, which moves behind it, or behind what cannot be one.
unsigned NextCharacter(std::string_view utf8, size_t& i) {
  const auto lead = static_cast<unsigned char>(utf8[i++]);
  const size_t length = SequenceLength(lead);
  if (length == 1) return lead < 0x80 ? lead : NO_CHARACTER;
  unsigned character = lead & (0x7Fu >> length);
  for (size_t taken = 1; taken < length; taken++, i++) {
    if (i == utf8.size() || (utf8[i] & 0xC0) != 0x80) return NO_CHARACTER;
    character = character << 6 | (static_cast<unsigned char>(utf8[i]) & 0x3Fu);
  }
  return character;
}

}  // namespace

bool IsUtf8(std::string_view text) {
  for (size_t i = 0; i < text.size();)
    if (NextCharacter(text, i) == NO_CHARACTER) return false;
  return true;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string Utf8Of1252(std::string_view text) {
  std::string utf8;
  for (const char byte : text) {
    const unsigned character = CharacterOf(static_cast<unsigned char>(byte));
    if (character < 0x80) {
      utf8 += byte;
    } else if (character < 0x800) {
      utf8 += static_cast<char>(0xC0 | character >> 6);
      utf8 += static_cast<char>(0x80 | (character & 0x3F));
    } else {
      utf8 += static_cast<char>(0xE0 | character >> 12);
      utf8 += static_cast<char>(0x80 | (character >> 6 & 0x3F));
      utf8 += static_cast<char>(0x80 | (character & 0x3F));
    }
  }
  return utf8;
}

std::string Printable1252(std::string_view text) {
  std::string shown(text);
  for (char& c : shown) {
    const char16_t character = CharacterOf(static_cast<unsigned char>(c));
    if (character < 0x20 || (character >= 0x7F && character < 0xA0)) c = '?';
  }
  return Utf8Of1252(shown);
}

size_t Write1252(std::string_view utf8, char* out) {
  const char* const begin = out;
  for (size_t i = 0; i < utf8.size() && utf8[i];) *out++ = ByteOf(NextCharacter(utf8, i));
  return static_cast<size_t>(out - begin);
}

std::string Text1252(std::string_view utf8) {
  std::string text(utf8.size(), '\0');
  text.resize(Write1252(utf8, text.data()));
  return text;
}

std::string Folded1252(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) {
    const auto byte = static_cast<unsigned char>(c);
    const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
    if (capital) c = static_cast<char>(byte + 0x20);
    if (byte == 0x8A || byte == 0x8C || byte == 0x8E) c = static_cast<char>(byte + 0x10);
    if (byte == 0x9F) c = static_cast<char>(0xFF);
  }
  return folded;
}
