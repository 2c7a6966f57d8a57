#include "tool/LanguageServerCommand.h"

namespace korvex {

ExitCode runLanguageServer(const LanguageServerOptions& options, const Console& console) {
  lsp::Server server(console.in, console.out, options.maximumBytes);
  return server.run() ? ExitCodeNothingFound : ExitCodeSomethingFound;
}

}  // namespace korvex
