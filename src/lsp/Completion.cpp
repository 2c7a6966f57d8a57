#include "lsp/Completion.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackReader.h"
#include "lsp/Descriptions.h"
#include "lsp/Navigation.h"
#include "lsp/Place.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex::lsp {

namespace {

// Numbers of the protocol's CompletionItemKind.
constexpr int itemKindClass = 7;
constexpr int itemKindProperty = 10;
constexpr int itemKindValue = 12;
constexpr int itemKindReference = 18;

// Numbers of its InsertTextFormat.
constexpr int plainTextFormat = 1;
constexpr int snippetFormat = 2;

constexpr std::array<std::string_view, 2> yesAndNo = {"true", "false"};

std::string tabStop(int number) { return std::string("$").append(std::to_string(number)); }

std::string inAngle(std::string_view rest) { return std::string("<").append(rest); }

// "${1|one,other|}"
std::string choice(int number, std::span<const std::string_view> words) {
  std::string text = std::string("${").append(std::to_string(number)).append("|");
  for (const std::string_view word : words) text.append(word).append(word == words.back() ? "|}" : ",");
  return text;
}

std::span<const std::string_view> fixedWords(const AttributeEntry& attribute) {
  if (attribute.kind == ValueKind::YesOrNo) return yesAndNo;
  return attribute.kind == ValueKind::OneOf ? attribute.words : std::span<const std::string_view>();
}

// The initial text of a tab stop, for attributes that do not accept just any text.
struct Placeholder {
  std::string_view attribute;
  std::string_view value;
};

constexpr std::array<Placeholder, 3> placeholders = {{
    {C_TO_VERSION, C_INITIAL},
    {C_PROPERTIES, "first,second"},
    {C_FOREACH, "collection.item"},
}};

// "${1:value}"
std::string tabStopFor(const AttributeEntry& attribute, int number) {
  const Placeholder* placeholder = rowWith(placeholders, &Placeholder::attribute, attribute.name);
  if (!placeholder) return tabStop(number);
  return std::string("${").append(std::to_string(number)).append(":").append(placeholder->value).append("}");
}

// name="…", with a tab stop for the value.
std::string attributeSnippet(const AttributeEntry& attribute, int number) {
  const std::span<const std::string_view> words = fixedWords(attribute);
  const std::string value = words.size() > 1 ? choice(number, words) : tabStopFor(attribute, number);
  return std::string(attribute.name).append("=\"").append(value).append("\"");
}

// The attributes that a new element requires, each after a space.
std::string attributesSnippet(const ElementEntry& element) {
  std::string text;
  if (element.attributeRule == AttributeRule::AnyOneName) return " ${1:NAME}=\"$2\"";
  if (element.attributeRule == AttributeRule::ExactlyOne) {
    std::vector<std::string_view> names;
    for (const AttributeEntry& attribute : element.attributes) names.push_back(attribute.name);
    return std::string(" ").append(choice(1, names)).append("=\"$2\"");
  }
  int number = 0;
  for (const AttributeEntry& attribute : element.attributes) {
    if (attribute.required) text.append(" ").append(attributeSnippet(attribute, ++number));
  }
  if (element.neededAttributes.empty()) return text;
  text.append(" ").append(choice(number + 1, element.neededAttributes));
  return text.append("=\"").append(tabStop(number + 2)).append("\"");
}

// The content that a new element requires, with a tab stop for the rest.
std::string contentSnippet(const ElementEntry& element) {
  const std::string_view last = element.childRules.last;
  if (!element.childRules.lastRequired) return "$0";
  return std::string("$0<").append(last).append("></").append(last).append(">");
}

// A new element from its name to its end.
std::string elementSnippet(const ElementEntry& element) {
  const std::string start = std::string(element.tag) + attributesSnippet(element);
  if (element.content == Content::Nothing || element.content == Content::Ignored) return start + "/>$0";
  return std::string(start).append(">").append(contentSnippet(element)).append("</").append(element.tag).append(">");
}

class Completer {
 public:
  Completer(const MarkedDocument& document, std::size_t offset, const Workspace& workspace, CompletionOptions options)
      : _document(document),
        _markup(document.markup()),
        _text(document.text().text()),
        _offset(offset),
        _workspace(workspace),
        _options(options) {}

  Json run() {
    const Place place = placeAt(_document, _offset);
    switch (place.kind) {
      case PlaceKind::Nothing:
        break;
      case PlaceKind::Content:
        addNewElements(place.element);
        break;
      case PlaceKind::TagName:
        addTags(*place.element);
        break;
      case PlaceKind::EndTagName:
        if (place.element) addEndTag(*place.element, place.word);
        break;
      case PlaceKind::AttributeName:
        addAttributes(place, _offset > place.word.begin ? place.word : Span{_offset, _offset});
        break;
      case PlaceKind::InTag:
        addAttributes(place, place.word);
        break;
      case PlaceKind::AttributeValue:
        addValues(*place.element, *place.attribute);
        break;
    }
    return std::move(_items);
  }

 private:
  // Only after white space or a tag: a word in a text is not the beginning of an element.
  void addNewElements(const MarkupElement* parent) {
    const bool separated = _offset == 0 || isXMLWhiteSpace(_text[_offset - 1]) || _text[_offset - 1] == '>';
    if (!parent || !_options.invoked || !separated) return;
    for (const ElementEntry* element : childrenOf(*parent)) {
      const std::string tag = inAngle(element->tag);
      Json& item = addItem(element->tag, itemKindClass, descriptionOf(*element));
      item["filterText"] = tag;
      setEdit(item, {_offset, _offset}, tag, _options.snippets ? inAngle(elementSnippet(*element)) : "");
    }
  }

  // Where the tag is already complete, only the name changes.
  void addTags(const MarkupElement& tag) {
    const MarkupElement* parent = _markup.parentOf(tag);
    const bool hasRest = isClosed(tag) || std::any_of(tag.attributes.begin(), tag.attributes.end(),
                                                      [](const MarkupAttribute& some) { return some.value; });
    for (const ElementEntry* element : parent ? childrenOf(*parent) : entriesOf(definitionTags)) {
      Json& item = addItem(element->tag, itemKindClass, descriptionOf(*element));
      setEdit(item, tag.name, element->tag, _options.snippets && !hasRest ? elementSnippet(*element) : "");
    }
  }

  void addEndTag(const MarkupElement& element, Span word) {
    if (element.name.begin == element.name.end) return;
    const std::string name(_markup.nameOf(element));
    const std::size_t next = std::min(_text.find_first_not_of(xmlWhiteSpace, word.end), _text.size());
    const bool ended = next < _text.size() && _text[next] == '>';
    setEdit(addItem(name, itemKindClass, ""), word, ended ? name : name + ">", "");
  }

  void addAttributes(const Place& place, Span word) {
    const ElementEntry* element = vocabularyEntryOf(_markup.nameOf(*place.element));
    if (!element || !isXMLWhiteSpace(_text[word.begin - 1])) return;
    const bool inserted = word.begin == word.end;
    const auto isTaken = [&](std::string_view name) {
      return std::any_of(place.element->attributes.begin(), place.element->attributes.end(),
                         [&](const MarkupAttribute& present) {
                           const bool underCursor = !inserted && present.name == word;
                           return !underCursor && _markup.textOf(present.name) == name;
                         });
    };
    const bool valued = !inserted && place.attribute && place.attribute->value;
    const bool onePresent = std::any_of(element->attributes.begin(), element->attributes.end(),
                                        [&](const AttributeEntry& entry) { return isTaken(entry.name); });
    if (element->attributeRule == AttributeRule::ExactlyOne && onePresent) return;
    // Before another attribute, a space must follow the new one.
    const std::string separator = inserted && place.attribute ? " " : "";
    for (const AttributeEntry& entry : element->attributes) {
      if (isTaken(entry.name)) continue;
      Json& item = addItem(entry.name, itemKindProperty, descriptionOf(entry, *element));
      const std::string name(entry.name);
      if (valued) {
        setEdit(item, word, name, "");
      } else {
        setEdit(item, word, name + "=\"\"" + separator,
                _options.snippets ? attributeSnippet(entry, 1) + "$0" + separator : "");
      }
    }
  }

  void addValues(const MarkupElement& tag, const MarkupAttribute& written) {
    const ElementEntry* element = vocabularyEntryOf(_markup.nameOf(tag));
    const AttributeEntry* attribute = element ? attributeEntryOf(*element, _markup.textOf(written.name)) : nullptr;
    if (!attribute) return;
    Span word = wordIn(*written.value);
    const bool quoted = _text[word.begin - 1] == '"' || _text[word.begin - 1] == '\'';
    if (attribute->kind == ValueKind::Result && _document.markup().textOf(word).starts_with('[')) {
      ++word.begin;
      if (word.end > word.begin && _text[word.end - 1] == ']') --word.end;
      if (!word.touches(_offset)) return;
    }
    const bool wantsMap = _markup.textOf(word).starts_with(':');
    const std::string quote = quoted || word != wordIn(*written.value) ? "" : "\"";
    const auto add = [&](const std::string& value, int kind) {
      setEdit(addItem(value, kind, ""), word, quote + value + quote, "");
    };
    if (!wantsMap) {
      for (const std::string_view value : attribute->kind == ValueKind::YesOrNo ? yesAndNo : attribute->words) {
        add(std::string(value), itemKindValue);
      }
    }
    if (attribute->kind != ValueKind::Result) return;
    for (const std::string& name : mapNames(_workspace)) add(std::string(":").append(name), itemKindReference);
  }

  // A value without its closing quote includes the text that follows; the word at the cursor ends earlier.
  [[nodiscard]] Span wordIn(Span value) const {
    const std::string_view text = _markup.textOf(value);
    const std::size_t at = _offset - value.begin;
    const std::size_t lineEnd = at == 0 ? std::string_view::npos : text.find_last_of("\r\n", at - 1);
    const std::size_t begin = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
    const bool unclosed = text.find_first_of("=>\r\n", at) != std::string_view::npos;
    const std::size_t end = unclosed ? std::min(text.find_first_of(" \t\r\n=>", at), text.size()) : text.size();
    return {value.begin + begin, value.begin + end};
  }

  [[nodiscard]] bool isClosed(const MarkupElement& element) const { return _text[element.startTag.end - 1] == '>'; }

  // The children of the root are definitions, whatever its name.
  [[nodiscard]] std::vector<const ElementEntry*> childrenOf(const MarkupElement& parent) const {
    const ElementEntry* entry = vocabularyEntryOf(_markup.nameOf(parent));
    if (!_markup.parentOf(parent) && !(entry && isDefinitionTag(entry->tag))) return entriesOf(definitionTags);
    return entry ? entriesOf(entry->children) : std::vector<const ElementEntry*>();
  }

  [[nodiscard]] static std::vector<const ElementEntry*> entriesOf(std::span<const std::string_view> tags) {
    std::vector<const ElementEntry*> entries;
    for (const std::string_view tag : tags) entries.push_back(vocabularyEntryOf(tag));
    return entries;
  }

  // Sorted as in the vocabulary, not alphabetically.
  Json& addItem(std::string_view label, int kind, const std::string& description) {
    std::string order = std::to_string(_items.size());
    order.insert(0, 6 - std::min<std::size_t>(order.size(), 6), '0');
    Json item = {{"label", label}, {"kind", kind}, {"sortText", order}};
    if (!description.empty()) item["documentation"] = {{"kind", "markdown"}, {"value", description}};
    return _items.emplace_back(std::move(item));
  }

  // Inserts the snippet if there is one, else the text.
  void setEdit(Json& item, Span span, std::string_view text, const std::string& withTabStops) {
    item["insertTextFormat"] = withTabStops.empty() ? plainTextFormat : snippetFormat;
    item["textEdit"] = {{"range", _document.text().rangeOf(span)},
                        {"newText", withTabStops.empty() ? std::string(text) : withTabStops}};
  }

  const MarkedDocument& _document;
  const Markup& _markup;
  std::string_view _text;
  std::size_t _offset;
  const Workspace& _workspace;
  CompletionOptions _options;
  Json _items = Json::array();
};

}  // namespace

Json completionsAt(const MarkedDocument& document, const Position& position, const Workspace& workspace,
                   CompletionOptions options) {
  return Completer(document, document.text().offsetOf(position), workspace, options).run();
}

}  // namespace korvex::lsp
