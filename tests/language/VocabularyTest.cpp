// Holds the vocabulary against the elements, by changing a document that uses the whole language.
#include <gtest/gtest.h>

#include "korvex/Keywords.h"
#include "tests/support/AddressBook.h"

namespace korvex {
namespace {

// What keeps an optional attribute from being left out in the document at hand.
bool isNeededByAnother(const Markup& markup, const MarkupElement& element, std::string_view attribute) {
  const bool hasBoth = markup.valueOf(element, C_PREFIX_OVERRIDES) && markup.valueOf(element, C_SUFFIX_OVERRIDES);
  if (attribute.ends_with("Overrides")) return !hasBoth;
  return attribute == C_ARGUMENTS && markup.valueOf(element, C_FOREACH);
}

TEST(Vocabulary, RequiredAttributesAreRequired) {
  const std::string text = addressBook();
  forEachElement(text, [&](const Markup& markup, const MarkupElement& element, const ElementEntry& entry) {
    for (const MarkupAttribute& attribute : element.attributes) {
      const std::string_view name = markup.textOf(attribute.name);
      if (isNeededByAnother(markup, element, name)) continue;
      const AttributeEntry* known = attributeEntryOf(entry, name);
      const bool required = !known || known->required || entry.attributeRule == AttributeRule::ExactlyOne;
      std::string without = text;
      without.erase(attribute.name.begin, attribute.value->end + 1 - attribute.name.begin);
      EXPECT_EQ(isRefused(without), required) << entry.tag << " without " << name;
    }
  });
}

TEST(Vocabulary, OtherAttributesAreRefusedOrPassedOver) {
  const std::string text = addressBook();
  forEachElement(text, [&text](const Markup& /*markup*/, const MarkupElement& element, const ElementEntry& entry) {
    std::string more = text;
    more.insert(element.name.end, " unheardOf='1'");
    EXPECT_EQ(isRefused(more), entry.attributeRule != AttributeRule::OthersPassedOver) << entry.tag;
  });
}

TEST(Vocabulary, ChildrenAreThoseThatMayStandInside) {
  const std::string text = addressBook();
  forEachElement(text, [](const Markup& markup, const MarkupElement& element, const ElementEntry& entry) {
    const MarkupElement* parent = markup.parentOf(element);
    const ElementEntry* holder = parent ? vocabularyEntryOf(markup.nameOf(*parent)) : nullptr;
    if (!holder) return;
    EXPECT_NE(std::find(holder->children.begin(), holder->children.end(), entry.tag), holder->children.end())
        << entry.tag << " in " << holder->tag;
  });
  for (const ElementEntry& element : vocabulary()) {
    for (const std::string_view child : element.children) EXPECT_TRUE(vocabularyEntryOf(child)) << child;
  }
}

// Text and an unknown element, put into every element.
TEST(Vocabulary, ContentIsWhatMayStandInside) {
  const std::string text = addressBook();
  forEachElement(text, [&text](const Markup& markup, const MarkupElement& element, const ElementEntry& entry) {
    const bool empty = markup.textOf(element.startTag).ends_with("/>");
    const auto with = [&](const std::string& content) {
      std::string more = text;
      if (!empty) return more.insert(element.startTag.end, content);
      const std::string filling = ">" + content + "</" + std::string(entry.tag) + ">";
      return more.replace(element.startTag.end - 2, 2, filling);
    };
    const auto holdsOneOf = [&entry](std::initializer_list<Content> contents) {
      return std::find(contents.begin(), contents.end(), entry.content) != contents.end();
    };
    EXPECT_EQ(isRefused(with("<!-- -->")), holdsOneOf({Content::Nothing})) << entry.tag;
    EXPECT_EQ(isRefused(with("<unheardOf/>")), !holdsOneOf({Content::PassedOver})) << entry.tag;
    const bool sole = text.find("<step", element.startTag.end) == text.find('<', element.startTag.end) ||
                      text.find("<try", element.startTag.end) == text.find('<', element.startTag.end);
    if (!sole) {
      EXPECT_EQ(isRefused(with("x")), holdsOneOf({Content::Nothing, Content::Elements})) << entry.tag;
    }
  });
}

}  // namespace
}  // namespace korvex
