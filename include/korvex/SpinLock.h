// A spin lock of one 32-bit word, for critical sections of a few instructions.
#pragma once

#include <atomic>
#include <cstdint>

namespace korvex {

// Unlocked if its word is 0, which is its initial value. Satisfies BasicLockable, so std::lock_guard
// works with it. Neither recursive nor fair. Whatever a thread wrote before unlock() is visible to the
// next one after lock().
class SpinLock {
 public:
  constexpr SpinLock() = default;
  SpinLock(const SpinLock&) = delete;
  SpinLock& operator=(const SpinLock&) = delete;

  void lock() {
    while (_word.exchange(1, std::memory_order_acquire) != 0) {
      // Waiting only reads, so the cache line stays shared until the lock is released.
      while (_word.load(std::memory_order_relaxed) != 0) {
      }
    }
  }

  void unlock() { _word.store(0, std::memory_order_release); }

 private:
  std::atomic<std::uint32_t> _word{0};
};

static_assert(sizeof(SpinLock) == sizeof(std::uint32_t));

}  // namespace korvex
