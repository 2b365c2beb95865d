#include <k7/foundation/mutex.h>

#include <atomic>
#include <mutex>
#include <new>
#include <thread>

// Locking again what a thread holds already, as small reads do, costs a comparison: only the holder can find
// itself there.
struct K7MutexState {
  std::mutex lock;
  std::atomic<std::thread::id> holder{};
  int depth = 0;  // the holder's
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

void K7Mutex::Lock() {
  const std::thread::id self = std::this_thread::get_id();
  if (m_state->holder.load(std::memory_order_relaxed) != self) {
    m_state->lock.lock();
    m_state->holder.store(self, std::memory_order_relaxed);
  }
  ++m_state->depth;
}

void K7Mutex::Unlock() {
  if (--m_state->depth > 0) return;
  m_state->holder.store({}, std::memory_order_relaxed);
  m_state->lock.unlock();
}
