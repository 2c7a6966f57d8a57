// The rules among all that need a whole set, a schema or the model classes of the app.
#pragma once

#include <array>

#include "checks/Rules.h"

namespace korvex {

inline constexpr std::array<Rule, 15> schemaRules = {{
    {SchemaRule::NotRunnable, "not-runnable", Severity::Warning, true, "A definition that the engine cannot load",
     "Declare the value, or correct the name.",
     "An engine builds a set of all definitions. Values that no argument declares, references to unknown blocks and "
     "constants, and conditions that name something else are errors then, and with --schema they are errors here. "
     "Unknown "
     "references are only given when PATH is a directory or with --schema, since other documents may define them. "
     "Documents for an engine with another notation, which bind no argument as ':name', are not checked; switch the "
     "warning off if they still are.",
     R"(<select id="names" result="[string]" arguments="first">
  SELECT name FROM person WHERE name = :first OR name = :last
</select>
<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>)",
     R"(<select id="names" result="[string]" arguments="first, last">
  SELECT name FROM person WHERE name = :first OR name = :last
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
    {SchemaRule::ReadingUpdate, "reading-update", Severity::Warning, true,
     "An update, insert or delete that only reads", "Make the method a select.",
     "Only a select returns rows. A method of another kind runs the statement and throws its rows away.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<update id="names">SELECT name FROM person</update>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="names" result="[string]">SELECT name FROM person</select>)"},
    {SchemaRule::LostWhere, "lost-where", Severity::Warning, true, "An update or delete that can lose its condition",
     "Write a <where onVoid=\"quit\">, or a condition that is always there.",
     "In some variants, the statement has a WHERE, and in others none, so that it changes all rows. "
     "Statements that never have one are not reported.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<delete id="remove" arguments="personId">
  DELETE FROM person <if true="personId">WHERE id = :personId</if>
</delete>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<delete id="remove" arguments="personId">
  DELETE FROM person
  <where onVoid="quit"><if true="personId">id = :personId</if></where>
</delete>)"},
    {SchemaRule::FullScan, "full-scan", Severity::Warning, true, "A statement reads all rows of an indexed table",
     "Add an index, or a condition that uses one.",
     "For each table that --indexed names, SQLite's query plan of every variant is searched for a scan without an "
     "index. "
     "'korvex-dao sql --plan' shows the plans.",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<select id="ids" result="[long long]">
  SELECT rowid FROM person WHERE name LIKE 'A%'
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<select id="ids" result="[long long]">
  SELECT rowid FROM person WHERE rowid > 7
</select>)"},
    {SchemaRule::UnreadColumns, "unread-columns", Severity::Warning, true,
     "A scalar result of a select with several columns", "Remove the other columns, or use a result that has columns.",
     "A scalar result such as int or string reads the first column of each row and ignores the others.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="names" result="[string]">
  SELECT name, id FROM person
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="names" result="[string]">
  SELECT name FROM person
</select>)"},
    {SchemaRule::RepeatedResultColumn, "repeated-result-column", Severity::Warning, true,
     "Two columns of a result have the same name", "Remove one of them, or name it with AS.",
     "A dictionary or an object has one value for each name, so one of the two is lost.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="pairs" result="[{}]">
  SELECT p.name, q.name FROM person p, person q
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="pairs" result="[{}]">
  SELECT p.name, q.name AS other FROM person p, person q
</select>)"},
    {SchemaRule::UnyieldedColumn, "unyielded-column", Severity::Warning, true,
     "A column of a map that no select yields", "Correct the column of the map, or add it to a select.",
     "Each column of a map fills a property. If no select with the map yields the column, the property is "
     "never filled.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<map id="personMap" result="Person">
  <result column="nam" property="name"/>
</map>
<select id="all" result="[:personMap]">SELECT name FROM person</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<map id="personMap" result="Person">
  <result column="name" property="name"/>
</map>
<select id="all" result="[:personMap]">SELECT name FROM person</select>)"},
    {SchemaRule::PackColumn, "pack-column", Severity::Warning, true,
     "A packed column that no table has, or that is no BLOB", "Declare the column as BLOB in the schema.",
     "A pack is stored as bytes. A column of another type may convert them, and tools show them as text.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<pack as="name" properties="notes, height"/>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name BLOB)</upgrade>
<pack as="name" properties="notes, height"/>)"},
    {SchemaRule::UnusedDefinition, "unused-definition", Severity::Warning, true,
     "An sql block, a constant or a map that nothing uses", "Remove it, or correct the name where it is used.",
     "No document of the call refers to it. Give all documents together, such as their directory.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<sql id="columns">id, name</sql>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<sql id="columns">id, name</sql>
<select id="all" result="[{}]">SELECT @columns FROM person</select>)"},
    {SchemaRule::UnusedTable, "unused-table", Severity::Warning, true, "A table that no method uses",
     "Drop it in an upgrade, or add the methods that use it.",
     "An upgrade creates the table, but no statement reads or writes it, nor does a view or a trigger that one uses. "
     "Nothing is reported if a method has an assigned table, since the app can pass the name of any.",
     R"(<upgrade toVersion="1">
  CREATE TABLE person (id INTEGER, name TEXT);
  CREATE TABLE tag (title TEXT)
</upgrade>
<select id="all" result="[{}]">SELECT id, name FROM person</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="all" result="[{}]">SELECT id, name FROM person</select>)"},
    {SchemaRule::EmptyList, "empty-list", Severity::Warning, true, "IN with an empty list",
     "Write the entries, or a foreach.",
     "SQLite accepts IN () and NOT IN (), which hold for no row and for every row. Written out, they are a list that "
     "was "
     "forgotten. That a foreach has no entries is no reason for this warning.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="some" result="[string]">
  SELECT name FROM person WHERE id IN ()
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="some" result="[string]">
  SELECT name FROM person WHERE id IN (1, 2)
</select>)"},
    {SchemaRule::UnusedArgument, "unused-argument", Severity::Warning, true, "An argument that a method never uses",
     "Use it, or remove it.",
     "Neither the SQL of the method nor a condition mentions it, and no block that it inserts.",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="names" result="[string]" arguments="part">
  SELECT name FROM person
</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (id INTEGER, name TEXT)</upgrade>
<select id="names" result="[string]" arguments="part">
  SELECT name FROM person WHERE name LIKE :part
</select>)"},
    {SchemaRule::UnknownClass, "unknown-class", Severity::Warning, true, "A class that the app does not have",
     "Correct the name, or add the class to the models.",
     "With --models, the classes that results, maps and crypt elements name are looked up among those of the app, by "
     "the "
     "name that className gives them. An engine cannot create objects of another class.",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<select id="all" result="[Persn]">SELECT name FROM person</select>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<select id="all" result="[Person]">SELECT name FROM person</select>)"},
    {SchemaRule::UnknownProperty, "unknown-property", Severity::Warning, true,
     "A property that a model class does not have", "Correct the name, or declare the property.",
     "With --models, the properties that maps, packs and crypt elements name, and those that SQL and conditions read "
     "from "
     "arguments and items, are looked up. An argument has no declared class. It is taken for an object if its name is "
     "that of a class, as in :person and :newPerson, or if a class has more than half of the properties that the "
     "method "
     "reads from it. Other arguments may be dictionaries, with any keys.",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<insert id="add" arguments="person">
  INSERT INTO person (name) VALUES (:person.nam)
</insert>)",
     R"(<upgrade toVersion="1">CREATE TABLE person (name TEXT)</upgrade>
<insert id="add" arguments="person">
  INSERT INTO person (name) VALUES (:person.name)
</insert>)"},
}};

}  // namespace korvex
