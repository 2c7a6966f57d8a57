#include "loader/TagFaults.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "korvex/QXDAOPackReader.h"
#include "loader/Names.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

constexpr std::size_t npos = std::string_view::npos;

enum class Place { TagName, BeforeAttribute, BehindAttributeName, BeforeValue, InValue, BehindValue, BeforeEnd };

// A tag up to the character that is out of place, as views of it.
struct TagStart {
  bool closes = false;  // an end tag
  std::string_view name;
  std::string_view attribute;  // the last one
  std::string_view value;      // that of it, as far as it goes, without quotes
  Place place = Place::TagName;
};

// Takes a tag apart, piece by piece; each step tells whether there is more.
class TagReader {
 public:
  explicit TagReader(std::string_view markup) : _rest(markup) {}

  TagStart read() {
    _rest.remove_prefix(1);
    _tag.closes = _rest.starts_with('/');
    if (_tag.closes) _rest.remove_prefix(1);
    _tag.name = takeName();
    while (readAttribute()) {
    }
    return _tag;
  }

 private:
  bool readAttribute() {
    if (skipWhiteSpace()) _tag.place = Place::BeforeAttribute;
    if (_rest.starts_with('/')) _tag.place = Place::BeforeEnd;
    const std::string_view name = takeName();
    if (name.empty()) return false;
    _tag.attribute = name;
    _tag.place = Place::BehindAttributeName;
    return readEquals() && readValue();
  }

  bool readEquals() {
    skipWhiteSpace();
    if (!_rest.starts_with('=')) return false;
    _rest.remove_prefix(1);
    skipWhiteSpace();
    _tag.place = Place::BeforeValue;
    return !_rest.empty();
  }

  bool readValue() {
    const char quote = _rest.front();
    _rest.remove_prefix(1);
    const std::size_t end = _rest.find(quote);
    _tag.value = _rest.substr(0, end);
    _tag.place = end == npos ? Place::InValue : Place::BehindValue;
    if (end != npos) _rest.remove_prefix(end + 1);
    return end != npos;
  }

  std::string_view takeName() {
    const std::string_view name = nameAt(_rest, 0);
    _rest.remove_prefix(name.size());
    return name;
  }

  bool skipWhiteSpace() {
    const std::size_t count = std::min(_rest.find_first_not_of(xmlWhiteSpace), _rest.size());
    _rest.remove_prefix(count);
    return count > 0;
  }

  std::string_view _rest;
  TagStart _tag;
};

// A fault, with what is needed to explain it.
struct Fault {
  const TagStart& tag;
  std::string_view rest;  // of the text, from the character that is out of place on
  std::size_t line;       // where the tag begins
  std::size_t valueLine;  // where the last value begins
};

using Explanation = std::optional<std::string>;

std::string openedOn(std::size_t line) { return ", opened on line " + std::to_string(line) + ','; }

std::string tagOf(const Fault& fault) {
  return (fault.tag.closes ? "end tag " : "tag ") + quoted(fault.tag.name) + openedOn(fault.line);
}

std::string attributeOf(const Fault& fault) { return "attribute " + quoted(fault.tag.attribute); }

std::string valueOf(const Fault& fault) { return "the value of " + quoted(fault.tag.attribute); }

std::string notClosed(const Fault& fault) { return tagOf(fault) + " is not closed with '>'"; }

bool isIn(std::string_view set, char character) { return set.find(character) != npos; }

Explanation behindAttributeName(const Fault& fault) {
  if (isIn("/>", fault.rest.front())) return attributeOf(fault) + " has no value";
  return attributeOf(fault) + " in " + tagOf(fault) + " has no value: '=' is missing behind it, or '>' before it";
}

bool beginsWithTypographicQuote(std::string_view text) {
  constexpr std::array<std::string_view, 8> quotes{"“", "”", "„", "‘", "’", "‚", "«", "»"};
  return std::any_of(quotes.begin(), quotes.end(), [text](std::string_view quote) { return text.starts_with(quote); });
}

Explanation beforeValue(const Fault& fault) {
  if (isIn("<>", fault.rest.front())) return attributeOf(fault) + " has no value";
  if (beginsWithTypographicQuote(fault.rest)) return valueOf(fault) + " is in typographic quotes; write \" or '";
  return valueOf(fault) + " is not in quotes";
}

// A "<" in a value is either meant, or the next tag after a value without an end.
Explanation inValue(const Fault& fault) {
  if (fault.rest.front() != '<') return std::nullopt;
  const bool wentOn = fault.tag.value.find_first_of(">\n\r") != npos;
  if ((wentOn && !nameAt(fault.rest, 1).empty()) || fault.rest.starts_with("</")) {
    return valueOf(fault) + openedOn(fault.valueLine) + " has no closing quote";
  }
  const std::string opening = wentOn ? openedOn(fault.valueLine) + " before its closing quote" : "";
  return "'<' is not allowed in " + valueOf(fault) + opening + "; write &lt;";
}

// Where the quote that closes a value is missing, the next one that opens a value closes it.
Explanation behindValue(const Fault& fault) {
  if (fault.tag.value.ends_with('=')) return valueOf(fault) + openedOn(fault.valueLine) + " has no closing quote";
  if (isIn(",;", fault.rest.front()))
    return "attributes are separated by white space, not by " + quoted(fault.rest.substr(0, 1));
  if (nameAt(fault.rest, 0).empty()) return std::nullopt;
  return "white space is missing behind " + valueOf(fault);
}

Explanation beforeEnd(const Fault& /*fault*/) { return "'/' in a tag stands only before '>'"; }

struct Explainer {
  Place place;
  Explanation (*explain)(const Fault&);
};

constexpr std::array<Explainer, 5> explainers{{
    {Place::BehindAttributeName, behindAttributeName},
    {Place::BeforeValue, beforeValue},
    {Place::InValue, inValue},
    {Place::BehindValue, behindValue},
    {Place::BeforeEnd, beforeEnd},
}};

bool beginsTag(std::string_view markup) {
  return markup.starts_with('<') && !nameAt(markup, markup.starts_with("</") ? 2 : 1).empty() && !isIn("!?", markup[1]);
}

}  // namespace

std::optional<std::string> faultInTag(const SourceText& source, std::size_t start, std::size_t offset) {
  const std::string_view text = source.text();
  const std::string_view markup = text.substr(start, offset - start);
  if (!beginsTag(markup)) return std::nullopt;
  const TagStart tag = TagReader(markup).read();
  const std::size_t valueStart = tag.value.empty() ? start : static_cast<std::size_t>(tag.value.data() - text.data());
  const Fault fault{tag, text.substr(offset), source.position(start).line, source.position(valueStart).line};
  const bool valueIsOpen = tag.place == Place::InValue || tag.place == Place::BeforeValue;
  if (tag.closes || (fault.rest.front() == '<' && !valueIsOpen)) return notClosed(fault);
  const Explainer* row = rowWith(explainers, &Explainer::place, tag.place);
  return row ? row->explain(fault) : std::nullopt;
}

}  // namespace korvex
