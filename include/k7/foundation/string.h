// K7String: the library's text. K7FmtString: a K7String whose constructor formats.
#pragma once

#include <k7/export.h>

#include <cstdarg>

class K7File;

/// A K7String is 8-bit NUL-terminated text on the heap. A default-constructed string is null and behaves as
/// the empty text everywhere. The buffer grows to n + 1 + max(n / 10, 7) bytes for n characters and never
/// shrinks. The length is not stored: every append counts it, so long texts are best built of long pieces.
/// Comparison, classification and case mapping are those of plain bytes in the "C" locale, whatever locale
/// the host has set. A value: copies are deep; const operations need no lock.
///
/// Operations that grow answer `K7_ERR_MEMORY` when memory runs out and then leave the contents as they
/// were.
class K7_API K7String {
 public:
  K7String() noexcept = default;
  /// Copies `text`; null gives a null string.
  K7String(const char* text);
  /// Copies deeply, with the same capacity.
  K7String(const K7String& other);
  K7String(K7String&& other) noexcept : m_text(other.m_text) { other.m_text = nullptr; }
  ~K7String();

  K7String& operator=(const K7String& other);
  K7String& operator=(K7String&& other) noexcept;
  K7String& operator=(const char* text);
  K7String& operator=(char c);

  /// \name Assigning
  /// @{
  /// Assigns. Answers 0, without change, when `text` is this string's own buffer, 1 after a copy (null
  /// copies as the empty text), or K7_ERR_MEMORY.
  int Create(const char* text);
  /// Copies at most `n` bytes of `src` (n < 0: all of it). Answers the bytes copied, 0 for null, or
  /// K7_ERR_MEMORY.
  int Copy(const char* src, int n = -1);
  /// Makes room for `n` characters and the terminator. Answers 0 or K7_ERR_MEMORY.
  int Alloc(int n);
  /// Empties the text and zero-fills the buffer, which is kept.
  void Clear();
  /// Stores `c` at `i`, which must lie within the buffer: not checked. Does nothing on a null string.
  void SetChar(int i, char c);
  /// @}

  /// \name Reading
  /// @{
  /// Answers the byte at `i`; 0 outside the text.
  char operator[](int i) const;
  int Len() const;
  /// Answers the bytes in the buffer, terminator included; 0 for a null string.
  int AllocLen() const;
  bool IsEmpty() const { return !m_text || !*m_text; }
  /// Is never null.
  operator const char*() const { return m_text ? m_text : ""; }
  /// @}

  /// \name Comparing
  /// @{
  bool operator==(const char* s) const { return Comp(s) == 0; }
  bool operator!=(const char* s) const { return Comp(s) != 0; }
  bool operator<(const char* s) const { return Comp(s) < 0; }
  bool operator>(const char* s) const { return Comp(s) > 0; }
  bool operator==(const K7String& s) const { return Comp(s) == 0; }
  bool operator!=(const K7String& s) const { return Comp(s) != 0; }
  bool operator<(const K7String& s) const { return Comp(s) < 0; }
  bool operator>(const K7String& s) const { return Comp(s) > 0; }

  /// Compares. With n >= 0 it takes the first n bytes, in the manner of `strncmp`. With n < 0, or a null
  /// text on either side, it takes the whole texts and answers exactly -1, 0 or 1.
  int Comp(const char* s, int n = -1) const;
  /// Compares without regard to case, n < 0 meaning without limit. Only the sign counts.
  int IComp(const char* s, int n = -1) const;
  /// Answers 0 when either text is null.
  static int IComp(const char* a, const char* b, int n = -1);
  /// Answers the position of `s` in the null-terminated `list`, whole and without regard to case; -1 if
  /// absent. A null `s` is the first entry: callers pass null to mean it.
  static int Index(const char* s, const char* const* list);
  /// @}

  /// \name Searching
  /// Each answers a position from the start of the text, -1 when there is none. `start` must lie within the
  /// text.
  /// @{
  int Find(char c, int start = 0) const;
  int Find(const char* s, int start = 0) const;
  /// Finds the first byte that occurs in `set`.
  int FindAny(const char* set, int start = 0) const;
  /// Finds the last occurrence.
  int ReverseFind(char c) const;
  /// @}

  /// \name Editing
  /// @{
  void MakeUpper();
  void MakeLower();
  void MakeReverse();
  /// Writes title case. Words are the runs between the bytes " -/(,0123456789\n". A word that begins an
  /// entry of the null-terminated `exceptions` (null: none), without regard to case, is spelled as it
  /// stands there.
  void MakeInitial(const char* const* exceptions = nullptr);
  void TrimLeft(char c = ' ');
  void TrimRight(char c = ' ');
  void Trim(char c = ' ');
  /// Removes bytes that occur in `set` from both ends.
  void Trim(const char* set);
  /// Answers the number of bytes replaced.
  int Replace(char from, char to);
  /// Replaces from left to right and never rescans what it inserted; a null `to` deletes. Answers the
  /// number of replacements, or K7_ERR_MEMORY with nothing replaced.
  int Replace(const char* from, const char* to);
  /// Answers the number of bytes removed.
  int Remove(char c);
  /// Insert before `pos`, which may be the length. Answer the new length, the unchanged length for a
  /// position outside the text or a null text, or K7_ERR_MEMORY.
  int Insert(int pos, char c);
  int Insert(int pos, const char* s);
  /// Removes `count` bytes at `pos`, clamped to the end. Answers the resulting length.
  int Delete(int pos, int count = 1);
  /// Append. Answer 0 or K7_ERR_MEMORY.
  int operator+=(const char* s);
  int operator+=(char c);
  /// @}

  /// \name Parts
  /// Parts are new strings; `err`, when given, receives 0 or K7_ERR_MEMORY.
  /// @{
  K7String Left(int n, int* err = nullptr) const;
  K7String Right(int n, int* err = nullptr) const;
  /// A negative `count` takes everything from `start` on.
  K7String Mid(int start, int count = -1, int* err = nullptr) const;
  /// @}

  /// Join. The result is null without memory.
  K7String operator+(const char* s) const;
  K7String operator+(char c) const;
  /// Make a plain copy, which the caller frees with `free`; null for a null source (*err 0) or without
  /// memory.
  char* Dup(int* err = nullptr) const;
  static char* Dup(const char* s, int* err = nullptr);

  /// Splits: `out` receives the bytes from `start` up to the first one in `delims` or the end. Answers the
  /// position behind that delimiter, or of the terminator; 0 when nothing is left, with `out` untouched;
  /// K7_ERR_MEMORY. Adjacent delimiters give empty tokens, a trailing one gives none:
  ///
  ///     for (int pos = 0; (pos = text.Token(",", pos, token)) > 0;) ...
  int Token(const char* delims, int start, K7String& out) const;

  /// \name Bytes
  /// @{
  static bool IsLower(char c);
  static bool IsAlpha(char c);
  static bool IsDigit(char c);
  static bool IsSpace(char c);
  static bool IsAlnum(char c);
  static bool IsPrint(char c);
  /// @}

  /// Replace the text by the printf-style expansion: all conversions, flags and lengths of C99, as the "C"
  /// locale has them, the same bytes on every platform. Answer the number of characters written,
  /// K7_ERR_MEMORY, or -1 for a format that ends inside a conversion, a text beyond INT_MAX characters and
  /// wide text that is no Unicode. Beyond printf, "%C" is one byte from an int argument, the first
  /// backslash-x escape of the format (backslash, "x", two hexadecimal digits) becomes its byte, a "%" with
  /// nothing behind it is a percent sign, and a conversion of an unknown letter is written as it stands.
  /// "%ls" and "%lc" write UTF-8. Arguments may point into this string.
  int Format(const char* fmt, ...);
  int FormatV(const char* fmt, va_list args);

  /// \name Files
  /// @{
  /// Reads what `Write` wrote. Answers 0, the file's negative error, K7_ERR_MEMORY, or K7_ERR_FILE_IO for a
  /// short read.
  int Read(K7File* file);
  /// Writes a 16-bit little-endian count of the bytes that follow, then the text with its terminator. The
  /// count is the low 16 bits of length + 1; an empty text is the count 0 alone. Answers 0, the file's
  /// negative error, or K7_ERR_FILE_IO for a short write.
  int Write(K7File* file) const;
  /// @}

 private:
  // First character of a block that starts with the 32-bit capacity; null for a null string.
  char* m_text = nullptr;
};

static_assert(sizeof(K7String) == sizeof(char*));

/// A K7String that `FormatV` makes; a null format gives a null string.
class K7_API K7FmtString : public K7String {
 public:
  explicit K7FmtString(const char* fmt, ...);
};
