// korvex-dao lsp: the language server, for editors to start.
#pragma once

#include <cstddef>

#include "lsp/Server.h"
#include "tool/Tool.h"

namespace korvex {

struct LanguageServerOptions {
  std::size_t maximumBytes = lsp::Server::defaultMaximumBytes;  // of a message
};

// Serves on `console.in` and `console.out` until the client sends "exit" or disconnects.
[[nodiscard]] ExitCode runLanguageServer(const LanguageServerOptions& options, const Console& console);

}  // namespace korvex
