// K7Cache: objects in the order of their insertion, under a budget of total size.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>

#include <cstdint>

/// Base class of what a `K7Cache` holds. An object must be removed from its cache before it is destroyed.
class K7_API K7CacheObj {
 public:
  /// Answers the size in the units of the cache's budget. It must stay the same while the object is cached.
  virtual int CacheSize() const = 0;
  /// Gives up the loaded contents. The cache calls it when the object has left.
  virtual void FreeContents() = 0;
  /// Answers whether the object may be evicted now. Here it always may.
  virtual bool CanFree() const;

  /// Answers the position in the cache, 0 for the oldest; -1 for an object that is not cached.
  int CachePosition() const { return m_position; }

 protected:
  K7CacheObj() = default;
  // A copy is not cached, and being assigned to moves nothing.
  K7CacheObj(const K7CacheObj&) {}
  K7CacheObj& operator=(const K7CacheObj&) { return *this; }
  ~K7CacheObj() = default;

 private:
  friend class K7Cache;
  int32_t m_position = -1;
};

/// A K7Cache evicts the oldest objects that can be freed when an insertion would exceed its budget. It does
/// not own its objects. Nothing is locked.
class K7_API K7Cache {
 public:
  explicit K7Cache(int maxSize = 0);
  /// Forgets the objects, without touching them, and sets a new budget.
  void Init(int maxSize);

  int MaxSize() const { return m_maxSize; }
  int CurSize() const { return m_curSize; }

  /// \name Changing
  /// @{
  /// Enters `obj` as the newest and evicts what must go; an object already cached becomes the newest
  /// without evicting anything. An object that does not fit is left out, which is no error, though what
  /// could be freed for it is gone then. Answers 0 (also for null), or the error met.
  int Insert(K7CacheObj* obj);
  /// Takes the object at `position` out and leaves its contents alone. Answers 0, or K7_ERR_BAD_ARGUMENT
  /// outside the list.
  int Remove(int position);
  /// Evicts, oldest first, what can be freed until the budget is kept. Answers 0 or the error met.
  int Purge();
  /// Takes out every object and frees its contents. Answers 0 or the error met.
  int FreeAll();
  /// @}

 private:
  K7CacheObj* At(int position) const { return static_cast<K7CacheObj*>(m_objects[position]); }
  int EvictFor(int size);

  int32_t m_maxSize = 0;
  int32_t m_curSize = 0;
  K7PtrArray m_objects;
};
