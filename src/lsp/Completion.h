// What can be inserted at the cursor.
#pragma once

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

struct CompletionOptions {
  bool snippets = false;  // the client supports tab stops
  bool invoked = true;    // requested explicitly, not triggered by a typed character
};

// An array of the protocol's CompletionItem. The edit of each replaces the word at the cursor.
[[nodiscard]] Json completionsAt(const MarkedDocument& document, const Position& position, const Workspace& workspace,
                                 CompletionOptions options);

}  // namespace korvex::lsp
