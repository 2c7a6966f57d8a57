#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "korvex/Export.h"
#include "korvex/XMLNode.h"

namespace korvex {

// Why a document cannot be read.
enum class DocumentErrorKind { Unreadable, TooLarge, Malformed, TooDeep, OutOfMemory, ExpansionTooLarge };

// Whether the error is in the document itself, not in the attempt to read it.
[[nodiscard]] constexpr bool blamesDocument(DocumentErrorKind kind) {
  return kind != DocumentErrorKind::Unreadable && kind != DocumentErrorKind::OutOfMemory;
}

// The specific reasons. The numeric values may change between versions.
enum class DocumentRule : std::uint8_t {
  UnreadableFile,
  UnreadableInput,  // a stream, such as standard input
  TooLarge,
  TooDeep,
  OutOfMemory,
  ExpansionTooLarge,

  // The rest is malformed. The document as a whole
  MissingRoot,
  ContentBeforeRoot,
  ContentAfterRoot,
  MisplacedDeclaration,
  UnknownEncoding,
  InvalidUTF8,
  CutOffCharacter,
  ControlCharacter,
  Noncharacter,

  // Forbidden in a DOCTYPE
  EntityDeclaration,
  AttributeListDeclaration,
  ParameterEntityReference,

  // Tags that do not match
  MismatchedEndTag,
  MissingEndTag,
  MissingStartTag,

  // Markup that does not end
  UnclosedComment,
  UnclosedDoctype,
  UnclosedInstruction,
  UnclosedCDATASection,
  UnclosedReference,
  UnclosedMarkup,
  UnclosedTag,
  UnclosedStartTag,
  UnclosedEndTag,

  // Attributes
  DuplicateAttribute,
  MissingValue,
  MissingEquals,
  TypographicQuotes,
  MissingQuotes,
  MissingClosingQuote,
  LessThanInValue,
  LessThanInOpenValue,
  AttributeSeparator,
  MissingWhiteSpace,
  MisplacedSlash,

  // Misplaced characters
  UnknownEntity,
  BareAmpersand,
  BareLessThan,
  MisplacedLessThan,
  SectionEndInText,
  DashesInComment,
  MisplacedWhiteSpace,
  UnexpectedCharacter,

  // With the message of a parser
  NotWellFormed,
  NoTree,
};

struct KORVEX_EXPORT DocumentError {
  DocumentRule rule = DocumentRule::NotWellFormed;
  std::string message;        // one line without a final period
  XMLPosition position = {};  // line 1, column 1 if the error is about the whole file
  // The byte offset of the position in the source text. Without a source text it is 0, and the position is the parser's
  // own.
  std::size_t offset = 0;

  [[nodiscard]] DocumentErrorKind kind() const;
};

}  // namespace korvex
