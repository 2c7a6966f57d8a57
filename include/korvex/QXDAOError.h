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

// Why a definition was rejected: the violated rule, its position, and a message. The code is always 0.
struct KORVEX_EXPORT QXDAOError {
  using Value = std::variant<std::string, XMLNode>;

  std::string domain;
  int code = 0;
  // Two entries: "error", the message (a string), and "xml", the definition that was passed to the
  // factory (a node of the tree of the caller, valid as long as that tree is).
  std::map<std::string, Value, std::less<>> userInfo;
  // The violated rule. Meaningless in a record that the factory has not filled.
  QXDAORule rule{};
  // The node that violates the rule, "xml" or a node below it: the faulty element, or the parent of a faulty text.
  // Valid as long as the caller's tree.
  XMLNode origin;

  // The entries of userInfo; empty and null if the record does not have them.
  [[nodiscard]] std::string_view message() const;
  [[nodiscard]] XMLNode xml() const;
};

}  // namespace korvex
