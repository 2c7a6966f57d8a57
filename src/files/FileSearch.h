// From paths that somebody names to the files behind them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvex {

// The path that stands for standard input.
inline constexpr std::string_view standardInput = "-";

struct UnreadablePath {
  std::string path;
  std::string message;
};

struct InputFiles {
  std::vector<std::string> files;
  std::vector<UnreadablePath> unreadable;  // below the directories that were searched, or one of them without files
};

// The files that the paths name, in their order, each once even when it is named twice. A directory
// gives the *.xml files below it, sorted; links are followed, no directory is searched twice.
// Whether the files can be read shows when they are.
[[nodiscard]] InputFiles findInputFiles(const std::vector<std::string>& paths);

}  // namespace korvex
