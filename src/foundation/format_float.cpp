#include "foundation/format_float.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

// The digits of one number. Behind `EXACT` decimals or significant digits every number has zeros only, which
// need no room.
template <class Float>
class Digits {
 public:
  Digits(const FormatField& field, Float value) : m_value(value) {
    const int precision = field.precision < 0 ? 6 : field.precision;
    switch (field.letter | 0x20) {
      case 'f':
        Convert(std::chars_format::fixed, precision);
        break;
      case 'e':
        Convert(std::chars_format::scientific, precision);
        break;
      case 'g':
        ConvertGeneral(std::max(precision, 1), field.alternate);
        break;
      default:
        if (field.precision < 0)
          m_end = std::to_chars(m_text, std::end(m_text), value, std::chars_format::hex).ptr;
        else
          Convert(std::chars_format::hex, precision);
    }
    if (field.letter < 'a') MakeUpperCase(m_text, m_end);
    Split(field);
  }

  const NumberText& Text() const { return m_pieces; }

 private:
  static constexpr int EXACT = std::numeric_limits<Float>::digits - std::numeric_limits<Float>::min_exponent;

  void Convert(std::chars_format format, int precision) {
    const int taken = std::min(precision, EXACT);
    m_end = std::to_chars(m_text, std::end(m_text), m_value, format, taken).ptr;
    m_pieces.innerZeros = precision - taken;
  }

  // With "#" its zeros stay, which only the two other forms write.
  void ConvertGeneral(int precision, bool keepZeros) {
    if (!keepZeros) {
      Convert(std::chars_format::general, precision);
      m_pieces.innerZeros = 0;
      return;
    }
    Convert(std::chars_format::scientific, precision - 1);
    const char* p = m_end;
    while (*--p != 'e') continue;
    int exponent = 0;
    std::from_chars(p + (p[1] == '+' ? 2 : 1), m_end, exponent);
    if (exponent >= -4 && exponent < precision) Convert(std::chars_format::fixed, precision - 1 - exponent);
  }

  // Zeros and the point of "#" stand before the exponent.
  void Split(const FormatField& field) {
    const std::string_view all(m_text, static_cast<size_t>(m_end - m_text));
    const bool isHex = (field.letter | 0x20) == 'a';
    const size_t exponent = std::min(all.find_last_of(isHex ? "pP" : "eE"), all.size());
    m_pieces.head = all.substr(0, exponent);
    m_pieces.tail = all.substr(exponent);
    m_pieces.point = field.alternate && m_pieces.head.find('.') == std::string_view::npos;
  }

  Float m_value;
  NumberText m_pieces;
  char* m_end = m_text;
  char m_text[std::numeric_limits<Float>::max_exponent10 + EXACT + 16];
};

template <class Float>
void Write(FormatOutput& out, const FormatField& field, Float value) {
  const bool upper = field.letter < 'a';
  const std::string_view sign = SignOf(field, std::signbit(value));
  if (!std::isfinite(value)) {
    NumberText text;
    text.prefix = sign;
    text.head = std::isnan(value) ? (upper ? "NAN" : "nan") : upper ? "INF" : "inf";
    return WriteNumber(out, field, text, false);
  }
  const Digits<Float> digits(field, std::fabs(value));
  NumberText text = digits.Text();
  const char prefix[] = {sign.empty() ? ' ' : sign[0], '0', upper ? 'X' : 'x'};
  const size_t base = (field.letter | 0x20) == 'a' ? 2 : 0;
  text.prefix = std::string_view(prefix, 1 + base).substr(sign.empty());
  WriteNumber(out, field, text, true);
}

}  // namespace

void WriteFloat(FormatOutput& out, const FormatField& field, double value) { Write(out, field, value); }
void WriteFloat(FormatOutput& out, const FormatField& field, long double value) { Write(out, field, value); }
