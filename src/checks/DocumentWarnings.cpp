#include "checks/DocumentWarnings.h"

#include <algorithm>
#include <array>
#include <map>

#include "checks/DoubledKeywords.h"
#include "checks/DoubtfulValues.h"
#include "checks/ListReferenceWarnings.h"
#include "checks/NearMiss.h"
#include "dao/core/Reading.h"
#include "korvex/Expression.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"
#include "language/Vocabulary.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

// ---------------------------------------------------------------------------------------------
// Attributes

bool belongsToXML(std::string_view attribute) {
  return attribute == "xmlns" || attribute.find(':') != std::string_view::npos;
}

std::string nearAttribute(const ElementEntry& element, std::string_view written) {
  std::vector<std::string_view> names;
  names.reserve(element.attributes.size());
  for (const AttributeEntry& attribute : element.attributes) names.push_back(attribute.name);
  return didYouMean(written, names);
}

// Methods read "resumable" only when they have a "foreach".
bool lacksItsForeach(const XMLNode& node, std::string_view attribute) {
  return attribute == C_RESUMABLE && node.name() != C_STEP && isEmpty(node.valueOfAttribute(C_FOREACH));
}

bool isRead(const XMLNode& node, const ElementEntry& element, std::string_view attribute) {
  return attributeEntryOf(element, attribute) && !lacksItsForeach(node, attribute);
}

// The name of an attribute, which is the element's `index`-th.
Span placeOfName(const Places& places, const MarkupElement* markup, std::size_t index, std::size_t element) {
  const bool known = markup && index < markup->attributes.size();
  return known ? markup->attributes[index].name : places.spanAt(element);
}

void findUnreadAttributes(const XMLNode& node, const ElementEntry& element, WarningList& list) {
  if (element.attributeRule != AttributeRule::OthersIgnored) return;
  std::optional<std::size_t> offset;
  std::size_t index = 0;
  for (const XMLAttribute& attribute : node.attributes()) {
    const std::size_t place = index++;
    const std::string_view name = *attribute.name();
    if (isRead(node, element, name) || belongsToXML(name)) continue;
    if (!offset) offset = list.places().offsetOf(node);
    Finding& finding = list.add(Warning::UnreadAttribute, node,
                                placeOfName(list.places(), list.places().elementAt(*offset), place, *offset),
                                quoted(element.tag) + " never reads the attribute " + quoted(name));
    const bool alone = attributeEntryOf(element, name) != nullptr;
    finding.help = alone ? "it is read only together with 'foreach'" : nearAttribute(element, name);
  }
}

void findDoubtfulValues(const XMLNode& node, const ElementEntry& element, WarningList& list) {
  for (const XMLAttribute& attribute : node.attributes()) {
    const std::string_view name = *attribute.name();
    if (!isRead(node, element, name)) continue;
    std::optional<Doubt> doubt = doubtAbout(*attributeEntryOf(element, name), *attribute.stringValue());
    if (!doubt) continue;
    list.add(Warning::DoubtfulValue, node, list.places().valueOf(node, name), std::move(doubt->message)).help =
        std::move(doubt->help);
  }
}

// The character at an offset; empty at the end of the text.
std::string_view characterAt(std::string_view text, std::size_t offset) {
  std::size_t end = std::min(offset + 1, text.size());
  while (end < text.size() && continuesCharacter(text[end])) ++end;
  return text.substr(offset, end - offset);
}

void findFaultOfExpression(const XMLNode& node, const XMLAttribute& attribute, WarningList& list) {
  const std::string_view expression = *spaceNewLineTabBothEndsTrimmed(attribute.stringValue());
  const QXDAOTokenList tokens = QXDAOEvaluator::buildTokenListWithExpression(expression);
  if (tokens.empty()) return;  // has an error
  const auto fault = findExpressionFault(expression, {tokens.data(), tokens.size()});
  if (!fault) return;
  const Span place = list.places().writtenValueOf(node, *attribute.name()).of(characterAt(expression, fault->offset));
  list.add(Warning::ExpressionSyntax, node, place, "not an expression: " + fault->message);
}

void findBadExpressions(const XMLNode& node, const ElementEntry& element, WarningList& list) {
  for (const XMLAttribute& attribute : node.attributes()) {
    const AttributeEntry* entry = attributeEntryOf(element, *attribute.name());
    if (entry && entry->kind == ValueKind::Condition) findFaultOfExpression(node, attribute, list);
  }
}

// ---------------------------------------------------------------------------------------------
// Names that are written twice

// Adds a warning for each repeated name. Names are views that stay valid. The places of items in the source are looked
// up only for a warning.
template <typename Item, typename PlaceOf>
class Repetitions {
 public:
  Repetitions(Warning warning, std::string_view message, WarningList& list, PlaceOf placeOf)
      : _warning(warning), _message(message), _list(list), _placeOf(placeOf) {}

  void take(std::string_view name, const Item& item, const XMLNode& element) {
    const auto [first, isNew] = _items.try_emplace(name, item);
    if (isNew) return;
    Finding& finding = _list.add(_warning, element, _placeOf(item), filledFormat(_message, name));
    finding.related.push_back({_list.locationOf(_placeOf(first->second)), "the first one is here"});
  }

 private:
  Warning _warning;
  std::string_view _message;
  WarningList& _list;
  PlaceOf _placeOf;
  std::map<std::string_view, Item> _items;  // sorted: a document can make hashes collide
};

void findDuplicateColumns(const Definition& definition, WarningList& list) {
  const auto placeOf = [&list](const XMLNode& result) { return list.places().valueOf(result, C_COLUMN); };
  Repetitions<XMLNode, decltype(placeOf)> columns(
      Warning::DuplicateColumn, "the map names the column '%@' twice, and the last one wins", list, placeOf);
  for (const XMLNode& result : definition.xml.children()) {
    const OptionalStringView column = result.valueOfAttribute(C_COLUMN);
    if (!isEmpty(column)) columns.take(*column, result, result);
  }
}

// In an attribute with names, which may have a prefix.
void findRepeatedNames(const XMLNode& node, std::string_view attribute, std::string_view mark, Warning warning,
                       std::string_view message, WarningList& list) {
  std::optional<WrittenValue> written;
  const auto placeOf = [&](std::string_view name) {
    if (!written) written = list.places().writtenValueOf(node, attribute);
    return written->of(name);
  };
  Repetitions<std::string_view, decltype(placeOf)> names(warning, message, list, placeOf);
  for (OptionalStringView rest = node.valueOfAttribute(attribute); rest;) {
    std::string_view name = spaceBothEndsTrimmed(takePiece(rest, ','));
    if (name.starts_with(mark)) name.remove_prefix(mark.size());
    if (!name.empty()) names.take(name, name, node);
  }
}

void findRepeatedProperties(const Definition& definition, WarningList& list) {
  findRepeatedNames(definition.xml, C_PROPERTIES, "", Warning::RepeatedProperty,
                    "the pack names the property '%@' twice", list);
}

void findDuplicateArguments(const Definition& definition, WarningList& list) {
  findRepeatedNames(definition.xml, C_ARGUMENTS, "$", Warning::DuplicateArgument, "the argument '%@' is declared twice",
                    list);
}

// Only commas separate names.
void findMalformedArguments(const Definition& definition, WarningList& list) {
  std::optional<WrittenValue> written;
  for (OptionalStringView rest = definition.xml.valueOfAttribute(C_ARGUMENTS); rest;) {
    const std::string_view name = spaceBothEndsTrimmed(takePiece(rest, ','));
    if (name.find_first_of(" \t\r\n'\"`") == std::string_view::npos) continue;
    if (!written) written = list.places().writtenValueOf(definition.xml, C_ARGUMENTS);
    list.add(Warning::MalformedArgument, definition.xml, written->of(name),
             "the argument " + quoted(name) + " has white space or quotes in its name")
        .help = "separate names by commas, and write them without quotes";
  }
}

// ---------------------------------------------------------------------------------------------
// Content

bool isBlank(const XMLNode& text) { return isEmpty(spaceNewLineTabBothEndsTrimmed(text.text())); }

void findIgnoredContent(const XMLNode& node, const ElementEntry& element, WarningList& list) {
  if (element.content != Content::Ignored) return;
  for (const XMLNode& child : node.children()) {
    if (isBlank(child) && child.kind() != XMLNodeKind::Element) continue;
    const std::size_t begin =
        list.places().source().text().find_first_not_of(xmlWhiteSpace, list.places().offsetOf(child));
    list.add(Warning::IgnoredContent, node, list.places().spanAt(begin),
             "the content of " + quoted(element.tag) + " is ignored");
    return;
  }
}

void findMisplacedWhen(const XMLNode& node, const ElementEntry& element, const ElementEntry* parent,
                       WarningList& list) {
  const bool when = element.tag == C_WHEN;
  if ((!when && element.tag != C_OTHERWISE) || (parent && parent->tag == C_CHOOSE)) return;
  Finding& finding = list.add(Warning::MisplacedWhen, node, list.places().spanAt(list.places().offsetOf(node)),
                              quoted(element.tag) + " is outside 'choose'");
  finding.help = when ? "write 'if', or put it in a 'choose'" : "put it in a 'choose'";
}

bool hasContent(const XMLNode& node) {
  const auto children = node.children();
  return std::any_of(children.begin(), children.end(), [](const XMLNode& child) {
    return child.kind() == XMLNodeKind::Element || (child.kind() == XMLNodeKind::Text && !isBlank(child));
  });
}

// The text in front of the next element.
XMLNode textBehind(const XMLNode& node) {
  XMLNode next = node.next();
  while (next && next.kind() != XMLNodeKind::Element && (next.kind() != XMLNodeKind::Text || isBlank(next))) {
    next = next.next();
  }
  return next && next.kind() == XMLNodeKind::Text ? next : XMLNode();
}

void findEmptyMethod(const Definition& definition, WarningList& list) {
  if (hasContent(definition.xml)) return;
  const XMLNode text = textBehind(definition.xml);
  if (!text) return;
  const std::size_t begin =
      list.places().source().text().find_first_not_of(xmlWhiteSpace, list.places().offsetOf(text));
  list.add(Warning::EmptyMethod, definition.xml, list.places().spanAt(begin),
           "this text is ignored, and the method in front of it is empty")
      .help = "move it into the method";
}

// A method that was built with a step has no other content than steps.
void findLostResumable(const Definition& definition, WarningList& list) {
  if (!definition.element) return;
  XMLNode step;
  for (const XMLNode& child : definition.xml.children()) {
    if (child.name() != C_STEP) continue;
    if (step) return;
    step = child;
  }
  if (!booleanAttributeValue(step.valueOfAttribute(C_RESUMABLE))) return;
  list.add(Warning::LostResumable, step, list.places().nameOf(step, C_RESUMABLE),
           "a single step is not resumable: it is treated as if its content were in the method");
}

// ---------------------------------------------------------------------------------------------
// The way through a definition

struct DefinitionRule {
  std::string_view tag;
  void (*find)(const Definition& definition, WarningList& list);
};

constexpr std::array<DefinitionRule, 19> definitionRules = {{
    {C_MAP, findDuplicateColumns},      {C_PACK, findRepeatedProperties},   {C_SELECT, findDuplicateArguments},
    {C_UPDATE, findDuplicateArguments}, {C_INSERT, findDuplicateArguments}, {C_DELETE, findDuplicateArguments},
    {C_SELECT, findMalformedArguments}, {C_UPDATE, findMalformedArguments}, {C_INSERT, findMalformedArguments},
    {C_DELETE, findMalformedArguments}, {C_SELECT, findEmptyMethod},        {C_UPDATE, findEmptyMethod},
    {C_INSERT, findEmptyMethod},        {C_DELETE, findEmptyMethod},        {C_UPGRADE, findEmptyMethod},
    {C_UPDATE, findLostResumable},      {C_INSERT, findLostResumable},      {C_DELETE, findLostResumable},
    {C_UPGRADE, findLostResumable},
}};

void findInElement(const XMLNode& node, const ElementEntry* parent, bool built, WarningList& list) {
  const ElementEntry* element = vocabularyEntryOf(node.name().value_or(std::string_view()));
  if (!element || (parent && isDefinitionTag(element->tag))) return;  // has an error
  findUnreadAttributes(node, *element, list);
  findDoubtfulValues(node, *element, list);
  findBadExpressions(node, *element, list);
  findIgnoredContent(node, *element, list);
  findMisplacedWhen(node, *element, parent, list);
  if (built) findUnfinishedReferences(node, *element, list);
  if (element->content == Content::Ignored) return;
  findDoubledKeywords(node, list);
  for (const XMLNode& child : node.children()) {
    if (child.kind() == XMLNodeKind::Element) findInElement(child, element, built, list);
  }
}

}  // namespace

void findWarningsIn(const Definition& definition, WarningList& list) {
  if (!isDefinitionTag(definition.tag())) return;
  list.setDefinition(definition);
  findInElement(definition.xml, nullptr, definition.element != nullptr, list);
  for (const DefinitionRule& rule : definitionRules) {
    if (rule.tag == definition.tag()) rule.find(definition, list);
  }
}

}  // namespace korvex
