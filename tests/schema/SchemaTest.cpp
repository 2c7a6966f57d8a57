// Compares the schemas, and the vocabulary that generates them, with the checker: they accept what it accepts, and
// reject what they can express and it rejects.
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <libxml/xmlschemas.h>

#include <algorithm>
#include <memory>
#include <random>
#include <set>
#include <sstream>

#include "korvex/Keywords.h"
#include "korvex/QXDAOPackReader.h"
#include "schema/Schema.h"
#include "tests/support/AddressBook.h"

namespace korvex {
namespace {

using schema::Format;
using schema::schemaText;

template <typename Thing>
using Owned = std::unique_ptr<Thing, void (*)(Thing*)>;

void sayNothing(void* /*context*/, const char* /*format*/, ...) {}

class Validator {
 public:
  Validator(Format format, std::string_view root = {}) : _text(schemaText(format, root)) {
    xmlSetGenericErrorFunc(nullptr, sayNothing);
    const int size = static_cast<int>(_text.size());
    if (format == Format::RelaxNg) {
      const Owned<xmlRelaxNGParserCtxt> parser(xmlRelaxNGNewMemParserCtxt(_text.data(), size),
                                               xmlRelaxNGFreeParserCtxt);
      _relaxNg.reset(xmlRelaxNGParse(parser.get()));
    } else {
      const Owned<xmlSchemaParserCtxt> parser(xmlSchemaNewMemParserCtxt(_text.data(), size), xmlSchemaFreeParserCtxt);
      _xmlSchema.reset(xmlSchemaParse(parser.get()));
    }
    EXPECT_TRUE(_relaxNg || _xmlSchema);
  }

  [[nodiscard]] bool accepts(const std::string& text) const {
    const int quiet = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
    const Owned<xmlDoc> document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, quiet),
                                 xmlFreeDoc);
    if (_relaxNg) {
      const Owned<xmlRelaxNGValidCtxt> context(xmlRelaxNGNewValidCtxt(_relaxNg.get()), xmlRelaxNGFreeValidCtxt);
      return xmlRelaxNGValidateDoc(context.get(), document.get()) == 0;
    }
    const Owned<xmlSchemaValidCtxt> context(xmlSchemaNewValidCtxt(_xmlSchema.get()), xmlSchemaFreeValidCtxt);
    return xmlSchemaValidateDoc(context.get(), document.get()) == 0;
  }

 private:
  std::string _text;
  Owned<xmlRelaxNG> _relaxNg{nullptr, xmlRelaxNGFree};
  Owned<xmlSchema> _xmlSchema{nullptr, xmlSchemaFree};
};

// What becomes of changed documents. A schema that cannot see what is wrong is blind for it, and may accept it.
class Comparison {
 public:
  void compare(const std::string& text, const std::string& what, bool relaxNgIsBlind = false,
               bool xmlSchemaIsBlind = false) {
    const bool refused = isRefused(text);
    ++(refused ? _refused : _accepted);
    EXPECT_TRUE((refused && relaxNgIsBlind) || _relaxNg.accepts(text) == !refused) << "RELAX NG: " << what;
    EXPECT_TRUE((refused && xmlSchemaIsBlind) || _xmlSchema.accepts(text) == !refused) << "XML Schema: " << what;
  }

  void expectAtLeast(std::size_t accepted, std::size_t refused) const {
    EXPECT_GE(_accepted, accepted);
    EXPECT_GE(_refused, refused);
  }

 private:
  Validator _relaxNg{Format::RelaxNg};
  Validator _xmlSchema{Format::XmlSchema};
  std::size_t _accepted = 0;
  std::size_t _refused = 0;
};

std::string withContent(std::string text, const MarkupElement& element, std::string_view tag,
                        const std::string& content) {
  const bool empty = text[element.startTag.end - 2] == '/';
  if (!empty) return text.insert(element.startTag.end, content);
  return text.replace(element.startTag.end - 2, 2, ">" + content + "</" + std::string(tag) + ">");
}

// XML Schema has no attributes that depend on each other.
bool dependsOnOthers(const ElementEntry& entry, std::string_view attribute) {
  return entry.attributeRule == AttributeRule::ExactlyOne || entry.attributeRule == AttributeRule::AnyOneName ||
         std::count(entry.neededAttributes.begin(), entry.neededAttributes.end(), attribute) > 0;
}

TEST(Schema, StoredCopiesAreThoseOfTheGenerator) {
  const std::pair<const char*, Format> copies[] = {
      {"rnc", Format::RelaxNgCompact}, {"rng", Format::RelaxNg}, {"xsd", Format::XmlSchema}};
  for (const auto& [extension, format] : copies) {
    std::ifstream file(std::string(KORVEX_SOURCE_DIR "/dist/schemas/korvex-dao.") + extension);
    EXPECT_EQ(schemaText(format), std::string(std::istreambuf_iterator<char>(file), {}))
        << "write it anew with korvex-dao schema --format " << extension;
  }
}

TEST(Schema, UnusualDocumentsThatAreRight) {
  const Validator relaxNg(Format::RelaxNg);
  const Validator xmlSchema(Format::XmlSchema);
  const char* const inside[] = {
      "<const A='1'> </const>",
      "<select id='a' result='int' unheardOf='1' xml:space='preserve'>x<when true='a'>y</when><otherwise/></select>",
      "<select id='a' result='int'> <!----> <try><except/> <!----> </try><?p i?></select>",
      "<update id='a'> <!----> <step/><step>x</step> </update>",
      "<update id='a'><![CDATA[ ]]><step/></update>",
      "<upgrade toVersion=' 1e1 '/>",
      "<pack as='a' properties=','>text<any thing='1'><select/></any></pack>",
      "<map id='a' result='b'><result column='c' property='d'>text<any/></result></map>",
      "<sql id='a' xmlns:x='urn:x' x:y='z'>x<!---->y</sql>",
      "text",
      "<sql xmlns='urn:x' id='a'/>",
      "<sql id='a'><![CDATA[<]]></sql>",
      "<update id='a'><trim prefix='b' prefixOverrides='' suffixOverrides=','/></update>",
  };
  for (const std::string definition : inside) {
    const std::string text = "<korvex unheardOf='1'>" + definition + "</korvex>";
    EXPECT_FALSE(isRefused(text)) << text;
    EXPECT_TRUE(relaxNg.accepts(text)) << text;
    EXPECT_TRUE(xmlSchema.accepts(text)) << text;
  }
  for (const std::string root : {"<mapping><sql id='a'/></mapping>", "<if><sql id='a'/></if>",
                                 "<x xmlns='urn:x'><sql id='a'>b</sql></x>", "<sql id='a'/>", "<const A=''/>"}) {
    EXPECT_FALSE(isRefused(root)) << root;
    EXPECT_TRUE(relaxNg.accepts(root)) << root;
    EXPECT_EQ(xmlSchema.accepts(root), root.starts_with("<sql") || root.starts_with("<const")) << root;
  }
  const std::string ofTheirOwn = "<mapping><sql id='a'/></mapping>";
  for (const Format format : {Format::RelaxNg, Format::XmlSchema}) {
    EXPECT_TRUE(Validator(format, "mapping").accepts(ofTheirOwn));
    EXPECT_FALSE(Validator(format, "other").accepts(ofTheirOwn));
  }
}

// An unknown child, text, an unknown attribute; each attribute left out, and each kind of attribute with all the
// values.
TEST(Schema, BrokenElementsAreRefusedAsByTheChecker) {
  std::istringstream list(
      "| |T|t|TT|initial|1.5| -1e1 |5.|+.5|1e|1.5.1|0x1|a,b|a,,b|, a|a, b ,c|$|phones.entry| phones . entry "
      "|phones.|phones.a.b|é|&#10;b, c");
  std::vector<std::string> values;
  for (std::string value; std::getline(list, value, '|');) values.push_back(value);
  const std::string text = addressBook();
  Comparison comparison;
  std::set<const AttributeEntry*> tried;
  forEachElement(text, [&](const Markup& markup, const MarkupElement& element, const ElementEntry& entry) {
    const std::string tag(entry.tag);
    comparison.compare(withContent(text, element, tag, "<unheardOf/>"), "unknown child in " + tag);
    const bool mixed = entry.content == Content::TextAndElements;
    comparison.compare(withContent(text, element, tag, "x"), "text in " + tag, false, mixed);
    const bool anyName = entry.attributeRule == AttributeRule::AnyOneName;
    std::string more = text;
    comparison.compare(more.insert(element.name.end, " unheardOf='1'"), "attribute of " + tag, anyName, anyName);
    for (const auto& [name, value] : element.attributes) {
      const AttributeEntry* known = attributeEntryOf(entry, markup.textOf(name));
      const std::string what = tag + " " + std::string(markup.textOf(name));
      const bool ofForeach = known && known->name == C_ARGUMENTS && markup.valueOf(element, C_FOREACH);
      const bool depends = ofForeach || dependsOnOthers(entry, markup.textOf(name));
      std::string without = text;
      without.erase(name.begin, value->end + 1 - name.begin);
      comparison.compare(without, "no " + what, ofForeach, depends);
      if (!known || ofForeach || !tried.insert(known).second) continue;
      for (const std::string& other : values) {
        const bool noArgument = known->name == C_FOREACH && other.find("phones") == std::string::npos;
        const bool blind = noArgument || known->kind == ValueKind::Condition;
        std::string changed = text;
        changed.replace(value->begin, value->end - value->begin, other);
        comparison.compare(changed, std::string(what).append("=").append(other), blind, blind || depends);
      }
    }
  });
  comparison.expectAtLeast(700, 300);
}

// Elements in other places: each mutant has one put into another, behind another, or taken away.
TEST(Schema, MovedElementsAreJudgedAsByTheChecker) {
  const std::string text = addressBook();
  const Markup markup(text);
  std::mt19937 random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same documents in every run
  Comparison comparison;
  const auto anyElement = [&]() -> const MarkupElement& {
    return markup.elements()[1 + random() % (markup.elements().size() - 1)];
  };
  for (int round = 0; round < 600; ++round) {
    const MarkupElement& moved = anyElement();
    const MarkupElement& place = anyElement();
    const std::string copy(markup.textOf(moved.whole));
    const std::string_view tag = markup.nameOf(place);
    std::string mutant = text;
    if (round % 3 == 0) mutant = withContent(text, place, tag, copy);
    if (round % 3 == 1) mutant.insert(place.whole.end, copy);
    if (round % 3 == 2) mutant.erase(place.whole.begin, place.whole.end - place.whole.begin);
    // Text beside a step or try block is text in an element that has text elsewhere.
    const std::string_view movedTag = markup.nameOf(moved);
    const bool blind = movedTag == C_STEP || movedTag == C_TRY || round % 3 == 2 || tag == C_EXCEPT;
    comparison.compare(mutant, copy + " at " + std::string(markup.textOf(place.startTag)), false, blind);
  }
  comparison.expectAtLeast(200, 150);
}

}  // namespace
}  // namespace korvex
