#include "Tool/ExplainCommand.h"

#include <ostream>
#include <string_view>
#include <vector>

#include "Checks/NearMiss.h"
#include "Checks/Rules.h"
#include "Tool/RuleText.h"
#include "Tool/VisibleText.h"

namespace korvex {
namespace {

// The rule whose name a finding bears in brackets at its end.
const Rule* ruleInBrackets(std::string_view finding) {
  const std::size_t opening = finding.rfind('[');
  if (opening == std::string_view::npos || !finding.ends_with(']')) return nullptr;
  return ruleNamed(finding.substr(opening + 1, finding.size() - opening - 2));
}

// The rule of a finding's message. What is wrong with a malformed document is told in many ways, and of all errors
// these alone have no message of their own.
const Rule* ruleOfFinding(std::string_view finding) {
  constexpr std::string_view error = ": error: ";
  const std::size_t at = finding.find(error);
  if (at == std::string_view::npos) return ruleOfMessage(finding);
  const Rule* rule = ruleOfMessage(finding.substr(at + error.size()));
  return rule ? rule : ruleNamed("malformed-document");
}

const Rule* ruleMeantBy(std::string_view what) {
  if (const Rule* rule = ruleNamed(what)) return rule;
  if (const Rule* rule = ruleInBrackets(what)) return rule;
  return ruleOfFinding(what);
}

std::string didYouMeanRule(std::string_view word) {
  std::vector<std::string_view> names;
  for (const Rule& rule : rules()) names.push_back(rule.name);
  return didYouMean(word, names);
}

void printUnknown(std::ostream& err, const std::string& what) {
  const std::string hint = didYouMeanRule(what);
  err << "korvex-dao: no rule and no message '" << visibleText(what) << '\'' << (hint.empty() ? "" : "; ") << hint
      << "\nkorvex-dao: the rules are listed by: korvex-dao explain\n";
}

}  // namespace

ExitCode runExplain(const ExplainOptions& options, const Console& console) {
  const bool markdown = options.format == ExplainFormat::Markdown;
  if (!options.what) {
    markdown ? void(console.out << markdownOf(rules())) : printRules(console.out, rules());
    return ExitCodeNothingFound;
  }
  const Rule* rule = ruleMeantBy(*options.what);
  if (!rule) {
    printUnknown(console.err, *options.what);
    return ExitCodeTrouble;
  }
  markdown ? void(console.out << markdownOf(*rule)) : printRule(console.out, *rule);
  return ExitCodeNothingFound;
}

}  // namespace korvex
