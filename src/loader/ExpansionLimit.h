// Rejects documents whose list references would expand to more than the options allow, before anything is expanded:
// 120 KB of text can expand to gigabytes.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// An upper bound for the expanded size of a document's texts, cheap enough to compute for every document. Texts that
// may be joined, because only comments separate them, form a run.
class ExpansionBound {
 public:
  void addText(std::string_view text);
  void endRun();
  [[nodiscard]] std::size_t bytes() const { return _bytes; }

 private:
  std::size_t _bytes = 0;
  // For the run so far, from its first "%" on.
  bool _holdsSymbol = false;
  std::size_t _runLength = 0;
  std::size_t _runMarks = 0;
};

// Compares the exact expanded size of all texts with a "%" below an element with the limit. For documents whose bound
// exceeds the limit.
[[nodiscard]] std::optional<DocumentError> findOversizedExpansion(const XMLNode& root, const SourceText& source,
                                                                  const LoadOptions& options);

}  // namespace korvex
