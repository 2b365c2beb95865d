#include "io/xml_text.h"

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

constexpr size_t FIRST_CAPACITY = 256;
constexpr size_t MAX_CAPACITY = INT32_MAX;

// The entity that stands for `c`; empty for a character that stands for itself.
constexpr std::string_view EntityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '>':
      return "&gt;";
    case '<':
      return "&lt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return {};
  }
}

// The reserved bytes and the terminator.
constexpr std::array<bool, 256> STOPS = [] {
  std::array<bool, 256> stops{};
  for (const char c : {'\0', '&', '>', '<', '"', '\''}) stops[static_cast<unsigned char>(c)] = true;
  return stops;
}();

}  // namespace

K7XmlText::~K7XmlText() { std::free(m_bytes); }

const char* K7XmlText::Text() const {
  if (!m_bytes) return "";
  m_bytes[m_size] = 0;
  return m_bytes;
}

int K7XmlText::CopyTo(K7String& out, bool failed) const {
  if (!failed && !m_failed && out.Copy(Text(), Size()) >= 0) return 0;
  out.Clear();
  return K7_ERR_MEMORY;
}

size_t K7XmlText::PlainLength(const char* text) {
  const char* p = text;
  while (!STOPS[static_cast<unsigned char>(*p)]) ++p;
  return static_cast<size_t>(p - text);
}

bool K7XmlText::Grow(size_t n) {
  if (m_failed || n >= MAX_CAPACITY - m_size) {
    m_failed = true;
    return false;
  }
  const size_t capacity = std::clamp(std::max(2 * m_capacity, m_size + n + 1), FIRST_CAPACITY, MAX_CAPACITY);
  char* const bytes = static_cast<char*>(std::realloc(m_bytes, capacity));
  if (!bytes) {
    m_failed = true;
    return false;
  }
  m_bytes = bytes;
  m_capacity = capacity;
  return true;
}

void K7XmlText::AppendEscaped(const char* text) {
  while (true) {
    char* p = m_bytes + m_size;
    const char* const end = p + Room();
    while (p != end && !STOPS[static_cast<unsigned char>(*text)]) *p++ = *text++;
    m_size = static_cast<size_t>(p - m_bytes);
    if (!*text) return;
    if (p == end) {
      if (!Reserve(1)) return;
      continue;
    }
    const std::string_view entity = EntityOf(*text++);
    Append(entity.data(), entity.size());
  }
}

void K7XmlText::AppendResolved(const char* text, size_t n) {
  std::string_view rest(text, n);
  for (size_t at; (at = rest.find('&')) != rest.npos;) {
    Append(rest.data(), at);
    rest.remove_prefix(at + 1);
    // "&amp;" is resolved first, and the "&" that it gives then begins the next entity: "&amp;lt;" is "<".
    if (rest.starts_with("amp;")) rest.remove_prefix(4);
    char c = '&';
    for (const char reserved : {'>', '<', '"', '\''}) {
      const std::string_view name = EntityOf(reserved).substr(1);
      if (!rest.starts_with(name)) continue;
      c = reserved;
      rest.remove_prefix(name.size());
      break;
    }
    AppendRun(c, 1);
  }
  Append(rest.data(), rest.size());
}
