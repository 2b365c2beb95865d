// Locks of the library: a recursive mutex and its scoped guard.
#pragma once

#include <k7/export.h>

struct K7MutexState;

/// A K7Mutex is recursive. A copy shares the lock of its source, so that copies of an object that share a
/// resource (a copied `K7FileK7` shares its stream) stay serialised against each other. It never fails:
/// without memory for a lock of its own it takes one that all such mutexes share.
class K7_API K7Mutex {
 public:
  K7Mutex();
  K7Mutex(const K7Mutex& other) noexcept;
  K7Mutex& operator=(const K7Mutex& other) noexcept;
  ~K7Mutex();

  /// Gives this object a new, unlocked mutex of its own. The class that owns the lock calls it, before any
  /// other thread can reach it.
  void Initialize();

  void Lock();
  /// Gives back one `Lock` of the calling thread.
  void Unlock();

 private:
  K7MutexState* m_state;
};

/// Holds a `K7Mutex` for the length of a scope.
class K7LockGuard {
 public:
  explicit K7LockGuard(K7Mutex& mutex) : m_mutex(mutex) { m_mutex.Lock(); }
  ~K7LockGuard() { m_mutex.Unlock(); }
  K7LockGuard(const K7LockGuard&) = delete;
  K7LockGuard& operator=(const K7LockGuard&) = delete;

 private:
  K7Mutex& m_mutex;
};
