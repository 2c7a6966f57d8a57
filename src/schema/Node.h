// XML output.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvex::schema {

struct Node {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes = {};
  std::vector<Node> children = {};
  std::string text = {};  // instead of children

  // Empty if there is no such attribute.
  [[nodiscard]] std::string_view valueOf(std::string_view attribute) const;
};

// An indented document with this root, and a comment before the root.
[[nodiscard]] std::string xmlText(const Node& root, std::string_view comment);

}  // namespace korvex::schema
