#include <k7/foundation/string.h>

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// "C" locale rules, so that a host's setlocale changes neither names nor identifiers.
constexpr bool Upper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool Lower(char c) { return c >= 'a' && c <= 'z'; }
constexpr char ToUpper(char c) { return Lower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char ToLower(char c) { return Upper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

// Longer texts count as this long: no buffer for them can be had, so that every copy of one fails.
constexpr int MAX_LENGTH = INT32_MAX - 1;

int Length(const char* s) { return s ? static_cast<int>(std::min<size_t>(std::strlen(s), MAX_LENGTH)) : 0; }

int Sign(int n) { return (n > 0) - (n < 0); }

// strncmp of the upper-cased texts; n < 0 compares without limit.
int CompareUpper(const char* a, const char* b, int n) {
  for (; n != 0; ++a, ++b, n -= n > 0) {
    const int difference = static_cast<unsigned char>(ToUpper(*a)) - static_cast<unsigned char>(ToUpper(*b));
    if (difference != 0 || !*a) return difference;
  }
  return 0;
}

// Capacity word and characters are one block; the string points at the characters.
constexpr size_t CAPACITY_WORD = sizeof(uint32_t);

uint32_t Capacity(const char* text) {
  uint32_t capacity;
  std::memcpy(&capacity, text - CAPACITY_WORD, sizeof capacity);
  return capacity;
}

// Growth rule: the capacity of a buffer that has become too small for `n` characters.
int64_t GrownCapacity(int64_t n) { return n + 1 + std::max<int64_t>(n / 10, 7); }

char* NewText(int64_t capacity) {
  if (capacity > INT32_MAX) return nullptr;
  char* block = static_cast<char*>(std::calloc(CAPACITY_WORD + static_cast<size_t>(capacity), 1));
  if (!block) return nullptr;
  const uint32_t word = static_cast<uint32_t>(capacity);
  std::memcpy(block, &word, sizeof word);
  return block + CAPACITY_WORD;
}

// True when `p` points into the buffer, which an edit is about to change.
bool Holds(const char* text, const char* p) { return text && p >= text && p < text + Capacity(text); }

void FreeText(char* text) {
  if (text) std::free(text - CAPACITY_WORD);
}

void Report(int* err, int code) {
  if (err) *err = code;
}

}  // namespace

K7String::K7String(const char* text) {
  if (text) Create(text);
}

K7String::K7String(const K7String& other) {
  if (!other.m_text) return;
  const uint32_t capacity = Capacity(other.m_text);
  m_text = NewText(capacity);
  if (m_text) std::memcpy(m_text, other.m_text, capacity);
}

K7String::~K7String() {
  FreeText(m_text);
  m_text = nullptr;
}

K7String& K7String::operator=(const K7String& other) {
  if (this != &other) Create(other);
  return *this;
}

K7String& K7String::operator=(K7String&& other) noexcept {
  // The larger buffer stays: a buffer never shrinks.
  if (AllocLen() > other.AllocLen()) return *this = static_cast<const K7String&>(other);
  std::swap(m_text, other.m_text);
  return *this;
}

K7String& K7String::operator=(const char* text) {
  Create(text);
  return *this;
}

K7String& K7String::operator=(char c) {
  const char text[2] = {c, 0};
  Create(text);
  return *this;
}

int K7String::Create(const char* text) {
  if (text == m_text) return 0;
  const int length = Copy(text ? text : "");
  return length < 0 ? length : 1;
}

int K7String::Copy(const char* src, int n) {
  if (!src) return 0;
  const int length =
      n < 0 ? Length(src) : static_cast<int>(strnlen(src, static_cast<size_t>(std::min(n, MAX_LENGTH))));
  // What lies within this string's own buffer fits it: growing never frees the source.
  if (const int err = Alloc(length)) return err;
  std::memmove(m_text, src, static_cast<size_t>(length));
  m_text[length] = 0;
  return length;
}

int K7String::Alloc(int n) {
  if (n < 0 || static_cast<int64_t>(n) + 1 <= AllocLen()) return 0;
  char* text = NewText(GrownCapacity(n));
  if (!text) return K7_ERR_MEMORY;
  if (m_text) std::memcpy(text, m_text, Capacity(m_text));
  FreeText(m_text);
  m_text = text;
  return 0;
}

void K7String::Clear() {
  if (m_text) std::memset(m_text, 0, Capacity(m_text));
}

void K7String::SetChar(int i, char c) {
  if (m_text) m_text[i] = c;
}

char K7String::operator[](int i) const {
  if (i < 0 || i >= AllocLen()) return 0;
  return std::memchr(m_text, 0, static_cast<size_t>(i)) ? '\0' : m_text[i];
}

int K7String::Len() const { return Length(m_text); }

int K7String::AllocLen() const { return m_text ? static_cast<int>(Capacity(m_text)) : 0; }

int K7String::Comp(const char* s, int n) const {
  const char* a = *this;
  const char* b = s ? s : "";
  // A null text on either side gives -1 or 1 whatever `n` is.
  return n < 0 || !m_text || !s ? Sign(std::strcmp(a, b)) : std::strncmp(a, b, static_cast<size_t>(n));
}

int K7String::IComp(const char* s, int n) const { return CompareUpper(*this, s ? s : "", n); }

int K7String::IComp(const char* a, const char* b, int n) { return a && b ? CompareUpper(a, b, n) : 0; }

int K7String::Index(const char* s, const char* const* list) {
  if (!list) return -1;
  // IComp calls a null text equal to any, which makes it the first entry.
  for (int i = 0; list[i]; ++i)
    if (IComp(s, list[i]) == 0) return i;
  return -1;
}

int K7String::Find(char c, int start) const {
  if (!m_text) return -1;
  const char* hit = std::strchr(m_text + start, c);
  return hit ? static_cast<int>(hit - m_text) : -1;
}

int K7String::Find(const char* s, int start) const {
  if (!m_text || !s) return -1;
  const char* hit = std::strstr(m_text + start, s);
  return hit ? static_cast<int>(hit - m_text) : -1;
}

int K7String::FindAny(const char* set, int start) const {
  if (!m_text || !set) return -1;
  const char* hit = std::strpbrk(m_text + start, set);
  return hit ? static_cast<int>(hit - m_text) : -1;
}

int K7String::ReverseFind(char c) const {
  if (!m_text) return -1;
  const char* hit = std::strrchr(m_text, c);
  return hit ? static_cast<int>(hit - m_text) : -1;
}

void K7String::MakeUpper() {
  for (char* p = m_text; p && *p; ++p) *p = ToUpper(*p);
}

void K7String::MakeLower() {
  for (char* p = m_text; p && *p; ++p) *p = ToLower(*p);
}

void K7String::MakeReverse() {
  if (m_text) std::reverse(m_text, m_text + Len());
}

void K7String::MakeInitial(const char* const* exceptions) {
  static const char SEPARATORS[] = " -/(,0123456789\n";
  for (char* word = m_text; word && *word;) {
    word += std::strspn(word, SEPARATORS);
    const int length = static_cast<int>(std::strcspn(word, SEPARATORS));
    const char* const* exception = exceptions;
    while (exception && *exception && (length == 0 || CompareUpper(*exception, word, length) != 0))
      ++exception;
    if (exception && *exception) {
      std::memcpy(word, *exception, static_cast<size_t>(length));
    } else {
      for (int i = 0; i < length; ++i) word[i] = i == 0 ? ToUpper(word[i]) : ToLower(word[i]);
    }
    word += length;
  }
}

void K7String::TrimLeft(char c) {
  int n = 0;
  while (m_text && m_text[n] && m_text[n] == c) ++n;
  Delete(0, n);
}

void K7String::TrimRight(char c) {
  for (int n = Len(); n > 0 && m_text[n - 1] == c; --n) m_text[n - 1] = 0;
}

void K7String::Trim(char c) {
  TrimLeft(c);
  TrimRight(c);
}

void K7String::Trim(const char* set) {
  if (!m_text || !set) return;
  // Both ends are found before either is cut: the set may be part of this text.
  const int start = static_cast<int>(std::strspn(m_text, set));
  int end = Len();
  while (end > start && std::strchr(set, m_text[end - 1])) --end;
  m_text[end] = 0;
  Delete(0, start);
}

int K7String::Replace(char from, char to) {
  int count = 0;
  // A NUL stored by a replacement must not end the walk: the length is taken first.
  for (int i = 0, length = Len(); i < length; ++i) {
    if (m_text[i] != from) continue;
    m_text[i] = to;
    ++count;
  }
  return count;
}

int K7String::Replace(const char* from, const char* to) {
  if (IsEmpty() || !from || !*from) return 0;
  if (!to) to = "";
  if (std::strcmp(from, to) == 0) return 0;
  const int64_t fromLength = Length(from);
  const int64_t toLength = Length(to);

  // The buffer grows as if each replacement grew it in turn.
  int count = 0;
  int64_t length = Len();
  int64_t capacity = AllocLen();
  for (const char* p = m_text; (p = std::strstr(p, from)); p += fromLength, ++count) {
    length += toLength - fromLength;
    if (length + 1 > capacity) capacity = GrownCapacity(length);
  }
  if (count == 0) return 0;

  // What does not get longer is replaced in place; the rest is built beside the old text.
  const bool inPlace = toLength <= fromLength && !Holds(m_text, from) && !Holds(m_text, to);
  K7String result;
  if (!inPlace) result.m_text = NewText(capacity);
  if (!inPlace && !result.m_text) return K7_ERR_MEMORY;
  const char* p = m_text;
  const char* const end = p + Len();
  char* out = inPlace ? m_text : result.m_text;
  while (const char* hit = std::strstr(p, from)) {
    out = std::copy(p, hit, out);
    out = std::copy(to, to + toLength, out);
    p = hit + fromLength;
  }
  *std::copy(p, end, out) = 0;
  if (!inPlace) std::swap(m_text, result.m_text);
  return count;
}

int K7String::Remove(char c) {
  if (!m_text) return 0;
  const int length = Len();
  char* const end = std::remove(m_text, m_text + length, c);
  *end = 0;
  return length - static_cast<int>(end - m_text);
}

int K7String::Insert(int pos, char c) {
  const char text[2] = {c, 0};
  return Insert(pos, text);
}

int K7String::Insert(int pos, const char* s) {
  const int length = Len();
  if (pos < 0 || pos > length || !s) return length;
  const int added = Length(s);
  if (static_cast<int64_t>(length) + added > MAX_LENGTH) return K7_ERR_MEMORY;
  // The inserted text may be part of this one.
  K7String own;
  if (Holds(m_text, s)) {
    if (const int err = own.Copy(s); err < 0) return err;
    s = own;
  }
  if (const int err = Alloc(length + added)) return err;
  std::memmove(m_text + pos + added, m_text + pos, static_cast<size_t>(length - pos) + 1);
  std::memcpy(m_text + pos, s, static_cast<size_t>(added));
  return length + added;
}

int K7String::Delete(int pos, int count) {
  const int length = Len();
  if (pos < 0 || pos >= length || count <= 0) return length;
  count = std::min(count, length - pos);
  std::memmove(m_text + pos, m_text + pos + count, static_cast<size_t>(length - pos - count) + 1);
  return length - count;
}

int K7String::operator+=(const char* s) { return std::min(Insert(Len(), s), 0); }

int K7String::operator+=(char c) { return std::min(Insert(Len(), c), 0); }

K7String K7String::Left(int n, int* err) const { return Mid(0, std::max(n, 0), err); }

K7String K7String::Right(int n, int* err) const {
  const int length = Len();
  return Mid(n < length ? length - std::max(n, 0) : 0, -1, err);
}

K7String K7String::Mid(int start, int count, int* err) const {
  Report(err, 0);
  K7String part;
  const int available = start < 0 ? 0 : Len() - start;
  if (count < 0 || count > available) count = available;
  if (count <= 0) return part;
  const int result = part.Copy(m_text + start, count);
  Report(err, std::min(result, 0));
  return part;
}

K7String K7String::operator+(const char* s) const {
  K7String sum;
  const int length = Len();
  const int added = Length(s);
  if (added > MAX_LENGTH - length || sum.Alloc(length + added)) return sum;
  std::memcpy(sum.m_text, static_cast<const char*>(*this), static_cast<size_t>(length));
  std::memcpy(sum.m_text + length, s ? s : "", static_cast<size_t>(added));
  return sum;
}

K7String K7String::operator+(char c) const {
  const char text[2] = {c, 0};
  return *this + text;
}

char* K7String::Dup(int* err) const { return Dup(m_text, err); }

char* K7String::Dup(const char* s, int* err) {
  Report(err, 0);
  if (!s) return nullptr;
  const size_t size = std::strlen(s) + 1;
  char* copy = static_cast<char*>(std::malloc(size));
  if (copy) {
    std::memcpy(copy, s, size);
  } else {
    Report(err, K7_ERR_MEMORY);
  }
  return copy;
}

int K7String::Token(const char* delims, int start, K7String& out) const {
  if (!m_text || start < 0 || !m_text[start]) return 0;
  const int length = static_cast<int>(std::strcspn(m_text + start, delims ? delims : ""));
  const int next = start + length + (m_text[start + length] ? 1 : 0);
  const int err = out.Copy(m_text + start, length);
  return err < 0 ? err : next;
}

bool K7String::IsLower(char c) { return Lower(c); }
bool K7String::IsAlpha(char c) { return Upper(c) || Lower(c); }
bool K7String::IsDigit(char c) { return c >= '0' && c <= '9'; }
bool K7String::IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool K7String::IsAlnum(char c) { return IsAlpha(c) || IsDigit(c); }
bool K7String::IsPrint(char c) { return c >= ' ' && c <= '~'; }
