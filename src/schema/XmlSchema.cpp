#include <algorithm>

#include "korvex/Keywords.h"
#include "schema/Writers.h"

namespace korvex::schema {

namespace {

constexpr std::string_view exampleRoot = "korvex";
constexpr std::string_view rootType = "definitions";
constexpr std::string_view nothingType = "nothing";

std::string xs(std::string_view name) { return "xs:" + std::string(name); }

Node documented(std::string_view text) {
  return {"xs:annotation", {}, {{"xs:documentation", {}, {}, std::string(text)}}};
}

// ---------------------------------------------------------------------------------------------
// Attributes

Node restriction(std::string base, std::vector<Node> facets) {
  return {"xs:restriction", {{"base", std::move(base)}}, std::move(facets)};
}

Node simpleType(Node content) { return {"xs:simpleType", {}, {std::move(content)}}; }

Node facet(std::string_view name, std::string_view value) { return {xs(name), {{"value", std::string(value)}}}; }

// For values other than the words: a restriction of xs:string, or xs:string itself without facets.
std::vector<Node> facetsOf(const Value& value) {
  if (!value.pattern.empty()) return {facet("pattern", value.pattern)};
  if (value.notEmpty) return {facet("minLength", "1")};
  return {};
}

Node unionOf(const Value& value) {
  std::vector<Node> words;
  for (const std::string_view word : value.words) words.push_back(facet("enumeration", word));
  Node result{"xs:union", {}, {simpleType(restriction("xs:string", std::move(words)))}};
  std::vector<Node> facets = facetsOf(value);
  if (facets.empty()) {
    result.attributes.emplace_back("memberTypes", "xs:string");
  } else {
    result.children.push_back(simpleType(restriction("xs:string", std::move(facets))));
  }
  return result;
}

Node declarationOf(const Attribute& attribute) {
  Node node{"xs:attribute", {{"name", std::string(attribute.name)}}};
  std::vector<Node> facets = facetsOf(attribute.value);
  const bool plain = attribute.value.words.empty() && facets.empty();
  if (plain) node.attributes.emplace_back("type", "xs:string");
  if (attribute.required) node.attributes.emplace_back("use", "required");
  node.children.push_back(documented(attribute.documentation));
  if (!attribute.value.words.empty()) {
    node.children.push_back(simpleType(unionOf(attribute.value)));
  } else if (!plain) {
    node.children.push_back(simpleType(restriction("xs:string", std::move(facets))));
  }
  return node;
}

// XML Schema cannot express that one of two attributes is required, or that its value must not be empty. The first
// alternative in which the attribute is optional declares it, otherwise the first alternative.
Attribute loosened(std::string_view name, const Element& element) {
  Attribute result;
  for (const Attributes& alternative : element.alternatives) {
    for (const Attribute& attribute : alternative) {
      if (attribute.name == name && (result.name.empty() || !attribute.required)) result = attribute;
    }
  }
  result.required = false;
  return result;
}

void addAttributes(std::vector<Node>& nodes, const Element& element) {
  for (const std::string_view name : attributeNamesOf(element)) {
    const auto fixed = std::find_if(element.attributes.begin(), element.attributes.end(),
                                    [name](const Attribute& attribute) { return attribute.name == name; });
    nodes.push_back(declarationOf(fixed != element.attributes.end() ? *fixed : loosened(name, element)));
  }
  if (element.anyOtherAttributes) nodes.push_back({"xs:anyAttribute", {{"processContents", "skip"}}});
}

// ---------------------------------------------------------------------------------------------
// Content

bool holdsText(const Particle& particle) {
  return particle.kind == Particle::Kind::Text || std::any_of(particle.parts.begin(), particle.parts.end(), holdsText);
}

Node declaration(std::string_view tag, std::string_view type) {
  return {"xs:element", {{"name", std::string(tag)}, {"type", std::string(type)}}};
}

Node anyElementOf(std::string_view nameSpace) {
  return {"xs:any", {{"namespace", std::string(nameSpace)}, {"processContents", "skip"}}};
}

void setOccurrence(Node& node, Particle::Kind kind) {
  if (kind != Particle::Kind::OneOrMore) node.attributes.emplace_back("minOccurs", "0");
  if (kind != Particle::Kind::Optional) node.attributes.emplace_back("maxOccurs", "unbounded");
}

Node particleOf(const Particle& particle);

// Text is allowed by the type, not by its particles. A choice of one element is that element.
Node modelGroupOf(const Particle& particle) {
  Node group{particle.kind == Particle::Kind::Choice ? "xs:choice" : "xs:sequence"};
  for (const Particle& part : particle.parts) {
    if (part.kind != Particle::Kind::Text) group.children.push_back(particleOf(part));
  }
  return group.children.size() == 1 ? group.children.front() : group;
}

Node particleOf(const Particle& particle) {
  switch (particle.kind) {
    case Particle::Kind::Element:
      return declaration(particle.tag, particle.tag);
    case Particle::Kind::AnyElement:
      return anyElementOf("##any");
    case Particle::Kind::Optional:
    case Particle::Kind::ZeroOrMore:
    case Particle::Kind::OneOrMore: {
      Node node = particleOf(particle.parts.front());
      setOccurrence(node, particle.kind);
      return node;
    }
    default:
      return modelGroupOf(particle);
  }
}

// A type holds a model group, not an element.
Node contentOf(const Particle& particle) {
  Node node = particleOf(particle);
  const bool isGroup = node.name == "xs:choice" || node.name == "xs:sequence";
  return isGroup ? node : Node{"xs:sequence", {}, {std::move(node)}};
}

// ---------------------------------------------------------------------------------------------
// Types

Node typeOf(const Element& element) {
  Node type{"xs:complexType", {{"name", std::string(element.tag)}}};
  if (holdsText(element.content)) type.attributes.emplace_back("mixed", "true");
  type.children.push_back(documented(element.documentation));
  if (element.content.kind == Particle::Kind::Empty) {
    Node extension{"xs:extension", {{"base", std::string(nothingType)}}};
    addAttributes(extension.children, element);
    type.children.push_back({"xs:simpleContent", {}, {std::move(extension)}});
    return type;
  }
  if (element.content.kind != Particle::Kind::Text) type.children.push_back(contentOf(element.content));
  addAttributes(type.children, element);
  return type;
}

// No content except white space, which an empty type would not allow.
Node typeOfNothing() {
  Node type = simpleType(restriction("xs:token", {facet("maxLength", "0")}));
  type.attributes.emplace_back("name", nothingType);
  return type;
}

Node typeOfRoot() {
  Node choice{"xs:choice", {{"minOccurs", "0"}, {"maxOccurs", "unbounded"}}};
  for (const std::string_view tag : definitionTags) choice.children.push_back(declaration(tag, tag));
  choice.children.push_back(anyElementOf("##other"));
  return {"xs:complexType",
          {{"name", std::string(rootType)}, {"mixed", "true"}},
          {documented(rootDocumentation), std::move(choice), {"xs:anyAttribute", {{"processContents", "skip"}}}}};
}

}  // namespace

Node xmlSchema(const std::vector<Element>& elements, std::string_view root) {
  Node schema{"xs:schema", {{"xmlns:xs", "http://www.w3.org/2001/XMLSchema"}}};
  schema.children.push_back(declaration(root.empty() ? exampleRoot : root, rootType));
  for (const std::string_view tag : definitionTags) schema.children.push_back(declaration(tag, tag));
  schema.children.push_back(typeOfRoot());
  for (const Element& element : elements) schema.children.push_back(typeOf(element));
  schema.children.push_back(typeOfNothing());
  return schema;
}

}  // namespace korvex::schema
