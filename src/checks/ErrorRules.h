// The rules that a rejected definition or document violates, with their explanations. The messages are defined beside
// the code that reports them.
#pragma once

#include <array>

#include "checks/Rules.h"
#include "dao/core/Messages.h"
#include "loader/DocumentErrors.h"

namespace korvex {

constexpr Rule errorRule(QXDAORule rule, std::string_view help, std::string_view meaning, std::string_view wrong,
                         std::string_view right) {
  const RuleText& text = ruleTextOf(rule);
  return {rule, text.name, Severity::Error, true, text.message, help, meaning, wrong, right};
}

constexpr Rule errorRule(DocumentErrorKind kind, std::string_view name, std::string_view message, std::string_view help,
                         std::string_view meaning, std::string_view wrong, std::string_view right) {
  return {kind, name, Severity::Error, true, message, help, meaning, wrong, right};
}

// For the kinds that have one message.
constexpr Rule errorRule(DocumentRule rule, std::string_view name, std::string_view help, std::string_view meaning,
                         std::string_view wrong, std::string_view right) {
  const DocumentRuleText& text = documentRuleTextOf(rule);
  return errorRule(text.kind, name, text.message, help, meaning, wrong, right);
}

inline constexpr std::array definitionErrors = {
    errorRule(QXDAORule::MissingName, "Give the element a non-empty id.",
              "Methods, sql blocks and maps are referred to by name, so each needs an \"id\". An upgrade has none: its "
              "version identifies it. The id is kept exactly as written, including spaces and case. An element with an "
              "unknown tag and no id also gets this error.",
              R"xml(<select result="int">SELECT count(*) FROM person</select>)xml",
              R"xml(<select id="countPersons" result="int">SELECT count(*) FROM person</select>)xml"),

    errorRule(QXDAORule::UnknownDefinition, "Correct the tag, including its case.",
              "The children of the root are the definitions: select, update, insert, delete, upgrade, sql, const, map, "
              "crypt and pack. Tags are case-sensitive. An element that belongs inside a method, such as an if, is not "
              "a definition.",
              R"xml(<Select id="countPersons" result="int">SELECT count(*) FROM person</Select>)xml",
              R"xml(<select id="countPersons" result="int">SELECT count(*) FROM person</select>)xml"),

    errorRule(QXDAORule::UnknownElement, "Correct the tag, or move the definition out of the method.",
              "A method contains text and the elements if, choose, foreach, where, set, trim and format; at its top "
              "level also step and try. Tags are case-sensitive. Definitions such as sql or const go beside methods, "
              "never inside one.",
              R"xml(<select id="allPersons" result="[Person]">
  SELECT * FROM person
  <sql id="order">ORDER BY name</sql>
</select>)xml",
              R"xml(<select id="allPersons" result="[Person]">
  SELECT * FROM person
  ORDER BY name
</select>)xml"),

    errorRule(QXDAORule::MisplacedStep, "Move the step to the top level of the method.",
              "A step divides the method itself into pieces of work. It must be a direct child of an update, insert, "
              "delete or upgrade, so it cannot be inside a condition or another step. Put the condition inside the "
              "step instead.",
              R"xml(<update id="clean" arguments="thorough">
  <if true="thorough"><step>DELETE FROM tag</step></if>
  <step>DELETE FROM cache</step>
</update>)xml",
              R"xml(<update id="clean" arguments="thorough">
  <step><if true="thorough">DELETE FROM tag</if></step>
  <step>DELETE FROM cache</step>
</update>)xml"),

    errorRule(QXDAORule::MisplacedTry, "Move the try block to the top level of the method.",
              "A try block is the entire content of its method. It must be a direct child of the method, so it cannot "
              "be inside a condition, a step or another try block.",
              R"xml(<update id="refresh">
  <step>
    <try>DELETE FROM cache <except>DELETE FROM old</except></try>
  </step>
</update>)xml",
              R"xml(<update id="refresh">
  <try>DELETE FROM cache <except>DELETE FROM old</except></try>
</update>)xml"),

    errorRule(QXDAORule::MisplacedExcept, "Put the except block at the end of a try block.",
              "An except block runs when the rest of its try block fails. It must be a direct child of the try block, "
              "and the last one.",
              R"xml(<insert id="addGroup" arguments="$title">
  INSERT INTO person_group (title) VALUES (:title)
  <except>UPDATE person_group SET used = 1 WHERE title = :title</except>
</insert>)xml",
              R"xml(<insert id="addGroup" arguments="$title">
  <try>
    INSERT INTO person_group (title) VALUES (:title)
    <except>UPDATE person_group SET used = 1 WHERE title = :title</except>
  </try>
</insert>)xml"),

    errorRule(QXDAORule::UpgradeFormat, "Give the upgrade a toVersion with a decimal number, and no other attribute.",
              "An upgrade brings the schema of an older database to a version. Its only attribute names that version: "
              "a decimal number, or \"initial\", which means 0. A version is one number, not a list of numbers: 1.10 "
              "equals 1.1, and 2.5.1 is invalid. Because an upgrade has no name, the message quotes its SQL.",
              R"xml(<upgrade toVersion="2.5.1">ALTER TABLE person ADD COLUMN photo BLOB</upgrade>)xml",
              R"xml(<upgrade toVersion="2.51">ALTER TABLE person ADD COLUMN photo BLOB</upgrade>)xml"),

    errorRule(QXDAORule::ArgumentsFormat, "Remove the extra comma, or fill in the name.",
              "\"arguments\" lists the names of a method's arguments, separated by commas. A \"$\" before a name means "
              "that the argument must not be null. An empty or blank item, between commas or after the last one, would "
              "be an argument without a name. Omit the attribute if the method has no arguments.",
              R"xml(<update id="rename" arguments="personId,, name">
  UPDATE person SET name = :name WHERE id = :personId
</update>)xml",
              R"xml(<update id="rename" arguments="personId, name">
  UPDATE person SET name = :name WHERE id = :personId
</update>)xml"),

    errorRule(QXDAORule::MissingResult, "Set \"result\" to what a row becomes.",
              "A select declares what each row becomes: a scalar such as int or string, a dictionary ({}), an object "
              "of a class (Person), or an object filled by a map (:personMap). Square brackets make it a list. Other "
              "methods return no rows and need no result.",
              R"xml(<select id="newestPerson">SELECT max(id) FROM person</select>)xml",
              R"xml(<select id="newestPerson" result="int">SELECT max(id) FROM person</select>)xml"),

    errorRule(QXDAORule::StepsInSelect, "Write one query without steps.",
              "A select is one query with one result. Steps are for methods that change data.",
              R"xml(<select id="counts" result="[int]">
  <step>SELECT count(*) FROM person</step>
  <step>SELECT count(*) FROM phone</step>
</select>)xml",
              R"xml(<select id="counts" result="[int]">
  SELECT count(*) FROM person UNION ALL SELECT count(*) FROM phone
</select>)xml"),

    errorRule(QXDAORule::ContentBesideSteps, "Move the content that is outside the steps into a step.",
              "A method with steps contains nothing but steps and comments. Other text or elements would not belong to "
              "any step.",
              R"xml(<delete id="removePerson" arguments="$personId">
  DELETE FROM phone WHERE person_id = :personId
  <step>DELETE FROM person WHERE id = :personId</step>
</delete>)xml",
              R"xml(<delete id="removePerson" arguments="$personId">
  <step>DELETE FROM phone WHERE person_id = :personId</step>
  <step>DELETE FROM person WHERE id = :personId</step>
</delete>)xml"),

    errorRule(QXDAORule::ContentBesideTry, "Move the content that is outside the try block into it.",
              "A try block is the entire content of its method, because the except block replaces all of it on "
              "failure. Only comments may appear outside.",
              R"xml(<insert id="addTag" arguments="$title">
  <try>
    INSERT INTO tag (title) VALUES (:title)
    <except>DELETE FROM tag</except>
  </try>
  ON CONFLICT DO NOTHING
</insert>)xml",
              R"xml(<insert id="addTag" arguments="$title">
  <try>
    INSERT INTO tag (title) VALUES (:title) ON CONFLICT DO NOTHING
    <except>DELETE FROM tag</except>
  </try>
</insert>)xml"),

    errorRule(QXDAORule::MethodForeachFormat, "Write collection.item, with one of the arguments and a new name.",
              "\"foreach\" runs the method once for each entry of an argument. Its value is two names separated by one "
              "dot. The first is the collection, which must be one of the method's arguments. The second is the name "
              "of the current entry in the SQL, which must not be the name of an argument.",
              R"xml(<delete id="deletePersons" arguments="$ids" foreach="ids.ids">
  DELETE FROM person WHERE id = :ids
</delete>)xml",
              R"xml(<delete id="deletePersons" arguments="$ids" foreach="ids.personId">
  DELETE FROM person WHERE id = :personId
</delete>)xml"),

    errorRule(QXDAORule::TryFormat, "End the try block with one except block, and remove its attributes.",
              "A try block has content followed by exactly one except block, which is its direct child. Only comments "
              "may follow the except block. A try block has no attributes.",
              R"xml(<insert id="addGroup" arguments="$title">
  <try>INSERT INTO person_group (title) VALUES (:title)</try>
</insert>)xml",
              R"xml(<insert id="addGroup" arguments="$title">
  <try>
    INSERT INTO person_group (title) VALUES (:title)
    <except>UPDATE person_group SET used = 1 WHERE title = :title</except>
  </try>
</insert>)xml"),

    errorRule(QXDAORule::SecondExcept, "Merge the except blocks into one.",
              "A try block has one except block, which handles every failure. A second one could never run.",
              R"xml(<update id="copy">
  <try>
    INSERT INTO copied SELECT * FROM person
    <except>DELETE FROM copied</except>
    <except>DELETE FROM copied_phone</except>
  </try>
</update>)xml",
              R"xml(<update id="copy">
  <try>
    INSERT INTO copied SELECT * FROM person
    <except>DELETE FROM copied</except>
  </try>
</update>)xml"),

    errorRule(QXDAORule::ExceptFormat, "Remove the attributes of the except block.",
              "An except block handles every failure of its try block, so it has no attributes to choose by. "
              "\"resumable\" is for steps and for methods with a foreach.",
              R"xml(<update id="swap">
  <try>
    UPDATE person SET side = 1 - side
    <except resumable="true">DELETE FROM swapped</except>
  </try>
</update>)xml",
              R"xml(<update id="swap">
  <try>
    UPDATE person SET side = 1 - side
    <except>DELETE FROM swapped</except>
  </try>
</update>)xml"),

    errorRule(QXDAORule::ConditionFormat,
              "Give an if or when exactly one attribute, true or false, with an expression; choose and otherwise have "
              "none.",
              "An if or when has one attribute. With \"true\" its content applies when the expression is true; with "
              "\"false\", when it is false. The whole expression must consist of tokens: names, numbers, quoted "
              "strings, brackets and operators. An empty expression, an unclosed quote and a typographic quote are "
              "refused. A choose and an otherwise have no condition, so they have no attributes.",
              R"xml(<select id="adults" arguments="onlyAdults" result="[Person]">
  SELECT * FROM person <if test="onlyAdults">WHERE age >= 18</if>
</select>)xml",
              R"xml(<select id="adults" arguments="onlyAdults" result="[Person]">
  SELECT * FROM person <if true="onlyAdults">WHERE age >= 18</if>
</select>)xml"),

    errorRule(QXDAORule::ChooseContent, "Keep only when elements in the choose, with at most one otherwise at the end.",
              "A choose uses its first when that applies, or else its otherwise. Text or another element would belong "
              "to neither, and anything after the otherwise could never be reached.",
              R"xml(<select id="sorted" arguments="byAge" result="[Person]">
  SELECT * FROM person
  <choose>
    <otherwise>ORDER BY name</otherwise>
    <when true="byAge">ORDER BY age</when>
  </choose>
</select>)xml",
              R"xml(<select id="sorted" arguments="byAge" result="[Person]">
  SELECT * FROM person
  <choose>
    <when true="byAge">ORDER BY age</when>
    <otherwise>ORDER BY name</otherwise>
  </choose>
</select>)xml"),

    errorRule(QXDAORule::ForeachParameters,
              "Give the foreach a collection and an item; the only other attributes are open, separator, close and "
              "reverse.",
              "A foreach repeats its text for each entry of a collection. Two attributes are required: \"collection\" "
              "names the collection, and \"item\" names the current entry in the text. Only \"open\", \"separator\", "
              "\"close\" and \"reverse\" are allowed besides.",
              R"xml(<select id="someOf" arguments="$ids" result="[Person]">
  SELECT * FROM person WHERE id IN
  <foreach collection="ids" open="(" separator=", " close=")">
    :id
  </foreach>
</select>)xml",
              R"xml(<select id="someOf" arguments="$ids" result="[Person]">
  SELECT * FROM person WHERE id IN
  <foreach collection="ids" item="id" open="(" separator=", " close=")">
    :id
  </foreach>
</select>)xml"),

    errorRule(QXDAORule::ForeachContent, "Write only text in the foreach.",
              "A foreach repeats the same plain text for every entry, so it cannot contain conditions or other "
              "elements. Comments are allowed.",
              R"xml(<select id="someOf" arguments="$ids" result="[Person]">
  SELECT * FROM person WHERE id IN
  <foreach collection="ids" item="id" open="(" separator=", " close=")">
    <if true="id">:id</if>
  </foreach>
</select>)xml",
              R"xml(<select id="someOf" arguments="$ids" result="[Person]">
  SELECT * FROM person WHERE id IN
  <foreach collection="ids" item="id" open="(" separator=", " close=")">
    :id
  </foreach>
</select>)xml"),

    errorRule(QXDAORule::FragmentFormat,
              "Give a trim its prefix and at least one of the overrides, a format its prefix, pairs and join.",
              "A trim writes its \"prefix\" before its content and removes \"prefixOverrides\" from the start or "
              "\"suffixOverrides\" from the end. Without either there is nothing to trim. A format writes key-value "
              "pairs and requires \"prefix\", \"pairs\" and \"join\", none of them empty. For common cases of trim, "
              "use where and set.",
              R"xml(<select id="tagged" arguments="tag" result="[Person]">
  SELECT * FROM person
  <trim prefix="WHERE">
    <if true="tag">AND tag = :tag</if>
  </trim>
</select>)xml",
              R"xml(<select id="tagged" arguments="tag" result="[Person]">
  SELECT * FROM person
  <trim prefix="WHERE" prefixOverrides="AND ">
    <if true="tag">AND tag = :tag</if>
  </trim>
</select>)xml"),

    errorRule(QXDAORule::ReservedSqlName, "Choose another name for the sql block.",
              "The names T and t are reserved for the table that the caller of a select assigns, so no sql block can "
              "have either name.",
              R"xml(<sql id="t">person</sql>)xml", R"xml(<sql id="personTable">person</sql>)xml"),

    errorRule(QXDAORule::SqlFormat, "Write only text in the sql block.",
              "An sql block is a piece of plain SQL that other definitions reuse. It contains text and comments only; "
              "dynamic SQL with conditions belongs in methods.",
              R"xml(<sql id="orderByName">ORDER BY name <if true="descending">DESC</if></sql>)xml",
              R"xml(<sql id="orderByName">ORDER BY name</sql>)xml"),

    errorRule(QXDAORule::ConstFormat, "Write <const NAME=\"text\"/> with nothing inside.",
              "A constant has exactly one attribute: the attribute's name is the constant's name, and its value is the "
              "constant's text. The element must be empty; not even a comment is allowed. The message quotes the text "
              "inside, if any.",
              R"xml(<const PAGE_SIZE="">50</const>)xml", R"xml(<const PAGE_SIZE="50"/>)xml"),

    errorRule(QXDAORule::CryptFormat, "Keep only class and property, both non-empty, and nothing inside.",
              "A crypt definition names a property of a class that is stored encrypted. It has exactly two attributes, "
              "\"class\" and \"property\". The element must be empty; not even a comment is allowed.",
              R"xml(<crypt class="Person" property="notes" column="notes"/>)xml",
              R"xml(<crypt class="Person" property="notes"/>)xml"),

    errorRule(QXDAORule::MissingMapResult, "Name the class in \"result\".",
              "A map fills an object from a row, and \"result\" names the class of that object.",
              R"xml(<map id="personMap">
  <result column="name" property="name"/>
</map>)xml",
              R"xml(<map id="personMap" result="Person">
  <result column="name" property="name"/>
</map>)xml"),

    errorRule(QXDAORule::MapFormat,
              "Give every result a column and a property, and remove everything else from the map.",
              "A map contains result elements and comments, but no text. Each result names a column of the row and the "
              "property that receives it; both are required.",
              R"xml(<map id="phoneMap" result="Phone">
  <result column="number" property="number"/>
  <result column="kind"/>
</map>)xml",
              R"xml(<map id="phoneMap" result="Phone">
  <result column="number" property="number"/>
  <result column="kind" property="kind"/>
</map>)xml"),

    errorRule(QXDAORule::MissingPackColumn, "Name the column in \"as\".",
              "A pack stores several properties of an object in one column, which \"as\" names. Spaces around the name "
              "are removed; what remains must not be empty.",
              R"xml(<pack as=" " properties="company, website"/>)xml",
              R"xml(<pack as="info" properties="company, website"/>)xml"),

    errorRule(QXDAORule::MissingPackProperties, "List the properties, separated by commas.",
              "\"properties\" lists the properties that a pack stores in its column. At least two are required.",
              R"xml(<pack as="info" properties=""/>)xml", R"xml(<pack as="info" properties="company, website"/>)xml"),

    errorRule(QXDAORule::SinglePackProperty, "Add a property, or remove the pack.",
              "A pack is for two or more properties that share a column. Store a single property in a column of its "
              "own: it takes less space and can be searched.",
              R"xml(<pack as="secrets" properties="doorCode"/>)xml",
              R"xml(<pack as="secrets" properties="doorCode, alarmCode"/>)xml"),
};

inline constexpr std::array documentErrors = {
    errorRule(DocumentRule::UnreadableFile, "unreadable-document",
              "Make sure that the file exists and that you have permission to read it.",
              "The file is missing, or you may not read it, so its definitions are not checked. Other files are still "
              "checked.",
              {}, {}),

    errorRule(DocumentRule::TooLarge, "oversized-document", "Split the document, or raise the limit with --max-bytes.",
              "A document is held in memory while it is checked, so its size is limited: 64 MiB by default. "
              "Definitions are independent of each other and can be in any document. A file this large is usually not "
              "a definition document at all.",
              R"xml(<!-- more than 64 MiB of definitions in one file -->
<sql id="columns">id, name, age</sql>
<sql id="order">ORDER BY name</sql>)xml",
              R"xml(<!-- the others in files of their own -->
<sql id="columns">id, name, age</sql>)xml"),

    errorRule(DocumentErrorKind::Malformed, "malformed-document", "the document is not well-formed XML",
              "Correct the XML at the place that the message names.",
              "A document is parsed as a whole: a single unclosed tag, or a \"<\" in a condition, makes all of its "
              "definitions unreadable. The message says what is wrong. In SQL and in attributes, write \"<\" as &lt; "
              "and \"&\" as &amp;, or put the SQL in a CDATA section. Custom entities and attribute lists are not "
              "supported, since they can make a small document expand without limit.",
              R"xml(<select id="children" result="[Person]">
  SELECT * FROM person WHERE age < 18
</select>)xml",
              R"xml(<select id="children" result="[Person]">
  SELECT * FROM person WHERE age &lt; 18
</select>)xml"),

    errorRule(DocumentRule::TooDeep, "deep-document", "Nest elements at most 256 deep.",
              "Elements are built recursively, so each level of nesting uses stack. Nested conditions can be combined "
              "into one expression with &amp;&amp;. Nesting this deep usually comes from a program that writes "
              "documents and forgets to close its elements.",
              R"xml(<select id="find" arguments="young, old" result="[Person]">
  SELECT * FROM person
  <where>
    <if true="young">
      <if true="old"><!-- and so on, 257 deep -->age = 18</if>
    </if>
  </where>
</select>)xml",
              R"xml(<select id="find" arguments="young, old" result="[Person]">
  SELECT * FROM person
  <where>
    <if true="young &amp;&amp; old">age = 18</if>
  </where>
</select>)xml"),

    errorRule(DocumentRule::OutOfMemory, "out-of-memory", "Check the document on a machine with more memory.",
              "Reading a document takes several times its size in memory. Its definitions were not checked.", {}, {}),

    errorRule(DocumentRule::ExpansionTooLarge, "oversized-expansion",
              "Write shorter formats or fewer entries in the list references.",
              "A list reference repeats its format for each entry and replaces each star in it by the entry. A long "
              "format with many stars and many entries therefore grows with the product of the two. All list "
              "references of a document together may expand to at most 64 MiB. Expansion happens when the document is "
              "loaded, before any SQL runs.",
              R"xml(<!-- imagine thousands of stars and of entries -->
<const KEYS="%{'* * * * * * * * * * * *', id, version, created, changed}"/>)xml",
              R"xml(<const KEYS="%{'*', id, version, created, changed}"/>)xml"),
};

}  // namespace korvex
