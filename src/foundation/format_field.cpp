#include "foundation/format_field.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int64_t TOO_LONG = int64_t{INT32_MAX} + 1;

bool ReadCount(const char*& p, int& count) {
  int64_t value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) value = std::min(value * 10 + (*p - '0'), TOO_LONG);
  count = static_cast<int>(std::min<int64_t>(value, INT32_MAX));
  return value < TOO_LONG;
}

const char* ReadFlags(const char* p, FormatField& field) {
  for (;; ++p) switch (*p) {
      case '-':
        field.left = true;
        break;
      case '+':
        field.plus = true;
        break;
      case ' ':
        field.space = true;
        break;
      case '#':
        field.alternate = true;
        break;
      case '0':
        field.zero = true;
        break;
      case '\'':  // groups of digits, which the "C" locale has none of
        break;
      default:
        return p;
    }
}

// The letters of C99, and "q" and "Z" as others have spelled "ll" and "z".
const char* ReadSize(const char* p, FormatField& field) {
  switch (*p) {
    case 'h':
      field.size = p[1] == 'h' ? FORMAT_CHAR : FORMAT_SHORT;
      return p + (p[1] == 'h' ? 2 : 1);
    case 'l':
      field.size = p[1] == 'l' ? FORMAT_LONG_LONG : FORMAT_LONG;
      return p + (p[1] == 'l' ? 2 : 1);
    case 'L':
    case 'q':
      field.size = FORMAT_LONG_LONG;
      return p + 1;
    case 'j':
      field.size = FORMAT_INTMAX;
      return p + 1;
    case 'z':
    case 'Z':
      field.size = FORMAT_SIZE;
      return p + 1;
    case 't':
      field.size = FORMAT_PTRDIFF;
      return p + 1;
    default:
      return p;
  }
}

}  // namespace

const char* ReadFormatField(const char* p, FormatField& field) {
  p = ReadFlags(p, field);
  if (*p == '*') {
    field.starWidth = true;
    ++p;
  } else if (!ReadCount(p, field.width)) {
    return nullptr;
  }
  if (*p == '.') {
    ++p;
    if (*p == '*') {
      field.starPrecision = true;
      ++p;
    } else if (!ReadCount(p, field.precision)) {
      return nullptr;
    }
  }
  p = ReadSize(p, field);
  field.letter = *p;
  return *p ? p + 1 : nullptr;
}

size_t FormatOutput::Room(size_t count) const {
  const uint64_t last = m_size > 0 ? m_size - 1 : 0;
  const uint64_t used = static_cast<uint64_t>(m_length);
  return static_cast<size_t>(std::min<uint64_t>(count, last > used ? last - used : 0));
}

void FormatOutput::Put(std::string_view text) {
  if (const size_t n = Room(text.size())) std::memcpy(m_dst + m_length, text.data(), n);
  m_length += static_cast<int64_t>(text.size());
}

void FormatOutput::Fill(char c, int64_t count) {
  if (const size_t n = Room(static_cast<size_t>(count))) std::memset(m_dst + m_length, c, n);
  m_length += count;
}

int FormatOutput::Finish() {
  if (m_size > 0) m_dst[std::min<uint64_t>(static_cast<uint64_t>(m_length), m_size - 1)] = 0;
  return m_length <= INT32_MAX ? static_cast<int>(m_length) : -1;
}

void WriteNumber(FormatOutput& out, const FormatField& field, NumberText text, bool mayPadZeros) {
  const int64_t length = static_cast<int64_t>(text.prefix.size() + text.head.size() + text.tail.size()) +
                         text.leadingZeros + text.point + text.innerZeros;
  int64_t blanks = std::max(field.width - length, int64_t{0});
  if (mayPadZeros && field.zero && !field.left) {
    text.leadingZeros += blanks;
    blanks = 0;
  }
  if (!field.left) out.Fill(' ', blanks);
  out.Put(text.prefix);
  out.Fill('0', text.leadingZeros);
  out.Put(text.head);
  if (text.point) out.Put(".");
  out.Fill('0', text.innerZeros);
  out.Put(text.tail);
  if (field.left) out.Fill(' ', blanks);
}

std::string_view SignOf(const FormatField& field, bool negative) {
  return negative ? "-" : field.plus ? "+" : field.space ? " " : "";
}

void MakeUpperCase(char* p, const char* end) {
  for (; p != end; ++p)
    if (*p >= 'a' && *p <= 'z') *p = static_cast<char>(*p - 'a' + 'A');
}
