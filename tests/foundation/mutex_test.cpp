#include <k7/foundation/mutex.h>

#include "support/leaks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

TEST(K7Mutex, ExcludesOtherThreadsAndAdmitsItsOwnAgain) {
  EXPECT_FALSE(Leaks([] {
    K7Mutex owner, own;
    K7Mutex shares(owner);
    own = shares;
    shares.Initialize();
  }));
  K7Mutex mutex, assigned;
  K7Mutex copy(mutex);  // shares the lock, as what is assigned does
  assigned = copy;
  for (K7Mutex* const shared : {&mutex, &copy, &assigned}) {
    std::atomic<bool> entered{false};
    mutex.Lock();
    mutex.Lock();
    std::thread other([&] {
      const K7LockGuard guard(*shared);
      entered = true;
    });
    mutex.Unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    mutex.Unlock();
    other.join();
  }
  const K7LockGuard guard(mutex);
  copy.Initialize();  // a lock of its own: the next line would wait for ever otherwise
  std::thread([&] { const K7LockGuard free(copy); }).join();
}
