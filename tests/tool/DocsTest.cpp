// Verifies the claims of docs/language.md and the examples.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <utility>

#include "checks/DocumentCheck.h"
#include "dao/core/Messages.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"
#include "language/Vocabulary.h"

namespace korvex {
namespace {

const std::string root = KORVEX_SOURCE_DIR "/";

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& path) {
  std::ifstream file(root + path);
  EXPECT_TRUE(file) << path;
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The texts between a quote and the next one.
Lines quoted(const std::string& line, char quote) {
  Lines texts;
  std::istringstream pieces(line);
  std::string piece;
  for (bool inside = false; std::getline(pieces, piece, quote); inside = !inside) {
    if (inside) texts.push_back(piece);
  }
  return texts;
}

// The code spans of each table row in a section of docs/language.md whose first cell is code.
std::vector<Lines> tableOf(const std::string& heading) {
  std::vector<Lines> rows;
  bool inside = false;
  for (const std::string& line : linesOf("docs/language.md")) {
    if (line.starts_with("## ")) inside = line == "## " + heading;
    if (inside && line.starts_with("| `")) rows.push_back(quoted(line, '`'));
  }
  return rows;
}

// The code blocks of a document that open with this line.
Lines blocksOf(const std::string& opening, const std::string& document = "docs/language.md") {
  Lines blocks;
  bool inside = false;
  for (const std::string& line : linesOf(document)) {
    if (line.starts_with("```")) {
      inside = line == opening;
      if (inside) blocks.emplace_back();
    } else if (inside) {
      blocks.back() += line + '\n';
    }
  }
  return blocks;
}

// The messages of what is wrong, in document order; that of the document if it cannot be read.
Lines findingsIn(const Document::Result& result) {
  if (!result.document) return {result.error->message};
  Lines messages;
  for (const Finding& finding : findingsOf("", *result.document, loadDefinitions(*result.document))) {
    messages.push_back(finding.message);
  }
  return messages;
}

bool fits(const std::string& message, const std::string& format) {
  const std::size_t blank = format.find("%@");
  if (blank == std::string::npos) return message == format;
  return message.size() + 2 >= format.size() && message.starts_with(format.substr(0, blank)) &&
         message.ends_with(format.substr(blank + 2));
}

TEST(Docs, MessagesTableIsWhatFaultsProvoke) {
  const std::vector<Lines> rows = tableOf("Messages");
  const Lines findings = findingsIn(Document::fromFile(root + "examples/faults.xml"));
  ASSERT_EQ(findings.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_TRUE(fits(findings[i], rows[i][0])) << findings[i];
}

TEST(Docs, MessagesTableIsComplete) {
  std::set<std::string> documented;
  for (const Lines& row : tableOf("Messages")) documented.insert(row[0]);
  for (const RuleText& text : ruleTexts) EXPECT_TRUE(documented.contains(std::string(text.message))) << text.message;
}

TEST(Docs, ExamplesOfTheLanguageAreRight) {
  for (const auto& [opening, right] : {std::pair{"```xml", true}, {"```xml wrong", false}}) {
    const Lines blocks = blocksOf(opening);
    EXPECT_FALSE(blocks.empty()) << opening;
    for (const std::string& block : blocks) {
      const Lines findings = findingsIn(Document::fromBytes("<korvex>" + block + "</korvex>"));
      EXPECT_EQ(findings.empty(), right) << block << testing::PrintToString(findings);
    }
  }
}

TEST(Docs, ListReferencesAreWrittenOutAsTold) {
  const std::vector<Lines> rows = tableOf("List references");
  EXPECT_GT(rows.size(), 20U);
  for (const Lines& row : rows) {
    QXDAOText text;
    text.initWithText(row.at(0));
    EXPECT_EQ(text.expression(), row.at(1)) << row[0];
  }
}

// Whether a section of docs/language.md is about the element.
bool isSectionOf(const std::string& line, std::string_view tag) {
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (word == tag || word == std::string(tag) + ",") return line.starts_with("## ");
  }
  return false;
}

TEST(Docs, EveryAttributeOfTheVocabularyIsInATable) {
  for (const ElementEntry& element : vocabulary()) {
    std::set<std::string> named;
    bool inside = false;
    for (const std::string& line : linesOf("docs/language.md")) {
      if (line.starts_with("## ")) inside = isSectionOf(line, element.tag == C_RESULT ? C_MAP : element.tag);
      if (inside && line.starts_with("| `"))
        for (const std::string& code : quoted(line, '`')) named.insert(code);
    }
    for (const AttributeEntry& attribute : element.attributes) {
      EXPECT_TRUE(named.contains(std::string(attribute.name))) << element.tag << " " << attribute.name;
    }
  }
}

// What a document uses: each "tag" and "tag attribute".
void collect(const XMLNode& node, std::set<std::string>& used) {
  if (node.kind() != XMLNodeKind::Element) return;
  const std::string tag(*node.name());
  used.insert(tag);
  for (const XMLAttribute& attribute : node.attributes()) used.insert(tag + " " + std::string(*attribute.name()));
  for (const XMLNode& child : node.children()) collect(child, used);
}

TEST(Docs, AddressBookUsesTheWholeLanguage) {
  const auto result = Document::fromFile(root + "examples/addressbook.xml");
  ASSERT_TRUE(result.document) << result.error->message;
  EXPECT_EQ(findingsIn(result), Lines());
  std::set<std::string> used;
  collect(result.document->root(), used);
  for (const ElementEntry& element : vocabulary()) {
    EXPECT_TRUE(used.contains(std::string(element.tag))) << element.tag;
    for (const AttributeEntry& attribute : element.attributes) {
      const bool somewhere = std::any_of(vocabulary().begin(), vocabulary().end(), [&](const ElementEntry& other) {
        const AttributeEntry* same = attributeEntryOf(other, attribute.name);
        return same && same->meaning == attribute.meaning &&
               used.contains(std::string(other.tag).append(" ").append(attribute.name));
      });
      EXPECT_TRUE(somewhere) << element.tag << " " << attribute.name;
    }
  }
}

TEST(Docs, DocumentsThatNameTheirSchemaAreRight) {
  const Lines blocks = blocksOf("```xml", "docs/editors.md");
  const auto named = [](const std::string& block) { return block.find("<korvex") != std::string::npos; };
  EXPECT_EQ(std::count_if(blocks.begin(), blocks.end(), named), 2);
  for (const std::string& block : blocks) {
    EXPECT_TRUE(!named(block) || findingsIn(Document::fromBytes(block)).empty()) << block;
  }
}

}  // namespace
}  // namespace korvex
