#include "foundation/format_text.h"

#include "foundation/format_float.h"
#include "foundation/format_spec.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>

namespace {

constexpr size_t UTF8_LONGEST = 4;

// Bytes of a code point; 0 for what is none.
size_t EncodeUtf8(uint32_t code, char* out) {
  if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return 0;
  const size_t length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
  static const unsigned LEAD[] = {0, 0, 0xC0, 0xE0, 0xF0};
  for (size_t i = length - 1; i > 0; --i, code >>= 6) out[i] = static_cast<char>(0x80 | (code & 0x3F));
  out[0] = static_cast<char>(LEAD[length] | code);
  return length;
}

// The next code point of wide text, which is UTF-16 where its characters have 16 bits.
uint32_t TakeCode(const wchar_t*& p) {
  // NOLINTNEXTLINE(bugprone-signed-char-misuse): no character is negative
  const uint32_t code = static_cast<uint32_t>(*p++);
  if constexpr (sizeof(wchar_t) == 2) {
    const uint32_t low = code >= 0xD800 && code < 0xDC00 ? static_cast<uint32_t>(*p) : 0;
    if (low >= 0xDC00 && low < 0xE000) {
      ++p;
      return 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    }
  }
  return code;
}

// Walks a format beside its arguments.
class Formatter {
 public:
  Formatter(char* dst, size_t size, va_list args) : m_out(dst, size) { va_copy(m_args, args); }
  ~Formatter() { va_end(m_args); }
  Formatter(const Formatter&) = delete;
  Formatter& operator=(const Formatter&) = delete;

  int Run(const char* fmt) {
    while (*fmt) {
      const char* const start = fmt;
      while (*fmt && *fmt != '%') ++fmt;
      m_out.Put({start, static_cast<size_t>(fmt - start)});
      if (!*fmt) break;
      if (!*++fmt) {
        m_out.Put("%");
        break;
      }
      FormatSpec spec;
      fmt = ReadFormatSpec(fmt, spec);
      if (!fmt || !TakeStars(spec) || !Write(spec)) return -1;
    }
    return m_out.Finish();
  }

 private:
  bool TakeStars(FormatSpec& spec) {
    if (spec.starWidth) {
      spec.width = va_arg(m_args, int);
      if (spec.width < 0) {
        if (spec.width == INT32_MIN) return false;
        spec.left = true;
        spec.width = -spec.width;
      }
    }
    if (spec.starPrecision) spec.precision = std::max(va_arg(m_args, int), -1);
    return true;
  }

  bool Write(const FormatSpec& spec) {
    switch (spec.letter) {
      case 'd':
      case 'i':
        WriteSigned(spec, TakeSigned(spec.size));
        return true;
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        WriteUnsigned(spec, TakeUnsigned(spec.size), {});
        return true;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        if (spec.size == FORMAT_LONG_LONG)
          WriteFloat(m_out, spec, va_arg(m_args, long double));
        else
          WriteFloat(m_out, spec, va_arg(m_args, double));
        return true;
      case 'c':
      case 'C':
        return WriteCharacter(spec, va_arg(m_args, int));
      case 's':
      case 'S':
        return WriteString(spec);
      case 'p':
        WritePointer(spec, va_arg(m_args, const void*));
        return true;
      case 'n':
        StoreLength(spec.size);
        return true;
      case '%':
        m_out.Put("%");
        return true;
      default:
        WriteUnknown(spec);
        return true;
    }
  }

  int64_t TakeSigned(FormatSize size) {
    switch (size) {
      case FORMAT_CHAR:
        return static_cast<signed char>(va_arg(m_args, int));
      case FORMAT_SHORT:
        return static_cast<short>(va_arg(m_args, int));
      case FORMAT_LONG:
        return va_arg(m_args, long);
      case FORMAT_LONG_LONG:
        return va_arg(m_args, long long);
      // NOLINTNEXTLINE(bugprone-branch-clone): the types differ on other platforms
      case FORMAT_INTMAX:
        return va_arg(m_args, intmax_t);
      case FORMAT_SIZE:
      case FORMAT_PTRDIFF:
        return va_arg(m_args, ptrdiff_t);
      default:
        return va_arg(m_args, int);
    }
  }

  uint64_t TakeUnsigned(FormatSize size) {
    switch (size) {
      case FORMAT_CHAR:
        return static_cast<unsigned char>(va_arg(m_args, unsigned));
      case FORMAT_SHORT:
        return static_cast<unsigned short>(va_arg(m_args, unsigned));
      case FORMAT_LONG:
        return va_arg(m_args, unsigned long);
      case FORMAT_LONG_LONG:
        return va_arg(m_args, unsigned long long);
      // NOLINTNEXTLINE(bugprone-branch-clone): the types differ on other platforms
      case FORMAT_INTMAX:
        return va_arg(m_args, uintmax_t);
      case FORMAT_SIZE:
      case FORMAT_PTRDIFF:
        return va_arg(m_args, size_t);
      default:
        return va_arg(m_args, unsigned);
    }
  }

  void StoreLength(FormatSize size) {
    void* const target = va_arg(m_args, void*);
    if (!target) return;
    const int64_t length = m_out.Length();
    switch (size) {
      case FORMAT_CHAR:
        *static_cast<signed char*>(target) = static_cast<signed char>(length);
        break;
      case FORMAT_SHORT:
        *static_cast<short*>(target) = static_cast<short>(length);
        break;
      case FORMAT_LONG:
        *static_cast<long*>(target) = static_cast<long>(length);
        break;
      case FORMAT_LONG_LONG:
      case FORMAT_INTMAX:
        *static_cast<int64_t*>(target) = length;
        break;
      case FORMAT_SIZE:
      case FORMAT_PTRDIFF:
        *static_cast<ptrdiff_t*>(target) = static_cast<ptrdiff_t>(length);
        break;
      default:
        *static_cast<int*>(target) = static_cast<int>(length);
    }
  }

  void WriteSigned(const FormatSpec& spec, int64_t value) {
    const uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    WriteUnsigned(spec, magnitude, SignOf(spec, value < 0));
  }

  void WriteUnsigned(const FormatSpec& spec, uint64_t value, std::string_view prefix) {
    char digits[24];
    const int base = spec.letter == 'o' ? 8 : (spec.letter | 0x20) == 'x' ? 16 : 10;
    const bool none = value == 0 && spec.precision == 0;
    char* const end = none ? digits : std::to_chars(digits, std::end(digits), value, base).ptr;
    NumberText text;
    text.head = {digits, static_cast<size_t>(end - digits)};
    text.prefix = prefix;
    text.leadingZeros = std::max(spec.precision - (end - digits), ptrdiff_t{0});
    if (spec.letter == 'X') MakeUpperCase(digits, end);
    if (spec.alternate && base == 16 && value) text.prefix = spec.letter == 'X' ? "0X" : "0x";
    if (spec.alternate && base == 8 && text.leadingZeros == 0 && (none || value)) text.leadingZeros = 1;
    WriteNumber(m_out, spec, text, spec.precision < 0);
  }

  void WritePointer(FormatSpec spec, const void* pointer) {
    if (!pointer) return WritePadded(spec, "(nil)");
    spec.letter = 'x';
    spec.alternate = false;
    WriteUnsigned(spec, reinterpret_cast<uintptr_t>(pointer), spec.plus ? "+0x" : spec.space ? " 0x" : "0x");
  }

  bool WriteCharacter(const FormatSpec& spec, int value) {
    char bytes[UTF8_LONGEST] = {static_cast<char>(value)};
    const size_t length = spec.IsWide() ? EncodeUtf8(static_cast<uint32_t>(value), bytes) : 1;
    WritePadded(spec, {bytes, length});
    return length > 0;
  }

  bool WriteString(const FormatSpec& spec) {
    static constexpr std::string_view NULL_MARKER = "(null)";
    const void* const text = va_arg(m_args, const void*);
    const size_t limit = spec.precision < 0 ? SIZE_MAX : static_cast<size_t>(spec.precision);
    if (!text) {
      WritePadded(spec, NULL_MARKER.size() <= limit ? NULL_MARKER : "");
      return true;
    }
    if (spec.IsWide() || spec.letter == 'S') return WriteWide(spec, static_cast<const wchar_t*>(text), limit);
    const char* const bytes = static_cast<const char*>(text);
    // With a precision the text need not be terminated.
    WritePadded(spec, {bytes, spec.precision < 0 ? std::strlen(bytes) : strnlen(bytes, limit)});
    return true;
  }

  // The precision counts bytes and cuts no character.
  bool WriteWide(const FormatSpec& spec, const wchar_t* text, size_t limit) {
    char bytes[UTF8_LONGEST];
    size_t total = 0;
    const wchar_t* end = text;
    while (total < limit && *end) {
      const wchar_t* next = end;
      const size_t length = EncodeUtf8(TakeCode(next), bytes);
      if (length == 0) return false;
      if (length > limit - total) break;
      total += length;
      end = next;
    }
    const int64_t blanks = std::max(spec.width - static_cast<int64_t>(total), int64_t{0});
    if (!spec.left) m_out.Fill(' ', blanks);
    while (text != end) m_out.Put({bytes, EncodeUtf8(TakeCode(text), bytes)});
    if (spec.left) m_out.Fill(' ', blanks);
    return true;
  }

  void WritePadded(const FormatSpec& spec, std::string_view text) {
    NumberText plain;
    plain.head = text;
    WriteNumber(m_out, spec, plain, false);
  }

  // As the GNU C library spells it.
  void WriteUnknown(const FormatSpec& spec) {
    char text[48] = "%";
    char* p = text + 1;
    if (spec.alternate) *p++ = '#';
    if (spec.plus || spec.space) *p++ = spec.plus ? '+' : ' ';
    if (spec.left) *p++ = '-';
    if (spec.zero && !spec.left) *p++ = '0';
    if (spec.width) p = std::to_chars(p, std::end(text), spec.width).ptr;
    if (spec.precision >= 0) {
      *p++ = '.';
      p = std::to_chars(p, std::end(text), spec.precision).ptr;
    }
    *p++ = spec.letter;
    m_out.Put({text, static_cast<size_t>(p - text)});
  }

  FormatOutput m_out;
  va_list m_args;
};

}  // namespace

int FormatText(char* dst, size_t size, const char* fmt, va_list args) {
  return Formatter(dst, size, args).Run(fmt);
}
