#include "korvex/QXDAOError.h"

#include "dao/core/Messages.h"
#include "korvex/QXDAOElement.h"

namespace korvex {

namespace {

template <typename T>
const T* entryOf(const QXDAOError& error, std::string_view key) {
  const auto entry = error.userInfo.find(key);
  return entry == error.userInfo.end() ? nullptr : std::get_if<T>(&entry->second);
}

}  // namespace

std::string_view nameOf(QXDAORule rule) { return ruleTextOf(rule).name; }

std::string_view QXDAOError::message() const {
  const auto* message = entryOf<std::string>(*this, "error");
  return message ? std::string_view(*message) : std::string_view();
}

XMLNode QXDAOError::xml() const {
  const auto* node = entryOf<XMLNode>(*this, "xml");
  return node ? *node : XMLNode();
}

}  // namespace korvex
