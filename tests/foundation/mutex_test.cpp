#include <k7/foundation/mutex.h>

#include "support/leaks.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

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
  int counter = 0;
  std::vector<std::thread> threads;
  for (K7Mutex* const outer : {&mutex, &copy, &assigned})
    threads.emplace_back([&, outer] {
      for (int i = 0; i < 50000; ++i) {
        const K7LockGuard guard(*outer);
        const K7LockGuard again(mutex);
        ++counter;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 150000);
  const K7LockGuard guard(mutex);
  copy.Initialize();  // a lock of its own: the next line would wait for ever otherwise
  std::thread([&] { const K7LockGuard free(copy); }).join();
}
