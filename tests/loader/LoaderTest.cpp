// Bytes → document tree, or one message with its place; document → definitions.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <thread>

#include "korvex/Definition.h"
#include "korvex/DefinitionIndex.h"
#include "korvex/Document.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOText.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"

namespace korvex {
namespace {

using namespace std::string_literals;

LoadOptions options(bool strict, bool keepWhiteSpaceText = false) {
  LoadOptions result;
  result.strict = strict;
  result.keepWhiteSpaceText = keepWhiteSpaceText;
  return result;
}

// A node and what is below it on one line: name{attribute=value}[children], "text", <!> for a comment.
std::string shown(const XMLNode& node) {
  if (node.kind() == XMLNodeKind::Text) return '"' + node.stringValue().value() + '"';
  if (node.kind() == XMLNodeKind::Comment) return node.name() ? "a comment with a name" : "<!>";
  const std::string name(node.name().value());
  if (node.kind() == XMLNodeKind::ProcessingInstruction) return "<?" + name + ">";
  std::string result = name;
  for (const XMLAttribute& attribute : node.attributes()) {
    result.append("{").append(*attribute.name()).append("=").append(*attribute.stringValue()).append("}");
  }
  result += "[";
  for (const XMLNode& child : node.children()) result += shown(child);
  return result + "]";
}

std::string shown(const Document::Result& result) {
  return result.document ? shown(result.document->root()) : result.error->message;
}

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

struct Tree {
  std::string bytes;
  std::string tree;
};

void expectTrees(const std::vector<Tree>& cases, bool keepWhiteSpaceText) {
  for (const auto& [bytes, tree] : cases) {
    SCOPED_TRACE(bytes);
    EXPECT_EQ(shown(Document::fromBytes(bytes, options(true, keepWhiteSpaceText))), tree);
    EXPECT_EQ(shown(Document::fromBytes(bytes, options(false, keepWhiteSpaceText))), tree) << "without strict pass";
  }
}

TEST(Document, TreesAreTheSameWithAndWithoutStrictPass) {
  const std::u16string wide =
      u"<?xml version='1.0' encoding='UTF-16'?>\r\n<!DOCTYPE a [<!ELEMENT a ANY>]>"
      u"<a b='é'>\r<![CDATA[\xD83D\xDE00]]></a>\r\n";
  expectTrees(
      {
          // Text, CDATA and entities between other nodes are one text; blank texts are dropped.
          {"<a>x<![CDATA[<y>&amp;]]>&lt;z</a>", "a[\"x<y>&amp;<z\"]"},
          {"<a> <![CDATA[x]]> <![CDATA[]]> </a>", "a[\" x  \"]"},
          {"<a> <![CDATA[ ]]>\n<b/> &#32;&#13; <b/><![CDATA[]]><b/>\t</a>", "a[b[]b[]b[]]"},
          {"<a>x<!--c-->y<?p q?>z<!----> <!----></a>", "a[\"x\"<!>\"y\"<?p>\"z\"<!><!>]"},
          {"<a><![CDATA[x]]><![CDATA[]]]]><![CDATA[>]]>y<b/>z</a>", "a[\"x]]>y\"b[]\"z\"]"},
          {"<a>\xC2\xA0</a>", "a[\"\xC2\xA0\"]"},
          // Line ends and white space, as characters and as references.
          {"<a b='1\r\n2\r3\n4\t5'>1\r\n2\r3\n4\t5</a>", "a{b=1 2 3 4 5}[\"1\n2\n3\n4\t5\"]"},
          {"<a><![CDATA[1\r\n2\r]]>\n</a>", "a[\"1\n2\n\n\"]"},
          {"<a b='&#13;&#10;&#9;'>&#13;\n</a>", "a{b=\r\n\t}[]"},
          {"<a b=\"&quot;'\" c='&apos;>]]>'>&#38;lt;&#x1F600;</a>", "a{b=\"'}{c='>]]>}[\"&lt;\xF0\x9F\x98\x80\"]"},
          {"<é:x-1 _.b\n=\r''\t></é:x-1 >", "é:x-1{_.b=}[]"},
          // Around the root.
          {"<?xml version='1.0'?>\n<!-- c --><?p?>\n<a/>\n<!-- d --><?q?>\n", "a[]"},
          {"<!DOCTYPE a><a/>", "a[]"},
          {"<!DOCTYPE a SYSTEM \"it's [>\"><a>&amp;</a>", "a[\"&\"]"},
          {"<!DOCTYPE a PUBLIC 'x' 'y'\n[]><a b='&#38;&gt;'/>", "a{b=&>}[]"},
          {"<!DOCTYPE a [<!-- ' ]> --><?p \" ?><!ELEMENT a ANY><!NOTATION n SYSTEM '>'> ] ><a/>", "a[]"},
          // Encodings.
          {"\xEF\xBB\xBF<a>\xEF\xBB\xBF</a>", "a[\"\xEF\xBB\xBF\"]"},
          {"<?xml version='1.0' encoding = \"Utf-8\" standalone='yes'?><a>é</a>", "a[\"é\"]"},
          {"<?xml version='1.0' encoding='iso-8859-1'?><a b='\xE4'>\xA4</a>", "a{b=ä}[\"¤\"]"},
          {"<?xml version='1.0' encoding='US-ASCII'?><a>x</a>", "a[\"x\"]"},
          {utf16(u"\xFEFF" + wide, true), "a{b=é}[\"\n\xF0\x9F\x98\x80\"]"},
          {utf16(u"\xFEFF" + wide, false), "a{b=é}[\"\n\xF0\x9F\x98\x80\"]"},
          {utf16(u"<a>é</a>", true), "a[\"é\"]"},
          {utf16(u"<a>é</a>", false), "a[\"é\"]"},
      },
      false);
}

TEST(Document, WhiteSpaceTextIsKeptOnDemand) {
  expectTrees({{"\n<a> <b/>\r\n<!---->&#32;<![CDATA[\n]]></a>\n", "a[\" \"b[]\"\n\"<!>\" \n\"]"},
               {"<a><b></b><![CDATA[]]><b>\t</b></a>", "a[b[]b[\"\t\"]]"}},
              true);
}

struct Fault {
  std::string bytes;
  const char* message;
  std::size_t line = 1;
  std::size_t column = 1;
};

void expectFaults(const std::vector<Fault>& cases, const LoadOptions& load) {
  for (const auto& [bytes, message, line, column] : cases) {
    SCOPED_TRACE(bytes);
    const Document::Result result = Document::fromBytes(bytes, load);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.document, nullptr);
    EXPECT_EQ(result.error->kind(), DocumentErrorKind::Malformed);
    EXPECT_EQ(result.error->message, message);
    const XMLPosition position = result.error->position;
    EXPECT_EQ(position, (XMLPosition{line, column})) << "at " << position.line << ":" << position.column;
  }
}

TEST(Document, MalformedOnesAreExplained) {
  constexpr const char* lessThan = "'<' does not begin a tag; write &lt; or use a CDATA section";
  constexpr const char* ampersand = "'&' does not begin a reference; write &amp;";
  constexpr const char* notUTF8 =
      "not valid UTF-8; save the file as UTF-8, or declare what it is, such as encoding=\"ISO-8859-1\"";
  constexpr const char* afterRoot = "unexpected content after the root element";
  constexpr const char* unknownEncoding = "unknown encoding; use UTF-8, UTF-16, ISO-8859-1 or US-ASCII";
  expectFaults(
      {
          {"", "no root element"},
          {"\xEF\xBB\xBF", "no root element"},
          {" \r\n<!-- c -->", "no root element", 2, 11},
          {"<a>\n <b>\n</a>", "end tag 'a' does not match 'b', opened on line 2", 3, 1},
          {"<a>\r<b></c></b></a>", "end tag 'c' does not match 'b', opened on line 2", 2, 4},
          {"<a>\n<b><c/>", "no end tag for 'b', opened on line 2", 2, 8},
          {"<a></a></a>", "end tag without a start tag", 1, 8},
          {"<a/><b/>", afterRoot, 1, 5},
          {"<a></a>x", afterRoot, 1, 8},
          {"<!----><b></b>\n<a></a>", afterRoot, 2, 1},
          {"<a/>x", afterRoot, 1, 5},
          {"\n\n<!doctype a><a/>", "unexpected content before the root element", 3, 1},
          {"\n<?xml version='1.0'?><a/>", "an XML declaration is allowed only at the very start of a document", 2, 1},
          {"<a b='1' c='2' b='3'/>", "attribute 'b' is given twice", 1, 16},
          {"<a>\na < b</a>", lessThan, 2, 3},
          {"<a>a <= b</a>", lessThan, 1, 6},
          {"<a>a && b</a>", ampersand, 1, 6},
          {"<a b='é&amp &lt;'/>", ampersand, 1, 8},
          {"<a>&nbsp;</a>", "entity 'nbsp' is not defined", 1, 4},
          {"<a b='&lt;&nbsp;'/>", "entity 'nbsp' is not defined", 1, 11},
          {"<a>&#0;</a>", "reference to invalid character number", 1, 4},
          {"<a b='&#xD800;'></a>", "reference to invalid character number", 1, 7},
          {"<a>&#x110000;</a>", "reference to invalid character number", 1, 4},
          {"<a>]]></a>", "']]>' is not allowed in text; write ]]&gt;", 1, 4},
          {"<a>]]><![CDATA[]]></a>", "']]>' is not allowed in text; write ]]&gt;", 1, 4},
          {"<!-- <![CDATA[ --><a>]]></a>", "']]>' is not allowed in text; write ]]&gt;", 1, 22},
          {"<a><!-- a -- b --></a>", "'--' is not allowed in a comment", 1, 11},
          {"<a><!-- a ---></a>", "'--' is not allowed in a comment", 1, 11},
          {"<a>\n<!-- </a>", "comment is not closed", 2, 1},
          {"<a><![CDATA[]]><![CDATA[ </a>", "CDATA section is not closed", 1, 16},
          {"<a><?p </a>", "processing instruction is not closed", 1, 4},
          {"<a></a", "tag is not closed", 1, 4},
          {"<a>&am", "reference is not closed", 1, 4},
          {"<a>\x1B</a>", "control character U+001B is not allowed", 1, 4},
          {"<a>x\0</a>"s, "control character U+0000 is not allowed", 1, 5},
          {"<a>é\xFF</a>", notUTF8, 1, 5},
          {"<a>\uFFFE</a>", "character U+FFFE is not allowed", 1, 4},
          {"<a>\xC0\xAF</a>", notUTF8, 1, 4},
          {"<a>\xED\xA0\x80</a>", notUTF8, 1, 4},
          {"<a>é\xC3", "the last character is cut off", 1, 5},
          {"<!DOCTYPE a SYSTEM 'x'><a>&e;</a>", "entity 'e' is not defined", 1, 27},
          {"<!DOCTYPE a SYSTEM 'x'><a>\n<b c='&amp;&e;'/></a>", "entity 'e' is not defined", 2, 12},
          {"<?xml version='1.0' encoding='koi8-r'?><a/>", unknownEncoding, 1, 31},
          {"<?xml version='1.0' encoding='UTF-16'?><a/>", "encoding specified in XML declaration is incorrect", 1, 31},
          {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "not well-formed (invalid token)", 1, 2},
          {"<?xml version='1.0' encoding='US-ASCII'?>\n<a>é</a>", "not well-formed (invalid token)", 2, 4},
          {utf16(u"\xFEFF<a>\r\n<b></a>", true), "mismatched tag", 2, 6},
      },
      options(true));
}

// Each has a single fault that pugixml accepts, in an otherwise usual document, which the quick check judges alone.
TEST(Document, SingleFaultsAreFoundWithoutExpat) {
  const std::vector<std::string> faults = {
      "<b c='1' d='2' c='3'></b>",
      "<b c='<'></b>",
      "<b c='&x;'></b>",
      "<b c='&#1;'></b>",
      "<b \xC2\xAA='1'></b>",
      "<\xC2\xAA></\xC2\xAA>",
      "<?\xC2\xAA?>",
      "&",
      "&<!-- -->",
      "&#xFFFF;",
      "]]>",
      "<!-- - -- -->",
      "<!-- --->",
      "<?xml version='1.0'?>",
      "\x01",
      "\xFF",
      "\uFFFF",
  };
  for (const std::string& fault : faults) {
    EXPECT_FALSE(Document::fromBytes("<a>" + fault + "</a>").document) << fault;
  }
  for (const char* bytes : {"x<a></a>", "<a></a>x", "<a></a><b></b>", "<a></a><a></a>", "<a></a><![CDATA[]]>",
                            "<![CDATA[]]><a></a>", "<?xml version='1.0' x='1'?><a></a>"}) {
    EXPECT_FALSE(Document::fromBytes(bytes).document) << bytes;
  }
}

// Only Expat accepts the second one, whose name has a character that XML does not allow.
TEST(Document, NamesAreThoseOfXMLInEveryEncoding) {
  for (const char* bytes : {"<\xC2\xAA/>", "<?xml version='1.0' encoding='ISO-8859-1'?><\xAA/>"}) {
    EXPECT_FALSE(Document::fromBytes(bytes).document) << bytes;
  }
  EXPECT_TRUE(Document::fromBytes("<?xml version='1.0' encoding='ISO-8859-1'?><\xE9/>").document);
}

TEST(Document, FaultsInTagsAreExplained) {
  constexpr const char* aIsOpen = "tag 'a', opened on line 1, is not closed with '>'";
  constexpr const char* noQuote = "the value of 'b', opened on line 1, has no closing quote";
  constexpr const char* quoteless = "the value of 'b' is not in quotes";
  constexpr const char* curly = "the value of 'b' is in typographic quotes; write \" or '";
  expectFaults(
      {
          {"<a b='x'\n <c/>", aIsOpen, 2, 2},
          {"<a\n<c/>", aIsOpen, 2, 1},
          {"<a b\n<c/>", aIsOpen, 2, 1},
          {"<a><b></b\n<c/>", "end tag 'b', opened on line 1, is not closed with '>'", 2, 1},
          {"<a></a b>", "end tag 'a', opened on line 1, is not closed with '>'", 1, 8},
          {"\n<a b='x'\n SELECT 1</a>",
           "attribute 'SELECT' in tag 'a', opened on line 2, has no value: '=' is missing behind it, or '>' before it",
           3, 9},
          {"<a b />", "attribute 'b' has no value", 1, 6},
          {"<a b=>", "attribute 'b' has no value", 1, 6},
          {"<a b='\nx=' c>y</a>", "attribute 'c' has no value", 2, 6},
          {"<a b=1/>", quoteless, 1, 6},
          {"<a b = \nx>", quoteless, 2, 1},
          {"<a b=“x”/>", curly, 1, 6},
          {"<a b=„x“/>", curly, 1, 6},
          {"<a b='1'c='2'/>", "white space is missing behind the value of 'b'", 1, 9},
          {"<a b='1', c='2'/>", "attributes are separated by white space, not by ','", 1, 9},
          {"<a b='x c='y'/>", noQuote, 1, 12},
          {"<a b='x>\n</a>", noQuote, 2, 1},
          {"<a b='x>y<c d=''/></a>", noQuote, 1, 10},
          {"<if true='a < b'/>", "'<' is not allowed in the value of 'true'; write &lt;", 1, 13},
          {"<if true='a<b'/>", "'<' is not allowed in the value of 'true'; write &lt;", 1, 12},
          {"<if true='a > 0 ||\n a < b'/>",
           "'<' is not allowed in the value of 'true', opened on line 1, before its closing quote; write &lt;", 2, 4},
          {"<a / b='1'>", "'/' in a tag stands only before '>'", 1, 5},
          {"<a b='1' “/>", "unexpected '“'", 1, 10},
          {"<a b='1'='2'/>", "unexpected '='", 1, 9},
          {"<a b='x\xE9'/>",
           "not valid UTF-8; save the file as UTF-8, or declare what it is, such as "
           "encoding=\"ISO-8859-1\"",
           1, 8},
      },
      options(true));
}

TEST(Document, DeclarationsThatWouldChangeTheTreeAreRefused) {
  const std::vector<Fault> cases = {
      {"<!DOCTYPE a [\n <!ENTITY e 'x'>]><a>&e;</a>", "entity declarations are not supported", 2, 2},
      {"<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/passwd'>]><a>&e;</a>", "entity declarations are not supported", 1, 14},
      {"<!DOCTYPE a [<!ENTITY % e 'x'>%e;]><a/>", "entity declarations are not supported", 1, 14},
      {"<!DOCTYPE a [%e;<!ENTITY f 'x'>]><a/>", "parameter-entity references are not supported", 1, 14},
      {"<!DOCTYPE a [<!ATTLIST a b CDATA 'x'>]><a/>", "attribute-list declarations are not supported", 1, 14},
      {"<!DOCTYPE a SYSTEM 'x' [<!ATTLIST a b ID #IMPLIED>]><a/>", "attribute-list declarations are not supported", 1,
       25},
  };
  expectFaults(cases, options(true));
  expectFaults(cases, options(false));
}

TEST(Document, WithoutStrictPassGrossFaultsAreStillExplained) {
  expectFaults({{"<a>\n<b></a>", "end tag 'a' does not match 'b', opened on line 2", 2, 4}, {"", "no root element"}},
               options(false));
}

TEST(Document, CutOffAnywhere) {
  const std::u16string whole =
      u"<?xml version='1.0' encoding='UTF-16'?><!DOCTYPE d SYSTEM 's' [<!ELEMENT d ANY>]><!--é--><d a='&lt;é'>"
      u"<sql id='\xD83D\xDE00'>&#233;<![CDATA[<é>]]>%{'*', a}<?p q?></sql>\r\n<const A='1'/></d>";
  std::string narrow;
  for (const char16_t unit : whole) narrow += unit < 0x80 ? std::string(1, static_cast<char>(unit)) : "é";
  narrow.replace(narrow.find("UTF-16"), 6, "UTF-8");
  for (const std::string& bytes : {narrow, utf16(u"\xFEFF" + whole, false)}) {
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      SCOPED_TRACE(bytes.substr(0, length));
      EXPECT_EQ(Document::fromBytes(bytes.substr(0, length)).document != nullptr, length == bytes.size());
      const Document::Result loose = Document::fromBytes(bytes.substr(0, length), options(false));
      if (loose.document) {
        EXPECT_LE(loadDefinitions(*loose.document).size(), 2U);
      }
    }
  }
}

TEST(Document, SizeIsLimited) {
  LoadOptions load;
  load.maximumBytes = 4;
  EXPECT_TRUE(Document::fromBytes("<a/>", load).document);
  const auto error = Document::fromBytes("<a/>\n", load).error.value();
  EXPECT_EQ(error.kind(), DocumentErrorKind::TooLarge);
  EXPECT_EQ(error.message, "document is larger than 4 bytes");
  load.maximumBytes = 1000;  // an endless file is not read to its end
  EXPECT_EQ(Document::fromFile("/dev/zero", load).error->kind(), DocumentErrorKind::TooLarge);
}

std::string nested(std::size_t depth) {
  std::string text;
  for (std::size_t level = 0; level < depth; ++level) text += "<a>";
  for (std::size_t level = 0; level < depth; ++level) text += "</a>";
  return text;
}

TEST(Document, DepthIsLimited) {
  EXPECT_TRUE(Document::fromBytes("<d>" + nested(255) + "<b/>" + nested(255) + "</d>").document);
  constexpr std::size_t manyLevels = 300000;
  for (const std::size_t depth : {std::size_t{256}, manyLevels}) {
    const auto error = Document::fromBytes("<d><b/>\n" + nested(depth) + "</d>").error.value();
    EXPECT_EQ(error.kind(), DocumentErrorKind::TooDeep);
    EXPECT_EQ(error.message, "elements are nested deeper than 256 levels");
    EXPECT_EQ(error.position, (XMLPosition{2, 255 * 3 + 1}));
  }
  LoadOptions load;
  load.maximumDepth = manyLevels;
  EXPECT_TRUE(Document::fromBytes(nested(manyLevels), load).document);
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  while (times-- > 0) text += piece;
  return text;
}

// Each document holds the text "%{'a*', b, cc}", which expands to "ab, acc", or the like, once in a
// place where the elements would join or trim it; the limit is what it expands to, then one less.
TEST(Document, ExpansionIsLimited) {
  struct Case {
    const char* document;
    std::size_t bytes;
    XMLPosition position = {2, 1};
  };
  const Case cases[] = {
      {"<d>\n<update id='u'> x %{'a*', b, cc} </update></d>", 9},
      {"<d>\n<const A=\"%{'a*', b, cc}\"/></d>", 7},
      {"<d>\n<sql id='s'> % <!-- --> {'a*',<!-- --> b, cc} </sql></d>", 7},
      {"<d>\n<update id='u'><foreach item='i' collection='c'>%{'a*',<!-- --> b, cc}</foreach></update></d>",
       7,
       {2, 16}},
      {"<d><sql id='s'>%{'a*', b, cc}</sql>\n<sql id='t'>%{'*', a}</sql><sql id='u'>%</sql></d>", 9, {2, 28}},
      {"<d>\n<update id='u'>%{'****', aaa, bbb}</update></d>", 26},
  };
  for (const auto& [document, bytes, position] : cases) {
    SCOPED_TRACE(document);
    LoadOptions load;
    load.maximumExpandedBytes = bytes;
    EXPECT_TRUE(Document::fromBytes(document, load).document);
    load.maximumExpandedBytes = bytes - 1;
    const auto error = Document::fromBytes(document, load).error.value();
    EXPECT_EQ(error.rule, DocumentRule::ExpansionTooLarge);
    EXPECT_EQ(error.message, "list references expand to more than " + std::to_string(bytes - 1) + " bytes");
    EXPECT_EQ(error.position, position);
  }
  const std::string bomb = repeated("*", 20000).append("',").append(repeated("aaaaaaa,", 20000));
  EXPECT_EQ(Document::fromBytes("<sql id='s'>%{'" + bomb + "}</sql>").error->rule, DocumentRule::ExpansionTooLarge);
}

TEST(Document, Files) {
  const std::string path = testing::TempDir() + "korvex-loader-test.xml";
  std::ofstream(path) << "<a>x</a>";
  EXPECT_EQ(shown(Document::fromFile(path)), "a[\"x\"]");
  ASSERT_EQ(std::remove(path.c_str()), 0);

  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  ASSERT_EQ(write(pipe[1], "<a/>", 4), 4);
  close(pipe[1]);
  EXPECT_EQ(shown(Document::fromFile("/dev/fd/" + std::to_string(pipe[0]))), "a[]");
  close(pipe[0]);

  for (const auto& [unreadable, message] : {std::pair(path, "cannot read the file: No such file or directory"),
                                            std::pair(testing::TempDir(), "cannot read the file: Is a directory")}) {
    const Document::Result result = Document::fromFile(unreadable);
    EXPECT_EQ(result.error.value().kind(), DocumentErrorKind::Unreadable);
    EXPECT_EQ(result.error->message, message);
    EXPECT_EQ(result.source, nullptr);
  }
}

TEST(SourceText, LinesAndColumns) {
  const SourceText source("a\nbé\r\n\r\xF0\x9F\x98\x80x");
  const std::vector<std::pair<std::size_t, XMLPosition>> positions = {
      {0, {1, 1}}, {1, {1, 2}}, {2, {2, 1}},  {3, {2, 2}},  {5, {2, 3}},
      {7, {3, 1}}, {8, {4, 1}}, {12, {4, 2}}, {13, {4, 3}}, {99, {4, 3}},
  };
  for (const auto& [offset, expected] : positions) {
    EXPECT_EQ(source.position(offset), expected) << offset;
  }
  const std::vector<std::string_view> lines = {"", "a", "bé", "", "\xF0\x9F\x98\x80x", ""};
  for (std::size_t number = 0; number < lines.size(); ++number) EXPECT_EQ(source.line(number), lines[number]);
}

TEST(SourceText, LongLines) {
  std::string text = "é\n";
  for (int count = 0; count < 3000; ++count) text += "é-";
  const SourceText source(text);
  for (const std::size_t character : {0U, 341U, 682U, 1023U, 1024U, 1025U, 5998U}) {
    const std::size_t offset = 3 + character / 2 * 3 + character % 2 * 2;
    EXPECT_EQ(source.position(offset), (XMLPosition{2, character + 1}));
  }
}

TEST(Document, NodesKnowWhereTheirMarkupBegins) {
  const auto result = Document::fromBytes("\xEF\xBB\xBF<é>\r\n x<![CDATA[y]]><b\n/><!--c--><?p?> <![CDATA[z]]>é</é>");
  const std::vector<XMLPosition> expected = {{1, 4}, {2, 16}, {3, 3}, {3, 11}, {3, 16}};
  std::vector<XMLPosition> positions;
  for (const XMLNode& child : result.document->root().children()) positions.push_back(child.position().value());
  EXPECT_EQ(positions, expected);
  EXPECT_EQ(result.document->root().offset(), 0U);
  EXPECT_EQ(result.document->source().line(2), " x<![CDATA[y]]><b");
}

// "tag@line:column", with a "!" before refused ones.
std::vector<std::string> definitionsIn(const std::string& bytes) {
  const Document::Result result = Document::fromBytes(bytes);
  std::vector<std::string> shownOnes;
  for (const Definition& definition : loadDefinitions(*result.document)) {
    EXPECT_NE(definition.element != nullptr, definition.error != nullptr);
    const auto& [line, column] = definition.position();
    const std::string place = std::to_string(line) + ":" + std::to_string(column);
    shownOnes.push_back(std::string(definition.error ? "!" : "").append(definition.tag()).append("@").append(place));
  }
  return shownOnes;
}

TEST(Definitions, ChildrenOfTheRootOrTheRootItself) {
  using Shown = std::vector<std::string>;
  EXPECT_EQ(definitionsIn("<d/>"), Shown{});
  EXPECT_EQ(definitionsIn("<d>x<!--c--><const A='1'/>\r<sql/>\n é<nope id='a'/><?p?>&amp;<upgrade toVersion='1'/></d>"),
            (Shown{"const@1:13", "!sql@2:1", "!nope@3:3", "upgrade@3:27"}));
  for (const std::string tag :
       {"sql", "map", "const", "crypt", "pack", "select", "update", "insert", "delete", "upgrade"}) {
    EXPECT_EQ(definitionsIn("<!--é--><" + tag + " id='a'><x/></" + tag + ">"), Shown{"!" + tag + "@1:9"});
  }
}

TEST(Definitions, ElementsOutliveTheDocument) {
  constexpr std::size_t count = 5000;  // which takes several blocks of memory
  std::vector<Definition> definitions;
  {
    const auto result = Document::fromBytes("<d><const A='x'/><update id='u'>" +
                                            repeated("<if true='a'>x</if>", count) + "</update></d>");
    definitions = loadDefinitions(*result.document);
  }
  EXPECT_EQ(definitions.at(0).element->name(), "A");
  const auto* update = QXDAOElementCast<QXDAOMethod>(definitions.at(1).element.get());
  ASSERT_EQ(update->children()->size(), count);
  for (const auto& child : *update->children()) {
    EXPECT_EQ(QXDAOElementCast<QXDAOCondition>(child.get())->expression(), "a");
  }
}

// What each thread finds in a shared document, and in its own.
TEST(Definitions, TreesAreBuiltOnEightThreads) {
  const std::string text = "<d>\n<const/>\n<select id='s' result='int'>%{'*', a, b}<if true='c'>d</if></select></d>";
  const auto shared = Document::fromBytes(text);
  const auto build = [&] {
    for (int round = 0; round < 50; ++round) {
      const auto own = Document::fromBytes(text);
      for (const Document* document : {shared.document.get(), own.document.get()}) {
        const auto definitions = loadDefinitions(*document);
        EXPECT_EQ(definitions.at(1).position(), (XMLPosition{3, 1}));
        const auto* select = QXDAOElementCast<QXDAOMethod>(definitions[1].element.get());
        EXPECT_EQ(QXDAOElementCast<QXDAOText>(select->children()->front().get())->expression(), "a, b");
      }
    }
  };
  std::vector<std::thread> threads;
  for (int count = 0; count < 8; ++count) threads.emplace_back(build);
  for (std::thread& thread : threads) thread.join();
}

// Trees of one load share the memory of its arena.
TEST(Definitions, TreesAreDestroyedOnOtherThreads) {
  std::string text = "<d>";
  for (int count = 0; count < 100; ++count)
    text += "<update id='u'>%{'*', a, b}<where><if true='c'>d</if></where></update>";
  const auto document = Document::fromBytes(text + "</d>");
  std::array<std::vector<Definition>, 8> loads;
  const auto onEightThreads = [](const auto& work) {
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < 8; ++number) threads.emplace_back(work, number);
    for (std::thread& thread : threads) thread.join();
  };
  onEightThreads([&](std::size_t number) { loads[number] = loadDefinitions(*document.document); });
  onEightThreads([&](std::size_t number) {
    for (std::size_t tree = 0; tree < 100; ++tree) {
      const std::unique_ptr<QXDAOElement> element = std::move(loads[(number + tree) % 8].at(tree).element);
      EXPECT_EQ(element->name(), "u");
    }
  });
}

constexpr const char* everyKind =
    "<d>\n<select id='s' result='int'>%{'*', a, b}<if true='c'>d</if></select><const A='x'/><sql id='q'>y</sql>\n"
    "<map id='m' result='P'><result column='c' property='p'/></map><crypt class='P' property='n'/>\n"
    "<pack as='i' properties='a, b'/><upgrade toVersion='1'/><delete id='r'/><const/><select id='t'/><nope "
    "id='n'/></d>";

std::string told(const Definition& definition) {
  if (definition.error) return std::string(definition.error->message());
  return std::string(definition.tag()) + " " + std::string(definition.element->name().value_or("-"));
}

TEST(DefinitionIndex, TellsAndBuildsWhatALoadDoes) {
  for (const char* text : {everyKind, "<sql id='a'>b</sql>", "<sql/>", "<d/>"}) {
    SCOPED_TRACE(text);
    const auto loaded = Document::fromBytes(text);
    const std::vector<Definition> definitions = loadDefinitions(*loaded.document);
    const DefinitionIndex index(Document::fromBytes(text).document);
    ASSERT_EQ(index.size(), definitions.size());
    for (std::size_t place = index.size(); place-- > 0;) {
      EXPECT_EQ(index.tag(place), definitions[place].tag());
      EXPECT_EQ(index.position(place), definitions[place].position());
      EXPECT_EQ(told(index[place]), told(definitions[place]));
      if (index[place].element) {
        EXPECT_EQ(index.name(place), index[place].element->name());
      }
    }
  }
}

TEST(DefinitionIndex, BuildsOnceOnEightThreads) {
  const DefinitionIndex index(Document::fromBytes(everyKind).document);
  std::array<std::vector<const void*>, 8> seen;
  std::vector<std::thread> threads;
  for (std::vector<const void*>& mine : seen) {
    threads.emplace_back([&] {
      for (std::size_t place = 0; place < index.size(); ++place) {
        mine.push_back(index[place].element.get());
        mine.push_back(index[place].error.get());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::vector<const void*>& each : seen) EXPECT_EQ(each, seen[0]);
}

}  // namespace
}  // namespace korvex
