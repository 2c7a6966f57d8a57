// What could stand under the cursor.
#pragma once

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

struct CompletionWishes {
  bool snippets = false;  // the client understands tab stops
  bool untyped = true;    // somebody asked for it, rather than typed a character that leads to it
};

// An array of the protocol's CompletionItem. Each has an edit that replaces the word under the cursor.
[[nodiscard]] Json completionsAt(const MarkedDocument& document, const Position& position, const Workspace& workspace,
                                 CompletionWishes wishes);

}  // namespace korvex::lsp
