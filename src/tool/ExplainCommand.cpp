#include "tool/ExplainCommand.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "checks/NearMiss.h"
#include "checks/Rules.h"
#include "tool/RuleText.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// The rule whose name a finding bears in brackets at its end.
const Rule* ruleInBrackets(std::string_view finding) {
  const std::size_t opening = finding.rfind('[');
  if (opening == std::string_view::npos || !finding.ends_with(']')) return nullptr;
  return ruleNamed(finding.substr(opening + 1, finding.size() - opening - 2));
}

// What is wrong with a malformed document is told in many ways; these are how they begin.
constexpr std::array<std::string_view, 39> syntaxErrors = {
    "end tag '",
    "end tag without",
    "no root element",
    "no end tag for '",
    "comment is not closed",
    "DOCTYPE is not closed",
    "processing instruction is not closed",
    "CDATA section is not closed",
    "tag is not closed",
    "reference is not closed",
    "markup is not closed",
    "entity '",
    "entity declarations are",
    "attribute '",
    "attributes are separated",
    "attribute-list declarations are",
    "parameter-entity references are",
    "character U+",
    "control character U+",
    "not valid UTF-8; ",
    "tag '",
    "the value of '",
    "white space is missing",
    "'&' does not begin",
    "'<' ",
    "'/' in a tag",
    "']]>' is not",
    "'--' is not",
    "unexpected content ",
    "unexpected white space",
    "unexpected '",
    "an XML declaration is",
    "the last character is cut off",
    "unknown encoding",
    "no tree: ",
    // The parser's own words, where there are none that say it better
    "XML declaration not well-formed",
    "reference to invalid character number",
    "encoding specified in XML declaration",
    "not well-formed",
};

bool isSyntaxError(std::string_view message) {
  return std::any_of(syntaxErrors.begin(), syntaxErrors.end(),
                     [message](std::string_view beginning) { return message.starts_with(beginning); });
}

// The rule of a finding's message, also without its full stop.
const Rule* ruleOfFinding(std::string_view finding) {
  constexpr std::string_view error = ": error: ";
  const std::size_t at = finding.find(error);
  const std::string message(at == std::string_view::npos ? finding : finding.substr(at + error.size()));
  if (const Rule* rule = ruleOfMessage(message)) return rule;
  if (const Rule* rule = ruleOfMessage(message + '.')) return rule;
  return isSyntaxError(message) ? ruleNamed("malformed-document") : nullptr;
}

// A finding is pasted with its line of the source, and whatever white space is around it.
std::string_view firstLine(std::string_view what) {
  constexpr std::string_view whiteSpace = " \t\r\n";
  what.remove_prefix(std::min(what.find_first_not_of(whiteSpace), what.size()));
  what = what.substr(0, what.find_first_of("\r\n"));
  return what.substr(0, what.find_last_not_of(whiteSpace) + 1);
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

void printUnknown(std::ostream& err, std::string_view what) {
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
