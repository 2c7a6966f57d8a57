// JSON as the language server reads and writes it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace korvex::lsp {

// Objects are sorted by key: those that keep the order of their members are searched linearly, and a client may send
// one with a million members.
using Json = nlohmann::json;

// The member of an object; null when there is none, or when `object` is not an object.
[[nodiscard]] inline const Json& member(const Json& object, const char* name) {
  static const Json none;
  const auto found = object.find(name);
  return found == object.end() ? none : *found;
}

[[nodiscard]] inline std::string stringOf(const Json& value) {
  return value.is_string() ? value.get<std::string>() : std::string();
}

// A client's message; discarded when it is not JSON. Editors that count in UTF-16 may split a surrogate pair. JSON
// cannot represent a lone surrogate, so it becomes U+FFFD, which is one UTF-16 unit too: positions stay valid.
[[nodiscard]] Json parsedMessage(const std::string& text);

// Serialized for the wire. Bytes that are not valid UTF-8 become U+FFFD.
[[nodiscard]] inline std::string textOf(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace korvex::lsp
