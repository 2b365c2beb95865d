// The text buffer under the XML parser and writer.
#pragma once

#include <cstddef>
#include <cstring>

class K7String;

/// The whitespace of XML texts: blank, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool IsXmlSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Text that grows by doubling, so that appending takes linear time in all. What has no memory, or
/// goes beyond the length that an int counts, is dropped and `Failed` says so: callers append freely and ask
/// at the end.
class K7XmlText {
 public:
  K7XmlText() = default;
  K7XmlText(const K7XmlText&) = delete;
  K7XmlText& operator=(const K7XmlText&) = delete;
  ~K7XmlText();

  void Append(const char* text, size_t n) {
    if (!Reserve(n)) return;
    std::memcpy(m_bytes + m_size, text, n);
    m_size += n;
  }
  /// Byte by byte: names and values are short, and so their length is not counted first.
  void Append(const char* text) {
    char* p = m_bytes + m_size;
    const char* const end = p + Room();
    while (p != end && *text) *p++ = *text++;
    m_size = static_cast<size_t>(p - m_bytes);
    if (*text) Append(text, std::strlen(text));
  }
  void AppendRun(char c, size_t n) {
    if (!Reserve(n)) return;
    std::memset(m_bytes + m_size, c, n);
    m_size += n;
  }
  /// Characters that XML reserves go in as entities.
  void AppendEscaped(const char* text);
  /// Entities go in as the characters that they stand for.
  void AppendResolved(const char* text, size_t n);
  /// How many bytes `text` begins with that are neither reserved nor its terminator.
  static size_t PlainLength(const char* text);

  void Clear() { m_size = 0; }
  /// Drops what is behind the first `size` bytes.
  void Cut(int size) { m_size = static_cast<size_t>(size); }
  bool Failed() const { return m_failed; }
  /// Makes `out` this text: 0; K7_ERR_MEMORY, with `out` empty, when this or what it was made of (`failed`)
  /// lacked memory.
  int CopyTo(K7String& out, bool failed = false) const;
  /// Terminated, never null.
  const char* Text() const;
  int Size() const { return static_cast<int>(m_size); }

 private:
  // How many bytes fit without growing.
  size_t Room() const { return m_capacity ? m_capacity - 1 - m_size : 0; }
  // Room for `n` more bytes, or false.
  bool Reserve(size_t n) { return n < m_capacity - m_size || Grow(n); }
  bool Grow(size_t n);

  char* m_bytes = nullptr;
  size_t m_size = 0;
  size_t m_capacity = 0;  // the terminator's place included
  bool m_failed = false;
};

/// Buffers for the attributes of one tag after the other.
struct K7XmlAttribScratch {
  K7XmlText written;  // as the attribute text has them
  K7XmlText split;    // names and values, resolved, each with its terminator
  K7XmlText pairs;    // where these begin: the bytes of K7XmlAttribs::Pair
};
