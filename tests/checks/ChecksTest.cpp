// The rules by name, and what the checks find.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <variant>

#include "checks/DocumentCheck.h"
#include "checks/NearMiss.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/XMLNode.h"

namespace korvex {
namespace {

const std::string root = KORVEX_SOURCE_DIR "/";

TEST(Rules, HaveNamesOfTheirOwn) {
  for (const Rule& rule : rules()) {
    EXPECT_EQ(ruleNamed(rule.name), &rule) << rule.name;
    EXPECT_EQ(rule.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos) << rule.name;
  }
  EXPECT_EQ(ruleNamed("no-such-rule"), nullptr);
}

TEST(Rules, EveryErrorOfADefinitionHasOne) {
  const auto read = Document::fromFile(root + "examples/faults.xml");
  std::set<std::string_view> violated;
  for (const Definition& definition : loadDefinitions(*read.document)) {
    violated.insert(ruleOf(definition.error->rule).name);
  }
  for (const Rule& rule : rules()) {
    EXPECT_EQ(violated.contains(rule.name), std::holds_alternative<QXDAORule>(rule.id)) << rule.name;
  }
}

// -------------------------------------------------------------------------------------------
// Warnings

using Texts = std::vector<std::string>;

WarningSelection everyWarning() {
  WarningSelection selection;
  for (const std::string_view name : warningNames()) selection.want(*ruleNamed(name), true);
  return selection;
}

// "path:line:column: rule" for each finding of documents that are checked together, named "1", "2" and so on.
Texts findingsIn(const Texts& documents, const WarningSelection& selection = everyWarning(), bool whole = false) {
  SetCheck set(selection);
  if (whole) set.treatAsComplete();
  Texts found;
  const auto add = [&found](const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
      const XMLPosition begin = finding.location.begin();
      found.push_back(finding.location.path() + ":" + std::to_string(begin.line) + ":" + std::to_string(begin.column) +
                      ": " + std::string(finding.rule->name));
    }
  };
  for (const std::string& text : documents) {
    const auto read = Document::fromBytes(text);
    EXPECT_TRUE(read.document) << text;
    const std::string path = std::to_string(1 + static_cast<std::size_t>(&text - documents.data()));
    if (read.document) add(set.check(path, *read.document, loadDefinitions(*read.document)));
  }
  add(set.finish());
  return found;
}

std::string wrapped(std::string_view definitions) { return "<d>" + std::string(definitions) + "</d>"; }

TEST(Warnings, AreGivenForWhatTheirRulesCallWrong) {
  for (const std::string_view name : warningNames()) {
    const Rule& rule = *ruleNamed(name);
    if (std::holds_alternative<SchemaRule>(rule.id)) continue;  // tried with a schema by RulesTest
    const Texts wrong = findingsIn({wrapped(rule.wrong)});
    ASSERT_EQ(wrong.size(), 1U) << name << testing::PrintToString(wrong);
    EXPECT_TRUE(wrong[0].ends_with(": " + std::string(name))) << name << wrong[0];
    EXPECT_EQ(findingsIn({wrapped(rule.right)}), Texts()) << name;
  }
}

TEST(Warnings, StandWhereTheyAreSeen) {
  const std::pair<const char*, Texts> cases[] = {
      {"<select id='a' result='int' x='1' xml:lang='x' xmlns='u' y:z='1'>a</select>", {"1:1:32: unread-attribute"}},
      {"<update id='a' result='int' resumable='1'><where prefix='x'/></update>",
       {"1:1:19: unread-attribute", "1:1:32: unread-attribute", "1:1:53: unread-attribute"}},
      {"<update id='a' arguments='b' foreach='b.c' resumable='1'>x</update>", {}},
      {"<map id='m' result='P' x='1'><result column='a' property='b' x='1'/></map>",
       {"1:1:27: unread-attribute", "1:1:65: unread-attribute"}},
      // In rejected definitions: only the warnings that do not depend on the missing elements.
      {"<update id='a'><step x='1' resumable='1'>%{</step><if/></update>",
       {"1:1:25: unread-attribute", "1:1:54: condition-format", "1:1:54: content-beside-steps"}},
      {"<select id='a' result='int'><sql id='a' x='1'/></select>", {"1:1:32: unknown-element"}},
      {"<nope id='a' x='1'/>", {"1:1:4: unknown-definition"}},
      {"<upgrade toVersion='1'><!-- --><step resumable='yes'><if true='a'/></step></upgrade>",
       {"1:1:41: lost-resumable"}},
      {"<update id='a'><step resumable='no'>x</step></update>", {}},
      {"<map id='m' result='P'><result column='a' property='b'/> <result property='c' column='a'>\n<x/></result></map>",
       {"1:1:90: duplicate-column", "1:2:1: ignored-content"}},
      {"<update id='a'><format prefix='a' pairs='b' join='c'> x </format></update>", {"1:1:58: ignored-content"}},
      {"<update id='a' arguments='$a, b, a ,&#98;'>x</update>",
       {"1:1:30: duplicate-argument", "1:1:30: duplicate-argument"}},
      {"<update id='a' arguments='$a b, c'>x</update><update id='b' arguments='a, \"b\"'>x</update>",
       {"1:1:30: malformed-argument", "1:1:78: malformed-argument"}},
      {"<update id='a'><!-- b --></update> <!-- c -->\n d<update id='b'/><update id='c'/>", {"1:2:2: empty-method"}},
      {"<update id='a'>a WHERE<!-- b --> <where>c</where> ORDER BY <trim prefix='Order By ' "
       "suffixOverrides=','/></update>",
       {"1:1:37: doubled-keyword", "1:1:63: doubled-keyword"}},
      {"<update id='a'>'a WHERE' -- WHERE<where>c</where>@set <set>c</set>@set<set>c</set></update>", {}},
      {"<upgrade toVersion='initial'>x</upgrade><upgrade toVersion='0.0'>x</upgrade><upgrade toVersion='1'>x</upgrade>",
       {"1:1:64: duplicate-version"}},
      {"<pack as='a' properties='b, c,, c,b,'/>", {"1:1:36: repeated-property", "1:1:38: repeated-property"}},
      {"<update id='a'><if true='x'><otherwise>x</otherwise></if></update>", {"1:1:32: misplaced-when"}},
      {"<update id='a'><if true='a &amp;&amp;'/><if false=' (a'/><if true='a  and b'/></update>",
       {"1:1:29: expression-syntax", "1:1:58: expression-syntax", "1:1:74: expression-syntax"}},
      {"<update id='a'><choose><otherwise><when true='x'/></otherwise></choose></update>", {"1:1:38: misplaced-when"}},
      // Values
      {"<select id='a' result='int' parallel='on' profile=' No' assignedTable='0'>x</select>",
       {"1:1:42: doubtful-value"}},
      {"<select id='a' result='int' parallel='Disabled' profile='falsch' assignedTable='+00'>x</select>", {}},
      {"<update id='a' profile='ja' resumable='on' x='on'><where onVoid='Quit'/><where onVoid='none'/></update>",
       {"1:1:28: doubtful-value", "1:1:32: unread-attribute", "1:1:47: unread-attribute", "1:1:69: doubtful-value"}},
      {"<pack as='a' properties='b, c' crypt='yes'/><pack as='a' properties='b, c' crypt='true'/>",
       {"1:1:42: doubtful-value"}},
      {"<select id='a' result='[Product'>x</select><select id='b' result=':Product]'>x</select>",
       {"1:1:27: doubtful-value", "1:1:70: doubtful-value", "1:1:71: undefined-map"}},
      {"<select id='a' result='[Int]'>x</select><select id='b' result=' bool'>x</select>",
       {"1:1:27: doubtful-value", "1:1:67: doubtful-value"}},
      {"<select id='a' result='Integer'>x</select><select id='b' result='[text]'>x</select>",
       {"1:1:27: doubtful-value", "1:1:69: doubtful-value"}},
      {"<select id='a' result='Text'>x</select><select id='b' result='[Strings]'>x</select>", {}},
      {"<select id='a' result='long long'>x</select><select id='b' result='[{}]'>x</select>", {}},
      // Content and places
      {"<pack as='a' properties='b, c'>\r\n \n  x</pack>", {"1:3:3: ignored-content"}},
      {"<pack as='a' properties='b,\r\n c,\n\tc,\tb'/>", {"1:3:2: repeated-property", "1:3:5: repeated-property"}},
      // List references
      {"<update id='a'>x %{'*', a, b} y %{'*', c</update>", {"1:1:36: unfinished-list-reference"}},
      {"<update id='a'>x %{a, b} y %{'*', c}</update>", {"1:1:21: unfinished-list-reference"}},
      {"<update id='a'>a = '%{x}' AND b IN (%{'*', 1, 2})</update>", {"1:1:24: unfinished-list-reference"}},
      {"<update id='a'>a LIKE '%{x}%' OR \"%{\" = '' OR %{'*', a, b}</update>", {"1:1:27: unfinished-list-reference"}},
      {"<update id='a'>a LIKE '%{x}%' OR \"%{\" = ''</update>", {}},
      {"<update id='a'><![CDATA[<>]]> x &#37;{'*', a</update>", {"1:1:19: unfinished-list-reference"}},
      {"<sql id='a'>%{'*', a, b} <!-- %{ --> %{'*'</sql>", {"1:1:34: unfinished-list-reference"}},
      {"<update id='a'>-- %{\n a /* %{ */ `%{` [%{] b -- it's %{</update>", {}},
      {"<update id='a'>-- it's %{\n a [ %{'*'</update>", {"1:2:6: unfinished-list-reference"}},
      {"<update id='a'>a IN (%{'*'}) /* %{x '*', b} */</update>", {"1:1:25: unfinished-list-reference"}},
      {"<update id='a'>-- %{x '*', b}\n %{ '*' , b} '%{'*', c}' %{'{*,}',}</update>", {}},
      {"<update id='a'>-- don't %{ x\n '*', b}</update>", {"1:1:28: unfinished-list-reference"}},
      {"<update id='a'>%{'*', a} %{'*' x, a}</update>", {"1:1:29: unfinished-list-reference"}},
      {"<update id='a'>%{'*', 'a', b}</update>", {"1:1:19: unfinished-list-reference"}},
      {"<const A='a %{b'/>", {"1:1:16: unfinished-list-reference"}},
      {"<update id='a'><foreach item='i' collection='%{'>%{i</foreach></update>",
       {"1:1:53: unfinished-list-reference"}},
  };
  for (const auto& [definitions, expected] : cases) {
    EXPECT_EQ(findingsIn({wrapped(definitions)}), expected) << definitions;
  }
}

TEST(Warnings, AboutNamesInSeveralDocuments) {
  const std::string one = "<d><select id='a' result=':m'>x</select>\n<map id='n' result='P'/><const C='1'/></d>";
  const std::pair<Texts, Texts> cases[] = {
      {{one, "<d><map id='m'/></d>"}, {"2:1:4: missing-map-result"}},
      {{one}, {"1:1:28: undefined-map"}},
      {{"<d><select id='a' result='[m]'>x</select><select id='b' result='k'>x</select></d>",
        "<d><map id='m' result='P'/><map id='k' result='k'/></d>"},
       {"1:1:28: doubtful-value"}},
      {{"<d><!-- korvex: allow doubtful-value --><select id='a' result='m' parallel='on'>x</select></d>",
        "<map id='n' result='P'/>"},
       {}},
      {{one, "<insert id='a'>x</insert>", "<select id='a' result='[:nn]'>x</select>"},
       {"2:1:13: duplicate-name", "3:1:13: duplicate-name", "1:1:28: undefined-map", "3:1:26: undefined-map"}},
      {{"<d><map id='m' result='P'/></d>", one, "<d><sql id='a'/><const n='1'/><const C='2'/></d>"},
       {"3:1:38: duplicate-name"}},
      {{"<d><upgrade toVersion='1'>x</upgrade><upgrade toVersion='1'>x</upgrade><select id='a'/><select id='a'/></d>"},
       {"1:1:58: duplicate-version", "1:1:72: missing-result", "1:1:88: missing-result"}},
  };
  for (const auto& [documents, expected] : cases) EXPECT_EQ(findingsIn(documents), expected) << documents.back();

  SetCheck set(everyWarning());
  const auto read = Document::fromBytes(one);
  const auto definitions = loadDefinitions(*read.document);
  EXPECT_EQ(set.check("a.xml", *read.document, definitions).size(), 0U);
  const std::vector<Finding> again = set.check("b.xml", *read.document, definitions);
  ASSERT_EQ(again.size(), 3U);
  EXPECT_EQ(again[0].related.at(0).location.path(), "a.xml");
  EXPECT_EQ(again[0].related.at(0).location.begin(), (XMLPosition{1, 4}));
  EXPECT_EQ(again[0].definition->tag, "select");
  const std::vector<Finding> late = set.finish();
  ASSERT_EQ(late.size(), 2U);
  EXPECT_EQ(late[0].help, "did you mean 'n'?");
  EXPECT_EQ(late[0].location.end(), (XMLPosition{1, 29}));

  SetCheck incomplete(everyWarning());
  static_cast<void>(incomplete.check("a.xml", *read.document, definitions));
  incomplete.addUnread();
  EXPECT_TRUE(incomplete.finish().empty());
}

TEST(Warnings, AreSuppressedByACommentBeforeTheElement) {
  const std::string allow = "<!-- korvex: allow unread-attribute -->";
  const std::string wrong = "<sql id='a' x=''/>";
  const std::string missing = "<select id='a' result=':m'>x</select>";
  const std::pair<std::string, Texts> cases[] = {
      {allow + wrong, {}},
      {"<!--korvex:\tallow\nunread-attribute-->\n <!-- why -->\n" + wrong, {}},
      {allow + "<!-- korvex: allow duplicate-column -->" + wrong, {"1:1:43: unused-suppression"}},
      {wrong + allow, {"1:1:16: unread-attribute", "1:1:22: unused-suppression"}},
      {allow + "x" + wrong, {"1:1:4: unused-suppression", "1:1:56: unread-attribute"}},
      {allow + "<update id='u'><step x=''/></update>", {"1:1:4: unused-suppression", "1:1:64: unread-attribute"}},
      {"<update id='u'>a" + allow + "<where x=''/></update>", {}},
      {"<update id='u'><![CDATA[" + allow + "]]><where x=''/></update>", {"1:1:77: unread-attribute"}},
      {"<!-- korvex: allow condition-format --><update id='u'><if/></update>",
       {"1:1:4: unknown-warning", "1:1:58: condition-format"}},
      {"<!-- korvex: allow duplicate-column, unread-attribute,lost-resumable -->" + wrong,
       {"1:1:4: unused-suppression", "1:1:4: unused-suppression"}},
      {"<!-- korvex: allow doubtful-value --><select id='a' result='m'>x</select><map id='m' result='P'/>", {}},
      {"<!-- korvex: allow doubtful-value --><select id='a' result='m'>x</select>", {"1:1:4: unused-suppression"}},
      {"<!-- korvex: allow a b -->" + wrong, {"1:1:4: unknown-warning", "1:1:42: unread-attribute"}},
      {"<!-- korvex: allow -->" + wrong, {"1:1:38: unread-attribute"}},
      {"<!-- korvex: allow lost-resumable --><update id='u'>" + allow + "<if/></update>", {"1:1:95: condition-format"}},
      {"<!-- korvex: allow duplicate-name --><update id='u'>" + allow + "<where/></update>",
       {"1:1:56: unused-suppression"}},
      {"<!-- korvex: allow undefined-map -->" + missing, {}},
      {"<!-- korvex: allow undefined-map -->" + missing + "<map id='m' result='P'/>", {"1:1:4: unused-suppression"}},
  };
  for (const auto& [definitions, expected] : cases) {
    EXPECT_EQ(findingsIn({wrapped(definitions)}), expected) << definitions;
  }
  EXPECT_EQ(findingsIn({wrapped("<!-- korvex: allow undefined-map -->" + missing)}, {}), Texts());
}

TEST(Warnings, OfUnusedSuppressionsAboutNamesWaitForTheWholeSet) {
  const std::string allow = "<!-- korvex: allow duplicate-name -->";
  const std::string other = "<d><delete id='a'>x</delete></d>";
  const Texts unused = {"1:1:4: unused-suppression"};
  const std::tuple<Texts, Texts> cases[] = {
      {{"<d>" + allow + "<update id='a'>x</update></d>"}, unused},
      {{"<d>" + allow + "<update id='a'>x</update></d>", other}, {"2:1:16: duplicate-name"}},
      {{other, "<d>" + allow + "<update id='a'>x</update></d>"}, {}},
      {{"<d>" + allow + "<update id='a'>x</update></d>", "<d><sql id='a'>x</sql></d>"}, unused},
      {{"<d>" + allow + "<update id='a'>x</update></d>", "<d><delete id='a'><if/></delete></d>"},
       {"2:1:19: condition-format"}},
      {{"<d>" + allow + "<const A=''/><const A='' B=''/></d>"}, {"1:1:66: const-format"}},
      {{"<d>" + allow + "<upgrade toVersion='1'>x</upgrade></d>"}, unused},
  };
  for (const auto& [documents, expected] : cases) {
    EXPECT_EQ(findingsIn(documents, everyWarning(), true), expected) << documents.back();
  }
}

TEST(Warnings, DoNotTroubleDocumentsThatAreRight) {
  for (const char* example : {"addressbook", "faults", "mistakes"}) {
    const auto read = Document::fromFile(root + "examples/" + example + ".xml");
    for (const Finding& finding : findingsOf("", *read.document, loadDefinitions(*read.document))) {
      EXPECT_EQ(finding.severity, Severity::Error) << example << finding.location.begin().line << finding.message;
    }
  }
}

// Each line: a definition, " => ", and the column, rule and help of its error.
TEST(Errors, PointAtTheCulpritAndSayWhatToWrite) {
  std::ifstream lines(root + "tests/checks/culprits.txt");
  std::set<std::string> provoked;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t middle = line.rfind(" => ");
    ASSERT_NE(middle, std::string::npos) << line;
    const auto read = Document::fromBytes("<k>\n" + line.substr(0, middle) + "\n</k>");
    const std::vector<Finding> findings = findingsOf("", *read.document, loadDefinitions(*read.document));
    const auto error = std::find_if(findings.begin(), findings.end(),
                                    [](const Finding& finding) { return finding.severity == Severity::Error; });
    ASSERT_NE(error, findings.end()) << line;
    const std::string told = std::to_string(error->location.begin().column) + ' ' + std::string(error->rule->name);
    EXPECT_EQ(told + ": " + error->help, line.substr(middle + 4)) << line;
    EXPECT_LE(error->location.span.begin, error->location.span.end);
    provoked.emplace(error->rule->name);
  }
  for (const Rule& rule : rules()) {
    const bool isProvoked = provoked.contains(std::string(rule.name));
    EXPECT_EQ(isProvoked, std::holds_alternative<QXDAORule>(rule.id)) << rule.name;
  }
}

// Definitions, and the columns of their errors, the one of the element layer first.
TEST(Errors, OfADefinitionAreToldTogether) {
  const std::pair<const char*, const char*> cases[] = {
      {"<select result='int'><if test='a'>x</if> <foreach items='b'>y</foreach></select>", "1 26 42 51"},
      {"<update id='a' arguments='b,, c' foreach='c.d'><wher>x</wher><if ture='b'>y</if></update>", "29 48 48 66"},
      {"<update id='a'><try>x <if true='#'>y</if></try></update>", "33 16"},
      {"<update id='a'><try>x <if true='b'>y</if></try></update>", "16"},
      {"<slect id='a' result='int'><choose>x<if true=''>y</if><where>z</where></choose></slect>", "1 36 37 41 55"},
      {"<map id='m'>x<reslt colum='c'/></map>", "1 13 14 21"},
      {"<update id='a'><step><if>x</if></step>y<step><trim prefix='b' over=','>z</trim></step></update>", "22 39 63"},
      {"<select id='a' result='int'><step>x<if>y</if></step> <step>z</step></select>", "36 29"},
      {"<update id='a'><try>x</try><if>y</if></update>", "16 28"},
      {"<upgrade version='1' x='2' y='3'/>", "10 22 28"},
      {"<crypt class='A' column='c'>x</crypt>", "1 18 29"},
      {"<sql id='t'>x<b>y</b><c/></sql>", "10 14 22"},
      {"<const A='b' C='d' E='f'>x</const>", "14 20 26"},
      {"<pack properties='a'/>", "1 19"},
  };
  for (const auto& [definition, columns] : cases) {
    const auto read = Document::fromBytes("<k>\n" + std::string(definition) + "</k>");
    std::string told;
    for (const Finding& finding : findingsOf("", *read.document, loadDefinitions(*read.document))) {
      if (finding.severity == Severity::Error) told += std::to_string(finding.location.begin().column) + ' ';
    }
    EXPECT_EQ(told, std::string(columns) + ' ') << definition;
  }
}

TEST(Errors, OfOneDefinitionAreBounded) {
  const auto countIn = [](std::size_t faults, std::size_t texts) {
    std::string definition = "<update id='a'>";
    for (std::size_t i = 0; i < faults; ++i) definition += "<if>x</if>";
    for (std::size_t i = 0; i < texts; ++i) definition += "x<where/>";
    const auto read = Document::fromBytes(definition + "</update>");
    return findingsOf("", *read.document, loadDefinitions(*read.document)).size();
  };
  EXPECT_EQ(countIn(20, 0), 20U);
  EXPECT_EQ(countIn(100, 0), 21U);
  EXPECT_EQ(countIn(2, 10'000), 1U);
}

// The parser's positions refer to another text than the one that is displayed.
TEST(Errors, DoNotEndBeforeTheyBegin) {
  const DocumentError error{DocumentRule::NotWellFormed, "not well-formed", {1, 32}};
  EXPECT_EQ(findingOf("", error, nullptr).location.end(), (XMLPosition{1, 32}));
}

TEST(NearMiss, FindsSlipsOfTheFingers) {
  const std::string veryLong = std::string(65, 'x') + "y";
  const std::string longer = std::string(65, 'x');
  const std::string_view words[] = {"id", "parallel", "profile", "assignedTable", "resumable", longer};
  const std::pair<const char*, const char*> cases[] = {
      {"paralell", "parallel"},
      {"PARALLEL", "parallel"},
      {"porfile", "profile"},
      {"Id", "id"},
      {"ids", "id"},
      {"assignTable", "assignedTable"},
      {"x", ""},
      {"", ""},
      {"columns", ""},
      {veryLong.c_str(), ""},
  };
  for (const auto& [written, meant] : cases) EXPECT_EQ(nearestOf(written, words), meant) << written;
}

}  // namespace
}  // namespace korvex
