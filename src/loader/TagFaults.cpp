#include "loader/TagFaults.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "markup/Names.h"
#include "markup/TagReader.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

// A fault, with what is needed to explain it.
struct TagFault {
  const Tag& tag;
  std::string_view name;
  std::string_view attribute;  // the name of the last one
  std::string_view value;      // its value as far as it goes, without quotes
  std::string_view rest;       // of the text, from the character that is out of place
  std::size_t line;            // where the tag begins
  std::size_t valueLine;       // where the last value begins
};

using TagExplanation = std::optional<std::string>;

std::string openedOn(std::size_t line) { return ", opened on line " + std::to_string(line) + ','; }

std::string tagOf(const TagFault& fault) {
  return (fault.tag.isEndTag ? "end tag " : "tag ") + quoted(fault.name) + openedOn(fault.line);
}

std::string attributeOf(const TagFault& fault) { return "attribute " + quoted(fault.attribute); }

std::string valueOf(const TagFault& fault) { return "the value of " + quoted(fault.attribute); }

std::string notClosed(const TagFault& fault) { return tagOf(fault) + " is not closed with '>'"; }

bool isIn(std::string_view set, char character) { return set.find(character) != std::string_view::npos; }

TagExplanation afterAttributeName(const TagFault& fault) {
  if (isIn("/>", fault.rest.front())) return attributeOf(fault) + " has no value";
  return attributeOf(fault) + " in " + tagOf(fault) + " has no value: '=' is missing behind it, or '>' before it";
}

bool beginsWithTypographicQuote(std::string_view text) {
  constexpr std::array<std::string_view, 8> quotes{"“", "”", "„", "‘", "’", "‚", "«", "»"};
  return std::any_of(quotes.begin(), quotes.end(), [text](std::string_view quote) { return text.starts_with(quote); });
}

TagExplanation beforeValue(const TagFault& fault) {
  if (isIn("<>", fault.rest.front())) return attributeOf(fault) + " has no value";
  if (beginsWithTypographicQuote(fault.rest)) return valueOf(fault) + " is in typographic quotes; write \" or '";
  return valueOf(fault) + " is not in quotes";
}

// A "<" in a value is either meant, or the next tag after a value without an end.
TagExplanation inValue(const TagFault& fault) {
  if (fault.rest.front() != '<') return std::nullopt;
  const bool wentOn = fault.value.find_first_of(">\n\r") != std::string_view::npos;
  if ((wentOn && !nameAt(fault.rest, 1).empty()) || fault.rest.starts_with("</")) {
    return valueOf(fault) + openedOn(fault.valueLine) + " has no closing quote";
  }
  const std::string opening = wentOn ? openedOn(fault.valueLine) + " before its closing quote" : "";
  return "'<' is not allowed in " + valueOf(fault) + opening + "; write &lt;";
}

// Where the quote that closes a value is missing, the next one that opens a value closes it.
TagExplanation afterValue(const TagFault& fault) {
  if (fault.value.ends_with('=')) return valueOf(fault) + openedOn(fault.valueLine) + " has no closing quote";
  if (isIn(",;", fault.rest.front()))
    return "attributes are separated by white space, not by " + quoted(fault.rest.substr(0, 1));
  if (nameAt(fault.rest, 0).empty()) return std::nullopt;
  return "white space is missing behind " + valueOf(fault);
}

TagExplanation afterSlash(const TagFault& /*fault*/) { return "'/' in a tag stands only before '>'"; }

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
          source.position(start).line,
          source.position(value.begin).line};
}

bool isTag(const TagFault& fault) { return !fault.name.empty() && !isIn("!?", fault.name.front()); }

}  // namespace

std::optional<std::string> faultInTag(const SourceText& source, std::size_t start, std::size_t offset) {
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
