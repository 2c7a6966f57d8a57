// Bytes that cannot stand in a URI are written as "%" and two hexadecimal digits.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// "%20"
[[nodiscard]] std::string percentEncoded(char byte);

// A path as that of a URI: letters, digits, what RFC 3986 calls unreserved, and the slashes between names stay.
[[nodiscard]] std::string uriPathOf(std::string_view path);

// The bytes that a part of a URI stands for. A "%" without two hexadecimal digits stands for itself.
[[nodiscard]] std::string percentDecoded(std::string_view text);

}  // namespace korvex
