#include "tool/LanguageServerCommand.h"

#include <poll.h>
#include <unistd.h>

#include <iostream>

namespace korvex {
namespace {

bool isInputWaiting(int milliseconds) {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, milliseconds) > 0;
}

}  // namespace

ExitCode runLanguageServer(const LanguageServerOptions& options, const Console& console) {
  lsp::Server server(console.in, console.out, options.maximumBytes);
  if (&console.in == &std::cin) server.setInputTest(isInputWaiting);
  return server.run() ? ExitCodeNothingFound : ExitCodeSomethingFound;
}

}  // namespace korvex
