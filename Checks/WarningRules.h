// The warnings among the rules.
#pragma once

#include <array>

#include "Checks/Rules.h"

namespace korvex {

inline constexpr std::array<Rule, 12> warningRules = {{
    {"unread-attribute", Severity::Warning, true, "An attribute that its element never reads"},
    {"duplicate-name", Severity::Warning, true, "Two definitions of a kind bear the same name"},
    {"undefined-map", Severity::Warning, false, "A result names a map that is not defined"},
    {"unfinished-list-reference", Severity::Warning, true, "A list reference that is not written out"},
    {"ignored-content", Severity::Warning, true, "Content of an element that has none"},
    {"misplaced-when", Severity::Warning, true, "A when or otherwise outside choose"},
    {"duplicate-column", Severity::Warning, true, "A map names a column twice"},
    {"repeated-property", Severity::Warning, true, "A pack names a property twice"},
    {"duplicate-argument", Severity::Warning, true, "A method declares an argument twice"},
    {"lost-resumable", Severity::Warning, true, "A single step is not resumable"},
    {"unused-silence", Severity::Warning, true, "A comment that silences nothing"},
    {"unknown-warning", Severity::Warning, true, "A comment that silences a warning of an unknown name"},
}};

}  // namespace korvex
