// The warnings among the rules.
#pragma once

#include <array>

#include "checks/Rules.h"

namespace korvex {

inline constexpr std::array<Rule, 18> warningRules = {{
    {Warning::UnreadAttribute, "unread-attribute", Severity::Warning, true, "An attribute that its element never reads",
     "Correct the attribute, move it to the element it belongs to, or remove it.",
     "Most elements ignore unknown attributes, so a misspelled name goes unnoticed: the element is read as if the "
     "attribute were missing. Names are case-sensitive. The options of a select have no effect on other methods, and a "
     "method reads 'resumable' only together with 'foreach'. Attributes with a namespace prefix are not checked.",
     R"(<select id="allTags" result="[string]" paralell="true">
  SELECT title FROM tag
</select>)",
     R"(<select id="allTags" result="[string]" parallel="true">
  SELECT title FROM tag
</select>)"},
    {Warning::DuplicateName, "duplicate-name", Severity::Warning, true, "Two definitions of a kind have the same name",
     "Rename or remove one of them.",
     "The engine decides which of them the name refers to. Select, update, insert and delete methods share one set of "
     "names; maps, sql blocks and constants each have their own. Documents that are checked together share their "
     "names. The warning is given for the later definition and points to the first one.",
     R"(<const PAGE_SIZE="50"/>
<const PAGE_SIZE="20"/>)",
     R"(<const PAGE_SIZE="50"/>
<sql id="PAGE_SIZE">50</sql>)"},
    {Warning::DuplicateVersion, "duplicate-version", Severity::Warning, true, "Two upgrades lead to the same version",
     "Give one of them another version, or put the steps of both in one upgrade.",
     "A set with two upgrades to one version is rejected when it is loaded. Versions are numbers: 1.1 and 1.10 are the "
     "same one. Documents that are checked together share their versions. The warning is given for the later upgrade "
     "and points to the first one.",
     R"(<upgrade toVersion="1.1">ALTER TABLE person ADD COLUMN email TEXT</upgrade>
<upgrade toVersion="1.10">ALTER TABLE person ADD COLUMN phone TEXT</upgrade>)",
     R"(<upgrade toVersion="1.01">ALTER TABLE person ADD COLUMN email TEXT</upgrade>
<upgrade toVersion="1.10">ALTER TABLE person ADD COLUMN phone TEXT</upgrade>)"},
    {Warning::UndefinedMap, "undefined-map", Severity::Warning, false, "A result names a map that is not defined",
     "Correct the name, define the map, or check the documents that define it together with this one.",
     "A result \":name\" uses the map of that name. Only all documents together show whether it is defined, so this "
     "warning is on when a directory is checked, and otherwise off unless switched on. It is not given if one of the "
     "documents cannot be read.",
     R"(<select id="allPersons" result="[:personMap]">SELECT * FROM person</select>)",
     R"(<select id="allPersons" result="[:personMap]">SELECT * FROM person</select>
<map id="personMap" result="Person">
  <result column="name" property="name"/>
</map>)"},
    {Warning::UnfinishedListReference, "unfinished-list-reference", Severity::Warning, true,
     "A list reference not expanded, or losing text", "Complete the reference: %{'FORMAT', ENTRY, ENTRY}.",
     "A list reference is expanded only if it has a format in single quotes, ends with a brace, and is long enough. "
     "Otherwise its \"%{\" reaches the database unchanged. In an expanded reference, text before the format or between "
     "the format and the first comma is lost, and a reference without entries is lost completely. A \"%{\" in an SQL "
     "string, a quoted name or a comment begins a reference, too. Split a pattern that needs one: '%' || '{'.",
     R"(<select id="kinds" result="[Kind]">
  SELECT * FROM kind WHERE doc LIKE '%{"kind":%' AND doc NOT LIKE '%}]'
</select>)",
     R"(<select id="kinds" result="[Kind]">
  SELECT %{'k.*', id, doc} FROM kind k
  WHERE doc LIKE '%' || '{"kind":%' AND doc NOT LIKE '%}]'
</select>)"},
    {Warning::IgnoredContent, "ignored-content", Severity::Warning, true, "Content in an element that cannot have any",
     "Move the content to another element, or remove it.",
     "A format, a pack and a result of a map consist of their attributes alone. Their content is ignored, whatever it "
     "is.",
     R"(<pack as="info" properties="company, website">jobTitle</pack>)",
     R"(<pack as="info" properties="company, website, jobTitle">
  <!-- more to come -->
</pack>)"},
    {Warning::MisplacedWhen, "misplaced-when", Severity::Warning, true, "A when or otherwise outside choose",
     "Write 'if', or put it in a 'choose'.",
     "Only a choose selects the first 'when' that applies, or its 'otherwise' if none does. Outside a choose, each of "
     "them is an independent condition.",
     R"(<select id="persons" arguments="byAge" result="[Person]">
  SELECT * FROM person <when true="byAge">ORDER BY age</when>
</select>)",
     R"(<select id="persons" arguments="byAge" result="[Person]">
  SELECT * FROM person <choose><when true="byAge">ORDER BY age</when></choose>
</select>)"},
    {Warning::DuplicateColumn, "duplicate-column", Severity::Warning, true, "A map names a column twice",
     "Remove one of the two, or correct the column.",
     "A column fills one property: that of the last result that names it. The property of an earlier result is not "
     "filled.",
     R"(<map id="personMap" result="Person">
  <result column="name" property="givenName"/>
  <result column="name" property="familyName"/>
</map>)",
     R"(<map id="personMap" result="Person">
  <result column="given_name" property="givenName"/>
  <result column="name" property="familyName"/>
</map>)"},
    {Warning::RepeatedProperty, "repeated-property", Severity::Warning, true, "A pack names a property twice",
     "Remove one of the two, or correct the property.",
     "The value of a property that is named twice is stored twice and read back twice.",
     R"(<pack as="info" properties="company, website, company"/>)",
     R"(<pack as="info" properties="company, website, Company"/>)"},
    {Warning::DuplicateArgument, "duplicate-argument", Severity::Warning, true, "A method declares an argument twice",
     "Remove one of the two, or correct the name.",
     "A name can refer to only one value. The '$' before a name is not part of it.",
     R"(<delete id="forget" arguments="$personId, before, personId">
  DELETE FROM recent
</delete>)",
     R"(<delete id="forget" arguments="$personId, before">
  DELETE FROM recent
</delete>)"},
    {Warning::MalformedArgument, "malformed-argument", Severity::Warning, true,
     "An argument name with white space or quotes in it", "Separate names by commas, and write them without quotes.",
     "Arguments are separated by commas. White space within a name and quotes become part of it, and no value or "
     "condition can refer to such a name.",
     R"(<delete id="forget" arguments="personId before">
  DELETE FROM recent
</delete>)",
     R"(<delete id="forget" arguments="personId, before">
  DELETE FROM recent
</delete>)"},
    {Warning::EmptyMethod, "empty-method", Severity::Warning, true, "An empty method with text behind it",
     "Move the text into the method.",
     "Text between definitions is ignored. Behind a method without content it is probably the SQL of that method, "
     "whose "
     "tag was closed too early.",
     R"(<delete id="forgetAll"/>
DELETE FROM recent)",
     R"(<delete id="forgetAll">
  DELETE FROM recent
</delete>)"},
    {Warning::DoubledKeyword, "doubled-keyword", Severity::Warning, true,
     "A keyword in front of an element that writes it, too", "Remove the keyword from the text.",
     "A 'where', 'set', 'trim' or 'format' writes its keyword itself when it has content, so that the SQL has it "
     "twice. "
     "Without content, the keyword of the text has nothing behind it. WHERE, SET, VALUES, HAVING, GROUP BY and ORDER "
     "BY "
     "are checked, in any case, where the text ends with one.",
     R"(<delete id="forget" arguments="personId">
  DELETE FROM recent WHERE <where>AND person_id = :personId</where>
</delete>)",
     R"(<delete id="forget" arguments="personId">
  DELETE FROM recent <where>AND person_id = :personId</where>
</delete>)"},
    {Warning::LostResumable, "lost-resumable", Severity::Warning, true, "A single step is not resumable",
     "Split the method into several steps, or remove the step around its content.",
     "A method with a single step is treated as if the step's content were directly in the method, and the step's "
     "'resumable' is lost.",
     R"(<delete id="forgetAll">
  <step resumable="true">DELETE FROM recent</step>
</delete>)",
     R"(<delete id="forgetAll">
  <step resumable="true">DELETE FROM recent</step>
  <step>DELETE FROM tag</step>
</delete>)"},
    {Warning::DoubtfulValue, "doubtful-value", Severity::Warning, true,
     "A value read as something other than it looks like", "Use exactly one of the attribute's values.",
     "A value that begins with \"y\", \"t\" or a digit other than 0, in upper or lower case, means yes. Any other "
     "value "
     "means no, \"on\" included. The 'crypt' of a pack must be exactly \"true\", and 'onVoid' one of its two values. A "
     "'result' that is not a plain type in lower case is a class name, and so is one with a single bracket, or the "
     "name of a map without its colon. The warning is given only for values that look like a known one, and for words "
     "that have no meaning.",
     R"(<select id="allTags" result="[string]" parallel="on">
  SELECT title FROM tag
</select>)",
     R"(<select id="allTags" result="[string]" parallel="yes">
  SELECT title FROM tag
</select>)"},
    {Warning::ExpressionSyntax, "expression-syntax", Severity::Warning, true, "A condition that is no expression",
     "Complete the expression; docs/execution.md has its grammar.",
     "A definition is accepted if its conditions consist of known words and signs. An engine has to evaluate them, "
     "too, "
     "and refuses to load what is not an expression: '(a', 'a and b'. Disable the warning if your engine has "
     "an "
     "expression language of its own.",
     R"(<select id="persons" arguments="name, age" result="[Person]">
  SELECT * FROM person
  <if true="name != null and age">WHERE name = :name</if>
</select>)",
     R"(<select id="persons" arguments="name, age" result="[Person]">
  SELECT * FROM person
  <if true="name != null &amp;&amp; age">WHERE name = :name</if>
</select>)"},
    {Warning::UnusedSuppression, "unused-suppression", Severity::Warning, true, "A comment that suppresses nothing",
     "Remove the comment, or move it directly before its element.",
     "The comment \"korvex: allow NAME\" suppresses the warnings of that name about the next element, with only white "
     "space and comments in between. There is no such warning here: it was fixed, or is in another place. Comments "
     "before a definition with an error are not checked, since the error may hide the warning. Comments about "
     "duplicate names are checked only when a directory is checked.",
     R"(<!-- korvex: allow unread-attribute -->
<sql id="columns">id, name</sql>)",
     R"(<!-- korvex: allow unread-attribute -->
<sql id="columns" author="me">id, name</sql>)"},
    {Warning::UnknownWarning, "unknown-warning", Severity::Warning, true,
     "A comment that suppresses an unknown warning", "Correct the name; 'korvex-dao check --help' lists them.",
     "The comment \"korvex: allow NAME\" names a warning, or several separated by commas. Errors cannot be suppressed.",
     R"(<!-- korvex: allow duplicate-names -->
<const PAGE_SIZE="50"/>)",
     R"(<!-- korvex is the app's own library: allow for that -->
<const PAGE_SIZE="50"/>)"},
}};

}  // namespace korvex
