// The names of the warnings, for those who give them.
#pragma once

#include <string_view>

namespace korvex::RuleNames {

inline constexpr std::string_view unreadAttribute = "unread-attribute";
inline constexpr std::string_view duplicateName = "duplicate-name";
inline constexpr std::string_view undefinedMap = "undefined-map";
inline constexpr std::string_view unfinishedListReference = "unfinished-list-reference";
inline constexpr std::string_view ignoredContent = "ignored-content";
inline constexpr std::string_view misplacedWhen = "misplaced-when";
inline constexpr std::string_view duplicateColumn = "duplicate-column";
inline constexpr std::string_view repeatedProperty = "repeated-property";
inline constexpr std::string_view duplicateArgument = "duplicate-argument";
inline constexpr std::string_view lostResumable = "lost-resumable";
inline constexpr std::string_view doubtfulValue = "doubtful-value";
inline constexpr std::string_view unusedSilence = "unused-silence";
inline constexpr std::string_view unknownWarning = "unknown-warning";

}  // namespace korvex::RuleNames
