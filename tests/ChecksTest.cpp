// The rules by name, and what the checks find.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Checks/DocumentCheck.h"

namespace korvex {
namespace {

const std::string root = KORVEX_SOURCE_DIR "/";

TEST(Rules, HaveNamesOfTheirOwn) {
  for (const Rule& rule : rules()) {
    EXPECT_EQ(ruleNamed(rule.name), &rule) << rule.name;
    EXPECT_EQ(rule.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos) << rule.name;
  }
  EXPECT_EQ(ruleNamed("no-such-rule"), nullptr);
}

TEST(Rules, EveryErrorOfADefinitionHasOne) {
  const auto read = Document::fromFile(root + "examples/faults.xml");
  std::set<std::string_view> violated;
  for (const Definition& definition : loadDefinitions(*read.document)) {
    violated.insert(ruleOfError(*definition.error).name);
  }
  const DocumentError unreadable{DocumentErrorKind::Unreadable, {}, {}};
  for (const Rule& rule : rules()) {
    if (rule.name == ruleOfError(unreadable).name) break;
    EXPECT_TRUE(violated.contains(rule.name)) << rule.name;
  }
  EXPECT_EQ(ruleOfError(DocumentError{DocumentErrorKind::OutOfMemory, {}, {}}).name, "out-of-memory");
}

}  // namespace
}  // namespace korvex
