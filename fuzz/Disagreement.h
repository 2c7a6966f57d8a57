// Reports that two implementations disagree: prints both results and aborts.
#pragma once

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "tool/VisibleText.h"

namespace korvex {

[[noreturn]] inline void disagree(std::string_view what, std::string_view found, std::string_view wanted) {
  std::cerr << "\nDISAGREEMENT: " << what << "\n  found:  " << visibleText(found)
            << "\n  wanted: " << visibleText(wanted) << std::endl;
  std::abort();
}

inline void expectSame(std::string_view what, std::string_view found, std::string_view wanted) {
  if (found != wanted) disagree(what, found, wanted);
}

inline void expectThat(bool holds, std::string_view what) {
  if (!holds) disagree(what, "no", "yes");
}

// Prints the first line that differs.
inline void expectSame(std::string_view what, std::vector<std::string> found, std::vector<std::string> wanted) {
  found.emplace_back("(the end)");
  wanted.emplace_back("(the end)");
  for (std::size_t line = 0; line < found.size() && line < wanted.size(); ++line) {
    expectSame(std::string(what) + ", line " + std::to_string(line + 1), found[line], wanted[line]);
  }
}

}  // namespace korvex
