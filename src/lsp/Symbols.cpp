#include "lsp/Symbols.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackReader.h"
#include "lsp/Json.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex::lsp {

namespace {

// Numbers of the protocol's SymbolKind.
constexpr int symbolKindClass = 5;
constexpr int symbolKindMethod = 6;
constexpr int symbolKindVariable = 13;
constexpr int symbolKindConstant = 14;
constexpr int symbolKindString = 15;
constexpr int symbolKindKey = 20;
constexpr int symbolKindStruct = 23;

constexpr std::string_view noAttribute;

struct SymbolKind {
  std::string_view tag;
  int kind;
  std::string_view nameAttribute;    // empty: the name of the first attribute is the symbol's name
  std::string_view detailAttribute;  // shown after the name
};

constexpr std::array<SymbolKind, 10> symbolKinds = {{
    {C_SELECT, symbolKindMethod, C_ID, C_RESULT},
    {C_UPDATE, symbolKindMethod, C_ID, noAttribute},
    {C_INSERT, symbolKindMethod, C_ID, noAttribute},
    {C_DELETE, symbolKindMethod, C_ID, noAttribute},
    {C_UPGRADE, symbolKindMethod, C_TO_VERSION, noAttribute},
    {C_SQL, symbolKindString, C_ID, noAttribute},
    {C_CONST, symbolKindConstant, noAttribute, noAttribute},
    {C_MAP, symbolKindClass, C_ID, C_RESULT},
    {C_CRYPT, symbolKindKey, C_PROPERTY, C_CLASS},
    {C_PACK, symbolKindStruct, C_AS, C_PROPERTIES},
}};

// The attribute that names a definition; null while it has no value yet.
const MarkupAttribute* namingAttribute(const Markup& markup, const MarkupElement& element, std::string_view name) {
  if (!name.empty()) return markup.attributeOf(element, name);
  const auto found = std::find_if(element.attributes.begin(), element.attributes.end(),
                                  [](const MarkupAttribute& attribute) { return attribute.value.has_value(); });
  return found == element.attributes.end() ? nullptr : &*found;
}

// Writes symbols as JSON.
class SymbolWriter {
 public:
  explicit SymbolWriter(const MarkedDocument& document) : _document(document) {}

  [[nodiscard]] const std::string& text() const { return _text; }

  void writeDefinition(const MarkupElement& element, const SymbolKind& tag) {
    const Markup& markup = _document.markup();
    const MarkupAttribute* naming = namingAttribute(markup, element, tag.nameAttribute);
    Span place = element.name;
    if (naming) place = tag.nameAttribute.empty() ? naming->name : *naming->value;
    // The protocol does not allow an empty name.
    const std::string_view written = markup.textOf(place);
    beginSymbol(naming && !written.empty() ? written : tag.tag, tag.kind, element.whole, place);
    std::string detail(tag.tag);
    if (const auto more = markup.valueOf(element, tag.detailAttribute)) detail.append(" ").append(*more);
    _text.append(R"(,"detail":)").append(textOf(detail)).append(R"(,"children":[)");
    writeArguments(element);
    _text.append("]}");
  }

 private:
  // The arguments that a method declares, without empty ones, which the loader rejects.
  void writeArguments(const MarkupElement& element) {
    const MarkupAttribute* declaration = _document.markup().attributeOf(element, C_ARGUMENTS);
    if (!declaration) return;
    const std::string_view text = _document.markup().textOf(*declaration->value);
    for (const std::string_view piece : splitAt(text, ',')) {
      std::string_view name = spaceBothEndsTrimmed(piece);
      if (name.starts_with('$')) name.remove_prefix(1);
      if (name.empty()) continue;
      const std::size_t begin = declaration->value->begin + static_cast<std::size_t>(name.data() - text.data());
      const Span span{begin, begin + name.size()};
      beginSymbol(name, symbolKindVariable, span, span);
      _text.append("}");
    }
  }

  void beginSymbol(std::string_view name, int kind, Span whole, Span selection) {
    if (_text.ends_with('}')) _text.append(",");
    _text.append(R"({"name":)").append(textOf(name)).append(R"(,"kind":)").append(std::to_string(kind));
    writeRange(R"(,"range":)", whole);
    writeRange(R"(,"selectionRange":)", selection);
  }

  void writeRange(std::string_view key, Span span) {
    _text.append(key).append(R"({"start":)");
    writePosition(_document.text().positionOf(span.begin));
    _text.append(R"(,"end":)");
    writePosition(_document.text().positionOf(span.end));
    _text.append("}");
  }

  void writePosition(const Position& position) {
    _text.append(R"({"line":)").append(std::to_string(position.line));
    _text.append(R"(,"character":)").append(std::to_string(position.character)).append("}");
  }

  const MarkedDocument& _document;
  std::string _text;
};

}  // namespace

std::string symbolsOf(const MarkedDocument& document) {
  SymbolWriter writer(document);
  for (const MarkupElement& element : document.markup().elements()) {
    const MarkupElement* parent = document.markup().parentOf(element);
    const bool mayDefine = !parent || parent->parent == MarkupElement::none;
    const SymbolKind* tag = rowWith(symbolKinds, &SymbolKind::tag, document.markup().nameOf(element));
    if (mayDefine && tag) writer.writeDefinition(element, *tag);
  }
  return "[" + writer.text() + "]";
}

}  // namespace korvex::lsp
