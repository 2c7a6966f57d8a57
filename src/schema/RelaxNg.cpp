#include <array>

#include "korvex/Keywords.h"
#include "schema/Writers.h"

namespace korvex::schema {

namespace {

Node reference(std::string_view name) { return {"ref", {{"name", std::string(name)}}}; }

Node wrapped(std::string name, Node child) { return {std::move(name), {}, {std::move(child)}}; }

void document(Node& node, std::string_view text) {
  node.children.push_back({"a:documentation", {}, {}, std::string(text)});
}

// ---------------------------------------------------------------------------------------------
// Names

// Any name but these.
Node anyNameBut(std::span<const std::string_view> names) {
  Node anyName{"anyName"};
  if (names.empty()) return anyName;
  Node except{"except"};
  for (const std::string_view name : names) except.children.push_back({"name", {}, {}, std::string(name)});
  anyName.children.push_back(std::move(except));
  return anyName;
}

Node otherAttributes(std::span<const std::string_view> known, bool oneAtLeast) {
  Node attribute{"attribute", {}, {anyNameBut(known), {"text"}}};
  return wrapped(oneAtLeast ? "oneOrMore" : "zeroOrMore", std::move(attribute));
}

// ---------------------------------------------------------------------------------------------
// Attributes

Node restOf(const Value& value) {
  if (value.pattern.empty() && !value.notEmpty) return {"text"};
  const std::string_view facet = value.pattern.empty() ? "minLength" : "pattern";
  const std::string_view wanted = value.pattern.empty() ? "1" : value.pattern;
  return {"data", {{"type", "string"}}, {{"param", {{"name", std::string(facet)}}, {}, std::string(wanted)}}};
}

Node patternOf(const Value& value) {
  if (value.words.empty()) return restOf(value);
  Node choice{"choice"};
  for (const std::string_view word : value.words) choice.children.push_back({"value", {}, {}, std::string(word)});
  choice.children.push_back(restOf(value));
  return choice;
}

Node patternOf(const Attribute& attribute) {
  Node node{"attribute", {{"name", std::string(attribute.name)}}};
  document(node, attribute.documentation);
  node.children.push_back(patternOf(attribute.value));
  return attribute.required ? node : wrapped("optional", std::move(node));
}

Node patternOf(const Attributes& attributes) {
  if (attributes.size() == 1) return patternOf(attributes.front());
  Node group{"group"};
  for (const Attribute& attribute : attributes) group.children.push_back(patternOf(attribute));
  return group;
}

// ---------------------------------------------------------------------------------------------
// Elements

constexpr std::string_view anyElement = "any";
constexpr std::string_view elementElsewhere = "other-namespace";
constexpr std::string_view rootElement = "root";

// By Particle::Kind.
constexpr std::array<std::string_view, 9> tagsOfKinds{"empty",  "text",     "ref",        "ref",      "group",
                                                      "choice", "optional", "zeroOrMore", "oneOrMore"};

Node patternOf(const Particle& particle) {
  if (particle.kind == Particle::Kind::Element) return reference(particle.tag);
  if (particle.kind == Particle::Kind::AnyElement) return reference(anyElement);
  Node node{std::string(tagsOfKinds[static_cast<std::size_t>(particle.kind)])};
  for (const Particle& part : particle.parts) node.children.push_back(patternOf(part));
  return node;
}

Node definition(std::string_view name, Node pattern) {
  return {"define", {{"name", std::string(name)}}, {std::move(pattern)}};
}

Node definitionOf(const Element& element) {
  Node node{"element", {{"name", std::string(element.tag)}}};
  document(node, element.documentation);
  for (const Attribute& attribute : element.attributes) node.children.push_back(patternOf(attribute));
  if (!element.alternatives.empty()) {
    Node choice{"choice"};
    for (const Attributes& alternative : element.alternatives) choice.children.push_back(patternOf(alternative));
    node.children.push_back(std::move(choice));
  }
  if (element.anyOtherAttributes) {
    node.children.push_back(otherAttributes(attributeNamesOf(element), element.oneAtLeast));
  }
  node.children.push_back(patternOf(element.content));
  return definition(element.tag, std::move(node));
}

Node choiceOfDefinitions(Node first) {
  Node choice{"choice", {}, {std::move(first)}};
  for (const std::string_view tag : definitionTags) choice.children.push_back(reference(tag));
  return choice;
}

Node definitionOfRoot(std::string_view tag) {
  Node node{"element"};
  if (!tag.empty()) node.attributes.emplace_back("name", tag);
  document(node, rootDocumentation);
  if (tag.empty()) node.children.push_back(anyNameBut(definitionTags));
  node.children.push_back(otherAttributes({}, false));
  Node choice = choiceOfDefinitions({"text"});
  choice.children.push_back(reference(elementElsewhere));
  node.children.push_back(wrapped("zeroOrMore", std::move(choice)));
  return definition(rootElement, std::move(node));
}

// An element of such a name, with any content.
Node definitionOfAnything(std::string_view name, Node nameClass) {
  const Node inside{"choice", {}, {{"text"}, reference(anyElement)}};
  return definition(name,
                    {"element", {}, {std::move(nameClass), otherAttributes({}, false), wrapped("zeroOrMore", inside)}});
}

}  // namespace

Node relaxNg(const std::vector<Element>& elements, std::string_view root) {
  Node grammar{"grammar",
               {{"xmlns", "http://relaxng.org/ns/structure/1.0"},
                {"xmlns:a", "http://relaxng.org/ns/compatibility/annotations/1.0"},
                {"datatypeLibrary", "http://www.w3.org/2001/XMLSchema-datatypes"}}};
  grammar.children.push_back(wrapped("start", choiceOfDefinitions(reference(rootElement))));
  grammar.children.push_back(definitionOfRoot(root));
  for (const Element& element : elements) grammar.children.push_back(definitionOf(element));
  grammar.children.push_back(definitionOfAnything(anyElement, {"anyName"}));
  Node elsewhere{"anyName", {}, {wrapped("except", {"nsName", {{"ns", ""}}})}};
  grammar.children.push_back(definitionOfAnything(elementElsewhere, std::move(elsewhere)));
  return grammar;
}

}  // namespace korvex::schema
