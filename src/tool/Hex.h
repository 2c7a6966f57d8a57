// Bytes as hexadecimal text, and back.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// Two digits a byte, upper case, with the separator between the bytes.
[[nodiscard]] std::string hexText(std::string_view bytes, std::string_view separator = "");

struct HexBytes {
  std::string bytes;
  std::string error;  // why the text is no bytes, with the position from 1; empty when it is
};

// Two digits a byte, upper or lower case; white space may stand anywhere.
[[nodiscard]] HexBytes bytesOfHex(std::string_view text);

}  // namespace korvex
