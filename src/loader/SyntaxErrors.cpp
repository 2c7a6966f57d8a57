#include "loader/SyntaxErrors.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "loader/ExpatParser.h"
#include "loader/TagFaults.h"
#include "markup/Names.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

constexpr std::size_t npos = std::string_view::npos;
bool standsAt(std::string_view text, std::size_t offset, std::string_view what) {
  return offset <= text.size() && text.substr(offset).starts_with(what);
}

bool standsBefore(std::string_view text, std::size_t offset, std::string_view what) {
  return text.substr(0, offset).ends_with(what);
}

// ---------------------------------------------------------------------------------------------
// Tags that do not match

// Follows the tags of a document up to the point where the parser fails. The first pass only measures the nesting; the
// second one records the tags, in memory that is allocated in between.
class OpenTags {
 public:
  explicit OpenTags(std::string_view text) {
    follow(text, enter, leave);
    _offsets.reserve(_maxDepth);
    follow(text, open, close);
  }

  [[nodiscard]] bool outOfMemory() const { return _outOfMemory; }
  // The offset of the innermost start tag that is still open.
  [[nodiscard]] std::optional<std::size_t> innermost() const {
    if (_offsets.empty()) return std::nullopt;
    return _offsets.back();
  }

 private:
  void follow(std::string_view text, XML_StartElementHandler start, XML_EndElementHandler end) {
    _parser.reset(XML_ParserCreate("UTF-8"));
    XML_SetUserData(_parser.get(), this);
    XML_SetElementHandler(_parser.get(), start, end);
    static_cast<void>(parseWhole(_parser, text));
    _outOfMemory = _outOfMemory || isOutOfMemory(_parser);
  }

  static OpenTags& self(void* userData) { return *static_cast<OpenTags*>(userData); }
  static void XMLCALL enter(void* userData, const XML_Char* /*tag*/, const XML_Char** /*attributes*/) {
    self(userData)._maxDepth = std::max(self(userData)._maxDepth, ++self(userData)._depth);
  }
  static void XMLCALL leave(void* userData, const XML_Char* /*tag*/) { --self(userData)._depth; }
  static void XMLCALL open(void* userData, const XML_Char* /*tag*/, const XML_Char** /*attributes*/) {
    self(userData)._offsets.push_back(currentOffset(self(userData)._parser));
  }
  static void XMLCALL close(void* userData, const XML_Char* /*tag*/) { self(userData)._offsets.pop_back(); }

  ExpatParser _parser;
  bool _outOfMemory = false;
  std::size_t _depth = 0;
  std::size_t _maxDepth = 0;
  std::vector<std::size_t> _offsets;
};

// For the element whose start tag is at `offset`.
std::string_view elementNameAt(const SourceText& source, std::size_t offset) {
  return nameAt(source.text(), offset + 1);
}

std::string lineOf(const SourceText& source, std::size_t offset) {
  return std::to_string(source.position(offset).line);
}

// The parser points at the name in the end tag.
SyntaxError mismatchedTag(const SourceText& source, std::size_t offset) {
  constexpr std::size_t endTagOpening = 2;
  const OpenTags tags(source.text());
  if (tags.outOfMemory()) return DocumentRule::OutOfMemory;
  const std::size_t open = tags.innermost().value_or(0);
  return {DocumentRule::MismatchedEndTag,
          offset - endTagOpening,
          {nameAt(source.text(), offset), elementNameAt(source, open), lineOf(source, open)}};
}

SyntaxError endedTooSoon(const SourceText& source, std::size_t offset) {
  const OpenTags tags(source.text());
  if (tags.outOfMemory()) return DocumentRule::OutOfMemory;
  const std::optional<std::size_t> tag = tags.innermost();
  if (!tag) return {DocumentRule::MissingRoot, offset};
  return {DocumentRule::MissingEndTag, offset, {elementNameAt(source, *tag), lineOf(source, *tag)}};
}

// ---------------------------------------------------------------------------------------------
// Markup that does not end

struct Opening {
  std::string_view text;
  DocumentRule unclosed;
};

constexpr std::array<Opening, 6> openings{{
    {"<!--", DocumentRule::UnclosedComment},
    {"<!DOCTYPE", DocumentRule::UnclosedDoctype},
    {"<?", DocumentRule::UnclosedInstruction},
    {"<![", DocumentRule::UnclosedCDATASection},
    {"<", DocumentRule::UnclosedTag},
    {"&", DocumentRule::UnclosedReference},
}};

SyntaxError unclosedMarkup(const SourceText& source, std::size_t offset) {
  for (const Opening& opening : openings) {
    if (standsAt(source.text(), offset, opening.text)) return {opening.unclosed, offset};
  }
  return {DocumentRule::UnclosedMarkup, offset};
}

// The parser points at the end of the text; the section is the first one that opens after all
// those that are closed.
SyntaxError unclosedSection(const SourceText& source, std::size_t /*offset*/) {
  const std::size_t closed = source.text().rfind("]]>");
  return unclosedMarkup(source, source.text().find("<![CDATA[", closed == npos ? 0 : closed));
}

// ---------------------------------------------------------------------------------------------
// References and attributes

constexpr std::array<std::string_view, 5> predefinedEntities{"&lt;", "&gt;", "&amp;", "&quot;", "&apos;"};

bool isKnownReference(std::string_view markup) {
  return markup.starts_with("&#") ||
         std::any_of(predefinedEntities.begin(), predefinedEntities.end(),
                     [markup](std::string_view entity) { return markup.starts_with(entity); });
}

// The parser points at the reference, or at the start tag that holds it.
SyntaxError unknownEntity(const SourceText& source, std::size_t offset) {
  const std::size_t within = unknownReference(source.text().substr(offset));
  return undefinedEntity(source.text(), within == npos ? offset : offset + within);
}

SyntaxError duplicateAttribute(const SourceText& source, std::size_t offset) {
  return {DocumentRule::DuplicateAttribute, offset, {nameAt(source.text(), offset)}};
}

// ---------------------------------------------------------------------------------------------
// Misplaced characters. Each rule examines the character where the parser stopped and the text before it, and returns
// nothing if it does not apply.

using Explanation = std::optional<SyntaxError>;

// The character at an offset; empty if the bytes there are not UTF-8.
std::string_view characterAt(std::string_view text, std::size_t offset) {
  constexpr std::size_t longest = 4;
  for (std::size_t length = 1; length <= longest; ++length) {
    const std::string_view character = text.substr(offset, length);
    if (isValidUTF8(character)) return character;
  }
  return {};
}

Explanation controlCharacter(std::string_view text, std::size_t offset) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(text[offset]);
  const bool isControl = byte < 0x20U || byte == 0x7FU;
  if (!isControl || xmlWhiteSpace.find(text[offset]) != npos) return std::nullopt;
  const std::string code{digits[byte >> 4U], digits[byte & 0xFU]};
  return SyntaxError{DocumentRule::ControlCharacter, offset, {code}};
}

Explanation invalidUTF8(std::string_view text, std::size_t offset) {
  if (!characterAt(text, offset).empty()) return std::nullopt;
  return SyntaxError{DocumentRule::InvalidUTF8, offset};
}

// U+FFFE and U+FFFF, which XML excludes. They are invisible when printed.
Explanation noncharacter(std::string_view text, std::size_t offset) {
  const std::string_view character = characterAt(text, offset);
  if (character != "\uFFFE" && character != "\uFFFF") return std::nullopt;
  return SyntaxError{DocumentRule::Noncharacter, offset, {character == "\uFFFE" ? "FFFE" : "FFFF"}};
}

// An "&" that does not begin a reference, with a possible name between it and the offset.
Explanation bareAmpersand(std::string_view text, std::size_t offset) {
  const std::size_t at = text.substr(0, offset).find_last_of(xmlNameEnds);
  if (at == npos || text[at] != '&') return std::nullopt;
  return SyntaxError{DocumentRule::BareAmpersand, at};
}

Explanation bareLessThan(std::string_view text, std::size_t offset) {
  if (!standsBefore(text, offset, "<")) return std::nullopt;
  if (text[offset] == '/') return SyntaxError{DocumentRule::MissingStartTag, offset - 1};
  return SyntaxError{DocumentRule::BareLessThan, offset - 1};
}

Explanation misplacedLessThan(std::string_view text, std::size_t offset) {
  if (text[offset] != '<') return std::nullopt;
  return SyntaxError{DocumentRule::MisplacedLessThan, offset};
}

Explanation sectionEndInText(std::string_view text, std::size_t offset) {
  if (text[offset] != '>' || !standsBefore(text, offset, "]]")) return std::nullopt;
  return SyntaxError{DocumentRule::SectionEndInText, offset - 2};
}

Explanation misplacedWhiteSpace(std::string_view text, std::size_t offset) {
  if (xmlWhiteSpace.find(text[offset]) == npos) return std::nullopt;
  return SyntaxError{DocumentRule::MisplacedWhiteSpace, offset};
}

Explanation dashesInComment(std::string_view text, std::size_t offset) {
  if (!standsBefore(text, offset, "--")) return std::nullopt;
  return SyntaxError{DocumentRule::DashesInComment, offset - 2};
}

using Rule = Explanation (*)(std::string_view, std::size_t);
// The rules that also apply in tags, and those that do not.
constexpr std::array<Rule, 4> rulesEverywhere{controlCharacter, invalidUTF8, noncharacter, bareAmpersand};
constexpr std::array<Rule, 5> rulesOutsideTags{bareLessThan, misplacedLessThan, sectionEndInText, dashesInComment,
                                               misplacedWhiteSpace};

template <std::size_t count>
Explanation firstThatApplies(const std::array<Rule, count>& rules, std::string_view text, std::size_t offset) {
  for (const Rule rule : rules) {
    if (Explanation error = rule(text, offset)) return error;
  }
  return std::nullopt;
}

// Finds the start of the markup in which the parser stops: a default handler receives everything before it, in pieces.
class LastMarkup {
 public:
  explicit LastMarkup(std::string_view text) : _parser(XML_ParserCreate("UTF-8")) {
    XML_SetUserData(_parser.get(), this);
    XML_SetDefaultHandler(_parser.get(), pass);
    static_cast<void>(parseWhole(_parser, text));
  }

  [[nodiscard]] bool outOfMemory() const { return isOutOfMemory(_parser); }
  [[nodiscard]] std::size_t offset() const { return _offset; }

 private:
  static void XMLCALL pass(void* userData, const XML_Char* /*markup*/, int length) {
    static_cast<LastMarkup*>(userData)->_offset += static_cast<std::size_t>(length);
  }

  ExpatParser _parser;
  std::size_t _offset = 0;
};

SyntaxError unexpectedCharacter(const SourceText& source, std::size_t offset) {
  const std::string_view text = source.text();
  if (Explanation error = firstThatApplies(rulesEverywhere, text, offset)) return *std::move(error);
  const LastMarkup markup(text);
  if (markup.outOfMemory()) return DocumentRule::OutOfMemory;
  if (Explanation error = faultInTag(source, markup.offset(), offset)) return *std::move(error);
  if (Explanation error = firstThatApplies(rulesOutsideTags, text, offset)) return *std::move(error);
  return {DocumentRule::UnexpectedCharacter, offset, {characterAt(text, offset)}};
}

// ---------------------------------------------------------------------------------------------

struct Explainer {
  XML_Error code;
  SyntaxError (*explain)(const SourceText&, std::size_t);
};

constexpr std::array<Explainer, 7> explainers{{
    {XML_ERROR_TAG_MISMATCH, mismatchedTag},
    {XML_ERROR_NO_ELEMENTS, endedTooSoon},
    {XML_ERROR_UNCLOSED_TOKEN, unclosedMarkup},
    {XML_ERROR_UNCLOSED_CDATA_SECTION, unclosedSection},
    {XML_ERROR_UNDEFINED_ENTITY, unknownEntity},
    {XML_ERROR_DUPLICATE_ATTRIBUTE, duplicateAttribute},
    {XML_ERROR_INVALID_TOKEN, unexpectedCharacter},
}};

struct PlainRule {
  XML_Error code;
  DocumentRule rule;
};

constexpr std::array<PlainRule, 4> plainRules{{
    {XML_ERROR_SYNTAX, DocumentRule::ContentBeforeRoot},
    {XML_ERROR_JUNK_AFTER_DOC_ELEMENT, DocumentRule::ContentAfterRoot},
    {XML_ERROR_MISPLACED_XML_PI, DocumentRule::MisplacedDeclaration},
    {XML_ERROR_PARTIAL_CHAR, DocumentRule::CutOffCharacter},
}};

}  // namespace

SyntaxError explainedError(const SourceText& source, XML_Error code, std::size_t offset) {
  if (const Explainer* row = rowWith(explainers, &Explainer::code, code)) return row->explain(source, offset);
  if (const PlainRule* row = rowWith(plainRules, &PlainRule::code, code)) return {row->rule, offset};
  return {DocumentRule::NotWellFormed, offset, {XML_ErrorString(code)}};
}

std::size_t unknownReference(std::string_view markup) {
  std::size_t at = markup.find('&');
  while (at != npos && isKnownReference(markup.substr(at))) at = markup.find('&', at + 1);
  return at;
}

SyntaxError undefinedEntity(std::string_view text, std::size_t offset) {
  return {DocumentRule::UnknownEntity, offset, {nameAt(text, offset + 1)}};
}

}  // namespace korvex
