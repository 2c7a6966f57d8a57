// What a method with profile="true" costs.
#pragma once

#include <chrono>
#include <optional>

#include "korvex/Plan.h"
#include "korvex/QXSCDAOMethodCounter.h"
#include "korvex/sqlite/Outcome.h"

namespace korvex {

// One call, from its making to its end. Counts nothing for other methods.
class ProfiledCall {
 public:
  ProfiledCall(const Plan& plan, bool onMainThread, bool atStart);

  void end(const Failure& failure);

 private:
  const Plan* _plan;  // null when nothing is counted
  bool _onMainThread;
  bool _atStart;
  std::chrono::steady_clock::time_point _begin;
};

// A copy of what was counted; absent for a method that is not profiled.
[[nodiscard]] std::optional<QXSCDAOMethodCounter> counterOf(const Plan& plan);

}  // namespace korvex
