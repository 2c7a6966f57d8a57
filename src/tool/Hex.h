// Bytes as hexadecimal text, and back.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// Two digits per byte, in upper case, with the separator between bytes.
[[nodiscard]] std::string hexText(std::string_view bytes, std::string_view separator = "");

struct HexBytes {
  std::string bytes;
  std::string error;  // why the text is invalid, with the position from 1; empty if it is valid
};

// Two digits per byte, in upper or lower case, with any white space; also in the forms 0x01 and X'01' of a blob, as
// SQLite prints it.
[[nodiscard]] HexBytes bytesOfHex(std::string_view text);

}  // namespace korvex
