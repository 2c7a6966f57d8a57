// The vocabulary of the language: which elements there are, what may stand in each, and what it is for.
//
// For those who help people write definitions: schemas, editors, documents. Whether a definition is right the elements
// of DAO/ decide; tests hold this table against them.
#pragma once
#include <span>
#include <string_view>

namespace korvex {

enum class ValueKind {
  Text,       // any
  YesOrNo,    // the language's boolean
  OneOf,      // one of the words; any other text means none of them
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
  // What the values of this attribute look like, as a regular expression of XML Schema. Without one a value is any
  // text, but not an empty one when the attribute is required. A value in this form may still be wrong for other
  // reasons.
  std::string_view form = {};
};

// How the attributes of an element go together, beyond those that are required.
enum class AttributeRule {
  OthersPassedOver,  // an attribute that is not listed means nothing
  NoOthers,          // it is refused
  ExactlyOne,        // of those listed, not empty, and no other
  AnyOneName,        // exactly one, of whatever name
};

enum class Content {
  Nothing,          // not even a comment
  Text,             // and comments
  Elements,         // and comments
  TextAndElements,  // and comments
  PassedOver,       // whatever stands inside
};

// How the children of an element go together.
struct ChildRules {
  std::string_view last = {};  // stands behind all others, and once at most
  bool lastRequired = false;
  std::string_view together = {};  // where it stands there is nothing but more of it
  std::string_view alone = {};     // where it stands there is nothing else
};

struct ElementEntry {
  std::string_view tag;
  std::string_view meaning;  // a sentence or two
  std::span<const AttributeEntry> attributes = {};
  AttributeRule attributeRule = AttributeRule::OthersPassedOver;
  Content content = Content::Nothing;
  std::span<const std::string_view> children = {};  // the tags of the elements that may stand directly in it
  ChildRules childRules = {};
  std::span<const std::string_view> neededAttributes = {};  // at least one of these, not empty
};

// All elements, definitions first, in the order of docs/language.md.
[[nodiscard]] std::span<const ElementEntry> vocabulary();
// Null for a tag that the language does not have.
[[nodiscard]] const ElementEntry* vocabularyEntryOf(std::string_view tag);
[[nodiscard]] const AttributeEntry* attributeEntryOf(const ElementEntry& element, std::string_view name);

// The tags of elements that are not refused beside text and other elements, though nobody means them to stand there.
[[nodiscard]] std::span<const std::string_view> toleratedTags();

}  // namespace korvex
