#pragma once

#include <cstdint>
#include <string_view>

#include "korvex/Export.h"

namespace korvex {

// The rules of the language. A definition that violates one is rejected. docs/rules.md explains each rule, with a wrong
// and a right example, under the name that nameOf returns. Names are stable between versions; numbers are not.
enum class QXDAORule : std::uint8_t {
  // Any definition
  MissingName,
  UnknownDefinition,

  // Children of containers
  UnknownElement,
  MisplacedStep,
  MisplacedTry,
  MisplacedExcept,

  // Methods
  UpgradeFormat,
  ArgumentsFormat,
  MissingResult,
  StepsInSelect,
  ContentBesideSteps,
  ContentBesideTry,
  MethodForeachFormat,

  // Try and except blocks
  TryFormat,
  SecondExcept,
  ExceptFormat,

  // Fragments
  ConditionFormat,
  ChooseContent,
  ForeachParameters,
  ForeachContent,
  FragmentFormat,

  // Sql blocks and constants
  ReservedSqlName,
  SqlFormat,
  ConstFormat,

  // Maps, crypt properties and packs
  CryptFormat,
  MissingMapResult,
  MapFormat,
  MissingPackColumn,
  MissingPackProperties,
  SinglePackProperty,
};

// The rule's name, such as "condition-format", as in `korvex-dao explain` and in the brackets after a finding. The view
// is valid while the library is loaded.
[[nodiscard]] KORVEX_EXPORT std::string_view nameOf(QXDAORule rule);

}  // namespace korvex
