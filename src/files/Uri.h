// Percent-encoding of bytes that are not allowed in a URI.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// "%20"
[[nodiscard]] std::string percentEncoded(char byte);

// A path as part of a URI: the unreserved characters of RFC 3986 and slashes stay as they are.
[[nodiscard]] std::string uriPathOf(std::string_view path);

// The bytes that part of a URI stands for. A "%" without two hexadecimal digits stands for itself.
[[nodiscard]] std::string percentDecoded(std::string_view text);

}  // namespace korvex
