// From the bytes of a definition document to element trees and exact diagnostics.
//
//   bytes → Document (XML tree with positions) → loadDefinitions → elements and error records
//
// Bad input never throws or aborts: a failure is a value with a message and a position. When memory runs out, the
// result is either an error of that kind or std::bad_alloc. After std::bad_alloc, a library built with
// KORVEX_EXCEPTIONS has leaked nothing and left nothing half-built; any other build must not be used any further.
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
  // Run a strict parser first, which rejects anything that is not well-formed XML. Switch it off only
  // for documents that have been checked before, for example when the app was built. A well-formed
  // document yields the same tree either way. Without this pass, a malformed document may yield an
  // arbitrary tree instead of an error, and a reference to an entity that only an external DTD could
  // declare becomes text.
  bool strict = true;
  // Keep text nodes that contain only white space. A <map> with indented children is then rejected.
  bool keepWhiteSpaceText = false;
  // The maximum size of a document, in bytes.
  std::size_t maximumBytes = std::size_t{64} * 1024 * 1024;
  // The maximum nesting depth of elements; the root has depth 1. Parsing uses no stack per level, but
  // building the elements does.
  std::size_t maximumDepth = 256;
  // The maximum total size of all expanded texts that contain list references, in bytes.
  std::size_t maximumExpandedBytes = std::size_t{64} * 1024 * 1024;
};

// A parsed document: the tree that XMLNode handles read, and its source text for diagnostics.
// Not copyable. Handles and views obtained from it are valid while it lives. It is immutable, so
// any number of threads may read it.
class KORVEX_EXPORT Document {
 public:
  struct Result;

  // Parses bytes: UTF-8, or UTF-16, ISO-8859-1 or US-ASCII if the document declares it. Strict or
  // not, a DOCTYPE that declares entities or attributes is rejected, and external references are never
  // loaded. Moved-in bytes are not copied if they are UTF-8 without a byte order mark.
  [[nodiscard]] static Result fromBytes(std::string bytes, const LoadOptions& options = {});
  // Reads and parses a file. A missing file, a directory and the like fail with
  // DocumentErrorKind::Unreadable.
  [[nodiscard]] static Result fromFile(const std::string& path, const LoadOptions& options = {});

  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  // The root element; never null.
  [[nodiscard]] XMLNode root() const;
  [[nodiscard]] const SourceText& source() const;
  // The same text, for use beyond the lifetime of the document.
  [[nodiscard]] const std::shared_ptr<const SourceText>& sharedSource() const;

 private:
  class Implementation;
  explicit Document(std::unique_ptr<Implementation> implementation);

  std::unique_ptr<Implementation> _implementation;
};

// Either a document or an error.
struct Document::Result {
  std::unique_ptr<Document> document;        // null on failure
  std::optional<DocumentError> error;        // present on failure
  std::shared_ptr<const SourceText> source;  // for excerpts in messages; null if the text could not be read
};

}  // namespace korvex
