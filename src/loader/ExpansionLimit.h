// Refuses documents whose list references would expand to more than the options allow, before
// anything is expanded: 120 KB of text can stand for gigabytes.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// A bound that the expanded texts of a document cannot exceed, cheap enough to be worked out for
// each document. Texts that may be joined, since nothing but comments stands between them, make a run.
class ExpansionBound {
 public:
  void addText(std::string_view text);
  void endRun();
  [[nodiscard]] std::size_t bytes() const { return _bytes; }

 private:
  std::size_t _bytes = 0;
  // Of the run so far, from its first "%" on.
  bool _holdsSymbol = false;
  std::size_t _runLength = 0;
  std::size_t _runMarks = 0;
};

// What the texts below an element that hold a "%" expand to, against the limit. For documents
// whose bound is above it.
[[nodiscard]] std::optional<DocumentError> findOversizedExpansion(const XMLNode& root, const SourceText& source,
                                                                  const LoadOptions& options);

}  // namespace korvex
