#include "schema/Grammar.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvex::schema {

namespace {

using Kind = Particle::Kind;

constexpr std::array<std::string_view, 2> yesAndNo{"true", "false"};

Value valueOf(const AttributeEntry& attribute, bool notEmpty) {
  const bool yesOrNo = attribute.kind == ValueKind::YesOrNo;
  return {yesOrNo ? std::span<const std::string_view>(yesAndNo) : attribute.words, attribute.form, notEmpty};
}

Attribute attributeOf(const AttributeEntry& entry, bool required) {
  return {entry.name, entry.meaning, required, valueOf(entry, required)};
}

bool isOneOf(std::string_view name, std::span<const std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// One set of attributes for each of the names, in which that name is required.
void addAlternatives(Element& element, const ElementEntry& entry) {
  const bool exactlyOne = entry.attributeRule == AttributeRule::ExactlyOne;
  const auto takesPart = [&](const AttributeEntry& attribute) {
    return exactlyOne || isOneOf(attribute.name, entry.neededAttributes);
  };
  for (const AttributeEntry& required : entry.attributes) {
    if (!takesPart(required)) {
      element.attributes.push_back(attributeOf(required, required.required));
      continue;
    }
    Attributes alternative;
    for (const AttributeEntry& attribute : entry.attributes) {
      const bool same = attribute.name == required.name;
      if (same || (!exactlyOne && takesPart(attribute))) alternative.push_back(attributeOf(attribute, same));
    }
    element.alternatives.push_back(std::move(alternative));
  }
}

Particle elementWith(std::string_view tag) { return {Kind::Element, tag}; }

Particle repeated(Kind kind, Particle particle) { return {kind, {}, {std::move(particle)}}; }

// A sequence or choice of one part is that part.
Particle joined(Kind kind, std::vector<Particle> parts) {
  if (parts.size() == 1) return std::move(parts.front());
  return {kind, {}, std::move(parts)};
}

// Text and elements that are allowed anywhere in the element, in any number.
Particle freeContentOf(const ElementEntry& entry) {
  const ChildRules& rules = entry.childRules;
  const std::array bound{rules.last, rules.together, rules.alone};
  const bool mixed = entry.content == Content::TextAndElements;
  std::vector<Particle> parts;
  if (mixed) parts.push_back({Kind::Text});
  for (const std::string_view tag : entry.children) {
    if (!isOneOf(tag, bound)) parts.push_back(elementWith(tag));
  }
  if (mixed) {
    for (const std::string_view tag : toleratedTags()) parts.push_back(elementWith(tag));
  }
  return repeated(Kind::ZeroOrMore, joined(Kind::Choice, std::move(parts)));
}

Particle elementsOf(const ElementEntry& entry) {
  const ChildRules& rules = entry.childRules;
  std::vector<Particle> sequence{freeContentOf(entry)};
  if (!rules.last.empty()) {
    const Particle last = elementWith(rules.last);
    sequence.push_back(rules.lastRequired ? last : repeated(Kind::Optional, last));
  }
  std::vector<Particle> choice{joined(Kind::Sequence, std::move(sequence))};
  if (!rules.together.empty()) choice.push_back(repeated(Kind::OneOrMore, elementWith(rules.together)));
  if (!rules.alone.empty()) choice.push_back(elementWith(rules.alone));
  return joined(Kind::Choice, std::move(choice));
}

Particle contentOf(const ElementEntry& entry) {
  switch (entry.content) {
    case Content::Nothing:
      return {};
    case Content::Text:
      return {Kind::Text};
    case Content::Ignored:
      return repeated(Kind::ZeroOrMore, {Kind::Choice, {}, {{Kind::Text}, {Kind::AnyElement}}});
    case Content::Elements:
    case Content::TextAndElements:
      break;
  }
  return elementsOf(entry);
}

Element elementOf(const ElementEntry& entry) {
  Element element{entry.tag, entry.meaning};
  addAlternatives(element, entry);
  element.oneAtLeast = entry.attributeRule == AttributeRule::AnyOneName;
  element.anyOtherAttributes = element.oneAtLeast || entry.attributeRule == AttributeRule::OthersIgnored;
  element.content = contentOf(entry);
  return element;
}

}  // namespace

std::vector<Element> grammar() {
  std::vector<Element> elements;
  for (const ElementEntry& entry : vocabulary()) elements.push_back(elementOf(entry));
  return elements;
}

std::vector<std::string_view> attributeNamesOf(const Element& element) {
  std::vector<std::string_view> names;
  const auto add = [&names](const Attributes& attributes) {
    for (const Attribute& attribute : attributes) {
      if (!isOneOf(attribute.name, names)) names.push_back(attribute.name);
    }
  };
  add(element.attributes);
  for (const Attributes& alternative : element.alternatives) add(alternative);
  return names;
}

}  // namespace korvex::schema
