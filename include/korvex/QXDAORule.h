#pragma once

#include <cstdint>
#include <string_view>

#include "korvex/Export.h"

namespace korvex {

// The rules of the language whose violation has a definition refused. docs/rules.md shows for each what it means, with
// a wrong and a right example, under the name that nameOf gives. The numbers may change between versions, the names do
// not.
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

// The rule's name, such as "condition-format": what `korvex-dao explain` and the brackets behind a finding say. The
// view is valid as long as the library is loaded.
[[nodiscard]] KORVEX_EXPORT std::string_view nameOf(QXDAORule rule);

}  // namespace korvex
