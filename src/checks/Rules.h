// Every rule that a document can violate, with a name that stays the same from version to version.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include "korvex/DocumentError.h"
#include "korvex/QXDAORule.h"

namespace korvex {

enum class Severity {
  Error,    // the definition or the document is rejected
  Warning,  // it is accepted but probably unintended
};

enum class Warning {
  UnreadAttribute,
  DuplicateName,
  DuplicateVersion,
  UndefinedMap,
  UnfinishedListReference,
  IgnoredContent,
  MisplacedWhen,
  DuplicateColumn,
  RepeatedProperty,
  DuplicateArgument,
  MalformedArgument,
  EmptyMethod,
  DoubledKeyword,
  LostResumable,
  DoubtfulValue,
  ExpressionSyntax,
  UnusedSuppression,
  UnknownWarning,
};

// What depends on a whole set, on its schema or on the model classes of the app.
enum class SchemaRule {
  NotRunnable,
  Sql,
  ReadingUpdate,
  LostWhere,
  FullScan,
  UnreadColumns,
  RepeatedResultColumn,
  UnyieldedColumn,
  PackColumn,
  UnusedDefinition,
  UnusedTable,
  EmptyList,
  UnusedArgument,
  UnknownClass,
  UnknownProperty,
};

// What a rule is about: a definition's error, a whole document's, a warning, or the SQL.
using RuleId = std::variant<QXDAORule, DocumentErrorKind, Warning, SchemaRule>;

struct Rule {
  RuleId id;
  std::string_view name;  // such as "unread-attribute"
  Severity severity = Severity::Error;
  bool onByDefault = true;
  std::string_view message;       // the message of an error, with "%@" as placeholder; the title of a warning
  std::string_view help = {};     // one sentence: how to fix it
  std::string_view meaning = {};  // a few sentences
  // Definitions that violate this rule alone, and that violate none.
  std::string_view wrong = {};
  std::string_view right = {};
};

// Errors of definitions first, then those of whole documents, those of SQL, then warnings.
[[nodiscard]] std::span<const Rule> rules();
[[nodiscard]] const Rule& ruleOf(RuleId id);
// Null when no rule has that name.
[[nodiscard]] const Rule* ruleNamed(std::string_view name);
[[nodiscard]] std::span<const std::string_view> warningNames();

// "error" or "warning".
[[nodiscard]] constexpr std::string_view severityName(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

}  // namespace korvex
