// The command korvex-dao, run in the test's own process.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tool/Tool.h"

namespace korvex {

using CommandLine = std::vector<std::string>;

struct Outcome {
  int code;
  std::string out;
  std::string err;
};

inline Outcome run(const CommandLine& arguments, const std::string& input = "", bool terminal = false,
                   bool noColor = false) {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  const ExitCode code = runTool(arguments, {in, out, err, terminal, noColor});
  return {code, out.str(), err.str()};
}

}  // namespace korvex
