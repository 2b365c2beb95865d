// The names and values of an element's attributes, split and resolved.
#pragma once

#include <cstddef>

/// One block that grows by doubling: where each name and value begins, and their terminated texts. Made when
/// attributes are set and only read from then on, so that threads may share a finished tree.
class K7XmlAttribs {
 public:
  /// Where a name and its value begin in the texts.
  struct Pair {
    unsigned name;
    unsigned value;
  };

  /// Of `count` pairs (bytes of any alignment), and `texts` in which each name and value has its terminator.
  /// Null without memory.
  static K7XmlAttribs* Make(const void* pairs, int count, const char* texts, size_t size);
  /// Null without memory.
  K7XmlAttribs* Clone() const;
  static void Delete(K7XmlAttribs* attribs);

  /// To the block at `attribs`, which may be null and may move. False, and nothing changed, without memory.
  static bool Append(K7XmlAttribs*& attribs, const char* name, const char* value);
  /// Takes back the last `Append`.
  void RemoveLast() { --m_count; }

  int Count() const { return m_count; }
  const char* Name(int i) const { return Texts() + Pairs()[i].name; }
  const char* Value(int i) const { return Texts() + Pairs()[i].value; }
  /// The first of that name; -1 without one.
  int Find(const char* name) const;

 private:
  K7XmlAttribs(int capacity, size_t room) : m_capacity(capacity), m_room(room) {}
  static K7XmlAttribs* New(int capacity, size_t room);
  size_t End() const;

  const Pair* Pairs() const { return reinterpret_cast<const Pair*>(this + 1); }
  Pair* Pairs() { return reinterpret_cast<Pair*>(this + 1); }
  const char* Texts() const { return reinterpret_cast<const char*>(Pairs() + m_capacity); }
  char* Texts() { return reinterpret_cast<char*>(Pairs() + m_capacity); }

  int m_count = 0;
  int m_capacity;
  size_t m_room;  // bytes for texts
};
