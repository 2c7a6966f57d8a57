#include "checks/Rules.h"

#include <algorithm>
#include <array>

#include "checks/ErrorRules.h"
#include "checks/SchemaRules.h"
#include "checks/WarningRules.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

constexpr auto allRules = [] {
  std::array<Rule, definitionErrors.size() + documentErrors.size() + schemaRules.size() + warningRules.size()> all;
  auto next = std::copy(definitionErrors.begin(), definitionErrors.end(), all.begin());
  next = std::copy(documentErrors.begin(), documentErrors.end(), next);
  next = std::copy(schemaRules.begin(), schemaRules.end(), next);
  std::copy(warningRules.begin(), warningRules.end(), next);
  return all;
}();

constexpr bool isWarning(const Rule& rule) { return rule.severity == Severity::Warning; }

constexpr auto namesOfWarnings = [] {
  std::array<std::string_view, std::count_if(allRules.begin(), allRules.end(), isWarning)> names;
  auto next = names.begin();
  for (const Rule& rule : allRules) {
    if (isWarning(rule)) *next++ = rule.name;
  }
  return names;
}();

}  // namespace

std::span<const Rule> rules() { return allRules; }

const Rule& ruleOf(RuleId id) { return *rowWith(allRules, &Rule::id, id); }

const Rule* ruleNamed(std::string_view name) { return rowWith(allRules, &Rule::name, name); }

std::span<const std::string_view> warningNames() { return namesOfWarnings; }

}  // namespace korvex
