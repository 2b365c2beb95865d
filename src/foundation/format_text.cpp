#include "foundation/format_text.h"

#include "foundation/format_field.h"
#include "foundation/format_float.h"

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
      FormatField field;
      fmt = ReadFormatField(fmt, field);
      if (!fmt || !TakeStars(field) || !Write(field)) return -1;
    }
    return m_out.Finish();
  }

 private:
  bool TakeStars(FormatField& field) {
    if (field.starWidth) {
      field.width = va_arg(m_args, int);
      if (field.width < 0) {
        if (field.width == INT32_MIN) return false;
        field.left = true;
        field.width = -field.width;
      }
    }
    if (field.starPrecision) field.precision = std::max(va_arg(m_args, int), -1);
    return true;
  }

  bool Write(const FormatField& field) {
    switch (field.letter) {
      case 'd':
      case 'i':
        WriteSigned(field, TakeSigned(field.size));
        return true;
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        WriteUnsigned(field, TakeUnsigned(field.size), {});
        return true;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        if (field.size == FORMAT_LONG_LONG)
          WriteFloat(m_out, field, va_arg(m_args, long double));
        else
          WriteFloat(m_out, field, va_arg(m_args, double));
        return true;
      case 'c':
      case 'C':
        return WriteCharacter(field, va_arg(m_args, int));
      case 's':
      case 'S':
        return WriteString(field);
      case 'p':
        WritePointer(field, va_arg(m_args, const void*));
        return true;
      case 'n':
        StoreLength(field.size);
        return true;
      case '%':
        m_out.Put("%");
        return true;
      default:
        WriteUnknown(field);
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

  void WriteSigned(const FormatField& field, int64_t value) {
    const uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    WriteUnsigned(field, magnitude, SignOf(field, value < 0));
  }

  void WriteUnsigned(const FormatField& field, uint64_t value, std::string_view prefix) {
    char digits[24];
    const int base = field.letter == 'o' ? 8 : (field.letter | 0x20) == 'x' ? 16 : 10;
    const bool none = value == 0 && field.precision == 0;
    char* const end = none ? digits : std::to_chars(digits, std::end(digits), value, base).ptr;
    NumberText text;
    text.head = {digits, static_cast<size_t>(end - digits)};
    text.prefix = prefix;
    text.leadingZeros = std::max(field.precision - (end - digits), ptrdiff_t{0});
    if (field.letter == 'X') MakeUpperCase(digits, end);
    if (field.alternate && base == 16 && value) text.prefix = field.letter == 'X' ? "0X" : "0x";
    if (field.alternate && base == 8 && text.leadingZeros == 0 && (none || value)) text.leadingZeros = 1;
    WriteNumber(m_out, field, text, field.precision < 0);
  }

  void WritePointer(FormatField field, const void* pointer) {
    if (!pointer) return WritePadded(field, "(nil)");
    field.letter = 'x';
    field.alternate = false;
    WriteUnsigned(field, reinterpret_cast<uintptr_t>(pointer),
                  field.plus    ? "+0x"
                  : field.space ? " 0x"
                                : "0x");
  }

  bool WriteCharacter(const FormatField& field, int value) {
    char bytes[UTF8_LONGEST] = {static_cast<char>(value)};
    const size_t length = field.IsWide() ? EncodeUtf8(static_cast<uint32_t>(value), bytes) : 1;
    WritePadded(field, {bytes, length});
    return length > 0;
  }

  bool WriteString(const FormatField& field) {
    static constexpr std::string_view NULL_MARKER = "(null)";
    const void* const text = va_arg(m_args, const void*);
    const size_t limit = field.precision < 0 ? SIZE_MAX : static_cast<size_t>(field.precision);
    if (!text) {
      WritePadded(field, NULL_MARKER.size() <= limit ? NULL_MARKER : "");
      return true;
    }
    if (field.IsWide() || field.letter == 'S')
      return WriteWide(field, static_cast<const wchar_t*>(text), limit);
    const char* const bytes = static_cast<const char*>(text);
    // With a precision the text need not be terminated.
    WritePadded(field, {bytes, field.precision < 0 ? std::strlen(bytes) : strnlen(bytes, limit)});
    return true;
  }

  // The precision counts bytes and cuts no character.
  bool WriteWide(const FormatField& field, const wchar_t* text, size_t limit) {
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
    const int64_t blanks = std::max(field.width - static_cast<int64_t>(total), int64_t{0});
    if (!field.left) m_out.Fill(' ', blanks);
    while (text != end) m_out.Put({bytes, EncodeUtf8(TakeCode(text), bytes)});
    if (field.left) m_out.Fill(' ', blanks);
    return true;
  }

  void WritePadded(const FormatField& field, std::string_view text) {
    NumberText plain;
    plain.head = text;
    WriteNumber(m_out, field, plain, false);
  }

  // As the GNU C library spells it.
  void WriteUnknown(const FormatField& field) {
    char text[48] = "%";
    char* p = text + 1;
    if (field.alternate) *p++ = '#';
    if (field.plus || field.space) *p++ = field.plus ? '+' : ' ';
    if (field.left) *p++ = '-';
    if (field.zero && !field.left) *p++ = '0';
    if (field.width) p = std::to_chars(p, std::end(text), field.width).ptr;
    if (field.precision >= 0) {
      *p++ = '.';
      p = std::to_chars(p, std::end(text), field.precision).ptr;
    }
    *p++ = field.letter;
    m_out.Put({text, static_cast<size_t>(p - text)});
  }

  FormatOutput m_out;
  va_list m_args;
};

}  // namespace

int FormatText(char* dst, size_t size, const char* fmt, va_list args) {
  return Formatter(dst, size, args).Run(fmt);
}
