// What messages call a method.
#pragma once

#include <array>
#include <charconv>
#include <string>

#include "korvex/Plan.h"
#include "platform/Strings.h"

namespace korvex {

// "method 'find'", "the upgrade to 2.5".
inline std::string titleOf(const Plan& plan) {
  if (plan.operation() != QXDAOOperationUpgrade) return "method " + quoted(plan.name());
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), plan.method().toVersion()).ptr;
  return "the upgrade to " + std::string(digits.data(), end);
}

}  // namespace korvex
