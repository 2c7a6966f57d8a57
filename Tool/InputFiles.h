// From the paths of a command line to the documents behind them.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Loader/DefinitionLoader.h"

namespace korvex {

// The path that stands for standard input, and how it is shown.
inline constexpr std::string_view standardInput = "-";
[[nodiscard]] std::string shownPath(const std::string& path);

struct UnreadablePath {
  std::string path;
  std::string message;
};

// "korvex-dao: PATH: MESSAGE" on one line.
void printUnreadable(std::ostream& err, const UnreadablePath& path);

struct InputFiles {
  std::vector<std::string> files;
  std::vector<UnreadablePath> unreadable;  // below the directories that were searched
};

// The files that the paths name, in their order, each once even when it is named twice. A directory
// gives the *.xml files below it, sorted; links are followed, no directory is searched twice.
// Whether the files can be read shows when they are.
[[nodiscard]] InputFiles findInputFiles(const std::vector<std::string>& paths);

struct InputBytes {
  std::string name;                  // of the input, as it is shown
  std::string bytes;                 // empty after an error
  std::optional<std::string> error;  // why the input cannot be read
};

// Reads a file, or `in` for the path "-", of at most 1000000000 bytes: SQLite's limit for a value.
[[nodiscard]] InputBytes readBytes(const std::string& path, std::istream& in);

// Parses a file, or `in` for the path "-".
[[nodiscard]] Document::Result readDocument(const std::string& path, std::istream& in, const LoadOptions& options);

}  // namespace korvex
