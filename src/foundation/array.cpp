#include <k7/foundation/array.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// Walks the gaps of a Shell sort over `count` things: `compare(i, j)` orders two of them, `swap(i, j)`
// exchanges them and returns 0 or a code.
template <class Compare, class Swap>
int ShellSortIndexes(int count, Compare compare, Swap swap) {
  for (int gap = count / 2; gap > 0; gap /= 2)
    for (int i = gap; i < count; ++i)
      for (int j = i - gap; j >= 0 && compare(j, j + gap) > 0; j -= gap)
        if (const int err = swap(j, j + gap)) return err;
  return 0;
}

// Copies `elem` aside when it lies inside the block that growing is about to replace.
class ElementCopy {
 public:
  ElementCopy(const void* elem, size_t size, const char* block, size_t blockSize) : m_elem(elem) {
    const char* p = static_cast<const char*>(elem);
    if (!block || p < block || p >= block + blockSize) return;
    m_copy = std::malloc(size);
    if (m_copy) std::memcpy(m_copy, elem, size);
    m_elem = m_copy;
  }
  ~ElementCopy() { std::free(m_copy); }
  ElementCopy(const ElementCopy&) = delete;
  ElementCopy& operator=(const ElementCopy&) = delete;
  /// Null without memory.
  const void* Get() const { return m_elem; }

 private:
  const void* m_elem;
  void* m_copy = nullptr;
};

const char* TextAt(const void* elem) { return *static_cast<const char* const*>(elem); }

// A null address sorts before any other.
template <class Order>
int CompareAddresses(const void* a, const void* b, Order order) {
  if (!a || !b) return (a != nullptr) - (b != nullptr);
  return order(TextAt(a), TextAt(b));
}

int CompareTexts(const void* a, const void* b) {
  return CompareAddresses(a, b, [](const char* s, const char* t) { return std::strcmp(s, t); });
}

int CompareTextsIgnoreCase(const void* a, const void* b) {
  return CompareAddresses(a, b, [](const char* s, const char* t) { return K7String::IComp(s, t); });
}

void SetCode(int* err, int code) {
  if (err) *err = code;
}

}  // namespace

K7Array::K7Array(int width, int growBy, K7CompareFunc compare, int keyOffset) {
  Init(width, growBy, compare, keyOffset);
}

K7Array::~K7Array() { std::free(m_data); }

void K7Array::Init(int width, int growBy, K7CompareFunc compare, int keyOffset) {
  Clear();
  m_width = std::max(width, 1);
  m_growBy = static_cast<int16_t>(std::clamp(growBy, 1, INT16_MAX));
  m_keyOffset = static_cast<int16_t>(std::clamp(keyOffset, 0, INT16_MAX));
  m_compare = compare;
}

int K7Array::GrowTo(int n, bool setCount) {
  if (n < 0) return K7_ERR_BAD_ARGUMENT;
  const int64_t rounded = (static_cast<int64_t>(n) + m_growBy - 1) / m_growBy * m_growBy;
  const int64_t size = rounded * m_width;
  if (size > INT32_MAX) return K7_ERR_MEMORY;
  if (size > m_allocated) {
    char* data = static_cast<char*>(std::malloc(static_cast<size_t>(size)));
    if (!data) return K7_ERR_MEMORY;
    if (m_count > 0) std::memcpy(data, m_data, static_cast<size_t>(m_count) * static_cast<size_t>(m_width));
    std::free(m_data);
    m_data = data;
    m_allocated = static_cast<int32_t>(size);
  }
  if (setCount) {
    if (n > m_count)
      std::memset(At(m_count), 0, static_cast<size_t>(n - m_count) * static_cast<size_t>(m_width));
    m_count = n;
  }
  return 0;
}

int K7Array::operator+=(const void* elem) { return Insert(elem, -1, 1); }

int K7Array::Insert(const void* elems, int pos, int n) {
  if (n < 0 || (!elems && n > 0)) return K7_ERR_BAD_ARGUMENT;
  if (pos > m_count) return K7_ERR_INVALID_DATA;
  if (n == 0) return 0;
  if ((int64_t{m_count} + n) * m_width > INT32_MAX) return K7_ERR_MEMORY;
  const size_t width = static_cast<size_t>(m_width);
  const size_t bytes = static_cast<size_t>(n) * width;
  const ElementCopy source(elems, bytes, m_data, static_cast<size_t>(m_allocated));
  if (!source.Get()) return K7_ERR_MEMORY;
  if (const int err = GrowTo(m_count + n, false)) return err;
  if (pos < 0) pos = m_count;
  std::memmove(At(pos + n), At(pos), static_cast<size_t>(m_count - pos) * width);
  std::memcpy(At(pos), source.Get(), bytes);
  m_count += n;
  return 0;
}

int K7Array::Put(int i, const void* elem) {
  if (!elem) return K7_ERR_BAD_ARGUMENT;
  if (!ValidIdx(i)) return K7_ERR_INVALID_DATA;
  std::memmove(At(i), elem, static_cast<size_t>(m_width));
  return 0;
}

int K7Array::Remove(int pos, int n) {
  if (!ValidIdx(pos) || n <= 0) return 0;
  n = std::min(n, m_count - pos);
  std::memmove(At(pos), At(pos + n), static_cast<size_t>(m_count - pos - n) * static_cast<size_t>(m_width));
  m_count -= n;
  return n;
}

int K7Array::GetIndex(const void* elem) const {
  if (!elem) return -1;
  for (int i = m_count - 1; i >= 0; --i)
    if (std::memcmp(At(i), elem, static_cast<size_t>(m_width)) == 0) return i;
  return -1;
}

int K7Array::Remove(const void* elem) { return Remove(GetIndex(elem), 1); }

int K7Array::Swap(int i, int j) {
  if (!ValidIdx(i) || !ValidIdx(j)) return K7_ERR_BAD_ARGUMENT;
  if (i != j) std::swap_ranges(At(i), At(i) + m_width, At(j));
  return 0;
}

void K7Array::Clear(bool keepStorage) {
  m_count = 0;
  if (keepStorage) {
    if (m_data) std::memset(m_data, 0, static_cast<size_t>(m_allocated));
    return;
  }
  std::free(m_data);
  m_data = nullptr;
  m_allocated = 0;
}

int K7Array::ShellSort(K7CompareFunc compare) {
  if (!compare) compare = m_compare;
  if (!compare) return K7_ERR_BAD_ARGUMENT;
  return ShellSortIndexes(
      m_count, [&](int i, int j) { return compare(Get(i), Get(j)); },
      [&](int i, int j) { return Swap(i, j); });
}

bool K7Array::QuickSort(K7CompareFunc compare) {
  if (!compare) compare = m_compare;
  if (!m_data || !compare) return false;
  std::qsort(m_data, static_cast<size_t>(m_count), static_cast<size_t>(m_width), compare);
  return true;
}

int* K7Array::IndexSort(K7CompareFunc compare) const {
  if (!compare) compare = m_compare;
  if (!compare) return nullptr;
  int* indexes =
      static_cast<int*>(std::malloc(std::max<size_t>(static_cast<size_t>(m_count), 1) * sizeof(int)));
  if (!indexes) return nullptr;
  for (int i = 0; i < m_count; ++i) indexes[i] = i;
  ShellSortIndexes(
      m_count, [&](int i, int j) { return compare(Get(indexes[i]), Get(indexes[j])); },
      [&](int i, int j) {
        std::swap(indexes[i], indexes[j]);
        return 0;
      });
  return indexes;
}

int K7Array::BinarySearch(const void* key, int* last, K7CompareFunc compare) const {
  if (!key) return -1;
  if (!compare) compare = m_compare;
  if (last) *last = -2;
  int lo = 0;
  int hi = compare ? m_count - 1 : -1;
  while (lo <= hi) {
    const int mid = lo + (hi - lo) / 2;
    const int order = compare(key, At(mid));
    if (order < 0) {
      hi = mid - 1;
    } else if (order > 0) {
      lo = mid + 1;
    } else {
      int first = mid;
      while (first > 0 && compare(key, At(first - 1)) == 0) --first;
      if (last)
        for (*last = mid; *last + 1 < m_count && compare(key, At(*last + 1)) == 0;) ++*last;
      return first;
    }
  }
  if (last) *last = lo;
  return -1;
}

int K7Array::BinarySearchMinIndex(const void* key, K7CompareFunc compare) const {
  int insertion = -1;
  const int first = BinarySearch(key, &insertion, compare);
  if (first >= 0) return first;
  return insertion > 0 ? insertion : -1;
}

int K7Array::RemoveAdjDups(K7CompareFunc compare, K7Array* removed) {
  if (removed && (removed == this || removed->m_width != m_width)) return K7_ERR_BAD_ARGUMENT;
  if (!compare) compare = m_compare;
  if (!compare || m_count < 2) return 0;
  int kept = 1;
  for (int i = 1; i < m_count; ++i) {
    // What cannot be handed over stays.
    const bool equal = compare(At(kept - 1), At(i)) == 0;
    if (equal && (!removed || removed->Insert(At(i), -1, 1) == 0)) continue;
    if (kept != i) std::memcpy(At(kept), At(i), static_cast<size_t>(m_width));
    ++kept;
  }
  const int count = m_count - kept;
  m_count = kept;
  return count;
}

K7PtrArray::K7PtrArray(int growBy, K7CompareFunc compare, K7FreeFunc freeElem)
    : K7Array(sizeof(void*), growBy, compare), m_freeElem(freeElem) {}

K7PtrArray::K7PtrArray(const K7PtrArray& other) : K7Array(sizeof(void*), other.GrowBy()) { DeepCopy(&other); }

K7PtrArray& K7PtrArray::operator=(const K7PtrArray& other) {
  DeepCopy(&other);
  return *this;
}

void K7PtrArray::InitPtrArray(int growBy, K7CompareFunc compare, K7FreeFunc freeElem) {
  Init(sizeof(void*), growBy, compare);
  m_freeElem = freeElem;
}

int K7PtrArray::DeepCopy(const K7PtrArray* from) {
  if (!from) return K7_ERR_BAD_ARGUMENT;
  if (from == this) return 0;
  InitPtrArray(from->GrowBy(), from->Compare(), from->m_freeElem);
  return K7Array::Insert(from->Data(), -1, from->Count());
}

void K7PtrArray::FreeElems() {
  for (int i = 0; i < Count(); ++i) {
    void* const elem = (*this)[i];
    if (elem) (m_freeElem ? m_freeElem : std::free)(elem);
  }
  Clear();
}

K7StrArray::K7StrArray(bool ownsStrings, bool ignoreCase, int growBy)
    : K7Array(sizeof(char*), growBy, ignoreCase ? CompareTextsIgnoreCase : CompareTexts),
      m_ownsStrings(ownsStrings) {}

K7StrArray::~K7StrArray() { Delete(); }

int K7StrArray::Insert(const char* s, int pos) {
  if (!s) return K7_ERR_BAD_ARGUMENT;
  if (!m_ownsStrings) return K7Array::Insert(&s, pos, 1);
  char* const copy = K7String::Dup(s);
  if (!copy) return K7_ERR_MEMORY;
  const int err = K7Array::Insert(&copy, pos, 1);
  if (err) std::free(copy);
  return err;
}

int K7StrArray::Insert(const void* elems, int pos, int n) {
  if (n < 0 || (!elems && n > 0)) return K7_ERR_BAD_ARGUMENT;
  const char* const* const texts = static_cast<const char* const*>(elems);
  if (std::find(texts, texts + n, nullptr) != texts + n) return K7_ERR_BAD_ARGUMENT;
  if (!m_ownsStrings) return K7Array::Insert(elems, pos, n);
  // The copies stand in an array of their own, which frees them unless this one has taken them over.
  K7StrArray copies;
  for (int i = 0; i < n; ++i)
    if (const int err = copies.Insert(texts[i], -1)) return err;
  const int err = K7Array::Insert(copies.Data(), pos, n);
  if (!err) copies.ClearNoFree();
  return err;
}

int K7StrArray::Put(int i, const void* elem) { return elem ? Put(i, TextAt(elem)) : K7_ERR_BAD_ARGUMENT; }

int K7StrArray::GrowTo(int n, bool setCount) {
  const int err = K7Array::GrowTo(n, false);
  if (err || !setCount) return err;
  Remove(n, Count());
  return K7Array::GrowTo(n, true);
}

int K7StrArray::Put(int i, const char* s) {
  if (!s) return K7_ERR_BAD_ARGUMENT;
  if (!ValidIdx(i)) return K7_ERR_INVALID_DATA;
  if (!m_ownsStrings) return K7Array::Put(i, &s);
  char* const copy = K7String::Dup(s);
  if (!copy) return K7_ERR_MEMORY;
  std::free(Data()[i]);
  return K7Array::Put(i, &copy);
}

int K7StrArray::Remove(int pos, int n) {
  if (m_ownsStrings && ValidIdx(pos))
    for (int i = pos; i < Count() && i - pos < n; ++i) std::free(Data()[i]);
  return K7Array::Remove(pos, n);
}

void K7StrArray::Clear(bool keepStorage) {
  Remove(0, Count());
  K7Array::Clear(keepStorage);
}

int K7StrArray::RemoveAdjDups(K7CompareFunc compare, K7Array* removed) {
  // The texts go to whoever asks for them, else to an array that frees them.
  K7StrArray freed(m_ownsStrings);
  return K7Array::RemoveAdjDups(compare, removed ? removed : &freed);
}

void K7StrArray::Delete() { Clear(); }

K7IntArray::K7IntArray(int growBy, K7CompareFunc compare) : K7Array(sizeof(int), growBy, compare) {}

K7DoubleArray::K7DoubleArray(int growBy, K7CompareFunc compare) : K7Array(sizeof(double), growBy, compare) {}

K7StrMap::K7StrMap(K7FreeFunc freeValue) : m_keys(true, false, 8), m_values(128, nullptr, freeValue) {}

void* K7StrMap::Insert(const K7String& key, void* value, int* err) {
  SetCode(err, 0);
  // Keys stay sorted, so that a new one goes straight to its place.
  int place = 0;
  const int found = m_keys.Find(key, &place);
  if (found >= 0) {
    void* const old = m_values[found];
    m_values.PutPtr(found, value);
    return old;
  }
  int code = m_keys.Insert(key, place);
  if (code == 0) {
    code = m_values.InsertPtr(value, place);
    if (code) m_keys.Remove(place, 1);
  }
  SetCode(err, code);
  return nullptr;
}

void* K7StrMap::Get(const K7String& key) const { return Get(static_cast<const char*>(key)); }

void* K7StrMap::Get(const char* key) const { return m_values[m_keys.Find(key ? key : "")]; }

void* K7StrMap::Remove(const K7String& key) {
  const int found = m_keys.Find(key);
  if (found < 0) return nullptr;
  void* const value = m_values[found];
  m_keys.Remove(found, 1);
  m_values.Remove(found, 1);
  return value;
}

void K7StrMap::FreeElems() {
  m_keys.Delete();
  m_values.FreeElems();
}
