#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>

#include "korvex/Export.h"
#include "korvex/QXDAORule.h"
#include "korvex/XMLNode.h"

namespace korvex {

// The domain of every error record.
inline constexpr std::string_view QXDAO_ERROR_DOMAIN = "korvex.dao";

// Why a definition was refused: which rule it violates, where, and in words. The code is always 0.
struct KORVEX_EXPORT QXDAOError {
  using Value = std::variant<std::string, XMLNode>;

  std::string domain;
  int code = 0;
  // Two entries: "error", the message (a string), and "xml", the definition that was passed to the
  // factory (a node of the tree of the caller, valid as long as that tree is).
  std::map<std::string, Value, std::less<>> userInfo;
  // The rule that was violated. Without meaning in a record that the factory has not filled.
  QXDAORule rule{};
  // The node that violates the rule, "xml" or below it: the element at fault, or the parent of a text
  // at fault. Valid as long as the tree of the caller is.
  XMLNode origin;

  // The entries of userInfo; empty and null if the record does not have them.
  [[nodiscard]] std::string_view message() const;
  [[nodiscard]] XMLNode xml() const;
};

}  // namespace korvex
