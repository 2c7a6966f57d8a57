#include "sqlite/Profile.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>

#include "sqlite/Errors.h"

namespace korvex {
namespace {

// Of all counters: databases may share a set, and with it the counters of its methods.
std::mutex& counterMutex() {
  static std::mutex mutex;
  return mutex;
}

bool isCounted(const Plan& plan) { return plan.method()._profile && !plan.method()._ignoreCounter; }

QXSCDAOMethodCounter& counterIn(const Plan& plan) {
  auto& counter = plan.method()._counter;
  if (!counter) counter = std::make_unique<QXSCDAOMethodCounter>();
  return *counter;
}

std::string failureCode(const DatabaseError& error) {
  return error.sqliteCode != 0 ? std::to_string(error.sqliteCode) : nameOf(error.kind);
}

}  // namespace

ProfiledCall::ProfiledCall(const Plan& plan, bool onMainThread, bool atStart)
    : _plan(isCounted(plan) ? &plan : nullptr), _onMainThread(onMainThread), _atStart(atStart) {
  if (_plan) _begin = std::chrono::steady_clock::now();
}

void ProfiledCall::end(const Failure& failure) {
  if (!_plan) return;
  const double cost = std::chrono::duration<double>(std::chrono::steady_clock::now() - _begin).count();
  const std::lock_guard lock(counterMutex());
  QXSCDAOMethodCounter& counter = counterIn(*_plan);
  ++counter._invocationCount;
  counter._allCost += cost;
  counter._maxCost = std::max(counter._maxCost, cost);
  if (_onMainThread) ++counter._mainThreadCount;
  if (_atStart) ++counter._bootupCount;
  if (!failure) return;
  ++counter._failureCount;
  ++counter._failureCodes[failureCode(*failure)];
}

std::optional<QXSCDAOMethodCounter> counterOf(const Plan& plan) {
  if (!isCounted(plan)) return std::nullopt;
  const std::lock_guard lock(counterMutex());
  return counterIn(plan);
}

}  // namespace korvex
