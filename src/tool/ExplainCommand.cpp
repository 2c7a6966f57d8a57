#include "tool/ExplainCommand.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "checks/NearMiss.h"
#include "checks/Rules.h"
#include "platform/Strings.h"
#include "tool/RuleText.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// The rule that a finding names in brackets at its end.
const Rule* ruleInBrackets(std::string_view finding) {
  const std::size_t opening = finding.rfind('[');
  if (opening == std::string_view::npos || !finding.ends_with(']')) return nullptr;
  return ruleNamed(finding.substr(opening + 1, finding.size() - opening - 2));
}

// A finding may be pasted with its source line and surrounding white space.
std::string_view firstLine(std::string_view what) {
  what.remove_prefix(std::min(what.find_first_not_of(xmlWhiteSpace), what.size()));
  what = what.substr(0, what.find_first_of("\r\n"));
  return what.substr(0, what.find_last_not_of(xmlWhiteSpace) + 1);
}

const Rule* ruleMeantBy(std::string_view what) {
  const Rule* rule = ruleNamed(what);
  return rule ? rule : ruleInBrackets(what);
}

std::string didYouMeanRule(std::string_view word) {
  std::vector<std::string_view> names;
  for (const Rule& rule : rules()) names.push_back(rule.name);
  return didYouMean(word, names);
}

void printUnknown(std::ostream& err, std::string_view what) {
  const std::string hint = didYouMeanRule(what);
  err << "korvex-dao: no rule is called '" << visibleText(what) << '\'' << (hint.empty() ? "" : "; ") << hint
      << "\nkorvex-dao: give the name that stands in brackets behind a finding; 'korvex-dao explain' lists all rules\n";
}

}  // namespace

ExitCode runExplain(const ExplainOptions& options, const Console& console) {
  const bool markdown = options.format == ExplainFormat::Markdown;
  if (!options.what) {
    markdown ? void(console.out << markdownOf(rules())) : printRules(console.out, rules());
    return ExitCodeNothingFound;
  }
  const std::string_view what = firstLine(*options.what);
  const Rule* rule = ruleMeantBy(what);
  if (!rule) {
    printUnknown(console.err, what);
    return ExitCodeTrouble;
  }
  markdown ? void(console.out << markdownOf(*rule)) : printRule(console.out, *rule);
  return ExitCodeNothingFound;
}

}  // namespace korvex
