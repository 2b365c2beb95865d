// What guards process-wide instances.
#pragma once

#include <new>

/// A default-made object that is never destroyed, so that a host's static objects and `atexit` functions may
/// still use what it serves.
template <class T>
class K7Forever {
 public:
  K7Forever() : m_object(new (m_storage) T) {}
  K7Forever(const K7Forever&) = delete;
  K7Forever& operator=(const K7Forever&) = delete;
  T& operator*() { return *m_object; }

 private:
  alignas(T) unsigned char m_storage[sizeof(T)];
  T* m_object;
};
