#include "checks/Culprits.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <vector>

#include "checks/NearMiss.h"
#include "evaluator/Tokenizing.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOMethod.h"
#include "language/Vocabulary.h"
#include "plan/SourcePlaces.h"
#include "plan/SqlText.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

// Values up to this length are repeated in a help.
constexpr std::size_t maxRepeated = 60;

using Names = std::vector<std::string_view>;

std::string_view textOf(OptionalStringView text) { return text.value_or(std::string_view()); }
std::string_view tagOf(const XMLNode& node) { return textOf(node.name()); }

// "a, b and c".
std::string listed(std::span<const std::string_view> words) {
  std::string list;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (at > 0) list += at + 1 == words.size() ? " and " : ", ";
    list += words[at];
  }
  return list;
}

std::string joined(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

// What other tools call the attributes.
struct Alias {
  std::string_view written;
  std::string_view meant;
};
constexpr std::array<Alias, 9> aliases = {{
    {"name", C_ID},
    {"items", C_COLLECTION},
    {"list", C_COLLECTION},
    {"array", C_COLLECTION},
    {"var", C_ITEM},
    {"resultType", C_RESULT},
    {"type", C_RESULT},
    {"version", C_TO_VERSION},
    {"column", C_AS},
}};

bool isAlias(std::string_view written, std::string_view meant) {
  return std::any_of(aliases.begin(), aliases.end(),
                     [&](const Alias& alias) { return alias.written == written && alias.meant == meant; });
}

// A definition with an error, and the node that the error names.
struct Fault {
  const XMLNode& node;
  const XMLNode& definition;
  const Places& places;

  [[nodiscard]] std::string_view tag() const { return tagOf(node); }
  // Whether the attribute is there and not empty.
  [[nodiscard]] bool has(std::string_view attribute) const { return !isEmpty(node.valueOfAttribute(attribute)); }
  [[nodiscard]] std::string hasNo(std::string_view attribute) const {
    return joined({"'", tag(), "' has no attribute '", attribute, "'; "});
  }

  [[nodiscard]] Culprit onElement(std::string help) const {
    return {places.spanAt(node.offset()), std::move(help), change(Repair::Kind::RemoveNode)};
  }
  [[nodiscard]] Culprit onName(std::string_view attribute, std::string help) const {
    return {places.nameOf(node, attribute), std::move(help), without(attribute)};
  }
  [[nodiscard]] Culprit onValue(std::string_view attribute, std::string help) const {
    return {places.valueOf(node, attribute), std::move(help), without(attribute)};
  }
  // On a piece of a value, which must be a view into it.
  [[nodiscard]] Culprit onPiece(std::string_view attribute, std::string_view piece, std::string help) const {
    const WrittenValue written = places.writtenValueOf(node, attribute);
    if (written.verbatim) return {written.of(piece), std::move(help), without(attribute)};
    const auto decoded = static_cast<std::size_t>(piece.data() - written.value.data());
    const std::size_t begin = sourceOffset(places.source().text(), written.whole.begin, decoded);
    return {{begin, std::max(begin, std::min(begin + 1, written.whole.end))}, std::move(help), without(attribute)};
  }
  // On the first visible character of a text, or on a tag.
  [[nodiscard]] Culprit onChild(const XMLNode& child, std::string help) const {
    std::size_t begin = child.offset();
    const std::string_view source = places.source().text();
    while (begin < source.size() && isXMLWhiteSpace(source[begin])) ++begin;
    return {places.spanAt(begin), std::move(help), {Repair::Kind::RemoveNode, child.offset(), {}, {}, {}}};
  }

  [[nodiscard]] Repair change(Repair::Kind kind) const { return {kind, node.offset(), {}, {}, {}}; }
  [[nodiscard]] Repair without(std::string_view attribute) const {
    return {Repair::Kind::ChangeAttributes, node.offset(), attribute, {}, {}};
  }
  [[nodiscard]] Repair with(std::string_view attribute, std::string_view value, std::string_view removed = {}) const {
    return {Repair::Kind::ChangeAttributes, node.offset(), removed, attribute, std::string(value)};
  }
  [[nodiscard]] Repair as(std::string_view tag) const { return {Repair::Kind::Rename, node.offset(), {}, tag, {}}; }
};

// The same culprit, with another repair than its place suggests.
Culprit repaired(Culprit culprit, Repair repair) {
  culprit.repair = std::move(repair);
  return culprit;
}

bool isContent(const XMLNode& node) {
  if (node.kind() == XMLNodeKind::Element) return true;
  return node.kind() == XMLNodeKind::Text && !spaceNewLineTabBothEndsTrimmed(textOf(node.text())).empty();
}

bool isElement(const XMLNode& node, std::string_view tag) {
  return node.kind() == XMLNodeKind::Element && tagOf(node) == tag;
}

// The first child for which the predicate holds; null if there is none.
template <typename Predicate>
XMLNode firstChild(const XMLNode& parent, const Predicate& predicate) {
  for (const XMLNode& child : parent.children()) {
    if (predicate(child)) return child;
  }
  return {};
}

// The first attribute other than the named ones; empty if there is none.
std::string_view firstOther(const XMLNode& node, const Names& known) {
  for (const XMLAttribute& attribute : node.attributes()) {
    const std::string_view name = textOf(attribute.name());
    if (std::find(known.begin(), known.end(), name) == known.end()) return name;
  }
  return {};
}

Names knownAttributes(std::string_view tag) {
  Names names;
  if (const ElementEntry* element = vocabularyEntryOf(tag)) {
    for (const AttributeEntry& attribute : element->attributes) names.push_back(attribute.name);
  }
  return names;
}

// What a repair gives an attribute. Messages quote names.
std::string_view placeholderFor(std::string_view attribute, std::string_view example) {
  return attribute == C_ID || attribute == C_AS ? "…" : example;
}

// An attribute that is empty, misspelled or not there. `example` is a value for it.
Culprit missing(const Fault& fault, std::string_view attribute, std::string_view example) {
  const std::string write = joined({attribute, "=\"", example, "\""});
  const std::string_view placeholder = placeholderFor(attribute, example);
  if (fault.node.valueOfAttribute(attribute)) {
    return repaired(fault.onName(attribute, joined({"'", attribute, "' is empty; write ", write})),
                    fault.with(attribute, placeholder));
  }
  const std::array<std::string_view, 1> wanted = {attribute};
  for (const XMLAttribute& candidate : fault.node.attributes()) {
    const std::string_view written = textOf(candidate.name());
    if (!isAlias(written, attribute) && nearestOf(written, wanted).empty()) continue;
    const std::string_view value = textOf(candidate.stringValue());
    const bool isShort = !value.empty() && value.size() <= maxRepeated && value.find('"') == std::string_view::npos;
    const std::string_view meant = isShort ? value : example;
    return repaired(fault.onName(written, joined({fault.hasNo(written), "write ", attribute, "=\"", meant, "\""})),
                    fault.with(attribute, placeholder == example ? example : meant, written));
  }
  return repaired(fault.onElement(joined({"'", attribute, "' is missing; write ", write})),
                  fault.with(attribute, placeholder));
}

Culprit unknownAttribute(const Fault& fault, std::string_view written, const Names& known) {
  const auto alias =
      std::find_if(known.begin(), known.end(), [&](std::string_view name) { return isAlias(written, name); });
  const std::string_view value = textOf(fault.node.valueOfAttribute(written));
  if (alias != known.end()) {
    return repaired(fault.onName(written, joined({fault.hasNo(written), "write ", *alias, "=\"…\""})),
                    fault.with(*alias, value, written));
  }
  const std::string_view meant = nearestOf(written, known);
  if (!meant.empty()) {
    return repaired(fault.onName(written, fault.hasNo(written) + didYouMean(written, known)),
                    fault.with(meant, value, written));
  }
  return fault.onName(written,
                      joined({"'", written, "' is not an attribute of ", fault.tag(), "; it takes ", listed(known)}));
}

// A tag that is probably one of these.
Culprit misspelled(const Fault& fault, std::span<const std::string_view> tags, std::string help) {
  const std::string_view meant = nearestOf(fault.tag(), tags);
  Culprit culprit = fault.onElement(std::move(help));
  return meant.empty() ? culprit : repaired(std::move(culprit), fault.as(meant));
}

// ---------------------------------------------------------------------------------------------
// Any definition

std::string definitionMeant(std::string_view tag) {
  const std::string meant = didYouMean(tag, definitionTags);
  return meant.empty() ? "the definitions are " + listed(definitionTags) : meant;
}

Culprit unknownDefinition(const Fault& fault) {
  if (vocabularyEntryOf(fault.tag())) {
    return fault.onElement(
        joined({"'", fault.tag(), "' belongs inside another element; a definition is ", listed(definitionTags)}));
  }
  return misspelled(fault, definitionTags, definitionMeant(fault.tag()));
}

// A definition with an unknown tag and no name is reported as nameless.
Culprit missingName(const Fault& fault) {
  if (isDefinitionTag(fault.tag())) return missing(fault, C_ID, "aName");
  return misspelled(fault, definitionTags,
                    joined({"no definition is called '", fault.tag(), "'; ", definitionMeant(fault.tag())}));
}

// ---------------------------------------------------------------------------------------------
// Children of containers

Culprit unknownElement(const Fault& fault) {
  if (isDefinitionTag(fault.tag())) {
    return fault.onElement(
        joined({"'", fault.tag(), "' is a definition: move it out of the method, beside the others"}));
  }
  Names tags;
  for (const ElementEntry& element : vocabulary()) {
    if (element.tag != C_RESULT && !isDefinitionTag(element.tag)) tags.push_back(element.tag);
  }
  std::string meant = didYouMean(fault.tag(), tags);
  if (!meant.empty()) return misspelled(fault, tags, std::move(meant));
  const std::size_t begin = fault.node.offset();
  const bool isComparison = begin > 0 && isNameCharacter(fault.places.source().text()[begin - 1]);
  return fault.onElement(
      joined({"'", fault.tag(), "' is no element of a method; ",
              isComparison ? "write &lt; for a '<' that begins no tag" : "it contains text, " + listed(tags)}));
}

std::string_view parentOf(const Fault& fault) {
  const MarkupElement* element = fault.places.elementAt(fault.node.offset());
  const MarkupElement* parent = element ? fault.places.markup().parentOf(*element) : nullptr;
  return parent ? fault.places.markup().nameOf(*parent) : std::string_view("another element");
}

// The child of the definition that contains the fault.
std::size_t outermostAround(const Fault& fault) {
  const Markup& markup = fault.places.markup();
  const MarkupElement* element = fault.places.elementAt(fault.node.offset());
  for (const MarkupElement* outer = element; outer && outer->startTag.begin != fault.definition.offset();
       outer = markup.parentOf(*outer)) {
    element = outer;
  }
  return element ? element->startTag.begin : fault.node.offset();
}

// What is around the block was meant to be in it.
Culprit misplacedBlock(const Fault& fault) {
  return repaired(
      fault.onElement(joined(
          {"a ", fault.tag(), " stands directly in an update, insert or delete, not in '", parentOf(fault), "'"})),
      {Repair::Kind::RemoveNode, outermostAround(fault), {}, {}, {}});
}

Culprit misplacedExcept(const Fault& fault) {
  return fault.onElement("write the except as the last child of a try: <try>… <except>…</except></try>");
}

// ---------------------------------------------------------------------------------------------
// Methods

Culprit upgradeFormat(const Fault& fault) {
  const OptionalStringView version = fault.node.valueOfAttribute(C_TO_VERSION);
  const std::string_view other = firstOther(fault.node, {C_TO_VERSION});
  if (version && !other.empty())
    return fault.onName(other, joined({"an upgrade has only toVersion; remove '", other, "'"}));
  if (isEmpty(version)) return missing(fault, C_TO_VERSION, "1");
  return repaired(
      fault.onValue(C_TO_VERSION,
                    joined({"'", *version, "' is no decimal number; write one such as 2 or 2.5, or initial"})),
      fault.with(C_TO_VERSION, "1"));
}

// The names in a list, without the empty ones.
std::string namesIn(std::string_view list) {
  std::string names;
  for (OptionalStringView rest = list; rest;) {
    const std::string_view name = spaceBothEndsTrimmed(takePiece(rest, ','));
    if (!name.empty()) names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names;
}

Culprit argumentsFormat(const Fault& fault) {
  const std::string_view value = textOf(fault.node.valueOfAttribute(C_ARGUMENTS));
  std::size_t begin = 0;
  std::size_t end = 0;
  for (;; begin = end + 1) {
    end = std::min(value.find(',', begin), value.size());
    if (spaceBothEndsTrimmed(value.substr(begin, end - begin)).empty() || end == value.size()) break;
  }
  // The comma that is too much.
  const std::size_t comma = end < value.size() ? end : begin == 0 ? 0 : begin - 1;
  return repaired(fault.onPiece(C_ARGUMENTS, value.substr(comma, std::min<std::size_t>(1, value.size() - comma)),
                                value.find(',') == std::string_view::npos
                                    ? "the list is only white space; write the names, or remove the attribute"
                                    : "a name is missing beside this comma; write it, or remove the comma"),
                  fault.with(C_ARGUMENTS, namesIn(value)));
}

Culprit missingResult(const Fault& fault) {
  Culprit culprit = missing(fault, C_RESULT, "int");
  culprit.help +=
      ". A result is int, long long, bool, double, string, binary, {}, a class, or :map, and in [ ] a list of them";
  return culprit;
}

Culprit stepsInSelect(const Fault& fault) {
  const XMLNode step = firstChild(fault.node, [](const XMLNode& child) { return isElement(child, C_STEP); });
  return repaired(fault.onChild(step ? step : fault.node, "a select is one statement; remove the step around it"),
                  {Repair::Kind::ReplaceByContent, step.offset(), {}, {}, {}});
}

Culprit contentBeside(const Fault& fault, std::string_view tag, std::string help) {
  const XMLNode beside =
      firstChild(fault.node, [tag](const XMLNode& child) { return isContent(child) && !isElement(child, tag); });
  return fault.onChild(beside ? beside : fault.node, std::move(help));
}
Culprit contentBesideSteps(const Fault& fault) {
  return contentBeside(fault, C_STEP, "move this into a step, or remove the steps");
}
Culprit contentBesideTry(const Fault& fault) {
  return contentBeside(fault, C_TRY, "move this into the try, or into its except");
}

bool declares(std::string_view arguments, std::string_view name, Names& names) {
  OptionalStringView rest = arguments;
  while (rest) {
    std::string_view declared = spaceBothEndsTrimmed(takePiece(rest, ','));
    if (declared.starts_with('$')) declared.remove_prefix(1);
    names.push_back(declared);
  }
  return std::find(names.begin(), names.end(), name) != names.end();
}

Culprit methodForeachFormat(const Fault& fault) {
  const std::string_view value = textOf(fault.node.valueOfAttribute(C_FOREACH));
  const std::size_t dot = value.find('.');
  if (dot == std::string_view::npos || value.find('.', dot + 1) != std::string_view::npos) {
    return fault.onValue(C_FOREACH, "write collection.item: the name of an argument, a dot, and a new name");
  }
  const std::string_view collection = spaceBothEndsTrimmed(value.substr(0, dot));
  const std::string_view item = spaceBothEndsTrimmed(value.substr(dot + 1));
  Names arguments;
  if (!declares(textOf(fault.node.valueOfAttribute(C_ARGUMENTS)), collection, arguments)) {
    const std::string meant = didYouMean(collection, arguments);
    return fault.onPiece(C_FOREACH, collection,
                         joined({"'", collection, "' is no argument of the method; ",
                                 meant.empty() ? "declare it in arguments" : meant}));
  }
  if (item.empty()) return fault.onPiece(C_FOREACH, value.substr(dot, 1), "write the name of the item after the dot");
  return fault.onPiece(C_FOREACH, item, joined({"'", item, "' is an argument; give the item another name"}));
}

// ---------------------------------------------------------------------------------------------
// Try and except blocks

Culprit withoutAttributes(const Fault& fault, std::string_view attribute) {
  return fault.onName(attribute, joined({"the element ", fault.tag(), " has no attributes; remove '", attribute, "'"}));
}

Culprit tryFormat(const Fault& fault) {
  if (const std::string_view attribute = firstOther(fault.node, {}); !attribute.empty())
    return withoutAttributes(fault, attribute);
  bool after = false;
  const XMLNode behind = firstChild(fault.node, [&after](const XMLNode& child) {
    const bool found = after && isContent(child);
    after = after || isElement(child, C_EXCEPT);
    return found;
  });
  if (behind) return fault.onChild(behind, "the except comes last; move this in front of it");
  return repaired(fault.onElement("end the try with <except>…</except>, which runs if the try fails"),
                  fault.change(Repair::Kind::ReplaceByContent));
}

Culprit secondExcept(const Fault& fault) {
  return fault.onElement("a try has one except; merge this one into the first");
}

Culprit exceptFormat(const Fault& fault) { return withoutAttributes(fault, firstOther(fault.node, {})); }

// ---------------------------------------------------------------------------------------------
// Fragments

std::string columnOf(const Fault& fault, const Span& place) {
  return std::to_string(fault.places.source().position(place.begin).column);
}

constexpr std::string_view anyCondition = "a";

// The first character that begins no token.
Culprit unreadableCondition(const Fault& fault, std::string_view attribute) {
  const std::string_view value = textOf(fault.node.valueOfAttribute(attribute));
  const std::size_t at = lengthOfTokens(value);
  const Repair repair = fault.with(attribute, anyCondition);
  if (at == value.size())
    return repaired(fault.onName(attribute, "the condition is empty; write an expression, such as name != null"),
                    repair);
  Culprit culprit = repaired(fault.onPiece(attribute, value.substr(at, 1), {}), repair);
  if (value[at] == '"' || value[at] == '\'') {
    culprit.help = "the condition has an open quote at column " + columnOf(fault, culprit.place) + "; close the text";
  } else {
    culprit.help = "no value or operator begins at column " + columnOf(fault, culprit.place) +
                   "; operators are && || ! == != < <= > >= + - * / %, and texts stand in quotes";
  }
  return culprit;
}

// An attribute that is neither true nor false.
Culprit unknownTest(const Fault& fault, std::string_view written) {
  if (!firstOther(fault.node, {written}).empty()) {
    return fault.onName(written, joined({"attribute '", written,
                                         "' is not known here; remove it. A condition combines tests with && and ||"}));
  }
  const std::array<std::string_view, 2> known = {C_TRUE, C_FALSE};
  const std::string meant = didYouMean(written, known);
  const Repair repair = fault.with(C_TRUE, anyCondition, written);
  if (!meant.empty()) return repaired(fault.onName(written, fault.hasNo(written) + meant), repair);
  return repaired(
      fault.onName(written, joined({"attribute '", written, "' is not known here; write true=\"…\" or false=\"…\""})),
      repair);
}

Culprit conditionFormat(const Fault& fault) {
  const std::string_view other = firstOther(fault.node, {C_TRUE, C_FALSE});
  const std::string_view first = firstOther(fault.node, {});
  if (fault.tag() == C_CHOOSE) return fault.onName(first, "a choose has no attributes; put the condition into a when");
  if (fault.tag() == C_OTHERWISE)
    return fault.onName(first, "an otherwise has no condition; write a when, or remove the attribute");
  if (first.empty())
    return repaired(
        fault.onElement(joined({"the ", fault.tag(), " has no condition; write true=\"…\" or false=\"…\""})),
        fault.with(C_TRUE, anyCondition));
  if (!other.empty()) return unknownTest(fault, other);
  if (fault.node.attributeCount() > 1) {
    return fault.onName(firstOther(fault.node, {first}),
                        "a condition has either true or false; combine the two tests with &&");
  }
  return unreadableCondition(fault, first);
}

Culprit chooseContent(const Fault& fault) {
  if (fault.tag() == C_IF) return repaired(fault.onElement("in a choose, write when instead of if"), fault.as(C_WHEN));
  if (fault.tag() == C_OTHERWISE) {
    XMLNode second = fault.node.next();
    while (second && !isElement(second, C_OTHERWISE)) second = second.next();
    if (second) return fault.onChild(second, "a choose has one otherwise; merge this one into the first");
    return fault.onElement("the otherwise comes last; move it behind the other children");
  }
  if (fault.tag() != C_CHOOSE)
    return fault.onElement(joined({"put the ", fault.tag(), " into a when or the otherwise"}));
  const XMLNode text = firstChild(
      fault.node, [](const XMLNode& child) { return child.kind() == XMLNodeKind::Text && isContent(child); });
  return fault.onChild(text ? text : fault.node, "put this text into a when or the otherwise");
}

Culprit foreachParameters(const Fault& fault) {
  const Names known = {C_ITEM, C_COLLECTION, C_OPEN, C_SEPARATOR, C_CLOSE, C_REVERSE};  // most important first
  const std::string_view unknown = firstOther(fault.node, known);
  if (!unknown.empty()) return unknownAttribute(fault, unknown, known);
  return fault.has(C_ITEM) ? missing(fault, C_COLLECTION, "ids") : missing(fault, C_ITEM, "id");
}

Culprit textOnly(const Fault& fault, std::string_view parent) {
  return fault.onElement(joined({parent, " contains only text; ",
                                 fault.node.kind() == XMLNodeKind::Element ? "remove the element" : "remove this"}));
}
Culprit foreachContent(const Fault& fault) { return textOnly(fault, "a foreach"); }
Culprit sqlFormat(const Fault& fault) { return textOnly(fault, "an sql block"); }

Culprit trimFormat(const Fault& fault) {
  const Names known = knownAttributes(C_TRIM);
  const std::string_view unknown = firstOther(fault.node, known);
  constexpr std::string_view example = "AND |OR ";
  if (unknown.empty()) return missing(fault, C_PREFIX_OVERRIDES, example);
  Culprit culprit = unknownAttribute(fault, unknown, known);
  if (culprit.repair.set.empty()) culprit.repair = fault.with(C_PREFIX_OVERRIDES, example, unknown);
  return culprit;
}

Culprit fragmentFormat(const Fault& fault) {
  const bool isTrim = fault.tag() == C_TRIM;
  if (!fault.has(C_PREFIX)) return missing(fault, C_PREFIX, isTrim ? "WHERE" : "SET ");
  if (isTrim) return trimFormat(fault);
  return fault.has(C_PAIRS) ? missing(fault, C_JOIN, ", ") : missing(fault, C_PAIRS, "values");
}

// ---------------------------------------------------------------------------------------------
// Sql blocks and constants

Culprit reservedSqlName(const Fault& fault) {
  return repaired(fault.onValue(C_ID, "@T stands for the assigned table of a select; give the block another name"),
                  fault.with(C_ID, placeholderFor(C_ID, {})));
}

Culprit constFormat(const Fault& fault) {
  const std::string_view name = firstOther(fault.node, {});
  if (name.empty()) return fault.onElement("write the name and the text as an attribute: <const NAME=\"text\"/>");
  const std::string_view second = firstOther(fault.node, {name});
  if (!second.empty()) return fault.onName(second, "one const defines one constant; write another const for this one");
  const XMLNode child = fault.node.firstChild();
  return fault.onChild(child ? child : fault.node,
                       joined({"a const has no content; write its text as the value: <const ", name, "=\"…\"/>"}));
}

// ---------------------------------------------------------------------------------------------
// Maps, crypt properties and packs

Culprit cryptFormat(const Fault& fault) {
  if (!fault.has(C_CLASS)) return missing(fault, C_CLASS, "Person");
  if (!fault.has(C_PROPERTY)) return missing(fault, C_PROPERTY, "notes");
  const std::string_view other = firstOther(fault.node, {C_CLASS, C_PROPERTY});
  if (!other.empty()) return fault.onName(other, joined({"a crypt has only class and property; remove '", other, "'"}));
  const XMLNode child = fault.node.firstChild();
  return fault.onChild(child ? child : fault.node, "a crypt has no content; write <crypt class=\"…\" property=\"…\"/>");
}

Culprit missingMapResult(const Fault& fault) { return missing(fault, C_RESULT, "Person"); }

constexpr const char* mapContent = "a map contains only <result property=\"…\" column=\"…\"/>";

Culprit mapFormat(const Fault& fault) {
  if (fault.node.kind() == XMLNodeKind::Element && fault.node.offset() == fault.definition.offset()) {
    const XMLNode text = firstChild(fault.node, [](const XMLNode& child) { return child.kind() == XMLNodeKind::Text; });
    return fault.onChild(text ? text : fault.node, mapContent);
  }
  if (fault.tag() != C_RESULT) {
    const std::array<std::string_view, 1> known = {C_RESULT};
    const std::string meant = didYouMean(fault.tag(), known);
    return misspelled(fault, known, meant.empty() ? mapContent : meant);
  }
  return fault.has(C_COLUMN) ? missing(fault, C_PROPERTY, "name") : missing(fault, C_COLUMN, "name");
}

Culprit missingPackColumn(const Fault& fault) { return missing(fault, C_AS, "info"); }
Culprit missingPackProperties(const Fault& fault) { return missing(fault, C_PROPERTIES, "notes, website"); }
Culprit singlePackProperty(const Fault& fault) {
  return repaired(
      fault.onValue(C_PROPERTIES, "add a property after a comma, or store the only one in a column of its own"),
      fault.with(C_PROPERTIES, "notes, website"));
}

struct CulpritRule {
  QXDAORule rule;
  Culprit (*find)(const Fault& fault);
};

constexpr std::array<CulpritRule, 30> culpritRules = {{
    {QXDAORule::MissingName, missingName},
    {QXDAORule::UnknownDefinition, unknownDefinition},
    {QXDAORule::UnknownElement, unknownElement},
    {QXDAORule::MisplacedStep, misplacedBlock},
    {QXDAORule::MisplacedTry, misplacedBlock},
    {QXDAORule::MisplacedExcept, misplacedExcept},
    {QXDAORule::UpgradeFormat, upgradeFormat},
    {QXDAORule::ArgumentsFormat, argumentsFormat},
    {QXDAORule::MissingResult, missingResult},
    {QXDAORule::StepsInSelect, stepsInSelect},
    {QXDAORule::ContentBesideSteps, contentBesideSteps},
    {QXDAORule::ContentBesideTry, contentBesideTry},
    {QXDAORule::MethodForeachFormat, methodForeachFormat},
    {QXDAORule::TryFormat, tryFormat},
    {QXDAORule::SecondExcept, secondExcept},
    {QXDAORule::ExceptFormat, exceptFormat},
    {QXDAORule::ConditionFormat, conditionFormat},
    {QXDAORule::ChooseContent, chooseContent},
    {QXDAORule::ForeachParameters, foreachParameters},
    {QXDAORule::ForeachContent, foreachContent},
    {QXDAORule::FragmentFormat, fragmentFormat},
    {QXDAORule::ReservedSqlName, reservedSqlName},
    {QXDAORule::SqlFormat, sqlFormat},
    {QXDAORule::ConstFormat, constFormat},
    {QXDAORule::CryptFormat, cryptFormat},
    {QXDAORule::MissingMapResult, missingMapResult},
    {QXDAORule::MapFormat, mapFormat},
    {QXDAORule::MissingPackColumn, missingPackColumn},
    {QXDAORule::MissingPackProperties, missingPackProperties},
    {QXDAORule::SinglePackProperty, singlePackProperty},
}};

}  // namespace

Culprit culpritOf(const Definition& definition, const Places& places) {
  const QXDAOError& error = *definition.error;
  const XMLNode& node = error.origin ? error.origin : definition.xml;
  return rowWith(culpritRules, &CulpritRule::rule, error.rule)->find({node, definition.xml, places});
}

}  // namespace korvex
