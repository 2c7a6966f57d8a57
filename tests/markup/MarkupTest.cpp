// Incomplete markup: the content of tags, where they stop, and which element contains which.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "markup/Markup.h"
#include "markup/TagReader.h"

namespace korvex {
namespace {

// "name|attribute=value|attribute", and the text that is left behind a "#".
std::string shownTag(std::string_view text, const Tag& tag) {
  std::string shown = (tag.isEndTag ? "/" : "") + std::string(tag.name.of(text));
  for (const MarkupAttribute& attribute : tag.attributes) {
    shown.append("|").append(attribute.name.of(text));
    if (attribute.value) shown.append("=").append(attribute.value->of(text));
  }
  return shown + "#" + std::string(text.substr(tag.end));
}

TEST(TagReader, TellsWhatATagHoldsAndWhereItStops) {
  using enum TagState;
  struct Case {
    const char* text;
    const char* shown;
    TagState state;
  };
  const Case cases[] = {
      {"<a>x", "a#x", Closed},
      {"<a/>x", "a#x", ClosedEmpty},
      {"</a b='>'>x", "/a#'>x", Closed},
      {"</a<b>", "/a#<b>", Name},
      {"<", "#", Name},
      {"<a", "a#", Name},
      {"<a \n", "a#", WhiteSpace},
      {"<a b", "a|b#", AttributeName},
      {"<a b ", "a|b#", AttributeName},
      {"<a b c='1'>x", "a|b|c=1#x", Closed},
      {"<a b=", "a|b#", EqualsSign},
      {"<a b = ", "a|b#", EqualsSign},
      {"<a b=<c>", "a|b#<c>", EqualsSign},
      {"<a b=c", "a|b=c#", Value},
      {"<a b='", "a|b=#", OpenValue},
      {"<a b='c> <d", "a|b=c> #<d", OpenValue},
      {"<a b='\"'", "a|b=\"#", Value},
      {"<a b=\"1\"c='2'/>x", "a|b=1|c=2#x", ClosedEmpty},
      {"<a b=c/d e>", "a|b=c/d|e#", Closed},
      {"<a b='1' /", "a|b=1#", Slash},
      {"<a / b>", "a|b#", Closed},
      {"<a ='1' \" &b;>x", "a|=1|b#x", Closed},
      {"<a b='1'<c>", "a|b=1#<c>", Value},
  };
  for (const auto& [text, shown, state] : cases) {
    const Tag tag = readTag(text, 0);
    EXPECT_EQ(shownTag(text, tag), shown) << text;
    EXPECT_EQ(tag.state, state) << text;
  }
  EXPECT_EQ(readTag("x<a>", 1).name, (Span{2, 3}));
}

// Each element as "name[whole]", with its parent's name in front, and a "!" behind when nobody closed it.
std::vector<std::string> shownElements(std::string_view text) {
  const Markup markup(text);
  std::vector<std::string> shown;
  for (const MarkupElement& element : markup.elements()) {
    const MarkupElement* parent = markup.parentOf(element);
    const std::string path =
        (parent ? std::string(markup.nameOf(*parent)) + "/" : "") + std::string(markup.nameOf(element));
    shown.push_back(path + "[" + std::string(markup.textOf(element.whole)) + "]" + (element.closed ? "" : "!"));
  }
  return shown;
}

TEST(Markup, ElementsEndWhereTheyAreClosedOrTheirParentEnds) {
  using Shown = std::vector<std::string>;
  const std::pair<const char*, Shown> cases[] = {
      {"<a><b/></a>x", {"a[<a><b/></a>]", "a/b[<b/>]"}},
      {"<a><b></a><c>", {"a[<a><b></a>]", "a/b[<b>]!", "c[<c>]!"}},
      {"<a></b><a></a>", {"a[<a></b><a></a>]!", "a/a[<a></a>]"}},
      {"<a><b></a", {"a[<a><b></a]!", "a/b[<b>]!"}},
      {"<a><!--<b>--><![CDATA[<c>]]><?d <e>?><!F <g></a>", {"a[<a><!--<b>--><![CDATA[<c>]]><?d <e>?><!F <g></a>]"}},
      {"<a><!--<b></a>", {"a[<a><!--<b></a>]!"}},
  };
  for (const auto& [text, shown] : cases) EXPECT_EQ(shownElements(text), shown) << text;
}

TEST(Span, IsTouchedInsideAndAtItsEnds) {
  for (std::size_t offset = 0; offset < 9; ++offset) {
    EXPECT_EQ((Span{3, 5}.touches(offset)), offset >= 3 && offset <= 5) << offset;
  }
}

TEST(Markup, FindsWhatIsAtAnOffset) {
  const std::string_view text = "<a x='1' x='2' y><!--c--></a><!--";
  const Markup markup(text);
  EXPECT_EQ(markup.valueOf(markup.elements()[0], "x"), "1");
  EXPECT_EQ(markup.valueOf(markup.elements()[0], "y"), std::nullopt);
  EXPECT_EQ(markup.comments(), (std::vector<Span>{{17, 25}}));
  for (std::size_t offset = 0; offset <= text.size(); ++offset) {
    EXPECT_EQ(markup.startTagAt(offset) != nullptr, offset > 0 && offset < 17) << offset;
    EXPECT_EQ(markup.isInOpaqueMarkup(offset), (offset > 17 && offset < 25) || offset > 29) << offset;
  }
}

}  // namespace
}  // namespace korvex
