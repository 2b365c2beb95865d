// K7LatLon: coordinates written by a template.

#include <k7/geodesy/latlon.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

const char DEGREE_SIGN = static_cast<char>(176);
const int MAX_FIELD = 255;               // largest width and precision
const double DEGREES_LIMIT = INT32_MAX;  // whole degrees and what they may carry fit an int below it
const int NUMBER_SIZE = 10 + 1 + MAX_FIELD;

// K7String::IsDigit within reach of the inliner.
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// What stands between a "%" and its letter, and the letter.
struct Conversion {
  char letter;  // 0 at the end of the template
  bool zeroPadded;
  bool valid;  // one point at most, and numbers within MAX_FIELD
  bool hasPrecision;
  int width;
  int precision;
  const char* end;  // behind the letter
};

int ReadNumber(const char*& p) {
  int n = 0;
  for (; IsDigit(*p); ++p) n = std::min(n * 10 + (*p - '0'), MAX_FIELD + 1);
  return n;
}

Conversion ReadConversion(const char* p) {
  Conversion c{};
  c.zeroPadded = *p == '0';
  c.width = ReadNumber(p);
  c.precision = 6;
  if (*p == '.') {
    c.hasPrecision = true;
    ++p;
    c.precision = ReadNumber(p);
  }
  c.valid = *p != '.' && c.width <= MAX_FIELD && c.precision <= MAX_FIELD;
  while (*p == '.' || IsDigit(*p)) ++p;
  c.letter = *p;
  c.end = *p ? p + 1 : p;
  return c;
}

// Digits of a number of at most ten whole digits with `precision` decimals, rounded exactly as printf rounds:
// to the nearest, by all the digits of the binary value. Returns their count.
int WriteDigits(char* out, double value, int precision) {
  static const double POWERS[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  static const double LARGEST = 1e11;  // scaled values below it are off by less than 1e-5
  static const double TIE_BAND = 1e-4;
  if (precision < 10 && value * POWERS[precision] < LARGEST) {
    const double scaled = value * POWERS[precision];
    uint64_t n = static_cast<uint64_t>(scaled);
    const double fraction = scaled - static_cast<double>(n);
    if (std::fabs(fraction - 0.5) > TIE_BAND) {
      n += fraction > 0.5;
      char digits[16];
      char* p = digits + sizeof digits;
      for (int i = 0; i < precision; ++i, n /= 10) *--p = static_cast<char>('0' + n % 10);
      if (precision > 0) *--p = '.';
      do *--p = static_cast<char>('0' + n % 10);
      while (n /= 10);
      const size_t length = static_cast<size_t>(digits + sizeof digits - p);
      std::memcpy(out, p, length);
      return static_cast<int>(length);
    }
  }
  return static_cast<int>(
      std::to_chars(out, out + NUMBER_SIZE, value, std::chars_format::fixed, precision).ptr - out);
}

// Whether the number's text is that of 60.
bool ReadsAsSixty(const Conversion& c, double value) {
  if (value < 59.5) return false;
  char digits[NUMBER_SIZE];
  WriteDigits(digits, value, c.precision);
  return digits[0] == '6';
}

char* Pad(char* out, const Conversion& c, const char* digits, int length) {
  for (int i = length; i < c.width; ++i) *out++ = c.zeroPadded ? '0' : ' ';
  std::memcpy(out, digits, static_cast<size_t>(length));
  return out + length;
}

char* WriteDecimal(char* out, const Conversion& c, double value) {
  char digits[NUMBER_SIZE];
  return Pad(out, c, digits, WriteDigits(digits, value, c.precision));
}

char* WriteWhole(char* out, const Conversion& c, int value) {
  char digits[16];
  return Pad(out, c, digits,
             static_cast<int>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
}

// One coordinate, split as the fields of a template print it, in four passes whose order matters:
//
//   1. Construction splits the value into degrees, minutes, seconds, each whole and decimal, and rounds
//      whole seconds only: what the others round by depends on the template.
//   2. `Survey` reads the template. Which fields it prints decides what is rounded, and decimal minutes and
//      seconds are tried in their own precision, since 59.96 prints as 60 in one and not in another.
//   3. `Settle` rounds and carries from the seconds up, so that no carry meets a field that is settled.
//      A decimal field that would print as 60 is 0 then, and the whole field above it one more.
//   4. `Write` reads the template again, copies it and puts the fields in. It changes none.
class Fields {
 public:
  Fields(double coordinate, char hemisphere)
      : m_hemisphere(hemisphere), m_decimalDegrees(std::fabs(coordinate)) {
    m_degrees = static_cast<int>(m_decimalDegrees);
    m_decimalMinutes = (m_decimalDegrees - m_degrees) * 60;
    m_minutes = static_cast<int>(m_decimalMinutes);
    m_decimalSeconds = (m_decimalMinutes - m_minutes) * 60;
    m_seconds =
        static_cast<int>(m_decimalSeconds + 0.5);  // NOLINT(bugprone-incorrect-roundings): never negative
  }

  // Learns what the template prints. The size of the text at most; 0 when the template is wrong.
  size_t Survey(const char* fmt) {
    size_t size = 1;
    while (*fmt) {
      if (*fmt++ != '%') {
        ++size;
        continue;
      }
      const Conversion c = ReadConversion(fmt);
      if (!Note(c)) return 0;
      size += static_cast<size_t>(c.end - fmt) + 1 + static_cast<size_t>(std::max(c.width, NUMBER_SIZE));
      fmt = c.end;
    }
    return size;
  }

  // Rounds the last whole field printed, and carries so that no field prints as 60.
  void Settle() {
    const bool secondsCarry = m_sixtySeconds || (m_prints.s && m_seconds == 60);
    if (m_sixtySeconds) m_decimalSeconds = 0;
    if (secondsCarry) m_seconds = 0;
    if (secondsCarry || (m_prints.m && !m_prints.s && !m_prints.S && m_decimalSeconds >= 30)) ++m_minutes;

    // Without a minutes field the degrees have been rounded by them already: nothing is left to carry.
    if (!m_prints.m && !m_prints.M) {
      m_degrees += m_prints.d && m_decimalMinutes >= 30;
    } else if (m_sixtyMinutes || m_minutes == 60) {
      m_minutes = 0;
      ++m_degrees;
    }
    if (m_sixtyMinutes) m_decimalMinutes = 0;
  }

  char* Write(char* out, const char* fmt) const {
    while (*fmt) {
      const char* const percent = fmt;
      if (*fmt++ != '%') {
        *out++ = *percent;
        continue;
      }
      const Conversion c = ReadConversion(fmt);
      out = WriteField(out, c, percent);
      fmt = c.end;
    }
    return out;
  }

 private:
  struct Printed {
    bool M, S, d, m, s;
  };

  // Notes a field that will be printed; false for one that cannot be.
  bool Note(const Conversion& c) {
    if (c.letter < 'D' || c.letter > 'x') return true;
    if (!c.valid) return false;
    switch (c.letter) {
      case 'H':
      case 'D':
      case 'x':
        return true;
      case 'M':
        m_prints.M = true;
        m_sixtyMinutes |= ReadsAsSixty(c, m_decimalMinutes);
        return true;
      case 'S':
        m_prints.S = true;
        m_sixtySeconds |= ReadsAsSixty(c, m_decimalSeconds);
        return true;
      case 'd':
        m_prints.d = true;
        return !c.hasPrecision;
      case 'm':
        m_prints.m = true;
        return !c.hasPrecision;
      case 's':
        m_prints.s = true;
        return !c.hasPrecision;
      default:
        return false;
    }
  }

  char* WriteField(char* out, const Conversion& c, const char* percent) const {
    switch (c.letter) {
      case 'H':
        *out = m_hemisphere;
        return out + 1;
      case 'x':
        *out = DEGREE_SIGN;
        return out + 1;
      case 'D':
        return WriteDecimal(out, c, m_decimalDegrees);
      case 'M':
        return WriteDecimal(out, c, m_decimalMinutes);
      case 'S':
        return WriteDecimal(out, c, m_decimalSeconds);
      case 'd':
        return WriteWhole(out, c, m_degrees);
      case 'm':
        return WriteWhole(out, c, m_minutes);
      case 's':
        return WriteWhole(out, c, m_seconds);
      default:
        break;
    }
    // No field: copied as it stands, but "%%" is one percent sign.
    if (c.letter == '%' && c.end == percent + 2) ++percent;
    const size_t length = static_cast<size_t>(c.end - percent);
    std::memcpy(out, percent, length);
    return out + length;
  }

  char m_hemisphere;
  double m_decimalDegrees;
  double m_decimalMinutes;
  double m_decimalSeconds;
  int m_degrees;
  int m_minutes;
  int m_seconds;
  Printed m_prints = {};
  bool m_sixtyMinutes = false;
  bool m_sixtySeconds = false;
};

}  // namespace

bool K7LatLon::Format(const char* fmt, K7String& out, bool latitude) const {
  const double coordinate = latitude ? m_lat : m_lon;
  if (!fmt || !(std::fabs(coordinate) < DEGREES_LIMIT - 1)) return false;
  const char hemisphere = latitude ? (coordinate < 0 ? 'S' : 'N') : (coordinate < 0 ? 'W' : 'E');
  Fields fields(coordinate, hemisphere);
  const size_t size = fields.Survey(fmt);
  if (size == 0) return false;
  fields.Settle();

  // The text is made beside `out`, whose buffer may hold the template.
  char local[2048];
  char* const text = size <= sizeof local ? local : static_cast<char*>(std::malloc(size));
  if (!text) return false;
  *fields.Write(text, fmt) = 0;
  const bool stored = out.Create(text) >= 0;
  if (text != local) std::free(text);
  return stored;
}
