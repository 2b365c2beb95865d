// K7LatLon: coordinates read from text.

#include <k7/geodesy/latlon.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace {

const unsigned char DEGREE_SIGN = 176;

// K7String::IsDigit within reach of the inliner.
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct Text {
  const char* begin;
  const char* end;
  int Size() const { return static_cast<int>(end - begin); }
};

// How a coordinate is read.
struct Rules {
  bool latitude;
  bool typed = false;       // as people write it: UTF-8 signs, longitudes of three-digit degrees
  bool hemisphere = false;  // typed with its letter: then seven digits are DDDMMSS too
};

// Whether `c` occurs in a short set.
bool OneOf(char c, const char* set) {
  while (*set && *set != c) ++set;
  return *set != 0;
}

bool IsSeparator(char c) { return OneOf(c, "-: ./\\_'\";") || static_cast<unsigned char>(c) == DEGREE_SIGN; }

// Bytes of the UTF-8 degree sign, prime or double prime at `p`; 0 when there is none.
int SignLength(const char* p, const char* end) {
  for (const char* sign : {"\xC2\xB0", "\xE2\x80\xB2", "\xE2\x80\xB3"}) {
    const size_t length = std::strlen(sign);
    if (static_cast<size_t>(end - p) >= length && std::memcmp(p, sign, length) == 0)
      return static_cast<int>(length);
  }
  return 0;
}

// Collects the hemisphere and the numeric fields of one coordinate.
class Collector {
 public:
  explicit Collector(const Rules& rules) : m_rules(rules) {}

  // False for a text that is no coordinate.
  bool Run(const Text& text) {
    for (const char* p = text.begin; p < text.end;) {
      if (IsDigit(*p)) {
        p = Number(p, text.end);
        if (!p) return false;
      } else if (Hemisphere(*p) || IsSeparator(*p)) {
        ++p;
      } else if (const int length = m_rules.typed ? SignLength(p, text.end) : 0) {
        p += length;
      } else {
        return false;
      }
    }
    return m_count <= 3 && (m_count > 0 || !m_rules.typed);
  }

  // False when a field or their sum is out of range.
  bool Value(double& value) const {
    const double limit = m_rules.latitude ? 90 : 180;
    const double bounds[3] = {limit, 60, 60};
    for (int i = 0; i < 3; ++i)
      if (!(m_fields[i] >= 0 && m_fields[i] <= bounds[i])) return false;
    const double sum = m_fields[0] + m_fields[1] / 60 + m_fields[2] / 3600;
    if (sum > limit) return false;
    value = m_sign < 0 ? -sum : sum;
    return true;
  }

 private:
  // Takes a character that decides the hemisphere.
  bool Hemisphere(char c) {
    if (m_sign != 0) return false;
    if (OneOf(c, m_rules.latitude ? "Nn" : "Ee") || (c == '+' && m_count == 0)) m_sign = 1;
    if (OneOf(c, m_rules.latitude ? "Ss" : "Ww") || (c == '-' && m_count == 0)) m_sign = -1;
    return m_sign != 0;
  }

  // Reads the number at `p`: digits, a fraction, never an exponent, whatever the locale. Its end, or null.
  const char* Number(const char* p, const char* end) {
    if (m_fraction) return nullptr;
    const char* stop = p;
    while (stop < end && IsDigit(*stop)) ++stop;
    const int64_t digits = stop - p;
    // A point without digits behind it is a separator.
    if (end - stop > 1 && stop[0] == '.' && IsDigit(stop[1])) {
      m_fraction = true;
      ++stop;
      while (stop < end && IsDigit(*stop)) ++stop;
    }
    double value;
    if (std::from_chars(p, stop, value, std::chars_format::fixed).ec != std::errc()) return nullptr;
    return Take(value, digits) ? stop : nullptr;
  }

  // Stores a number by the count of its whole digits.
  bool Take(double value, int64_t digits) {
    if (digits <= 2) {
      if (m_count < 3) m_fields[m_count] = value;
      ++m_count;
      return true;
    }
    if (m_count > 0) {
      if (digits != 4 || m_count != 1) return false;
      UnpackTwo(value, 1);
      return true;
    }
    const bool threeDigitDegrees = m_rules.typed && !m_rules.latitude;
    if (digits == 3 && threeDigitDegrees) {
      m_fields[0] = value;
      m_count = 1;
    } else if (digits == 4 || (digits == 5 && threeDigitDegrees)) {
      UnpackTwo(value, 0);
    } else if (digits >= 6) {
      UnpackThree(value, digits - (threeDigitDegrees && m_rules.hemisphere && digits > 6 ? 7 : 6));
    } else {
      return false;
    }
    return true;
  }

  // Two fields from `first` on, the second of two digits.
  void UnpackTwo(double value, int first) {
    m_fields[first] = std::trunc(value / 100);
    m_fields[first + 1] = value - m_fields[first] * 100;
    m_count = first + 2;
  }

  // Degrees, minutes, seconds and `decimals` digits behind the point of the seconds.
  void UnpackThree(double value, int64_t decimals) {
    double divisor = 1;
    for (int64_t i = 0; i < decimals; ++i) divisor *= 10;
    m_fields[0] = std::trunc(value / 10000 / divisor);
    value -= m_fields[0] * 10000 * divisor;
    m_fields[1] = std::trunc(value / 100 / divisor);
    value -= m_fields[1] * 100 * divisor;
    m_fields[2] = value / divisor;
    m_count = 3;
  }

  Rules m_rules;
  int m_sign = 0;
  int m_count = 0;
  bool m_fraction = false;
  double m_fields[3] = {};
};

// The length of the text when it is a coordinate, which is then stored; else 0.
int ReadCoordinate(const Text& text, const Rules& rules, double& coordinate) {
  Collector collector(rules);
  return collector.Run(text) && collector.Value(coordinate) ? text.Size() : 0;
}

Text Whole(const char* text) { return {text, text + std::strlen(text)}; }

// First character in [from, end) that is one of `set`; null when there is none.
const char* FindOneOf(const char* from, const char* end, const char* set) {
  for (; from < end; ++from)
    if (OneOf(*from, set)) return from;
  return nullptr;
}

const char* FindDigit(const char* from, const char* end) {
  for (; from < end; ++from)
    if (IsDigit(*from)) return from;
  return nullptr;
}

// Where the longitude of a whole position begins; null when nothing tells.
const char* SplitPoint(const Text& text) {
  const char* const digit = FindDigit(text.begin, text.end);
  if (!digit) return nullptr;
  if (const char* const letter = FindOneOf(text.begin, text.end, "EWew")) {
    if (FindDigit(letter, text.end)) return letter;
    const char* const latitudeEnd = FindOneOf(digit + 1, text.end, "NSns");
    return latitudeEnd ? latitudeEnd + 1 : nullptr;
  }
  for (const char* set : {"+", "-", " "})
    if (const char* const p = FindOneOf(digit + 1, text.end, set)) return p;
  return nullptr;
}

// The only `c` of a text; null when there is none, or more than one.
const char* FindOnly(const Text& text, char c) {
  const char set[2] = {c, 0};
  const char* const p = FindOneOf(text.begin, text.end, set);
  return p && !FindOneOf(p + 1, text.end, set) ? p : nullptr;
}

// Number of two digits, or of three where `digits` says so.
int SmallNumber(const char* p, int digits) {
  int n = 0;
  for (; digits > 0; --digits) n = n * 10 + (*p++ - '0');
  return n;
}

bool ReadQuadrantForm(const Text& text, double& lat, double& lon) {
  if (text.Size() != 5) return false;
  const char* const p = text.begin;
  const bool inside = OneOf(p[2], "NSEW");
  const char quadrant = inside ? p[2] : p[4];
  if (!OneOf(quadrant, "NSEW")) return false;
  const char* const second = p + (inside ? 3 : 2);
  for (const char* digit : {p, p + 1, second, second + 1})
    if (!IsDigit(*digit)) return false;
  const int degreesLat = SmallNumber(p, 2);
  const int degreesLon = SmallNumber(second, 2) + (inside ? 100 : 0);
  if (degreesLat > 90 || degreesLon > 180) return false;
  lat = quadrant == 'N' || quadrant == 'E' ? degreesLat : -degreesLat;
  lon = quadrant == 'E' || quadrant == 'S' ? degreesLon : -degreesLon;
  return true;
}

// Half of the flight-management form: degrees of `width` digits, then minutes and seconds, then a letter.
// Moves `p` behind the letter.
bool ReadFmsHalf(const char*& p, const char* end, int width, int limit, char positive, char negative,
                 double& value) {
  const char* const begin = p;
  const char* letter = p;
  while (letter < end && IsDigit(*letter)) ++letter;
  const int64_t digits = letter - begin;
  if (digits != width && digits != width + 2 && digits != width + 4) return false;
  if (letter == end || (*letter != positive && *letter != negative)) return false;
  const int degrees = SmallNumber(begin, width);
  const int minutes = digits > width ? SmallNumber(begin + width, 2) : 0;
  const int seconds = digits > width + 2 ? SmallNumber(begin + width + 2, 2) : 0;
  if (degrees > limit || minutes >= 60 || seconds >= 60) return false;
  value = degrees + minutes / 60.0 + seconds / 3600.0;
  if (*letter == negative) value = -value;
  p = letter + 1;
  return true;
}

// The latitude is stored before the longitude is looked at.
bool ReadFmsForm(const Text& text, double& lat, double& lon) {
  const char* p = text.begin;
  if (!ReadFmsHalf(p, text.end, 2, 90, 'N', 'S', lat)) return false;
  double value;
  if (!ReadFmsHalf(p, text.end, 3, 180, 'E', 'W', value) || p != text.end) return false;
  lon = value;
  return true;
}

bool InRange(double lat, double lon) { return std::fabs(lat) <= 90 && std::fabs(lon) <= 180; }

}  // namespace

int K7LatLon::ParseLat(const char* text) {
  m_lat = 0;
  return text ? ReadCoordinate(Whole(text), {.latitude = true}, m_lat) : 0;
}

int K7LatLon::ParseLon(const char* text) {
  m_lon = 0;
  return text ? ReadCoordinate(Whole(text), {.latitude = false}, m_lon) : 0;
}

bool K7LatLon::ParseLat(const char*, const char*) { return false; }

bool K7LatLon::ParseLon(const char*, const char*) { return false; }

// Taken by value, as the interface has it.
// NOLINTBEGIN(performance-unnecessary-value-param)
bool K7LatLon::ParseLatLon424Format(K7String text) { return ReadQuadrantForm(Whole(text), m_lat, m_lon); }

bool K7LatLon::ParseLatLonFmsFormat(K7String text) { return ReadFmsForm(Whole(text), m_lat, m_lon); }
// NOLINTEND(performance-unnecessary-value-param)

int K7LatLon::ParseLatLon(const char* text) {
  if (!text) return 0;
  const Text whole = Whole(text);
  if (ReadQuadrantForm(whole, m_lat, m_lon)) return 5;
  if (ReadFmsForm(whole, m_lat, m_lon)) return 7;
  const char* const split = SplitPoint(whole);
  if (!split) return 0;
  m_lat = 0;
  const int latitude = ReadCoordinate({whole.begin, split}, {.latitude = true}, m_lat);
  if (latitude == 0) return 0;
  m_lon = 0;
  const int longitude = ReadCoordinate({split, whole.end}, {.latitude = false}, m_lon);
  return longitude == 0 ? 0 : latitude + longitude;
}

int K7LatLon::ParsePosition(const char* text) {
  if (!text) return 0;
  const Text whole = Whole(text);
  double lat, lon;
  if (!ReadQuadrantForm(whole, lat, lon) && !ReadFmsForm(whole, lat, lon)) {
    // A comma is no separator within a coordinate. A semicolon is one, so it divides only where nothing else
    // does.
    const char* const comma = FindOnly(whole, ',');
    const char* split = comma ? comma : SplitPoint(whole);
    if (!split) split = FindOnly(whole, ';');
    if (!split) return 0;
    const Text second{comma ? comma + 1 : split, whole.end};
    const bool hemisphere = FindOneOf(second.begin, second.end, "EWew");
    if (!ReadCoordinate({whole.begin, split}, {.latitude = true, .typed = true}, lat)) return 0;
    if (!ReadCoordinate(second, {.latitude = false, .typed = true, .hemisphere = hemisphere}, lon)) return 0;
  }
  if (!InRange(lat, lon)) return 0;
  Init(lat, lon);
  return whole.Size();
}
