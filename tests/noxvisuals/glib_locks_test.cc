// What ThreadSanitizer says of memory that GLib's locks keep apart, and of memory that nothing
// does: the first is what support/glib_locks.cc is for, the second shows that it hides nothing.
#include <glib.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace nox::test {
namespace {

constexpr int kSanitizerFoundSomething = 66;

struct Locks {
  GMutex mutex{};
  GCond written{};
  gint word = 0;
  gpointer pointer = nullptr;
};

// Two threads add to one number, between `lock` and `unlock`. Ends the process.
template <typename Lock, typename Unlock>
[[noreturn]] void count_in_two_threads(Lock lock, Unlock unlock) {
  Locks locks;
  int number = 0;
  const auto count = [&] {
    for (int i = 0; i < 1000; ++i) {
      lock(&locks);
      ++number;
      unlock(&locks);
    }
  };
  std::thread other(count);
  count();
  other.join();
  std::exit(0);
}

void lock_mutex(Locks *locks) {
  g_mutex_lock(&locks->mutex);
}
void try_mutex(Locks *locks) {
  while (g_mutex_trylock(&locks->mutex) == FALSE) std::this_thread::yield();
}
void unlock_mutex(Locks *locks) {
  g_mutex_unlock(&locks->mutex);
}
void nothing(Locks * /*locks*/) {}

TEST(GLibLocksDeathTest, WhatALockKeepsApartIsNoRace) {
  const auto finds_nothing = testing::ExitedWithCode(0);
  EXPECT_EXIT(count_in_two_threads(lock_mutex, unlock_mutex), finds_nothing, "^$");
  EXPECT_EXIT(count_in_two_threads(try_mutex, unlock_mutex), finds_nothing, "^$");
  EXPECT_EXIT(count_in_two_threads([](Locks *locks) { g_bit_lock(&locks->word, 3); },
                                   [](Locks *locks) { g_bit_unlock(&locks->word, 3); }),
              finds_nothing, "^$");
  EXPECT_EXIT(count_in_two_threads([](Locks *locks) { g_pointer_bit_lock(&locks->pointer, 0); },
                                   [](Locks *locks) { g_pointer_bit_unlock(&locks->pointer, 0); }),
              finds_nothing, "^$");
}

// One thread waits for what the other writes.
[[noreturn]] void hand_over() {
  Locks locks;
  bool done = false;
  int number = 0;
  std::thread writer([&] {
    lock_mutex(&locks);
    number = 1;
    done = true;
    g_cond_signal(&locks.written);
    unlock_mutex(&locks);
  });
  lock_mutex(&locks);
  while (!done) g_cond_wait(&locks.written, &locks.mutex);
  number = 2;
  unlock_mutex(&locks);
  writer.join();
  std::exit(number == 2 ? 0 : 1);
}

TEST(GLibLocksDeathTest, WhatAConditionHandsOverIsNoRace) {
  EXPECT_EXIT(hand_over(), testing::ExitedWithCode(0), "^$");
}

TEST(GLibLocksDeathTest, WhatNothingKeepsApartIsOne) {
  EXPECT_EXIT(count_in_two_threads(nothing, nothing),
              testing::ExitedWithCode(kSanitizerFoundSomething), "data race");
  // A lock that is given back too early keeps nothing apart.
  EXPECT_EXIT(count_in_two_threads(
                  [](Locks *locks) {
                    lock_mutex(locks);
                    unlock_mutex(locks);
                  },
                  nothing),
              testing::ExitedWithCode(kSanitizerFoundSomething), "data race");
}

}  // namespace
}  // namespace nox::test
