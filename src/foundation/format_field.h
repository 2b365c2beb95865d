// What the parts of the formatter share: one conversion of a format, and the bounded text that it goes to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What the length letters of a conversion say of its argument.
enum FormatSize {
  FORMAT_INT,
  FORMAT_CHAR,
  FORMAT_SHORT,
  FORMAT_LONG,
  FORMAT_LONG_LONG,  ///< of a floating-point conversion: long double
  FORMAT_INTMAX,
  FORMAT_SIZE,
  FORMAT_PTRDIFF
};

/// One conversion of a format.
struct FormatField {
  bool left = false;
  bool plus = false;
  bool space = false;
  bool alternate = false;
  bool zero = false;
  bool starWidth = false;
  bool starPrecision = false;
  FormatSize size = FORMAT_INT;
  char letter = 0;
  int width = 0;
  int precision = -1;  ///< negative: none

  bool IsWide() const { return size == FORMAT_LONG; }
};

/// Reads what stands behind a "%". Answers the position behind it; null when the format ends inside, or a
/// number does not fit an int.
const char* ReadFormatField(const char* p, FormatField& field);

/// A buffer that keeps what fits and counts what does not.
class FormatOutput {
 public:
  FormatOutput(char* dst, size_t size) : m_dst(dst), m_size(size) {}
  void Put(std::string_view text);
  void Fill(char c, int64_t count);
  int64_t Length() const { return m_length; }
  /// Terminates the text. Answers its whole length, -1 when that is no int.
  int Finish();

 private:
  // How many of `count` characters still fit before the terminator.
  size_t Room(size_t count) const;

  char* m_dst;
  size_t m_size;
  int64_t m_length = 0;
};

/// A number's text in pieces: those of zeros may be longer than any buffer.
struct NumberText {
  std::string_view prefix;  ///< sign and base
  int64_t leadingZeros = 0;
  std::string_view head;
  bool point = false;  ///< stands behind `head`
  int64_t innerZeros = 0;
  std::string_view tail;
};

/// Writes the pieces into their field, which takes zeros instead of blanks when its flag and `mayPadZeros`
/// say so.
void WriteNumber(FormatOutput& out, const FormatField& field, NumberText text, bool mayPadZeros);

/// "-", or what the flags put in its place.
std::string_view SignOf(const FormatField& field, bool negative);
void MakeUpperCase(char* p, const char* end);
