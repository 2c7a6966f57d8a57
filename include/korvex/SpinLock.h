// A spin lock of one 32-bit word, for critical sections of a few instructions.
#pragma once

#include <atomic>
#include <cstdint>

namespace korvex {

// Constant-initialised and unlocked when its word is 0. Meets the standard's BasicLockable, so
// std::lock_guard works with it. Not recursive, not fair. What one holder wrote before unlock()
// is seen by the next holder after its lock().
class SpinLock {
 public:
  constexpr SpinLock() = default;
  SpinLock(const SpinLock&) = delete;
  SpinLock& operator=(const SpinLock&) = delete;

  void lock() {
    while (_word.exchange(1, std::memory_order_acquire) != 0) {
      // Waiting reads alone keeps the cache line shared until the holder lets go.
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
