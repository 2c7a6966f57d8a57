// The small rules that all elements share: strings, numbers, the spin lock, the document handles.
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <mutex>
#include <thread>
#include <tuple>

#include "korvex/OptionalString.h"
#include "korvex/SpinLock.h"
#include "korvex/XMLNode.h"
#include "platform/NumberScanner.h"
#include "platform/Strings.h"
#include "tests/support/HandBuiltTree.h"
#include "tests/support/Hex.h"

namespace korvex {
namespace {

TEST(Strings, TrimsItsOwnCharactersOnly) {
  EXPECT_EQ(spaceBothEndsTrimmed(std::string_view("  \ta b\n  ")), "\ta b\n");
  EXPECT_EQ(spaceNewLineTabBothEndsTrimmed(std::string_view(" \n\t\ra b\r\n\t ")), "\ra b\r");
  EXPECT_EQ(spaceBothEndsTrimmed(std::string_view("   ")), "");
  EXPECT_EQ(spaceBothEndsTrimmed(OptionalStringView()), std::nullopt);
  EXPECT_EQ(spaceNewLineTabBothEndsTrimmed(OptionalStringView()), std::nullopt);
}

TEST(Strings, FillsAFormatOnce) {
  EXPECT_EQ(filledFormat("Map '%@' is", "a"), "Map 'a' is");
  EXPECT_EQ(filledFormat("Map '%@' is", ""), "Map '' is");
  EXPECT_EQ(filledFormat("Map '%@' is", std::nullopt), "Map '(null)' is");
  EXPECT_EQ(filledFormat("Map '%@' is", "%@ %s %d"), "Map '%@ %s %d' is");
  EXPECT_EQ(filledFormat("no place", "a"), "no place");
}

TEST(Strings, BooleanAttributeRule) {
  for (const char* text : {"Y", "yes", "t", "TRUE", "1", "9", "+1", "-5", "0003", " \t\n true", " +00Y"}) {
    EXPECT_TRUE(booleanAttributeValue(text)) << text;
  }
  for (const char* text : {"", " ", "0", "000", "no", "false", "n", "F", "+", "--1", "+ 1", "0 1", "on", "x1"}) {
    EXPECT_FALSE(booleanAttributeValue(text)) << text;
  }
}

TEST(Strings, CountsUTF16Units) {
  const std::vector<std::tuple<std::string, std::size_t>> lengths = {
      {"", 0}, {"abc", 3}, {"\xC3\xA9", 1}, {"\xE2\x82\xAC", 1}, {"\xF0\x9F\x98\x80", 2}, {"\xC3", 1}, {"\x80\x80", 2}};
  for (const auto& [text, units] : lengths) {
    EXPECT_TRUE(hasAtLeastUTF16Units(text, units)) << text;
    EXPECT_FALSE(hasAtLeastUTF16Units(text, units + 1)) << text;
  }
  EXPECT_TRUE(hasAtLeastUTF16Units(std::string(24, 'x'), 8));
  EXPECT_EQ(lengthOfCharacterBefore("\xC3\xA9", 2), 2U);
  EXPECT_EQ(lengthOfCharacterBefore("a\xE2\x82\xAC", 4), 3U);
  EXPECT_EQ(lengthOfCharacterBefore("\x9F\x98\x80", 3), 1U);
}

// The limits of every range of UTF-8 bytes, alone and within plain text.
TEST(Strings, KnowsUTF8) {
  const auto isValidAmidText = [](const std::string& text, std::size_t before) {
    return isValidUTF8(std::string(before, 'a') + text + "b");
  };
  for (const char* digits :
       {"", "7F", "C280", "DFBF", "E0A080", "E0BFBF", "E18080", "ECBFBF", "ED8080", "ED9FBF", "EE8080", "EFBFBF",
        "F0908080", "F0BFBFBF", "F1808080", "F3BFBFBF", "F4808080", "F48FBFBF"}) {
    const std::string text = bytes(digits);
    EXPECT_TRUE(isValidUTF8(text)) << digits;
    EXPECT_EQ(text.empty() ? 0 : lengthOfCharacterBefore("a" + text, text.size() + 1), text.size());
    for (std::size_t before = 0; before < 20; ++before) EXPECT_TRUE(isValidAmidText(text, before)) << before;
  }
  for (const char* digits :
       {"80",       "BF",       "C080",     "C1BF",     "C2",       "C27F",     "DFC0",   "E09FBF",
        "E0C080",   "E180",     "E17F80",   "E1807F",   "E180C0",   "ECC080",   "ED7F80", "EDA080",
        "EE7F80",   "EFC080",   "F08FBFBF", "F0C08080", "F17F8080", "F3C08080", "F18080", "F180807F",
        "F180C080", "F47F8080", "F49080",   "F4908080", "F58080",   "FF"}) {
    const std::string text = bytes(digits);
    EXPECT_FALSE(isValidUTF8(text)) << digits;
    for (std::size_t before = 0; before < 20; ++before) EXPECT_FALSE(isValidAmidText(text, before)) << before;
  }
}

TEST(Strings, FindsTheOneByteThatIsNotPlain) {
  for (std::size_t length = 1; length < 40; ++length) {
    std::string text(length, '\x7F');
    EXPECT_TRUE(isASCIIWithoutZero(text));
    for (const char odd : {'\0', '\x80', '\xFF'}) {
      for (std::size_t at = 0; at < length; ++at) {
        text[at] = odd;
        EXPECT_FALSE(isASCIIWithoutZero(text)) << length << ", " << at;
        text[at] = '\1';
      }
    }
    EXPECT_TRUE(isASCIIWithoutZero(text));
  }
  EXPECT_TRUE(isASCIIWithoutZero(""));
  EXPECT_EQ(asciiLowerCase("@AZ[`az{\xC3\x89"), "@az[`az{\xC3\x89");
}

TEST(NumberScanner, TakesDecimalsOnly) {
  const std::vector<std::tuple<const char*, double>> numbers = {
      {"2", 2},
      {" 2.5 ", 2.5},
      {"\n-3\t", -3},
      {"+.5", 0.5},
      {"5.", 5},
      {"1e3", 1000},
      {"1.5E-1", 0.15},
      {"007", 7},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"0e999999", 0},
      {"1e309", std::numeric_limits<double>::max()},
      {"-1e309", std::numeric_limits<double>::lowest()},
      {"1e-400", 0},
      {"0.01E+99999999999", std::numeric_limits<double>::max()},
      {"100.e-99999999999", 0},
      {"12345678901234567890", 12345678901234567890.0}};
  for (const auto& [text, value] : numbers) EXPECT_EQ(scanDecimalNumber(text), value) << text;
  for (const char* text : {"", " ", "two", "2.5.1", "2,5", "1e", "1e+", ".", "-", "+-1", "--1", "0x10", "inf", "nan",
                           "1 2", "2f", "Initial"}) {
    EXPECT_EQ(scanDecimalNumber(text), std::nullopt) << text;
  }
}

TEST(SpinLock, KeepsHoldersApart) {
  SpinLock lock;
  int counter = 0;
  const auto count = [&] {
    for (int turn = 0; turn < 20000; ++turn) {
      const std::lock_guard<SpinLock> guard(lock);
      ++counter;
    }
  };
  lock.lock();
  std::thread other(count);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(counter, 0);
  lock.unlock();
  count();
  other.join();
  EXPECT_EQ(counter, 40000);
}

TEST(XMLNode, NullHandlesAnswerWithNothing) {
  const XMLNode none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.kind(), XMLNodeKind{});
  EXPECT_EQ(none.firstChild().next().name(), std::nullopt);
  EXPECT_EQ(none.stringValue(), std::nullopt);
  EXPECT_EQ(none.valueOfAttribute("id"), std::nullopt);
  EXPECT_EQ(none.onlyAttribute().name(), std::nullopt);
  EXPECT_EQ(none.childCount() + none.attributeCount(), 0U);
  EXPECT_EQ(none.position(), std::nullopt);
}

TEST(XMLNode, ReadsATree) {
  const HandBuiltTree tree(
      TreeNode::element("a", {{"x", "1"}, {"y", ""}},
                        {TreeNode::text("one "), TreeNode::leaf(XMLNodeKind::Comment, "no"),
                         TreeNode::element("b", {}, {TreeNode::text("two ")}), TreeNode::text("three")}));
  const XMLNode root = tree.root();
  EXPECT_EQ(root.stringValue(), "one two three");
  EXPECT_EQ(root.childCount(), 4U);
  EXPECT_EQ(root.valueOfAttribute("y"), "");
  EXPECT_EQ(root.valueOfAttribute("z"), std::nullopt);
  EXPECT_FALSE(root.onlyAttribute());
  EXPECT_EQ(root.firstChild().stringValue(), "one ");
  EXPECT_EQ(root.firstChild().next().stringValue(), std::nullopt);
  EXPECT_EQ(root.firstChild().next().next().stringValue(), "two ");
  EXPECT_EQ(root, tree.root());
  EXPECT_NE(root, root.firstChild());
}

TEST(XMLNode, FindsAttributesHoweverMany) {
  TreeNode element = TreeNode::element("a");
  for (int number = 0; number < 20; ++number) element.attributes.emplace_back(std::to_string(number), "x");
  element.attributes.emplace_back("19", "y");
  element.attributes.emplace_back("last", std::nullopt);
  const HandBuiltTree tree(std::move(element));
  const auto [late, last, none] = tree.root().valuesOfAttributes("19", "last", "20");
  EXPECT_EQ(late, "x") << "the first of two";
  EXPECT_EQ(last, std::nullopt);
  EXPECT_EQ(none, std::nullopt);
  EXPECT_EQ(tree.root().attributeCount(), 22U);
}

}  // namespace
}  // namespace korvex
