#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "korvex/Export.h"
#include "korvex/XMLNode.h"

namespace korvex {

// What keeps a whole document from being read.
enum class DocumentErrorKind { Unreadable, TooLarge, Malformed, TooDeep, OutOfMemory, ExpansionTooLarge };

// Whether such an error says that something is wrong with the document, and not that it could not be read here and now.
[[nodiscard]] constexpr bool blamesDocument(DocumentErrorKind kind) {
  return kind != DocumentErrorKind::Unreadable && kind != DocumentErrorKind::OutOfMemory;
}

// The reasons one by one. The numbers may change between versions.
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

  // What a DOCTYPE must not bring
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

  // Characters out of place
  UnknownEntity,
  BareAmpersand,
  BareLessThan,
  MisplacedLessThan,
  SectionEndInText,
  DashesInComment,
  MisplacedWhiteSpace,
  UnexpectedCharacter,

  // In the words of a parser
  NotWellFormed,
  NoTree,
};

struct KORVEX_EXPORT DocumentError {
  DocumentRule rule = DocumentRule::NotWellFormed;
  std::string message;        // one line without a final period
  XMLPosition position = {};  // line 1, column 1 where the error is about the file as a whole
  // The same in bytes from the beginning of the source text; 0 where there is no source text. Its position is then the
  // parser's own.
  std::size_t offset = 0;

  [[nodiscard]] DocumentErrorKind kind() const;
};

}  // namespace korvex
