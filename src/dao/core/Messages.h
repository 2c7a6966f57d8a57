// The rules of the language, with the name and the exact message of each. "%@" is the placeholder of a message.
#pragma once

#include <array>
#include <string_view>

#include "korvex/QXDAORule.h"
#include "platform/Tables.h"

namespace korvex {

struct RuleText {
  QXDAORule rule;
  std::string_view name;     // stable between versions
  std::string_view message;  // a format
};

inline constexpr std::array<RuleText, 30> ruleTexts = {{
    // Any definition
    {QXDAORule::MissingName, "missing-name", "Element name(id attribute) is empty."},
    {QXDAORule::UnknownDefinition, "unknown-definition", "Unknown root node type '%@'."},

    // Children of containers
    {QXDAORule::UnknownElement, "unknown-element", "Unknown element with type %@."},
    {QXDAORule::MisplacedStep, "misplaced-step",
     "Step should only exist in 'update', 'insert', 'delete' and cannot be nested."},
    {QXDAORule::MisplacedTry, "misplaced-try",
     "Try should only exist in 'update', 'insert', 'delete' and cannot be nested."},
    {QXDAORule::MisplacedExcept, "misplaced-except", "EXCEPT block should only exist in TRY block."},

    // Methods
    {QXDAORule::UpgradeFormat, "upgrade-format", "Invalid upgrade declaration '%@'."},
    {QXDAORule::ArgumentsFormat, "arguments-format", "Cannot resolve argument list of method '%@'."},
    {QXDAORule::MissingResult, "missing-result", "Result type of select method '%@' is undefined."},
    {QXDAORule::StepsInSelect, "steps-in-select", "Select method '%@' cannot contain steps."},
    {QXDAORule::ContentBesideSteps, "content-beside-steps",
     "Method '%@' with steps should not have other elements outside step block."},
    {QXDAORule::ContentBesideTry, "content-beside-try",
     "Method '%@' with try block should not have other elements outside try block."},
    {QXDAORule::MethodForeachFormat, "method-foreach-format", "Cannot resolve foreach attribute of method '%@'"},

    // Try and except blocks
    {QXDAORule::TryFormat, "try-format", "Try in method '%@' is of wrong format."},
    {QXDAORule::SecondExcept, "second-except", "Try in method '%@' contains too many except block."},
    {QXDAORule::ExceptFormat, "except-format", "Except in method '%@' is of wrong format."},

    // Fragments
    {QXDAORule::ConditionFormat, "condition-format", "Condition '%@' is of wrong format."},
    {QXDAORule::ChooseContent, "choose-content",
     "Condition 'choose' should only contain nodes as 'when' and 'otherwise'."},
    {QXDAORule::ForeachParameters, "foreach-parameters", "Foreach parameter list is of wrong format."},
    {QXDAORule::ForeachContent, "foreach-content", "Foreach should only contain iterator expression as text."},
    {QXDAORule::FragmentFormat, "fragment-format", "'%@' is of wrong format."},

    // Sql blocks and constants
    {QXDAORule::ReservedSqlName, "reserved-sql-name", "Sql block name cannot be '%@'."},
    {QXDAORule::SqlFormat, "sql-format", "Sql block '%@' is of wrong format."},
    {QXDAORule::ConstFormat, "const-format", "Invalid constant declaration '%@'."},

    // Maps, crypt properties and packs
    {QXDAORule::CryptFormat, "crypt-format", "Invalid crypt property declaration '%@'."},
    {QXDAORule::MissingMapResult, "missing-map-result", "Result type of map '%@' cannot be nil."},
    {QXDAORule::MapFormat, "map-format", "Map '%@' is of wrong format."},
    {QXDAORule::MissingPackColumn, "missing-pack-column", "Invalid column in pack definition."},
    {QXDAORule::MissingPackProperties, "missing-pack-properties", "Empty property list for column '%@'."},
    {QXDAORule::SinglePackProperty, "single-pack-property", "You must pack at least two properties for column '%@'."},
}};

[[nodiscard]] constexpr const RuleText& ruleTextOf(QXDAORule rule) {
  return *rowWith(ruleTexts, &RuleText::rule, rule);
}

}  // namespace korvex
