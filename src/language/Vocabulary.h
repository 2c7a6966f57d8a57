// The vocabulary of the language: its elements, what each may contain, and what it is for.
//
// It serves schemas, editors and documents. Whether a definition is valid is decided by the elements of src/dao/; tests
// compare this table with them.
#pragma once

#include <span>
#include <string_view>

namespace korvex {

enum class ValueKind {
  Text,       // any text
  YesOrNo,    // the language's boolean
  OneOf,      // one of the words; any other text counts as none of them
  Number,     // a decimal number, or one of the words
  Result,     // what a row becomes: one of the words, the name of a class, ":" and that of a map; [...] around it
  Condition,  // an expression
  Names,      // separated by commas
};

struct AttributeEntry {
  std::string_view name;
  std::string_view meaning;  // a sentence or two
  bool required = false;
  ValueKind kind = ValueKind::Text;
  std::span<const std::string_view> words = {};
  // The form of the values, as a regular expression of XML Schema. Without one, a value is any text, though not empty
  // when the attribute is required. A value of this form may still be invalid for other reasons.
  std::string_view form = {};
};

// Which attributes an element may have, beyond those that are required.
enum class AttributeRule {
  OthersIgnored,  // an attribute that is not listed has no effect
  NoOthers,       // an attribute that is not listed is rejected
  ExactlyOne,     // of those listed, not empty, and no other
  AnyOneName,     // exactly one, with any name
};

enum class Content {
  Nothing,          // not even a comment
  Text,             // and comments
  Elements,         // and comments
  TextAndElements,  // and comments
  Ignored,          // anything, without effect
};

// How the children of an element may be combined.
struct ChildRules {
  std::string_view last = {};  // comes after all others, at most once
  bool lastRequired = false;
  std::string_view together = {};  // only others of the same tag may be beside it
  std::string_view alone = {};     // nothing may be beside it
};

struct ElementEntry {
  std::string_view tag;
  std::string_view meaning;  // a sentence or two
  std::span<const AttributeEntry> attributes = {};
  AttributeRule attributeRule = AttributeRule::OthersIgnored;
  Content content = Content::Nothing;
  std::span<const std::string_view> children = {};  // the tags of the elements that may be its children
  ChildRules childRules = {};
  std::span<const std::string_view> neededAttributes = {};  // at least one of these, not empty
};

// All elements, definitions first, in the order of docs/language.md.
[[nodiscard]] std::span<const ElementEntry> vocabulary();
// Null for a tag that is not part of the language.
[[nodiscard]] const ElementEntry* vocabularyEntryOf(std::string_view tag);
[[nodiscard]] const AttributeEntry* attributeEntryOf(const ElementEntry& element, std::string_view name);

// The tags of elements that are accepted beside text and other elements, although they have no meaning there.
[[nodiscard]] std::span<const std::string_view> toleratedTags();

}  // namespace korvex
