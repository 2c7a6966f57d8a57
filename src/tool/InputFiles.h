// Reads the documents of the paths on a command line.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "files/FileSearch.h"
#include "korvex/Document.h"

namespace korvex {

// The displayed form of a path.
[[nodiscard]] std::string shownPath(const std::string& path);

// "korvex-dao: PATH: MESSAGE" on one line.
void printUnreadable(std::ostream& err, const UnreadablePath& path);

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
