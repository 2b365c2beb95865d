#include <k7/foundation/mutex.h>

#include <atomic>
#include <mutex>
#include <new>

struct K7MutexState {
  std::recursive_mutex lock;
  std::atomic<int> owners{1};
};

namespace {

// Stands in for a lock that memory had no room for; never deleted.
K7MutexState& SharedState() {
  static K7MutexState* const state = [] {
    alignas(K7MutexState) static unsigned char storage[sizeof(K7MutexState)];
    return new (storage) K7MutexState;
  }();
  return *state;
}

K7MutexState* NewState() {
  K7MutexState* state = new (std::nothrow) K7MutexState;
  return state ? state : &SharedState();
}

void Acquire(K7MutexState* state) {
  if (state != &SharedState()) ++state->owners;
}

void Release(K7MutexState* state) {
  if (state != &SharedState() && --state->owners == 0) delete state;
}

}  // namespace

K7Mutex::K7Mutex() : m_state(NewState()) {}

K7Mutex::K7Mutex(const K7Mutex& other) noexcept : m_state(other.m_state) { Acquire(m_state); }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): what is acquired first survives the release
K7Mutex& K7Mutex::operator=(const K7Mutex& other) noexcept {
  Acquire(other.m_state);
  Release(m_state);
  m_state = other.m_state;
  return *this;
}

K7Mutex::~K7Mutex() { Release(m_state); }

void K7Mutex::Initialize() {
  Release(m_state);
  m_state = NewState();
}

void K7Mutex::Lock() { m_state->lock.lock(); }

void K7Mutex::Unlock() { m_state->lock.unlock(); }
