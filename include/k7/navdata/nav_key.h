// K7NavKey: the two-word name of a navigation record. K7NavKeyArray: an array of them.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/navdata/nav_types.h>

#include <cstdint>

class K7NavData;
class K7String;
class K7XmlElem;
enum K7XmlOutputType_t : int;

/// A K7NavKey names a navigation record by its type and its index within that type's data. A value of 8
/// bytes.
class K7_API K7NavKey {
 public:
  /// Makes the no-record key.
  K7NavKey() = default;
  K7NavKey(uint32_t idx, K7NavType type) : m_idx(idx), m_navType(type) {}

  /// Makes this the no-record key, whose words are both 0xFFFFFFFF.
  void Reset() { *this = K7NavKey(); }
  uint32_t Idx() const { return m_idx; }
  K7NavType NavType() const { return static_cast<K7NavType>(m_navType); }
  bool NoRecord() const { return m_idx == NO_WORD && m_navType == NO_WORD; }

  bool operator==(const K7NavKey& other) const = default;
  /// Orders as `Comp` does.
  bool operator<(const K7NavKey& other) const { return Comp(this, &other) < 0; }
  /// Orders keys by type, then by index: -1, 0 for equal keys, or 1. Words are compared by the sign of their
  /// wrapped 32-bit difference, not as unsigned numbers: index 0xFFFFFFFF sorts before 0, words more than
  /// 2^31 apart compare backwards, and a difference of exactly 2^31 is -1 from either side. Sorted data files
  /// depend on this order.
  static int Comp(const void* a, const void* b);

  /// Replaces `out` with the display name of the type; "Unknown" for a type without one. 0 or K7_ERR_MEMORY.
  int typeString(K7String& out) const;
  /// Adds the children "Index" and "NavType" with the two words to `elem`. `data` may be null. 0 or
  /// K7_ERR_MEMORY.
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7XmlElem& elem) const;
  /// Replaces `out` with an element `name` ("NavKey" for null) that holds those children, without a
  /// declaration.
  int ToXML(K7NavData* data, K7XmlOutputType_t type, K7String& out, const char* name) const;

 private:
  static constexpr uint32_t NO_WORD = 0xFFFFFFFF;

  uint32_t m_idx = NO_WORD;
  uint32_t m_navType = NO_WORD;
};

static_assert(sizeof(K7NavKey) == 8);

/// Holds keys and orders them by `K7NavKey::Comp`.
class K7_API K7NavKeyArray : public K7Array {
 public:
  explicit K7NavKeyArray(int growBy = 8);
  /// Answers the key; the no-record key outside the array.
  K7NavKey operator[](int i) const { return ValidIdx(i) ? *reinterpret_cast<K7NavKey*>(At(i)) : K7NavKey(); }
  /// Appends a key. The other form appends by an address, as that of K7Array.
  int operator+=(const K7NavKey& key) { return K7Array::operator+=(&key); }
  using K7Array::operator+=;
};
