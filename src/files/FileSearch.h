// From the paths that a user names to the files they stand for.
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
  std::vector<UnreadablePath> unreadable;  // directories that cannot be searched or contain no files
};

// The files that the paths name, in that order and without duplicates. A directory stands for the *.xml files below it,
// sorted; links are followed, and no directory is searched twice. Whether a file can be read is not checked.
[[nodiscard]] InputFiles findInputFiles(const std::vector<std::string>& paths);

}  // namespace korvex
