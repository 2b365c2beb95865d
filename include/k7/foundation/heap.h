// K7Heap: a priority queue whose members know their place in it.
#pragma once

#include <k7/export.h>

#include <cstdint>

/// Base class of what a `K7Heap` orders. A member belongs to one heap at a time, and its rank must not change
/// while it is there: take it out, change it, put it back.
class K7_API K7HeapObj {
 public:
  /// Decides the order, in the manner of a less-than: false for equal ranks.
  virtual bool Precedes(const K7HeapObj& other) const = 0;
  /// Gives the same order as a number, for a class that has one: of two members with numbers, the one that
  /// precedes has the lesser, and equal ranks have equal numbers. The heap asks for it once, at the
  /// insertion, and is several times as fast by it. Here it is not a number, which leaves the order to
  /// `Precedes`.
  virtual double HeapRank() const;

 protected:
  K7HeapObj() = default;
  // A copy is no member, and being assigned to moves none.
  K7HeapObj(const K7HeapObj&) {}
  K7HeapObj& operator=(const K7HeapObj&) { return *this; }
  ~K7HeapObj() = default;

 private:
  friend class K7Heap;
  int32_t m_position = -1;
};

/// Says which member is on top.
enum K7HeapType : int {
  K7_HEAP_MIN = 0,  ///< the member that precedes all others is on top
  K7_HEAP_MAX = 1,  ///< the member that all others precede is on top
};

/// A K7Heap gives each member up to d children. It does not own its members. Nothing is locked.
class K7_API K7Heap {
 public:
  /// Takes `d` >= 1; 2 makes a binary heap. With a lesser `d`, or without memory for the first 1024
  /// members, the heap is not valid and takes none.
  K7Heap(K7HeapType type, int d);
  K7Heap(const K7Heap&) = delete;
  K7Heap& operator=(const K7Heap&) = delete;
  ~K7Heap();

  /// Answers true while there was no error.
  bool IsValid() const { return m_status == 0; }
  int Size() const { return m_count; }
  /// Puts `obj` in. Answers 0 or the heap's error, which stays: K7_ERR_BAD_ARGUMENT once a null object was
  /// offered, K7_ERR_MEMORY once growing failed. Every later insertion then fails with it; what is in the
  /// heap can still be taken out. An object that is already here finds its place anew.
  int Insert(K7HeapObj* obj);
  int operator+=(K7HeapObj* obj) { return Insert(obj); }
  /// Answers the top member and leaves it there; null when the heap is empty.
  K7HeapObj* Top() const { return m_count ? m_slots[0].obj : nullptr; }
  /// Takes out the top member and answers it; null when the heap is empty.
  K7HeapObj* PopTop();
  /// Takes out `obj`. Answers false when it is not in this heap.
  bool Delete(K7HeapObj* obj);
  bool operator-=(K7HeapObj* obj) { return Delete(obj); }

 private:
  // A member and its rank, negated in a heap whose top is the last.
  struct Slot {
    K7HeapObj* obj;
    double rank;
  };

  bool Rises(const Slot& member, const Slot& above) const;
  int ChildToFollow(int slot) const;
  void Put(int slot, const Slot& member);
  int SiftUp(int slot, Slot member);
  void SiftDown(int slot, Slot member);
  bool Grow();

  Slot* m_slots = nullptr;
  int32_t m_count = 0;
  int32_t m_capacity = 0;
  int32_t m_branching;
  K7HeapType m_type;
  int32_t m_status = 0;
  int32_t m_shift = -1;    // divides by m_branching when that is a power of two; else negative
  bool m_isRanked = true;  // every member has a rank
};
