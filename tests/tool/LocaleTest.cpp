// Documents and packed values do not depend on the locale.
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <string>
#include <utility>
#include <vector>

#include "korvex/QXDAOElement.h"
#include "tests/support/Models.h"
#include "tests/support/Packs.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryDirectory.h"

namespace korvex {
namespace {

// Everything that has numbers in it, or that compares, classifies or formats text.
std::vector<std::string> results() {
  const std::string root = KORVEX_SOURCE_DIR;
  const std::string upgrade = "<d><upgrade toVersion='1234567.25'>x</upgrade><upgrade toVersion='1,5'>x</upgrade></d>";
  AllTypes object;
  object.fill();
  object.d = 1234567.25;
  const std::string packed = packOf(AllTypes::propertyNames)->packWithObject(&object).value();
  std::vector<std::string> all = {packed};
  for (const auto& [arguments, input] : std::vector<std::pair<CommandLine, std::string>>{
           {{"dump", root + "/examples/addressbook.xml"}, ""},
           {{"dump", "--format", "tree", root + "/examples/addressbook.xml"}, ""},
           {{"check", root + "/examples/faults.xml"}, ""},
           {{"check", "--format", "json", root + "/examples/faults.xml"}, ""},
           {{"dump", "-"}, upgrade},
           {{"dump", "--format", "tree", "-"}, upgrade},
           {{"unpack", "-"}, packed},
           {{"unpack", "--format", "json", "-"}, packed}}) {
    const Outcome outcome = run(arguments, input);
    all.push_back(outcome.out + outcome.err);
  }
  return all;
}

TEST(Locale, ADecimalCommaChangesNothing) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the C library never frees what it makes of LOCPATH";
#endif
  const TemporaryDirectory locales;
  const std::string made = locales.path() / "comma";
  ASSERT_EQ(std::system(("localedef -i de_DE -f UTF-8 '" + made + "'").c_str()), 0);  // NOLINT(cert-env33-c)
  const std::vector<std::string> before = results();
  for (const std::size_t withNumber : {5U, 6U, 7U, 8U}) {
    EXPECT_NE(before[withNumber].find("1234567.25"), std::string::npos) << before[withNumber];
  }

  ASSERT_EQ(setenv("LOCPATH", locales.path().c_str(), 1), 0);
  ASSERT_NE(std::setlocale(LC_ALL, "comma"), nullptr);
  const std::locale classic = std::locale::global(std::locale("comma"));
  std::array<char, 8> half{};
  std::snprintf(half.data(), half.size(), "%.1f", 0.5);
  const std::vector<std::string> after = results();
  std::locale::global(classic);
  unsetenv("LOCPATH");

  ASSERT_STREQ(half.data(), "0,5");
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace korvex
