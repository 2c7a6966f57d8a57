#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

#include "tool/OutOfMemory.h"
#include "tool/Tool.h"

namespace {

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): before any thread runs
  return value ? value : "";
}

// By convention, an empty NO_COLOR has no effect.
bool noColorWanted() { return !environment("NO_COLOR").empty() || environment("TERM") == "dumb"; }

}  // namespace

int main(int argc, char** argv) {
  korvex::endWhenMemoryRunsOut();
  // With their own buffers, the streams detect every failed read and write.
  std::ios::sync_with_stdio(false);
  return korvex::runTool({argv + (argc > 0 ? 1 : 0), argv + argc},
                         {std::cin, std::cout, std::cerr, isatty(STDOUT_FILENO) == 1, noColorWanted()});
}
