#include "Checks/Rules.h"

#include <algorithm>
#include <array>

#include "Checks/WarningRules.h"
#include "DAO/Core/Messages.h"

namespace korvex {

namespace {

constexpr std::array<Rule, 30> definitionErrors = {{
    {.name = "missing-name", .message = Messages::emptyName},
    {.name = "unknown-definition", .message = Messages::unknownRootTag},
    {.name = "unknown-element", .message = Messages::unknownElement},
    {.name = "misplaced-step", .message = Messages::misplacedStep},
    {.name = "misplaced-try", .message = Messages::misplacedTry},
    {.name = "misplaced-except", .message = Messages::misplacedExcept},
    {.name = "upgrade-format", .message = Messages::invalidUpgrade},
    {.name = "arguments-format", .message = Messages::invalidArguments},
    {.name = "missing-result", .message = Messages::undefinedResult},
    {.name = "steps-in-select", .message = Messages::stepsInSelect},
    {.name = "content-beside-steps", .message = Messages::besideSteps},
    {.name = "content-beside-try", .message = Messages::besideTry},
    {.name = "method-foreach-format", .message = Messages::invalidMethodForeach},
    {.name = "try-format", .message = Messages::invalidTry},
    {.name = "second-except", .message = Messages::tooManyExcepts},
    {.name = "except-format", .message = Messages::invalidExcept},
    {.name = "condition-format", .message = Messages::invalidCondition},
    {.name = "choose-content", .message = Messages::chooseContent},
    {.name = "foreach-parameters", .message = Messages::foreachParameters},
    {.name = "foreach-content", .message = Messages::foreachContent},
    {.name = "fragment-format", .message = Messages::invalidFragment},
    {.name = "reserved-sql-name", .message = Messages::reservedSqlName},
    {.name = "sql-format", .message = Messages::invalidSqlBlock},
    {.name = "const-format", .message = Messages::invalidConst},
    {.name = "crypt-format", .message = Messages::invalidCrypt},
    {.name = "missing-map-result", .message = Messages::emptyMapResult},
    {.name = "map-format", .message = Messages::invalidMap},
    {.name = "missing-pack-column", .message = Messages::emptyPackColumn},
    {.name = "missing-pack-properties", .message = Messages::emptyPackProperties},
    {.name = "single-pack-property", .message = Messages::tooFewPackProperties},
}};

// In the order of DocumentErrorKind.
constexpr std::array<Rule, 5> documentErrors = {{
    {.name = "unreadable-document", .message = "The document cannot be read"},
    {.name = "oversized-document", .message = "The document, or what it expands to, is too large"},
    {.name = "malformed-document", .message = "The document is no well-formed XML"},
    {.name = "deep-document", .message = "The elements are nested too deeply"},
    {.name = "out-of-memory", .message = "There is not enough memory for the document"},
}};

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

// The table has every message, so what fits no other row is of the last.
const Rule& ruleOfError(const QXDAOError& error) {
  return *std::find_if(allRules.begin(), allRules.begin() + definitionErrors.size() - 1,
                       [&error](const Rule& rule) { return fits(error.message(), rule.message); });
}

const Rule& ruleOfError(const DocumentError& error) {
  return allRules[definitionErrors.size() + static_cast<std::size_t>(error.kind)];
}

}  // namespace korvex
