#include "checks/Rules.h"

#include <algorithm>
#include <array>

#include "checks/ErrorRules.h"
#include "checks/WarningRules.h"

namespace korvex {

namespace {

constexpr auto allRules = [] {
  std::array<Rule, definitionErrors.size() + documentErrors.size() + warningRules.size()> all;
  auto next = std::copy(definitionErrors.begin(), definitionErrors.end(), all.begin());
  next = std::copy(documentErrors.begin(), documentErrors.end(), next);
  std::copy(warningRules.begin(), warningRules.end(), next);
  return all;
}();

constexpr auto namesOfWarnings = [] {
  std::array<std::string_view, warningRules.size()> names;
  std::transform(warningRules.begin(), warningRules.end(), names.begin(), [](const Rule& rule) { return rule.name; });
  return names;
}();

bool fits(std::string_view message, std::string_view format) {
  const std::size_t blank = format.find("%@");
  if (blank == std::string_view::npos) return message == format;
  return message.size() + 2 >= format.size() && message.starts_with(format.substr(0, blank)) &&
         message.ends_with(format.substr(blank + 2));
}

}  // namespace

std::span<const Rule> rules() { return allRules; }

const Rule* ruleNamed(std::string_view name) {
  const auto* rule =
      std::find_if(allRules.begin(), allRules.end(), [name](const Rule& candidate) { return candidate.name == name; });
  return rule == allRules.end() ? nullptr : rule;
}

std::span<const std::string_view> warningNames() { return namesOfWarnings; }

const Rule* ruleOfMessage(std::string_view message) {
  const auto* rule = std::find_if(allRules.begin(), allRules.end(),
                                  [message](const Rule& candidate) { return fits(message, candidate.message); });
  return rule == allRules.end() ? nullptr : rule;
}

// The table has every message, so what fits no other row is of the last.
const Rule& ruleOfError(const QXDAOError& error) {
  return *std::find_if(allRules.begin(), allRules.begin() + definitionErrors.size() - 1,
                       [&error](const Rule& rule) { return fits(error.message(), rule.message); });
}

const Rule& ruleOfError(const DocumentError& error) {
  const Rule& expansion = allRules[definitionErrors.size() + documentErrors.size() - 1];
  if (fits(error.message, expansion.message)) return expansion;
  return allRules[definitionErrors.size() + static_cast<std::size_t>(error.kind)];
}

}  // namespace korvex
