#include "loader/TagFaults.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "markup/Names.h"
#include "markup/TagReader.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

// A fault, with the data that explanations need.
struct TagFault {
  const Tag& tag;
  std::string_view name;
  std::string_view attribute;  // the name of the last one
  std::string_view value;      // its value so far, without quotes
  std::string_view rest;       // of the text, from the misplaced character
  std::size_t offset;          // of that character
  std::string line;            // where the tag begins
  std::string valueLine;       // where the last value begins
};

using TagExplanation = std::optional<SyntaxError>;

SyntaxError violated(const TagFault& fault, DocumentRule rule, std::initializer_list<std::string_view> details = {}) {
  return {rule, fault.offset, details};
}

SyntaxError aboutAttribute(const TagFault& fault, DocumentRule rule) {
  return violated(fault, rule, {fault.attribute});
}

SyntaxError aboutOpenValue(const TagFault& fault, DocumentRule rule) {
  return violated(fault, rule, {fault.attribute, fault.valueLine});
}

SyntaxError notClosed(const TagFault& fault) {
  const DocumentRule rule = fault.tag.isEndTag ? DocumentRule::UnclosedEndTag : DocumentRule::UnclosedStartTag;
  return violated(fault, rule, {fault.name, fault.line});
}

bool isIn(std::string_view set, char character) { return set.find(character) != std::string_view::npos; }

TagExplanation afterAttributeName(const TagFault& fault) {
  if (isIn("/>", fault.rest.front())) return aboutAttribute(fault, DocumentRule::MissingValue);
  return violated(fault, DocumentRule::MissingEquals, {fault.attribute, fault.name, fault.line});
}

bool beginsWithTypographicQuote(std::string_view text) {
  constexpr std::array<std::string_view, 8> quotes{"“", "”", "„", "‘", "’", "‚", "«", "»"};
  return std::any_of(quotes.begin(), quotes.end(), [text](std::string_view quote) { return text.starts_with(quote); });
}

TagExplanation beforeValue(const TagFault& fault) {
  if (isIn("<>", fault.rest.front())) return aboutAttribute(fault, DocumentRule::MissingValue);
  const bool typographic = beginsWithTypographicQuote(fault.rest);
  return aboutAttribute(fault, typographic ? DocumentRule::TypographicQuotes : DocumentRule::MissingQuotes);
}

// A "<" in a value is either intended, or begins the next tag after an unclosed value.
TagExplanation inValue(const TagFault& fault) {
  if (fault.rest.front() != '<') return std::nullopt;
  const bool wentOn = fault.value.find_first_of(">\n\r") != std::string_view::npos;
  if ((wentOn && !nameAt(fault.rest, 1).empty()) || fault.rest.starts_with("</")) {
    return aboutOpenValue(fault, DocumentRule::MissingClosingQuote);
  }
  if (wentOn) return aboutOpenValue(fault, DocumentRule::LessThanInOpenValue);
  return aboutAttribute(fault, DocumentRule::LessThanInValue);
}

// If a closing quote is missing, the opening quote of the next value closes the value.
TagExplanation afterValue(const TagFault& fault) {
  if (fault.value.ends_with('=')) return aboutOpenValue(fault, DocumentRule::MissingClosingQuote);
  if (isIn(",;", fault.rest.front()))
    return violated(fault, DocumentRule::AttributeSeparator, {fault.rest.substr(0, 1)});
  if (nameAt(fault.rest, 0).empty()) return std::nullopt;
  return aboutAttribute(fault, DocumentRule::MissingWhiteSpace);
}

TagExplanation afterSlash(const TagFault& fault) { return violated(fault, DocumentRule::MisplacedSlash); }

struct TagExplainer {
  TagState state;
  TagExplanation (*explain)(const TagFault&);
};

constexpr std::array<TagExplainer, 5> tagExplainers{{
    {TagState::AttributeName, afterAttributeName},
    {TagState::EqualsSign, beforeValue},
    {TagState::OpenValue, inValue},
    {TagState::Value, afterValue},
    {TagState::Slash, afterSlash},
}};

TagFault faultOf(const Tag& tag, const SourceText& source, std::size_t start, std::size_t offset) {
  const std::string_view text = source.text();
  const MarkupAttribute last = tag.attributes.empty() ? MarkupAttribute() : tag.attributes.back();
  const Span value = last.value.value_or(Span{start, start});
  return {tag,
          tag.name.of(text),
          last.name.of(text),
          value.of(text),
          text.substr(offset),
          offset,
          std::to_string(source.position(start).line),
          std::to_string(source.position(value.begin).line)};
}

bool isTag(const TagFault& fault) { return !fault.name.empty() && !isIn("!?", fault.name.front()); }

}  // namespace

std::optional<SyntaxError> faultInTag(const SourceText& source, std::size_t start, std::size_t offset) {
  const std::string_view markup = source.text().substr(0, offset);
  if (!markup.substr(start).starts_with('<')) return std::nullopt;
  const Tag tag = readTag(markup, start);
  const TagFault fault = faultOf(tag, source, start, offset);
  if (!isTag(fault)) return std::nullopt;
  const bool valueIsOpen = tag.state == TagState::OpenValue || tag.state == TagState::EqualsSign;
  if (tag.isEndTag || (fault.rest.front() == '<' && !valueIsOpen)) return notClosed(fault);
  const TagExplainer* row = rowWith(tagExplainers, &TagExplainer::state, tag.state);
  return row ? row->explain(fault) : std::nullopt;
}

}  // namespace korvex
