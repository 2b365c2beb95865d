// The printf side of K7String: a sizing pass whose estimate fixes the buffer's capacity, then the bounded
// formatter.

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include "foundation/format_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

int FormatArgs(char* dst, size_t size, const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  const int n = FormatText(dst, size, fmt, args);
  va_end(args);
  return n;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Replaces the first backslash-x escape by its byte. Only the first: formats carry at most one, a degree
// sign.
void DecodeEscape(char* fmt) {
  char* const escape = std::strstr(fmt, "\\x");
  if (!escape) return;
  int value = 0;
  int digits = 0;
  while (digits < 2 && HexDigit(escape[2 + digits]) >= 0) value = value * 16 + HexDigit(escape[2 + digits++]);
  if (digits == 0) return;
  *escape = static_cast<char>(value);
  char* const rest = escape + 2 + digits;
  std::memmove(escape + 1, rest, std::strlen(rest) + 1);
}

// One conversion of a format, from the character behind "%".
struct Conversion {
  const char* end;     // behind the conversion letter
  char letter;         // 0 at the end of the format
  char prefix;         // size prefix, or 0
  int64_t alternates;  // number of "#"
  bool starWidth;      // width or precision come from the arguments
  bool starPrecision;
  bool hasPrecision;
  int64_t width;
  int64_t precision;
};

int64_t ReadNumber(const char*& p) {
  int64_t value = 0;
  for (; K7String::IsDigit(*p); ++p) value = std::min<int64_t>(value * 10 + (*p - '0'), INT32_MAX);
  return value;
}

Conversion ReadConversion(const char* p) {
  Conversion c{};
  for (; *p && std::strchr("-+ #0", *p); ++p) c.alternates += *p == '#';
  if (*p == '*') {
    c.starWidth = true;
    ++p;
  } else {
    c.width = ReadNumber(p);
  }
  if (*p == '.') {
    c.hasPrecision = true;
    ++p;
    if (*p == '*') {
      c.starPrecision = true;
      ++p;
    } else {
      c.precision = ReadNumber(p);
    }
  }
  if (*p && std::strchr("FLNhl", *p)) c.prefix = *p++;
  c.letter = *p;
  c.end = *p ? p + 1 : p;
  return c;
}

// Length of `value` in the field of `c`, written with six digits more than asked for.
int64_t FixedLength(const Conversion& c, double value) {
  const int64_t precision = c.precision + 6;
  char text[512];
  if (precision >= 0 && precision <= 128) {
    // The same length for less work; no double has more than 309 digits before its point.
    const auto [end, error] =
        std::to_chars(text, std::end(text), value, std::chars_format::fixed, static_cast<int>(precision));
    return std::max<int64_t>(end - text, std::abs(c.width));
  }
  return std::max(
      FormatArgs(nullptr, 0, "%*.*f", static_cast<int>(c.width), static_cast<int>(precision), value), 0);
}

// Walks a format beside its arguments and adds up what the text may take.
class SizingPass {
 public:
  /// The estimate.
  int64_t Run(const char* fmt, va_list args) {
    va_copy(m_args, args);
    int64_t estimate = 0;
    while (*fmt) {
      if (*fmt++ != '%') {
        ++estimate;
      } else if (*fmt == '%') {
        ++estimate;
        ++fmt;
      } else {
        Conversion c = ReadConversion(fmt);
        fmt = c.end;
        estimate += Measure(c);
      }
    }
    va_end(m_args);
    return estimate;
  }

 private:
  int64_t Measure(Conversion& c) {
    if (c.starWidth) c.width = TakeStar();
    if (c.starPrecision) c.precision = TakeStar();
    // Under these prefixes the formatter takes another argument than this pass does.
    if (c.prefix == 'F' || c.prefix == 'N' || c.prefix == 'L') m_inStep = false;
    return 2 * c.alternates + MeasureValue(c);
  }

  int TakeStar() {
    static const int WIDEST_TRUSTED = 4096;
    const int value = va_arg(m_args, int);
    // Out of step it may be half of a pointer, and would ask for gigabytes.
    return m_inStep || std::abs(static_cast<int64_t>(value)) <= WIDEST_TRUSTED ? value : 0;
  }

  int64_t MeasureValue(const Conversion& c) {
    switch (c.letter) {
      case 'G':
      case 'e':
      case 'g':
        (void)va_arg(m_args, double);
        return std::max<int64_t>(c.width + c.precision, 128);
      case 'X':
      case 'd':
      case 'i':
      case 'o':
      case 'p':
      case 'u':
      case 'x':
        TakeWord(c);
        return std::max<int64_t>(c.width + c.precision, 32);
      case 'c':
        (void)va_arg(m_args, int);
        return 1;
      case 'f':
        return FixedLength(c, va_arg(m_args, double));
      case 's':
        return std::max(TextLength(c), c.width);
      case 'n':
        (void)va_arg(m_args, void*);
        return 0;
      default:
        // The formatter takes an argument here ("%C", "%E") that this pass leaves: from now on the two are
        // out of step, and what looks like a pointer may be any number.
        m_inStep = false;
        return 0;
    }
  }

  void TakeWord(const Conversion& c) {
    // NOLINTNEXTLINE(bugprone-branch-clone): the arguments differ in size
    if (c.letter == 'p') {
      (void)va_arg(m_args, void*);
    } else if (c.prefix == 'l') {
      (void)va_arg(m_args, long);
    } else {
      (void)va_arg(m_args, int);
    }
  }

  int64_t TextLength(const Conversion& c) {
    static const int64_t NULL_MARKER_LENGTH = 6;
    const char* text = va_arg(m_args, const char*);
    const bool cut = c.hasPrecision && c.precision >= 0;
    int64_t length = NULL_MARKER_LENGTH;
    if (text && m_inStep) {
      // With a precision the text need not be terminated.
      length =
          static_cast<int64_t>(cut ? strnlen(text, static_cast<size_t>(c.precision)) : std::strlen(text));
    }
    return cut ? std::min(length, c.precision) : length;
  }

  va_list m_args;
  bool m_inStep = true;
};

int FormatCopy(char* dst, size_t size, const char* fmt, va_list args) {
  va_list copy;
  va_copy(copy, args);
  const int n = FormatText(dst, size, fmt, copy);
  va_end(copy);
  return n;
}

}  // namespace

int K7String::Format(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  const int result = FormatV(fmt, args);
  va_end(args);
  return result;
}

int K7String::FormatV(const char* fmt, va_list args) {
  const char* format = fmt ? fmt : "";
  // Few formats need a copy that is changed on the way.
  K7String changed;
  if (std::strstr(format, "\\x")) {
    if (const int err = changed.Create(format); err < 0) return err;
    DecodeEscape(changed.m_text);
    format = changed;
  }
  SizingPass pass;
  const int64_t estimate = std::clamp<int64_t>(pass.Run(format, args), 0, INT32_MAX - 1);

  // Arguments may point into this string, so the text is made beside it. Most texts fit the local buffer.
  char local[512];
  char* text = local;
  const int length = FormatCopy(local, sizeof local, format, args);
  if (length < 0) return length;
  if (length >= static_cast<int>(sizeof local)) {
    text = static_cast<char*>(std::malloc(static_cast<size_t>(length) + 1));
    if (!text) return K7_ERR_MEMORY;
    FormatCopy(text, static_cast<size_t>(length) + 1, format, args);
  }

  // The estimate fixes the capacity; a text longer than it grows the string again.
  int err = Alloc(static_cast<int>(estimate) + 1);
  if (!err) err = Alloc(length);
  if (!err) std::memcpy(m_text, text, static_cast<size_t>(length) + 1);
  if (text != local) std::free(text);
  return err ? err : length;
}

K7FmtString::K7FmtString(const char* fmt, ...) {
  if (!fmt) return;
  va_list args;
  va_start(args, fmt);
  FormatV(fmt, args);
  va_end(args);
}
