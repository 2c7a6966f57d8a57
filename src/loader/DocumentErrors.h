// The rules that make a document unusable, with the kind and message of each.
#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include "korvex/DocumentError.h"
#include "korvex/Export.h"
#include "korvex/SourceText.h"
#include "platform/Tables.h"

namespace korvex {

struct DocumentRuleText {
  DocumentRule rule;
  DocumentErrorKind kind;
  std::string_view message;  // each "%@" is filled
};

namespace DocumentRules {
using enum DocumentRule;
constexpr auto malformed = DocumentErrorKind::Malformed;

inline constexpr std::array<DocumentRuleText, 51> texts = {{
    {UnreadableFile, DocumentErrorKind::Unreadable, "cannot read the file: %@"},
    {UnreadableInput, DocumentErrorKind::Unreadable, "cannot read standard input"},
    {TooLarge, DocumentErrorKind::TooLarge, "document is larger than %@ bytes"},
    {TooDeep, DocumentErrorKind::TooDeep, "elements are nested deeper than %@ levels"},
    {OutOfMemory, DocumentErrorKind::OutOfMemory, "not enough memory to read the document"},
    {ExpansionTooLarge, DocumentErrorKind::ExpansionTooLarge, "list references expand to more than %@ bytes"},

    {MissingRoot, malformed, "no root element"},
    {ContentBeforeRoot, malformed, "unexpected content before the root element"},
    {ContentAfterRoot, malformed, "unexpected content after the root element"},
    {MisplacedDeclaration, malformed, "an XML declaration is allowed only at the very start of a document"},
    {UnknownEncoding, malformed, "unknown encoding; use UTF-8, UTF-16, ISO-8859-1 or US-ASCII"},
    {InvalidUTF8, malformed,
     "not valid UTF-8; save the file as UTF-8, or declare what it is, such as encoding=\"ISO-8859-1\""},
    {CutOffCharacter, malformed, "the last character is cut off"},
    {ControlCharacter, malformed, "control character U+00%@ is not allowed"},
    {Noncharacter, malformed, "character U+%@ is not allowed"},

    {EntityDeclaration, malformed, "entity declarations are not supported"},
    {AttributeListDeclaration, malformed, "attribute-list declarations are not supported"},
    {ParameterEntityReference, malformed, "parameter-entity references are not supported"},

    {MismatchedEndTag, malformed, "end tag '%@' does not match '%@', opened on line %@"},
    {MissingEndTag, malformed, "no end tag for '%@', opened on line %@"},
    {MissingStartTag, malformed, "end tag without a start tag"},

    {UnclosedComment, malformed, "comment is not closed"},
    {UnclosedDoctype, malformed, "DOCTYPE is not closed"},
    {UnclosedInstruction, malformed, "processing instruction is not closed"},
    {UnclosedCDATASection, malformed, "CDATA section is not closed"},
    {UnclosedReference, malformed, "reference is not closed"},
    {UnclosedMarkup, malformed, "markup is not closed"},
    {UnclosedTag, malformed, "tag is not closed"},
    {UnclosedStartTag, malformed, "tag '%@', opened on line %@, is not closed with '>'"},
    {UnclosedEndTag, malformed, "end tag '%@', opened on line %@, is not closed with '>'"},

    {DuplicateAttribute, malformed, "attribute '%@' is given twice"},
    {MissingValue, malformed, "attribute '%@' has no value"},
    {MissingEquals, malformed,
     "attribute '%@' in tag '%@', opened on line %@, has no value: '=' is missing behind it, or '>' before it"},
    {TypographicQuotes, malformed, "the value of '%@' is in typographic quotes; write \" or '"},
    {MissingQuotes, malformed, "the value of '%@' is not in quotes"},
    {MissingClosingQuote, malformed, "the value of '%@', opened on line %@, has no closing quote"},
    {LessThanInValue, malformed, "'<' is not allowed in the value of '%@'; write &lt;"},
    {LessThanInOpenValue, malformed,
     "'<' is not allowed in the value of '%@', opened on line %@, before its closing quote; write &lt;"},
    {AttributeSeparator, malformed, "attributes are separated by white space, not by '%@'"},
    {MissingWhiteSpace, malformed, "white space is missing behind the value of '%@'"},
    {MisplacedSlash, malformed, "'/' in a tag stands only before '>'"},

    {UnknownEntity, malformed, "entity '%@' is not defined"},
    {BareAmpersand, malformed, "'&' does not begin a reference; write &amp;"},
    {BareLessThan, malformed, "'<' does not begin a tag; write &lt; or use a CDATA section"},
    {MisplacedLessThan, malformed, "'<' is not allowed here"},
    {SectionEndInText, malformed, "']]>' is not allowed in text; write ]]&gt;"},
    {DashesInComment, malformed, "'--' is not allowed in a comment"},
    {MisplacedWhiteSpace, malformed, "unexpected white space"},
    {UnexpectedCharacter, malformed, "unexpected '%@'"},

    {NotWellFormed, malformed, "%@"},
    {NoTree, malformed, "no tree: %@"},
}};

}  // namespace DocumentRules

[[nodiscard]] constexpr const DocumentRuleText& documentRuleTextOf(DocumentRule rule) {
  return *rowWith(DocumentRules::texts, &DocumentRuleText::rule, rule);
}

// The message of a rule, with the details filled in, in order.
[[nodiscard]] KORVEX_EXPORT std::string documentMessage(DocumentRule rule,
                                                        std::initializer_list<std::string_view> details = {});

[[nodiscard]] inline DocumentError documentError(DocumentRule rule,
                                                 std::initializer_list<std::string_view> details = {},
                                                 const XMLPosition& position = {}) {
  return {rule, documentMessage(rule, details), position, 0};
}

// An error at an offset of the text.
[[nodiscard]] inline DocumentError documentErrorAt(const SourceText& source, std::size_t offset, DocumentRule rule,
                                                   std::initializer_list<std::string_view> details = {}) {
  return {rule, documentMessage(rule, details), source.position(offset), offset};
}

}  // namespace korvex
