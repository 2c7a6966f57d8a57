#include "schema/Node.h"

#include <array>

namespace korvex::schema {

namespace {

struct Escape {
  char character;
  std::string_view reference;
};

constexpr std::array<Escape, 4> escapes{{{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}}};

std::string escaped(std::string_view text) {
  std::string result;
  for (const char character : text) {
    std::string_view written(&character, 1);
    for (const Escape& escape : escapes) {
      if (escape.character == character) written = escape.reference;
    }
    result += written;
  }
  return result;
}

void append(std::string& output, const Node& node, std::size_t indent) {
  output.append(indent, ' ').append("<").append(node.name);
  for (const auto& [name, value] : node.attributes) output.append(" " + name + "=\"").append(escaped(value) + "\"");
  if (node.text.empty() && node.children.empty()) {
    output += "/>\n";
    return;
  }
  output.append(">").append(escaped(node.text));
  if (!node.children.empty()) {
    output += '\n';
    for (const Node& child : node.children) append(output, child, indent + 2);
    output.append(indent, ' ');
  }
  output.append("</").append(node.name).append(">\n");
}

}  // namespace

std::string_view Node::valueOf(std::string_view attribute) const {
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return value;
  }
  return {};
}

std::string xmlText(const Node& root, std::string_view comment) {
  std::string output = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!--";
  output.append(comment).append("-->\n");
  append(output, root, 0);
  return output;
}

}  // namespace korvex::schema
