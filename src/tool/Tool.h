// The command korvex-dao, from its arguments to its exit code.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace korvex {

enum ExitCode : int {
  ExitCodeNothingFound = 0,
  ExitCodeSomethingFound = 1,  // a rejected definition, a malformed document, an unreadable packed value; a client that
                               // exited without shutdown
  ExitCodeTrouble = 2,         // invalid usage, unreadable input, output that cannot be written
};

// The process around the command. The streams are not owned.
struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool outIsTerminal = false;
  bool noColor = false;  // requested by the user; --color=always overrides it
};

// Runs the command on its arguments (without the program's name) and flushes `console.out`.
// Every error becomes a message on `console.err`; nothing is thrown.
[[nodiscard]] ExitCode runTool(const std::vector<std::string>& arguments, const Console& console);

}  // namespace korvex
