#include "raster/gif_lzw.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t MAX_CODES = 4096;
constexpr int MAX_WIDTH = 12;
// Strings are copied in whole pieces of this size, which may reach that far behind the pixels.
constexpr uint32_t PIECE = 16;

// Codes of growing width, the least significant bit first.
class CodeReader {
 public:
  CodeReader(const uint8_t* bytes, size_t size) : m_next(bytes), m_end(bytes + size) {}

  // False behind the last whole code.
  bool Take(int width, uint32_t& code) {
    if (m_count < width && !Refill(width)) return false;
    code = static_cast<uint32_t>(m_bits) & ((1u << width) - 1);
    m_bits >>= width;
    m_count -= width;
    return true;
  }

 private:
  bool Refill(int width) {
    if (m_end - m_next >= 8) {
      uint64_t word;
      std::memcpy(&word, m_next, sizeof word);
      m_bits |= word << m_count;
      const int bytes = (63 - m_count) / 8;
      m_next += bytes;
      m_count += 8 * bytes;
      // What the word had beyond whole bytes comes with the next one.
      m_bits &= (uint64_t{1} << m_count) - 1;
      return true;
    }
    for (; m_next < m_end && m_count <= 48; m_count += 8) m_bits |= uint64_t{*m_next++} << m_count;
    return m_count >= width;
  }

  const uint8_t* m_next;
  const uint8_t* m_end;
  uint64_t m_bits = 0;
  int m_count = 0;
};

// Where a code's string begins in the buffer. Length 0 marks the clear and the end code.
struct String {
  uint32_t start;
  uint32_t length;
};

class Decoder {
 public:
  Decoder(uint8_t* buffer, size_t head, size_t count, int minBits)
      : m_buffer(buffer),
        m_pos(static_cast<uint32_t>(head)),
        m_end(static_cast<uint32_t>(head + count)),
        m_minBits(minBits),
        m_clear(1u << minBits) {
    for (uint32_t i = 0; i < m_clear; ++i) {
      buffer[i] = static_cast<uint8_t>(i);
      m_strings[i] = {i, 1};
    }
    m_strings[m_clear] = m_strings[m_clear + 1] = {0, 0};
  }

  // True when the end code or the last pixel was reached.
  bool Run(CodeReader reader) {
    Reset();
    uint32_t code = 0;
    while (m_pos < m_end) {
      if (!reader.Take(m_width, code)) return false;
      if (code == m_clear)
        Reset();
      else if (code == m_clear + 1)
        break;
      else if (!Put(code))
        return false;
    }
    return true;
  }
  size_t End() const { return m_pos; }

 private:
  void Reset() {
    m_next = m_clear + 2;
    m_width = m_minBits + 1;
    m_limit = 2 * m_clear;
    m_last.length = 0;
  }

  // The next new string is the last one and the byte behind it, which is the first of the string now put.
  bool Put(uint32_t code) {
    if (m_last.length == 0) {
      if (code >= m_clear) return false;
      m_last = {m_pos, 1};
      m_buffer[m_pos++] = static_cast<uint8_t>(code);
      return true;
    }
    if (code >= m_next + (m_next < MAX_CODES)) return false;
    m_strings[m_next] = {m_last.start, m_last.length + 1};
    const String string = m_strings[code];
    Copy(string.start, string.length);
    // A string not yet complete repeats its first byte.
    if (code == m_next) m_buffer[m_pos + string.length - 1] = m_buffer[string.start];
    m_last = {m_pos, string.length};
    m_pos += std::min(string.length, m_end - m_pos);
    if (m_next < MAX_CODES && ++m_next == m_limit && m_width < MAX_WIDTH) {
      ++m_width;
      m_limit *= 2;
    }
    return true;
  }

  void Copy(uint32_t from, uint32_t length) {
    uint8_t* to = m_buffer + m_pos;
    const uint8_t* source = m_buffer + from;
    std::memmove(to, source, PIECE);
    for (uint32_t done = PIECE; done < length; done += PIECE) std::memmove(to + done, source + done, PIECE);
  }

  uint8_t* const m_buffer;
  uint32_t m_pos;
  const uint32_t m_end;
  const int m_minBits;
  const uint32_t m_clear;
  uint32_t m_next = 0;
  int m_width = 0;
  uint32_t m_limit = 0;
  String m_last = {0, 0};
  String m_strings[MAX_CODES + 1];
};

}  // namespace

k7raster::GifPixels::~GifPixels() { std::free(m_buffer); }

int k7raster::GifPixels::Decode(const uint8_t* codes, size_t size, int minBits, size_t count) {
  if (minBits < 1 || minBits > 8) return K7_ERR_INVALID_DATA;
  std::free(m_buffer);
  // A string of all codes may begin with the last pixel.
  m_buffer = static_cast<uint8_t*>(std::malloc(HEAD + count + MAX_CODES + PIECE));
  if (!m_buffer) return K7_ERR_MEMORY;
  Decoder decoder(m_buffer, HEAD, count, minBits);
  const bool isWhole = decoder.Run(CodeReader(codes, size));
  m_count = decoder.End() - HEAD;
  return isWhole ? 0 : K7_ERR_INVALID_DATA;
}
