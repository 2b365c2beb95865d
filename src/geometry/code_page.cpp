#include "geometry/code_page.h"

#include "geometry/code_page_tables.h"

#include <k7/foundation/string.h>

#include <cstddef>
#include <cstring>
#include <iterator>

namespace k7page {

// Told by their places alone.
constexpr char AS_IT_IS[1] = {}, MULTIBYTE[1] = {};
const Page WINDOWS_1252 = AS_IT_IS;
const Page UTF_8 = MULTIBYTE;

namespace {

// Other names hold these digits, whatever stands about them: "CP1252", "ANSI 1252", "88591", "ISO-8859-1".
constexpr struct {
  const char* digits;
  Page page;
} NAMES[] = {
    {"65001", MULTIBYTE}, {"1252", AS_IT_IS}, {"88591", AS_IT_IS}, {"88599", PAGE_1254}, {"885915", LATIN_9},
    {"437", PAGE_437},    {"850", PAGE_850},  {"1250", PAGE_1250}, {"1254", PAGE_1254},  {"1257", PAGE_1257},
};

constexpr struct {
  uint8_t driver;
  Page page;
} DRIVERS[] = {
    {0x01, PAGE_437},  {0x02, PAGE_850},  {0x03, AS_IT_IS},  {0x57, AS_IT_IS},
    {0xC8, PAGE_1250}, {0xCA, PAGE_1254}, {0xCC, PAGE_1257},
};

// U+2013 and the like, and letters of Romanian.
constexpr struct {
  uint16_t code;
  uint8_t byte;
} ELSEWHERE[] = {
    {0x0218, 'S'},  {0x0219, 's'},  {0x021A, 'T'},  {0x021B, 't'},  {0x0192, 0x83}, {0x02C6, 0x88},
    {0x02DC, 0x98}, {0x2013, 0x96}, {0x2014, 0x97}, {0x2018, 0x91}, {0x2019, 0x92}, {0x201A, 0x82},
    {0x201C, 0x93}, {0x201D, 0x94}, {0x201E, 0x84}, {0x2020, 0x86}, {0x2021, 0x87}, {0x2022, 0x95},
    {0x2026, 0x85}, {0x2030, 0x89}, {0x2039, 0x8B}, {0x203A, 0x9B}, {0x20AC, 0x80}, {0x2122, 0x99},
};

char ByteOf(uint32_t code) {
  if (code >= 0xA0 && code < 0x100) return static_cast<char>(code);
  if (code >= 0x100 && code < 0x180) return LATIN_EXTENDED_A[code - 0x100];
  for (const auto& other : ELSEWHERE)
    if (other.code == code) return static_cast<char>(other.byte);
  return '?';
}

// Reads one character; a byte that begins none is one by itself, which no character is.
uint32_t Decode(const unsigned char*& p) {
  static constexpr uint32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
  const unsigned first = *p++;
  const int more = first >= 0xF0 && first < 0xF8 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC0 || first >= 0xF8) return 0;
  uint32_t code = first & (0x3Fu >> more);
  for (int i = 0; i < more; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0;
    code = code << 6 | (p[i] & 0x3Fu);
  }
  p += more;
  return code < LEAST[more] ? 0 : code;
}

}  // namespace

Page ByName(const char* name) {
  // A text editor may have put its mark in front.
  if (std::strncmp(name, "\xEF\xBB\xBF", 3) == 0) name += 3;
  if (K7String::IComp(name, "UTF-8", 5) == 0 || K7String::IComp(name, "UTF8", 4) == 0) return UTF_8;
  char digits[8] = {};
  size_t count = 0;
  for (const char* p = name; *p && count + 1 < std::size(digits); ++p)
    if (*p >= '0' && *p <= '9') digits[count++] = *p;
  for (const auto& known : NAMES) {
    size_t same = 0;
    while (digits[same] && digits[same] == known.digits[same]) ++same;
    if (!digits[same] && !known.digits[same]) return known.page;
  }
  return nullptr;
}

Page ByDriver(uint8_t driver) {
  for (const auto& known : DRIVERS)
    if (known.driver == driver) return known.page;
  return nullptr;
}

char Printable(char c) {
  const unsigned char byte = static_cast<unsigned char>(c);
  if (byte < 0x20 || byte == 0x7F) return ' ';
  return byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D ? '?' : c;
}

int LooksLikeUtf8(const char* text) {
  int looks = 0;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p;) {
    const unsigned char first = *p;
    if (first < 0x80) {
      ++p;
    } else if (Decode(p) != 0) {
      looks = 1;
    } else {
      while ((*p & 0xC0) == 0x80) ++p;
      return first >= 0xC0 && !*p ? looks : -1;
    }
  }
  return looks;
}

void Convert(Page page, char* text) {
  char* out = text;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  while (*p) {
    if (*p < 0x80 || page == WINDOWS_1252) {
      *out++ = Printable(static_cast<char>(*p++));
    } else if (page == UTF_8) {
      *out++ = ByteOf(Decode(p));
    } else {
      *out++ = page[*p++ - 0x80];
    }
  }
  *out = 0;
}

}  // namespace k7page
