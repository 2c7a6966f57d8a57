// Reads files that are small unless something is wrong.
#pragma once

#include <cstddef>
#include <istream>
#include <string>

namespace korvex::verification {

inline constexpr std::size_t maxTextFile = std::size_t{16} << 20U;  // in bytes

// Appends the rest of a file. False if it cannot be read to its end, or the text becomes larger than maxTextFile.
[[nodiscard]] bool appendRest(std::istream& file, std::string& text);

}  // namespace korvex::verification
