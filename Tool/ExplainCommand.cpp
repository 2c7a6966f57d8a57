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

// The message of a finding; the text itself when it is no more than a message.
std::string_view withoutPlace(std::string_view finding) {
  for (const std::string_view severity : {": error: ", ": warning: "}) {
    const std::size_t at = finding.find(severity);
    if (at != std::string_view::npos) return finding.substr(at + severity.size());
  }
  return finding;
}

const Rule* ruleMeantBy(std::string_view what) {
  if (const Rule* rule = ruleNamed(what)) return rule;
  if (const Rule* rule = ruleInBrackets(what)) return rule;
  return ruleOfMessage(withoutPlace(what));
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
  if (options.what.empty()) {
    markdown ? void(console.out << markdownOf(rules())) : printRules(console.out, rules());
    return ExitCodeNothingFound;
  }
  const Rule* rule = ruleMeantBy(options.what);
  if (!rule) {
    printUnknown(console.err, options.what);
    return ExitCodeTrouble;
  }
  markdown ? void(console.out << markdownOf(*rule)) : printRule(console.out, *rule);
  return ExitCodeNothingFound;
}

}  // namespace korvex
