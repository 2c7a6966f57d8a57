// The rules among all that need a schema.
#pragma once

#include <array>

#include "checks/Rules.h"

namespace korvex {

inline constexpr std::array<Rule, 2> schemaRules = {{
    {SchemaRule::NotRunnable, "not-runnable", Severity::Error, true, "A definition that cannot be run",
     "Declare the value, or correct the name.",
     "With --schema, the definitions are built to a set as the engine builds it. Values that no argument declares, "
     "references to unknown blocks and constants, names that are used twice and conditions that do not parse are "
     "errors "
     "then. The SQL of such a definition, and of those that insert it, is not checked against the schema.",
     R"(<select id="names" result="[string]" arguments="group">
  SELECT name FROM person WHERE name = :grup
</select>
<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>)",
     R"(<select id="names" result="[string]" arguments="group">
  SELECT name FROM person WHERE name = :group
</select>
<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>)"},
    {SchemaRule::Sql, "sql", Severity::Error, true, "SQL that the schema does not allow",
     "Correct the SQL, or declare what the app adds to SQLite.",
     "With --schema, SQLite prepares every variant of every statement: each condition true and false, each branch of a "
     "choose, lists of 0, 1 and 2 entries. The message is SQLite's, and the notes tell in which variants it appears. A "
     "fault in an sql block or a constant is given once, with the methods that it breaks. Functions, collations and "
     "virtual tables of the app are declared with --function, --collation and --module.",
     R"(<upgrade toVersion="1">CREATE TABLE person (birthday TEXT)</upgrade>
<select id="birthdays" result="[string]">
  SELECT p.birthdayy FROM person p
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (birthday TEXT)</upgrade>
<select id="birthdays" result="[string]">
  SELECT p.birthday FROM person p
</select>)"},
}};

}  // namespace korvex
