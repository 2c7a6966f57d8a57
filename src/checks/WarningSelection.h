// Which warnings are switched on.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "checks/Rules.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex {

class WarningSelection {
 public:
  // A later choice replaces an earlier one; without any, the rule's default holds.
  void want(const Rule& rule, bool wanted) { _choices.emplace_back(&rule, wanted); }
  void treatAsErrors() { _errors = true; }

  [[nodiscard]] bool wants(const Rule& rule) const {
    const auto choice = std::find_if(_choices.rbegin(), _choices.rend(),
                                     [&rule](const auto& candidate) { return candidate.first == &rule; });
    return choice == _choices.rend() ? rule.onByDefault : choice->second;
  }
  [[nodiscard]] Severity severityOf(const Rule& rule) const { return _errors ? Severity::Error : rule.severity; }

 private:
  std::vector<std::pair<const Rule*, bool>> _choices;
  bool _errors = false;
};

}  // namespace korvex
