// The rules whose violation has a definition or a whole document refused. Their messages stand where they are given.
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
    errorRule(
        QXDAORule::MissingName, "Give the element an id that is not empty.",
        "Methods, sql blocks and maps are referred to by their names, so each has an \"id\". An upgrade has none: "
        "it is known by its version. The id is kept as it is written, spaces and case included. An element of an "
        "unknown tag without an id gets this error, too.",
        R"xml(<select result="int">SELECT count(*) FROM person</select>)xml",
        R"xml(<select id="countPersons" result="int">SELECT count(*) FROM person</select>)xml"),

    errorRule(
        QXDAORule::UnknownDefinition, "Correct the tag, also its case.",
        "The elements right below the root are the definitions: select, update, insert, delete, upgrade, sql, const, "
        "map, crypt and pack. Tags are case-sensitive. An element for the inside of a method, such as an if, is no "
        "definition either.",
        R"xml(<Select id="countPersons" result="int">SELECT count(*) FROM person</Select>)xml",
        R"xml(<select id="countPersons" result="int">SELECT count(*) FROM person</select>)xml"),

    errorRule(
        QXDAORule::UnknownElement, "Correct the tag; move a definition out of the method.",
        "Inside a method stand text and if, choose, foreach, where, set, trim and format, directly in it also step "
        "and try. Tags are case-sensitive. Definitions such as sql or const stand beside methods, never inside one.",
        R"xml(<select id="allPersons" result="[Person]">
  SELECT * FROM person
  <sql id="order">ORDER BY name</sql>
</select>)xml",
        R"xml(<select id="allPersons" result="[Person]">
  SELECT * FROM person
  ORDER BY name
</select>)xml"),

    errorRule(
        QXDAORule::MisplacedStep, "Move the step up, directly into the method.",
        "A step divides the method itself into pieces of work, so it stands directly in an update, insert, delete or "
        "upgrade, not in a condition or in another step. What depends on a condition goes into the step.",
        R"xml(<update id="clean" arguments="thorough">
  <if true="thorough"><step>DELETE FROM tag</step></if>
  <step>DELETE FROM cache</step>
</update>)xml",
        R"xml(<update id="clean" arguments="thorough">
  <step><if true="thorough">DELETE FROM tag</if></step>
  <step>DELETE FROM cache</step>
</update>)xml"),

    errorRule(
        QXDAORule::MisplacedTry, "Move the try block up, directly into the method.",
        "A try block is the whole of its method, which has one way out when it fails. So it stands directly in the "
        "method, not in a condition, a step or another try block.",
        R"xml(<update id="refresh">
  <step>
    <try>DELETE FROM cache <except>DELETE FROM old</except></try>
  </step>
</update>)xml",
        R"xml(<update id="refresh">
  <try>DELETE FROM cache <except>DELETE FROM old</except></try>
</update>)xml"),

    errorRule(QXDAORule::MisplacedExcept, "Put the except block at the end of a try block.",
              "An except block is for when the rest of its try block fails, so it stands directly in one, as the last.",
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

    errorRule(
        QXDAORule::UpgradeFormat, "Give the upgrade a toVersion with a decimal number, and no other attribute.",
        "An upgrade leads the schema of an older database to a version, and its one attribute says to which. The "
        "version is a decimal number or \"initial\", which is 0. It is not a list of numbers: 1.10 is the same as "
        "1.1, and 2.5.1 is none. The message quotes the SQL, since an upgrade has no name.",
        R"xml(<upgrade toVersion="2.5.1">ALTER TABLE person ADD COLUMN photo BLOB</upgrade>)xml",
        R"xml(<upgrade toVersion="2.51">ALTER TABLE person ADD COLUMN photo BLOB</upgrade>)xml"),

    errorRule(QXDAORule::ArgumentsFormat, "Take out the extra comma, or fill in the name.",
              "\"arguments\" lists the names of a method's arguments, separated by commas, each with a \"$\" in front "
              "where it must not be null. An empty or blank piece between two commas, or after the last one, would be "
              "an argument "
              "without a name. A method without arguments has no such attribute.",
              R"xml(<update id="rename" arguments="personId,, name">
  UPDATE person SET name = :name WHERE id = :personId
</update>)xml",
              R"xml(<update id="rename" arguments="personId, name">
  UPDATE person SET name = :name WHERE id = :personId
</update>)xml"),

    errorRule(
        QXDAORule::MissingResult, "Say in \"result\" what a row becomes.",
        "A select says what its rows become: a plain value such as int or string, a dictionary ({}), an object of a "
        "class (Person) or one that a map fills (:personMap). In square brackets it is a list of them. The other "
        "methods yield nothing and need no result.",
        R"xml(<select id="newestPerson">SELECT max(id) FROM person</select>)xml",
        R"xml(<select id="newestPerson" result="int">SELECT max(id) FROM person</select>)xml"),

    errorRule(QXDAORule::StepsInSelect, "Write one query without steps.",
              "A select is one query with one result. Steps are for methods that change the data.",
              R"xml(<select id="counts" result="[int]">
  <step>SELECT count(*) FROM person</step>
  <step>SELECT count(*) FROM phone</step>
</select>)xml",
              R"xml(<select id="counts" result="[int]">
  SELECT count(*) FROM person UNION ALL SELECT count(*) FROM phone
</select>)xml"),

    errorRule(
        QXDAORule::ContentBesideSteps, "Put what stands beside the steps into a step.",
        "Where a method has steps, it holds nothing else: text or an element between them would belong to no piece "
        "of the work. Comments may stand anywhere.",
        R"xml(<delete id="removePerson" arguments="$personId">
  DELETE FROM phone WHERE person_id = :personId
  <step>DELETE FROM person WHERE id = :personId</step>
</delete>)xml",
        R"xml(<delete id="removePerson" arguments="$personId">
  <step>DELETE FROM phone WHERE person_id = :personId</step>
  <step>DELETE FROM person WHERE id = :personId</step>
</delete>)xml"),

    errorRule(QXDAORule::ContentBesideTry, "Put what stands beside the try block into it.",
              "A try block is all that its method holds, since the except block has to make up for the whole of it. "
              "Comments may stand around it.",
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

    errorRule(
        QXDAORule::MethodForeachFormat, "Write collection.item, with one of the arguments and a new name.",
        "\"foreach\" runs the method once for each entry of an argument. It has two names with one point between "
        "them: the collection, which is one of the method's arguments, and the name of an entry in the SQL, which "
        "is none of them.",
        R"xml(<delete id="deletePersons" arguments="$ids" foreach="ids.ids">
  DELETE FROM person WHERE id = :ids
</delete>)xml",
        R"xml(<delete id="deletePersons" arguments="$ids" foreach="ids.personId">
  DELETE FROM person WHERE id = :personId
</delete>)xml"),

    errorRule(
        QXDAORule::TryFormat, "End the try block with its except block, and give it no attributes.",
        "A try block has content, then exactly one except block, directly in it, with nothing but comments behind. "
        "It has no attributes. Without an except block there would be no way out, and no need for the try block.",
        R"xml(<insert id="addGroup" arguments="$title">
  <try>INSERT INTO person_group (title) VALUES (:title)</try>
</insert>)xml",
        R"xml(<insert id="addGroup" arguments="$title">
  <try>
    INSERT INTO person_group (title) VALUES (:title)
    <except>UPDATE person_group SET used = 1 WHERE title = :title</except>
  </try>
</insert>)xml"),

    errorRule(QXDAORule::SecondExcept, "Join the except blocks to one.",
              "A try block has one way out. Which fault made it fail is not told apart, so a second except block could "
              "never be chosen.",
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

    errorRule(QXDAORule::ExceptFormat, "Take the attributes out of the except block.",
              "An except block is for whatever fails in its try block, and has nothing to say about it in attributes. "
              "\"resumable\" belongs to steps and to methods with a foreach.",
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

    errorRule(
        QXDAORule::ConditionFormat,
        "Give an if or when exactly one attribute, true or false, with an expression; choose and otherwise have none.",
        "An if or a when has one attribute: \"true\" when its content applies to a true expression, \"false\" when it "
        "applies to a false one. The expression must fall into tokens from end to end: names, numbers, strings in "
        "quotes, brackets and operators; an open quote or a typographic one is refused, and an empty expression too. A "
        "choose and its otherwise have no condition of their own, so they have no attributes.",
        R"xml(<select id="adults" arguments="onlyAdults" result="[Person]">
  SELECT * FROM person <if test="onlyAdults">WHERE age >= 18</if>
</select>)xml",
        R"xml(<select id="adults" arguments="onlyAdults" result="[Person]">
  SELECT * FROM person <if true="onlyAdults">WHERE age >= 18</if>
</select>)xml"),

    errorRule(QXDAORule::ChooseContent, "Leave only when elements in the choose, and one otherwise at the end.",
              "Of the content of a choose the first when that applies is taken, or else the otherwise. Text or another "
              "element would belong to none of them, and what stands behind the otherwise could never be reached.",
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

    errorRule(
        QXDAORule::ForeachParameters,
        "Give the foreach a collection and an item, and beside them only open, separator, close and reverse.",
        "A foreach repeats its text for each entry of a collection. \"collection\" says what to go through and "
        "\"item\" is the name of the entry in the text; both are needed. No attribute other than those, \"open\", "
        "\"separator\", \"close\" and \"reverse\" is allowed.",
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

    errorRule(
        QXDAORule::ForeachContent, "Write text only in the foreach.",
        "A foreach repeats the same plain text for every entry, so there are no conditions or other elements in it. "
        "Comments may stand in it.",
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

    errorRule(
        QXDAORule::FragmentFormat,
        "Give a trim its prefix and one of the overrides, a format its prefix, pairs and join.",
        "A trim puts its \"prefix\" in front of its content and takes \"prefixOverrides\" off the start or "
        "\"suffixOverrides\" off the end; with neither it would have nothing to trim. A format forms key-value "
        "pairs with the three texts \"prefix\", \"pairs\" and \"join\", none of which may be empty. For the usual "
        "cases of a trim there are where and set.",
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

    errorRule(
        QXDAORule::ReservedSqlName, "Choose another name for the sql block.",
        "The name T, large or small, stands for the table that the caller of a select assigns, so no sql block can "
        "be called that.",
        R"xml(<sql id="t">person</sql>)xml", R"xml(<sql id="personTable">person</sql>)xml"),

    errorRule(QXDAORule::SqlFormat, "Write text only in the sql block.",
              "An sql block is a piece of plain SQL for other definitions to use. Its content is text and comments; "
              "dynamic SQL with conditions belongs in methods.",
              R"xml(<sql id="orderByName">ORDER BY name <if true="descending">DESC</if></sql>)xml",
              R"xml(<sql id="orderByName">ORDER BY name</sql>)xml"),

    errorRule(
        QXDAORule::ConstFormat, "Write <const NAME=\"text\"/> with nothing inside.",
        "A constant is declared by its one attribute: the name is the constant's and the value its text. Nothing may "
        "stand inside, not even a comment. The message quotes the text inside, if any.",
        R"xml(<const PAGE_SIZE="">50</const>)xml", R"xml(<const PAGE_SIZE="50"/>)xml"),

    errorRule(QXDAORule::CryptFormat, "Leave only class and property, not empty, and nothing inside.",
              "A crypt definition names a property of a class that is stored encrypted: exactly \"class\" and "
              "\"property\", and nothing else. Nothing may stand inside, not even a comment.",
              R"xml(<crypt class="Person" property="notes" column="notes"/>)xml",
              R"xml(<crypt class="Person" property="notes"/>)xml"),

    errorRule(QXDAORule::MissingMapResult, "Name the class in \"result\".",
              "A map fills an object from a row, and \"result\" names the object's class.",
              R"xml(<map id="personMap">
  <result column="name" property="name"/>
</map>)xml",
              R"xml(<map id="personMap" result="Person">
  <result column="name" property="name"/>
</map>)xml"),

    errorRule(
        QXDAORule::MapFormat, "Give every result a column and a property, and take out what else stands in the map.",
        "The content of a map is result elements and comments, no text. Each of them names a column of the row and "
        "the property that receives it; neither can be left out.",
        R"xml(<map id="phoneMap" result="Phone">
  <result column="number" property="number"/>
  <result column="kind"/>
</map>)xml",
        R"xml(<map id="phoneMap" result="Phone">
  <result column="number" property="number"/>
  <result column="kind" property="kind"/>
</map>)xml"),

    errorRule(
        QXDAORule::MissingPackColumn, "Name the column in \"as\".",
        "A pack stores several properties of an object in one column, and \"as\" names it. Spaces around the name "
        "are taken off, and something must be left.",
        R"xml(<pack as=" " properties="company, website"/>)xml",
        R"xml(<pack as="info" properties="company, website"/>)xml"),

    errorRule(QXDAORule::MissingPackProperties, "List the properties, separated by commas.",
              "\"properties\" lists what a pack stores in its column. Without any there is nothing to pack.",
              R"xml(<pack as="info" properties=""/>)xml", R"xml(<pack as="info" properties="company, website"/>)xml"),

    errorRule(QXDAORule::SinglePackProperty, "Add a property, or do not pack.",
              "A pack is for at least two properties that share a column. A single property has its own column without "
              "being packed, which is smaller and can be searched.",
              R"xml(<pack as="secrets" properties="doorCode"/>)xml",
              R"xml(<pack as="secrets" properties="doorCode, alarmCode"/>)xml"),
};

inline constexpr std::array documentErrors = {
    errorRule(
        DocumentRule::UnreadableFile, "unreadable-document", "See to it that the file is there and may be read.",
        "A file that is missing, or that you may not read, says nothing about its definitions. The others are checked "
        "all the same.",
        {}, {}),

    errorRule(
        DocumentRule::TooLarge, "oversized-document", "Divide the document, or raise the limit with --max-bytes.",
        "A document is held in memory while it is checked, so there is a limit to its size, 64 MiB unless you say "
        "otherwise. Each definition is judged alone and may stand in any document. A file of that size is usually "
        "no definition document at all.",
        R"xml(<!-- more than 64 MiB of definitions in one file -->
<sql id="columns">id, name, age</sql>
<sql id="order">ORDER BY name</sql>)xml",
        R"xml(<!-- the others in files of their own -->
<sql id="columns">id, name, age</sql>)xml"),

    errorRule(
        DocumentErrorKind::Malformed, "malformed-document", "the document is not well-formed XML",
        "Correct the XML at the place that the message names.",
        "A document is read as a whole, so one tag that is not closed or one \"<\" in a condition keeps all of its "
        "definitions from being read; the message says what is wrong there. In SQL and in attributes \"<\" is "
        "written &lt; and \"&\" is written &amp;, or the SQL stands in a CDATA section. Entities and attribute "
        "lists of your own are not supported either: they can make a small document expand without end.",
        R"xml(<select id="children" result="[Person]">
  SELECT * FROM person WHERE age < 18
</select>)xml",
        R"xml(<select id="children" result="[Person]">
  SELECT * FROM person WHERE age &lt; 18
</select>)xml"),

    errorRule(DocumentRule::TooDeep, "deep-document", "Nest fewer elements, at most 256 deep.",
              "The elements of a definition are built one inside the other, and each level takes some of the stack. "
              "Conditions inside conditions can be joined to one expression with &amp;&amp;. Nesting as deep as this "
              "mostly comes from a program that writes documents and forgets to close its elements.",
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

    errorRule(DocumentRule::OutOfMemory, "out-of-memory", "Check the document where there is more memory.",
              "Reading a document takes several times its size in memory. Nothing is said about its definitions.", {},
              {}),

    errorRule(
        DocumentRule::ExpansionTooLarge, "oversized-expansion",
        "Write shorter formats or fewer entries in the list references.",
        "A list reference writes its format once for each entry and puts the entry in for each star, so a long "
        "format with many stars and many entries grows with the product of the two. What all list references of a "
        "document expand to may be 64 MiB at most. Text is expanded when it is read, before any SQL runs.",
        R"xml(<!-- imagine thousands of stars and of entries -->
<const KEYS="%{'* * * * * * * * * * * *', id, version, created, changed}"/>)xml",
        R"xml(<const KEYS="%{'*', id, version, created, changed}"/>)xml"),
};

}  // namespace korvex
