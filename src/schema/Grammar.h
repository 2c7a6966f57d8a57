// The content of a schema, independent of the schema language.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "language/Vocabulary.h"

namespace korvex::schema {

// The allowed content of an element: a regular expression over texts and elements.
struct Particle {
  enum class Kind { Empty, Text, Element, AnyElement, Sequence, Choice, Optional, ZeroOrMore, OneOrMore };

  Kind kind = Kind::Empty;
  std::string_view tag = {};         // of an element
  std::vector<Particle> parts = {};  // several for a sequence or choice, one for an optional or repeated part
};

struct Value {
  std::span<const std::string_view> words = {};  // in addition to the pattern; editors suggest them
  std::string_view pattern = {};                 // for other values; empty: any text
  bool notEmpty = false;                         // for other values without a pattern
};

struct Attribute {
  std::string_view name;
  std::string_view documentation;
  bool required = false;
  Value value = {};
};

using Attributes = std::vector<Attribute>;

struct Element {
  std::string_view tag;
  std::string_view documentation;
  Attributes attributes = {};
  std::vector<Attributes> alternatives = {};  // one of these is added to the attributes; may be empty
  bool anyOtherAttributes = false;
  bool oneAtLeast = false;  // of the other attributes
  Particle content = {};
};

[[nodiscard]] std::vector<Element> grammar();

// The names of all attributes of the element.
[[nodiscard]] std::vector<std::string_view> attributeNamesOf(const Element& element);

// The element around the definitions: text and elements of other namespaces are ignored in it.
inline constexpr std::string_view rootDocumentation = "Definitions, in any order.";

}  // namespace korvex::schema
