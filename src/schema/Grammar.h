// What a schema says of each element, apart from the language that it is written in.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "language/Vocabulary.h"

namespace korvex::schema {

// What may stand inside an element: a regular expression over its texts and elements.
struct Particle {
  enum class Kind { Empty, Text, Element, AnyElement, Sequence, Choice, Optional, ZeroOrMore, OneOrMore };

  Kind kind = Kind::Empty;
  std::string_view tag = {};         // of an element
  std::vector<Particle> parts = {};  // several of a sequence or choice, one of what may be repeated or left out
};

struct Value {
  std::span<const std::string_view> words = {};  // beside the rest; an editor proposes them
  std::string_view pattern = {};                 // of the rest; empty: any text
  bool notEmpty = false;                         // the rest, without a pattern
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
  std::vector<Attributes> alternatives = {};  // one of these comes to the attributes; none when there are none
  bool anyOtherAttributes = false;
  bool oneAtLeast = false;  // of the other attributes
  Particle content = {};
};

[[nodiscard]] std::vector<Element> grammar();

// Every name of an attribute that the element knows.
[[nodiscard]] std::vector<std::string_view> attributeNamesOf(const Element& element);

// The element around the definitions: text and elements of other namespaces are passed over in it.
inline constexpr std::string_view rootDocumentation = "Definitions, in any order.";

}  // namespace korvex::schema
