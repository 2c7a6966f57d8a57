// Every message of the language, to the letter. "%@" is the one place that is filled.
#pragma once

#include <string_view>

namespace korvex::Messages {

using Message = std::string_view;

// Any definition
inline constexpr Message emptyName = "Element name(id attribute) is empty.";
inline constexpr Message unknownRootTag = "Unknown root node type '%@'.";

// Children of containers
inline constexpr Message unknownElement = "Unknown element with type %@.";
inline constexpr Message misplacedStep = "Step should only exist in 'update', 'insert', 'delete' and cannot be nested.";
inline constexpr Message misplacedTry = "Try should only exist in 'update', 'insert', 'delete' and cannot be nested.";
inline constexpr Message misplacedExcept = "EXCEPT block should only exist in TRY block.";

// Methods
inline constexpr Message invalidUpgrade = "Invalid upgrade declaration '%@'.";
inline constexpr Message invalidArguments = "Cannot resolve argument list of method '%@'.";
inline constexpr Message undefinedResult = "Result type of select method '%@' is undefined.";
inline constexpr Message stepsInSelect = "Select method '%@' cannot contain steps.";
inline constexpr Message besideSteps = "Method '%@' with steps should not have other elements outside step block.";
inline constexpr Message besideTry = "Method '%@' with try block should not have other elements outside try block.";
inline constexpr Message invalidMethodForeach = "Cannot resolve foreach attribute of method '%@'";

// Try and except blocks
inline constexpr Message invalidTry = "Try in method '%@' is of wrong format.";
inline constexpr Message tooManyExcepts = "Try in method '%@' contains too many except block.";
inline constexpr Message invalidExcept = "Except in method '%@' is of wrong format.";

// Fragments
inline constexpr Message invalidCondition = "Condition '%@' is of wrong format.";
inline constexpr Message chooseContent = "Condition 'choose' should only contain nodes as 'when' and 'otherwise'.";
inline constexpr Message foreachParameters = "Foreach parameter list is of wrong format.";
inline constexpr Message foreachContent = "Foreach should only contain iterator expression as text.";
inline constexpr Message invalidFragment = "'%@' is of wrong format.";

// Sql blocks and constants
inline constexpr Message reservedSqlName = "Sql block name cannot be '%@'.";
inline constexpr Message invalidSqlBlock = "Sql block '%@' is of wrong format.";
inline constexpr Message invalidConst = "Invalid constant declaration '%@'.";

// Maps, crypt properties and packs
inline constexpr Message invalidCrypt = "Invalid crypt property declaration '%@'.";
inline constexpr Message emptyMapResult = "Result type of map '%@' cannot be nil.";
inline constexpr Message invalidMap = "Map '%@' is of wrong format.";
inline constexpr Message emptyPackColumn = "Invalid column in pack definition.";
inline constexpr Message emptyPackProperties = "Empty property list for column '%@'.";
inline constexpr Message tooFewPackProperties = "You must pack at least two properties for column '%@'.";

}  // namespace korvex::Messages
