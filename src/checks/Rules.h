// Every rule that a document can violate, with a name that stays the same from version to version.
#pragma once

#include <span>
#include <string_view>

#include "korvex/Document.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex {

enum class Severity {
  Error,    // the definition or the document is refused
  Warning,  // it is taken, but hardly as it was meant
};

struct Rule {
  std::string_view name;  // such as "unread-attribute"
  Severity severity = Severity::Error;
  bool onByDefault = true;
  std::string_view message;       // of an error the message, "%@" the place that is filled; of a warning its title
  std::string_view help = {};     // one sentence: how to mend it
  std::string_view meaning = {};  // a few sentences
  // Definitions that violate this rule alone, and that violate none.
  std::string_view wrong = {};
  std::string_view right = {};
};

// Errors first, in the order of DAO/Core/Messages.h, then those of whole documents, then warnings.
[[nodiscard]] std::span<const Rule> rules();
[[nodiscard]] const Rule* ruleNamed(std::string_view name);
[[nodiscard]] std::span<const std::string_view> warningNames();
// The rule that such a message is about; null when none says that.
[[nodiscard]] const Rule* ruleOfMessage(std::string_view message);

// "error" or "warning".
[[nodiscard]] constexpr std::string_view severityName(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

[[nodiscard]] const Rule& ruleOfError(const QXDAOError& error);
[[nodiscard]] const Rule& ruleOfError(const DocumentError& error);

}  // namespace korvex
