#include <k7/foundation/mutex.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

TEST(K7Mutex, ExcludesOtherThreadsAndAdmitsItsOwnAgain) {
  K7Mutex mutex;
  K7Mutex copy(mutex);  // shares the lock
  int counter = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 5000; ++i) {
        const K7LockGuard outer(t % 2 ? mutex : copy);
        const K7LockGuard inner(mutex);
        ++counter;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 20000);
}

TEST(K7Mutex, InitializeGivesALockOfItsOwn) {
  K7Mutex mutex;
  K7Mutex other(mutex);
  const K7LockGuard guard(mutex);
  other.Initialize();
  std::atomic<bool> passed{false};
  std::thread([&] {
    const K7LockGuard free(other);
    passed = true;
  }).join();
  EXPECT_TRUE(passed);
}
