#include "loader/DocumentErrors.h"

namespace korvex {

DocumentErrorKind DocumentError::kind() const { return documentRuleTextOf(rule).kind; }

std::string documentMessage(DocumentRule rule, std::initializer_list<std::string_view> details) {
  constexpr std::string_view place = "%@";
  std::string_view rest = documentRuleTextOf(rule).message;
  std::string message;
  for (const std::string_view detail : details) {
    const std::size_t at = rest.find(place);
    message.append(rest.substr(0, at)).append(detail);
    rest.remove_prefix(at + place.size());
  }
  return message.append(rest);
}

}  // namespace korvex
