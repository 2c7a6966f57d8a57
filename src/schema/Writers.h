#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "schema/Grammar.h"
#include "schema/Node.h"

namespace korvex::schema {

// The RELAX NG schema of the elements, with a root of any tag when it is empty.
[[nodiscard]] Node relaxNg(const std::vector<Element>& elements, std::string_view root);

// The result of relaxNg() in compact syntax.
[[nodiscard]] std::string compactText(const Node& relaxNg);

[[nodiscard]] Node xmlSchema(const std::vector<Element>& elements, std::string_view root);

}  // namespace korvex::schema
