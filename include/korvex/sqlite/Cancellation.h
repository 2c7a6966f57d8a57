#pragma once

#include <atomic>

namespace korvex {

// Ends the calls that it was given to, from any thread, at any time: before they begin, while they wait for a lock, or
// while they run. A call that has ended is not touched, and no other call is. It stays cancelled.
//
// A cancelled call fails with DatabaseErrorKind::Cancelled and leaves nothing behind. It must outlive the call.
class Cancellation {
 public:
  void cancel() { _cancelled.store(true, std::memory_order_relaxed); }
  [[nodiscard]] bool cancelled() const { return _cancelled.load(std::memory_order_relaxed); }

 private:
  std::atomic<bool> _cancelled{false};
};

}  // namespace korvex
