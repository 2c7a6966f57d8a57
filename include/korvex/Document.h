// From the bytes of a definition document to element trees and exact diagnostics.
//
//   bytes → Document (XML tree with positions) → loadDefinitions → elements and error records
//
// Nothing here throws or aborts on bad input; a failure is a value with a message and a position. When memory runs out
// there is either an error of that kind or std::bad_alloc; libraries that are built with KORVEX_EXCEPTIONS then leak
// nothing and leave nothing half-built, others must not be used on.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/DocumentError.h"
#include "korvex/Export.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct LoadOptions {
  // Refuse what is not well-formed XML by a first pass of a strict parser. Switch it off only for
  // documents that were checked before, such as when the app was built: a well-formed document
  // gives the same tree either way, a malformed one may then give some tree instead of a message.
  // A reference to an entity that only an external DTD could declare is text then.
  bool strict = true;
  // Keep text nodes of white space only. A <map> with indented children is refused then.
  bool keepWhiteSpaceText = false;
  // The largest document that is read, in bytes.
  std::size_t maximumBytes = std::size_t{64} * 1024 * 1024;
  // The deepest nesting of elements, the root counting 1. Parsing needs no stack for it, building
  // the elements does.
  std::size_t maximumDepth = 256;
  // What the list references of a document may expand to, the texts that hold them included, in bytes.
  std::size_t maximumExpandedBytes = std::size_t{64} * 1024 * 1024;
};

// A parsed document: the tree that XMLNode handles read, and its source text for diagnostics.
// Not copyable; the handles and views taken from it are valid while it lives. After construction
// it is only read, on any number of threads.
class KORVEX_EXPORT Document {
 public:
  struct Result;

  // Parses bytes: UTF-8, or UTF-16, ISO-8859-1 and US-ASCII that say so. Strict or not, a
  // DOCTYPE that declares entities or attributes is refused, and nothing it refers to is loaded.
  // Bytes that are moved in are not copied as long as they are UTF-8 without a byte order mark.
  [[nodiscard]] static Result fromBytes(std::string bytes, const LoadOptions& options = {});
  // Reads a file first. A directory, a missing file and the like are DocumentErrorKind::Unreadable.
  [[nodiscard]] static Result fromFile(const std::string& path, const LoadOptions& options = {});

  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  // The root element; never null.
  [[nodiscard]] XMLNode root() const;
  [[nodiscard]] const SourceText& source() const;
  // The same text, for whoever needs it longer than the document.
  [[nodiscard]] const std::shared_ptr<const SourceText>& sharedSource() const;

 private:
  class Implementation;
  explicit Document(std::unique_ptr<Implementation> implementation);

  std::unique_ptr<Implementation> _implementation;
};

// Either a document or the reason why there is none.
struct Document::Result {
  std::unique_ptr<Document> document;        // null on failure
  std::optional<DocumentError> error;        // present on failure
  std::shared_ptr<const SourceText> source;  // for an excerpt; null when the text could not be read
};

}  // namespace korvex
