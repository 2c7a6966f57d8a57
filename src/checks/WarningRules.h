// The warnings among the rules.
#pragma once

#include <array>

#include "checks/Rules.h"

namespace korvex {

inline constexpr std::array<Rule, 13> warningRules = {{
    {Warning::UnreadAttribute, "unread-attribute", Severity::Warning, true, "An attribute that its element never reads",
     "Correct the spelling of the attribute, move it to the element that it is meant for, or take it out.",
     "Most elements pass over attributes that they do not know, so a slip in a name goes unnoticed: the element is "
     "taken as if the attribute were not there. Names count case. The options of a select mean nothing elsewhere, and "
     "a method reads 'resumable' only together with 'foreach'. Attributes whose names have a prefix are left alone.",
     R"(<select id="allTags" result="[string]" paralell="true">
  SELECT title FROM tag
</select>)",
     R"(<select id="allTags" result="[string]" parallel="true">
  SELECT title FROM tag
</select>)"},
    {Warning::DuplicateName, "duplicate-name", Severity::Warning, true, "Two definitions of a kind bear the same name",
     "Give one of them another name, or take it out.",
     "Which of them the name stands for is the engine's decision. Select, update, insert and delete "
     "methods share their names; maps, sql blocks and constants each have their own. All documents that are checked "
     "together count, in their order; the finding is the later definition, and tells where the first one is.",
     R"(<const PAGE_SIZE="50"/>
<const PAGE_SIZE="20"/>)",
     R"(<const PAGE_SIZE="50"/>
<sql id="PAGE_SIZE">50</sql>)"},
    {Warning::UndefinedMap, "undefined-map", Severity::Warning, false, "A result names a map that is not defined",
     "Correct the name, define the map, or check the documents that define it together with this one.",
     "A result of \":name\" is made through the map of that name. Whether it is defined shows only when all documents "
     "are checked together: this warning is given when a directory is checked, which is taken for all there is, or "
     "when it is asked for. It is not given when one of the documents cannot be read.",
     R"(<select id="allPersons" result="[:personMap]">SELECT * FROM person</select>)",
     R"(<select id="allPersons" result="[:personMap]">SELECT * FROM person</select>
<map id="personMap" result="Person">
  <result column="name" property="name"/>
</map>)"},
    {Warning::UnfinishedListReference, "unfinished-list-reference", Severity::Warning, true,
     "A list reference that is not written out, or loses text", "Complete the reference: %{'FORMAT', ENTRY, ENTRY}.",
     "A list reference is written out only when it has a format in single quotes and ends with a brace, and when its "
     "text is long enough; otherwise its \"%{\" reaches the database as it is. Where it is written out, text before "
     "the "
     "format and between the format and the first comma is lost, and without entries all of it is. SQL strings, quoted "
     "names and comments are no exception: a \"%{\" in them begins a reference, too, and does no harm only as long as "
     "nothing completes it. A pattern that needs one is divided: '%' || '{'.",
     R"(<select id="kinds" result="[Kind]">
  SELECT * FROM kind WHERE doc LIKE '%{"kind":%' AND doc NOT LIKE '%}]'
</select>)",
     R"(<select id="kinds" result="[Kind]">
  SELECT %{'k.*', id, doc} FROM kind k
  WHERE doc LIKE '%' || '{"kind":%' AND doc NOT LIKE '%}]'
</select>)"},
    {Warning::IgnoredContent, "ignored-content", Severity::Warning, true, "Content of an element that has none",
     "Move the content to where it has a meaning, or take it out.",
     "A format, a result of a map and a pack are read from their attributes alone; whatever stands inside is passed "
     "over, well-formed or not a word of the language.",
     R"(<pack as="info" properties="company, website">jobTitle</pack>)",
     R"(<pack as="info" properties="company, website, jobTitle">
  <!-- more to come -->
</pack>)"},
    {Warning::MisplacedWhen, "misplaced-when", Severity::Warning, true, "A when or otherwise outside choose",
     "Write 'if', or put it in a 'choose'.",
     "Only a choose takes the first 'when' that applies, and its 'otherwise' when none does. Outside, each of them is "
     "a condition of its own.",
     R"(<select id="persons" arguments="byAge" result="[Person]">
  SELECT * FROM person <when true="byAge">ORDER BY age</when>
</select>)",
     R"(<select id="persons" arguments="byAge" result="[Person]">
  SELECT * FROM person <choose><when true="byAge">ORDER BY age</when></choose>
</select>)"},
    {Warning::DuplicateColumn, "duplicate-column", Severity::Warning, true, "A map names a column twice",
     "Take out one of the two, or name the column that is meant.",
     "A column fills one property of an object: that of the last result that names it. The property of the earlier one "
     "is not filled by this column.",
     R"(<map id="personMap" result="Person">
  <result column="name" property="givenName"/>
  <result column="name" property="familyName"/>
</map>)",
     R"(<map id="personMap" result="Person">
  <result column="given_name" property="givenName"/>
  <result column="name" property="familyName"/>
</map>)"},
    {Warning::RepeatedProperty, "repeated-property", Severity::Warning, true, "A pack names a property twice",
     "Take out one of the two, or name the property that is meant.",
     "The value of a property that is named twice stands in the column twice, and is read back twice.",
     R"(<pack as="info" properties="company, website, company"/>)",
     R"(<pack as="info" properties="company, website, Company"/>)"},
    {Warning::DuplicateArgument, "duplicate-argument", Severity::Warning, true, "A method declares an argument twice",
     "Take out one of the two, or name the argument that is meant.",
     "A name can stand for one value only. A '$' in front is not part of the name.",
     R"(<delete id="forget" arguments="$personId, before, personId">
  DELETE FROM recent
</delete>)",
     R"(<delete id="forget" arguments="$personId, before">
  DELETE FROM recent
</delete>)"},
    {Warning::LostResumable, "lost-resumable", Severity::Warning, true, "A single step is not resumable",
     "Divide the method into several steps, or write its content without a step.",
     "A method with a single step is taken as if the step's content stood directly in the method, and the step's "
     "'resumable' is lost.",
     R"(<delete id="forgetAll">
  <step resumable="true">DELETE FROM recent</step>
</delete>)",
     R"(<delete id="forgetAll">
  <step resumable="true">DELETE FROM recent</step>
  <step>DELETE FROM tag</step>
</delete>)"},
    {Warning::DoubtfulValue, "doubtful-value", Severity::Warning, true,
     "A value that is read as something else than it looks like",
     "Write one of the words that the attribute knows, as it is.",
     "Yes is what begins with \"y\", \"t\" or a number other than 0, in either case; all else is no, \"on\" too. The "
     "'crypt' of a pack is only for \"true\", to the letter, and 'onVoid' only for its two words. A 'result' that is "
     "no "
     "plain type, in small letters, is the name of a class, and so is one with a single bracket. The warning is given "
     "only for what looks like a word that is known.",
     R"(<select id="allTags" result="[string]" parallel="on">
  SELECT title FROM tag
</select>)",
     R"(<select id="allTags" result="[string]" parallel="yes">
  SELECT title FROM tag
</select>)"},
    {Warning::UnusedSilence, "unused-silence", Severity::Warning, true, "A comment that silences nothing",
     "Take the comment out, or put it directly before the element that is meant.",
     "The comment \"korvex: allow NAME\" takes away the warnings of that name about the element that follows it with "
     "nothing but white space and comments between. There is none here: it was mended, or stands in another place. "
     "Nothing is said before a definition with an error, which may hide the warning, and of a name that would have to "
     "come twice only when a directory is checked.",
     R"(<!-- korvex: allow unread-attribute -->
<sql id="columns">id, name</sql>)",
     R"(<!-- korvex: allow unread-attribute -->
<sql id="columns" author="me">id, name</sql>)"},
    {Warning::UnknownWarning, "unknown-warning", Severity::Warning, true,
     "A comment that silences a warning of an unknown name", "Correct the name; 'korvex-dao check --help' lists them.",
     "The comment \"korvex: allow NAME\" has the name of one warning. Errors cannot be silenced.",
     R"(<!-- korvex: allow duplicate-names -->
<const PAGE_SIZE="50"/>)",
     R"(<!-- korvex is the app's own library: allow for that -->
<const PAGE_SIZE="50"/>)"},
}};

}  // namespace korvex
