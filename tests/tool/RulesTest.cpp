// Runs the examples of every rule.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "checks/DocumentCheck.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "tests/support/RunTool.h"
#include "verification/SchemaCheck.h"

namespace korvex {
namespace {

std::string wrapped(std::string_view example) { return "<korvex>\n" + std::string(example) + "\n</korvex>"; }

// Examples are smaller than the limits, so the limits are lowered until the right example just meets them.
LoadOptions limitsFor(const Rule& rule) {
  LoadOptions options;
  if (rule.name == "oversized-document") options.maximumBytes = wrapped(rule.right).size();
  if (rule.name == "oversized-expansion") options.maximumExpandedBytes = 100;
  if (rule.name == "deep-document") options.maximumDepth = 4;
  return options;
}

std::vector<Finding> findingsIn(const Rule& rule, std::string_view example) {
  auto result = Document::fromBytes(wrapped(example), limitsFor(rule));
  if (!result.document) return {findingOf("example", *result.error, result.source)};
  if (std::holds_alternative<SchemaRule>(rule.id)) {
    verification::SchemaCheck check;
    check.add("example", std::move(result.document));
    verification::AppExtensions extensions;
    extensions.indexed = {rule.name == "full-scan" ? "person" : ""};
    check.useModels(verification::ModelList::read(KORVEX_SOURCE_DIR "/tests/support/Person.json").models);
    return check.run("upgrades", extensions).findings;
  }
  WarningSelection everyWarning;
  for (const std::string_view name : warningNames()) everyWarning.want(*ruleNamed(name), true);
  SetCheck set(everyWarning);
  std::vector<Finding> findings = set.check("example", *result.document, loadDefinitions(*result.document));
  for (Finding& finding : set.finish()) findings.push_back(std::move(finding));
  return findings;
}

TEST(Rules, ExamplesViolateTheirRuleAndNoOther) {
  for (const Rule& rule : rules()) {
    SCOPED_TRACE(rule.name);
    EXPECT_TRUE(!rule.help.empty() && !rule.meaning.empty());
    if (std::holds_alternative<Warning>(rule.id)) continue;                            // ChecksTest tries these out
    if (rule.name == "unreadable-document" || rule.name == "out-of-memory") continue;  // about no text
    const std::vector<Finding> wrong = findingsIn(rule, rule.wrong);
    EXPECT_FALSE(wrong.empty());
    for (const Finding& finding : wrong) EXPECT_EQ(finding.rule->name, rule.name) << finding.message;
    for (const Finding& finding : findingsIn(rule, rule.right)) ADD_FAILURE() << finding.message;
  }
}

TEST(Rules, FindingsLeadToTheirRules) {
  const std::string out = run({"check", "--format", "short", KORVEX_SOURCE_DIR "/examples/faults.xml"}).out;
  std::istringstream lines(out);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const std::string name = line.substr(line.rfind('[') + 1, line.size() - line.rfind('[') - 2);
    for (const std::string& what : {name, line, "\n  " + line + "\r\n<select>\n^\n"}) {
      const Outcome explained = run({"explain", what});
      EXPECT_TRUE(explained.out.starts_with(name + " (error, always on)\n")) << what << explained.err;
    }
  }
  EXPECT_EQ(count, 34U);
}

TEST(Rules, UnknownOnesAreToldWithAGuess) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"conditon-format", "; did you mean 'condition-format'?"},
      {"Condition-Format", "; did you mean 'condition-format'?"},
      {"\n x\ty [z] \nmore", "no rule is called 'x\\ty [z]'\n"},
      {"main.cpp:1:2: error: expected ';' before '}' token", "no rule is called 'main.cpp"},
      {"", "no rule is called ''\n"},
  };
  for (const auto& [what, told] : cases) {
    const Outcome outcome = run({"explain", what});
    EXPECT_EQ(outcome.code, ExitCodeTrouble);
    EXPECT_NE(outcome.err.find(told), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
  }
}

TEST(Rules, ExplanationsFitATerminal) {
  std::string text = run({"explain"}).out;
  for (const Rule& rule : rules()) text += run({"explain", std::string(rule.name)}).out;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

}  // namespace
}  // namespace korvex
