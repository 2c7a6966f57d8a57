// An error or warning about a definition document.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "checks/Rules.h"
#include "korvex/OptionalString.h"
#include "korvex/SourceText.h"
#include "markup/Span.h"

namespace korvex {

// A checked document, with the text that its offsets refer to. All of its findings share it.
struct CheckedFile {
  std::string path;
  std::shared_ptr<const SourceText> source;  // null when the document could not be decoded
  XMLPosition failedAt = {};                 // where that failed

  [[nodiscard]] XMLPosition position(std::size_t offset) const { return source ? source->position(offset) : failedAt; }
};

// A range of a document. Lines and columns are computed on demand.
struct Location {
  std::shared_ptr<const CheckedFile> file;  // never null in a finding that is reported
  Span span;

  [[nodiscard]] const std::string& path() const { return file->path; }
  [[nodiscard]] XMLPosition begin() const { return file->position(span.begin); }
  [[nodiscard]] XMLPosition end() const { return file->position(span.end); }  // one past the last character
};

// Another place that a finding refers to, such as the first of two definitions with the same name.
struct Related {
  Location location;
  std::string message;
};

struct Finding {
  // The definition at fault, shared by all findings in it.
  struct InDefinition {
    std::string tag;
    OptionalString name;  // its "id", cut after a few hundred bytes
    std::size_t offset = 0;
  };

  const Rule* rule = nullptr;           // the rule that is violated; never null in a reported finding
  Severity severity = Severity::Error;  // that of the rule, unless warnings are treated as errors
  Location location;
  std::string message;
  std::string help;  // how to fix it; may be empty
  std::vector<Related> related;
  std::shared_ptr<const InDefinition> definition;  // null for a document that cannot be read as a whole
};

}  // namespace korvex
