// JSON as the language server reads and writes it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace korvex::lsp {

// Sorted by key: objects whose members keep their order are searched one member after the other, and a client may send
// one with a million members.
using Json = nlohmann::json;

// The member of an object, or null when there is none or `object` is no object.
[[nodiscard]] inline const Json& member(const Json& object, const char* name) {
  static const Json none;
  const auto found = object.find(name);
  return found == object.end() ? none : *found;
}

[[nodiscard]] inline std::string stringOf(const Json& value) {
  return value.is_string() ? value.get<std::string>() : std::string();
}

// What a client says; discarded when it is no JSON. Editors that count in UTF-16 may cut a surrogate pair in two; JSON
// has no character for a half, so it becomes U+FFFD, and every place in the text stays what it is for the client.
[[nodiscard]] Json parsedMessage(const std::string& text);

// As text for the wire. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] inline std::string textOf(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace korvex::lsp
