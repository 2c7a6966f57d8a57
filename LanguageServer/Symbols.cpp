#include "LanguageServer/Symbols.h"

#include <array>
#include <string>
#include <string_view>

#include "DAO/QXDAOElement.h"
#include "Platform/Strings.h"
#include "Platform/Tables.h"

namespace korvex::lsp {

namespace {

// Numbers of the protocol's SymbolKind.
constexpr int kindClass = 5;
constexpr int kindMethod = 6;
constexpr int kindVariable = 13;
constexpr int kindConstant = 14;
constexpr int kindString = 15;
constexpr int kindKey = 20;
constexpr int kindStruct = 23;

constexpr std::string_view nothing;

struct DefinitionTag {
  std::string_view tag;
  int kind;
  std::string_view nameAttribute;    // empty: the name of the first attribute is the name
  std::string_view detailAttribute;  // what stands beside the name
};

constexpr std::array<DefinitionTag, 10> definitionTags = {{
    {C_SELECT, kindMethod, C_ID, C_RESULT},
    {C_UPDATE, kindMethod, C_ID, nothing},
    {C_INSERT, kindMethod, C_ID, nothing},
    {C_DELETE, kindMethod, C_ID, nothing},
    {C_UPGRADE, kindMethod, C_TO_VERSION, nothing},
    {C_SQL, kindString, C_ID, nothing},
    {C_CONST, kindConstant, nothing, nothing},
    {C_MAP, kindClass, C_ID, C_RESULT},
    {C_CRYPT, kindKey, C_PROPERTY, C_CLASS},
    {C_PACK, kindStruct, C_AS, C_PROPERTIES},
}};

const MarkupAttribute* attributeNamed(const Markup& markup, const MarkupElement& element, std::string_view name) {
  for (const MarkupAttribute& attribute : element.attributes) {
    if (attribute.value && (name.empty() || markup.textOf(attribute.name) == name)) return &attribute;
  }
  return nullptr;
}

Json symbol(std::string_view name, int kind, const TextDocument& text, Span whole, Span selection) {
  return {{"name", name}, {"kind", kind}, {"range", text.rangeOf(whole)}, {"selectionRange", text.rangeOf(selection)}};
}

// The arguments that a method declares; empty pieces, which the loader refuses, are left out.
Json argumentsOf(const MarkedDocument& document, const MarkupElement& element) {
  Json symbols = Json::array();
  const MarkupAttribute* declaration = attributeNamed(document.markup(), element, C_ARGUMENTS);
  if (!declaration) return symbols;
  const std::string_view text = document.markup().textOf(*declaration->value);
  for (const std::string_view piece : splitAt(text, ',')) {
    std::string_view name = spaceBothEndsTrimmed(piece);
    if (name.starts_with('$')) name.remove_prefix(1);
    if (name.empty()) continue;
    const std::size_t begin = declaration->value->begin + static_cast<std::size_t>(name.data() - text.data());
    const Span span{begin, begin + name.size()};
    symbols.push_back(symbol(name, kindVariable, document.text(), span, span));
  }
  return symbols;
}

Json symbolOf(const MarkedDocument& document, const MarkupElement& element, const DefinitionTag& tag) {
  const Markup& markup = document.markup();
  const MarkupAttribute* naming = attributeNamed(markup, element, tag.nameAttribute);
  Span place = element.name;
  if (naming) place = tag.nameAttribute.empty() ? naming->name : *naming->value;
  // The protocol does not allow an empty name.
  const std::string_view written = markup.textOf(place);
  Json result = symbol(naming && !written.empty() ? written : tag.tag, tag.kind, document.text(), element.whole, place);
  std::string detail(tag.tag);
  if (const auto more = markup.valueOf(element, tag.detailAttribute)) detail.append(" ").append(*more);
  result["detail"] = detail;
  result["children"] = argumentsOf(document, element);
  return result;
}

}  // namespace

Json symbolsOf(const MarkedDocument& document) {
  Json symbols = Json::array();
  for (const MarkupElement& element : document.markup().elements()) {
    const MarkupElement* parent = document.markup().parentOf(element);
    const bool mayDefine = !parent || parent->parent == MarkupElement::none;
    const DefinitionTag* tag = rowWith(definitionTags, &DefinitionTag::tag, document.markup().nameOf(element));
    if (mayDefine && tag) symbols.push_back(symbolOf(document, element, *tag));
  }
  return symbols;
}

}  // namespace korvex::lsp
