// Random methods, assembled a second time by other means: straight from what the generator made, as strings.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "korvex/Plan.h"
#include "tests/support/DefinitionSets.h"

namespace korvex {
namespace {

struct Fragment {
  enum Kind { Sql, If, Choose, Trim, Loop, Format } kind = Sql;
  std::string text;    // of SQL: words, ":n", "@block"
  int condition = 0;   // of an if
  bool wanted = true;  // its outcome
  int onVoid = 0;      // of a trim: nothing, quit, ignoreAfter
  bool reverse = false;
  std::vector<Fragment> children;
};

struct Condition {
  const char* expression;
  bool (*holds)(std::int64_t number, std::size_t count);
};

// Over the arguments n, an integer, and l, a list.
constexpr Condition conditions[] = {
    {"n > 3", [](std::int64_t n, std::size_t) { return n > 3; }},
    {"l.count == 2", [](std::int64_t, std::size_t count) { return count == 2; }},
    {"!n || l", [](std::int64_t n, std::size_t count) { return n == 0 || count > 0; }},
    {"n % 2 = 0 && l.count < n",
     [](std::int64_t n, std::size_t count) { return n % 2 == 0 && std::int64_t(count) < n; }},
    {"n == 1 ? l : null", [](std::int64_t n, std::size_t count) { return n == 1 && count > 0; }},
    {"missing != null", [](std::int64_t, std::size_t) { return false; }},
};

constexpr const char* onVoidNames[] = {"none", "quit", "ignoreAfter"};

class Generator {
 public:
  explicit Generator(unsigned seed) : _random(seed) {}

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(_random); }

  std::vector<Fragment> fragments(int depth) {
    std::vector<Fragment> list(static_cast<std::size_t>(below(4)));
    for (Fragment& fragment : list) fill(fragment, depth);
    return list;
  }

 private:
  void fill(Fragment& fragment, int depth) {
    fragment.kind = static_cast<Fragment::Kind>(below(depth > 0 ? 6 : 1));
    fragment.condition = below(static_cast<int>(std::size(conditions)));
    fragment.wanted = below(2) == 0;
    fragment.onVoid = below(8) == 0 ? 1 + below(2) : 0;
    fragment.reverse = below(2) == 0;
    if (fragment.kind == Fragment::Sql) fragment.text = sql();
    if (fragment.kind == Fragment::Choose) {
      fragment.children.resize(static_cast<std::size_t>(below(4)));
      for (Fragment& branch : fragment.children) {
        fill(branch, 0);
        branch.kind = Fragment::If;
        branch.children = fragments(depth - 1);
      }
    } else if (fragment.kind == Fragment::If || fragment.kind == Fragment::Trim) {
      fragment.children = fragments(depth - 1);
    }
  }

  std::string sql() {
    constexpr const char* words[] = {"AND",   "OR",  "a = b,", ":n",   "@block", "'it''s :n'",
                                     "ORder", "(x)", ",",      "@ONE", "é"};
    std::string text = words[below(std::size(words))];
    for (int more = below(4); more > 0; --more) text.append(" ").append(words[below(std::size(words))]);
    return text;
  }

  std::mt19937 _random;
};

std::string xmlOf(const std::vector<Fragment>& fragments);

std::string xmlOf(const Fragment& fragment, const char* tag) {
  const std::string condition = conditions[fragment.condition].expression;
  std::string escaped;
  for (const char character : condition)
    escaped += character == '<' ? "&lt;" : character == '&' ? "&amp;" : std::string(1, character);
  return std::string("<") + tag + (fragment.wanted ? " true=\"" : " false=\"") + escaped + "\">" +
         xmlOf(fragment.children) + "</" + tag + ">";
}

std::string xmlOf(const Fragment& fragment) {
  switch (fragment.kind) {
    case Fragment::Sql:
      return "<!-- -->" + fragment.text;
    case Fragment::If:
      return xmlOf(fragment, "if");
    case Fragment::Choose: {
      std::string text = "<choose>";
      for (const Fragment& branch : fragment.children) text += xmlOf(branch, "when");
      return text + "</choose>";
    }
    case Fragment::Trim:
      return std::string("<trim prefix='P' prefixOverrides='AND |OR ' suffixOverrides=',|OR' onVoid='") +
             onVoidNames[fragment.onVoid] + "'>" + xmlOf(fragment.children) + "</trim>";
    case Fragment::Loop:
      return std::string("<foreach collection='l' item='i' open='((' separator=', ' close='))' reverse='") +
             (fragment.reverse ? "yes" : "no") + "'>f(:i, :n)</foreach>";
    case Fragment::Format:
      return "<format prefix='K ' pairs='d' join=' , '/>";
  }
  return {};
}

std::string xmlOf(const std::vector<Fragment>& fragments) {
  std::string text;
  for (const Fragment& fragment : fragments) text += xmlOf(fragment);
  return text;
}

// The second assembly: every value is written into the text as "<value>", and taken out at the end.
class PlainAssembly {
 public:
  PlainAssembly(std::int64_t number, std::vector<int> list, bool pairs)
      : _number(number), _list(std::move(list)), _pairs(pairs) {}

  bool quits = false;

  // The pieces joined; sets `stopped` when what comes after is to be ignored.
  std::string of(const std::vector<Fragment>& fragments, bool& stopped) {
    std::string text;
    for (const Fragment& fragment : fragments) {
      const std::string piece = of(fragment, stopped);
      if (!text.empty() && !piece.empty() && text.back() != ' ') text += ' ';
      text += piece;
      if (stopped || quits) break;
    }
    return text;
  }

 private:
  bool applies(const Fragment& fragment) const {
    return conditions[fragment.condition].holds(_number, _list.size()) == fragment.wanted;
  }

  std::string of(const Fragment& fragment, bool& stopped) {
    switch (fragment.kind) {
      case Fragment::Sql:
        return expanded(fragment.text);
      case Fragment::If:
        return applies(fragment) ? of(fragment.children, stopped) : "";
      case Fragment::Choose:
        for (const Fragment& branch : fragment.children) {
          if (applies(branch)) return of(branch.children, stopped);
        }
        return "";
      case Fragment::Trim:
        return trimmed(fragment, stopped);
      case Fragment::Loop:
        return loop(fragment);
      case Fragment::Format:
        return _pairs ? "K \"a\"\"b\" = <7> , \"c\" = <null>" : "";
    }
    return "";
  }

  std::string trimmed(const Fragment& fragment, bool& stopped) {
    std::string text = of(fragment.children, stopped);
    if (quits) return "";
    if (text.empty()) {
      if (fragment.onVoid == 1) quits = true;
      if (fragment.onVoid == 2) stopped = true;
      return "";
    }
    for (const std::string word : {"AND", "OR"}) {
      const std::size_t size = word.size();
      if (text.compare(0, size, word) != 0 || (size < text.size() && isWord(text[size]))) continue;
      text.erase(0, text.size() > size && text[size] == ' ' ? size + 1 : size);
      break;
    }
    for (const std::string word : {",", "OR"}) {
      if (!text.ends_with(word)) continue;
      const std::size_t rest = text.size() - word.size();
      if (word == "OR" && rest > 0 && isWord(text[rest - 1])) continue;
      text.resize(rest);
      while (!text.empty() && text.back() == ' ') text.pop_back();
      break;
    }
    return "P " + text;
  }

  static bool isWord(char character) { return std::isalnum(static_cast<unsigned char>(character)) != 0; }

  std::string loop(const Fragment& fragment) const {
    std::vector<int> list = _list;
    if (fragment.reverse) std::reverse(list.begin(), list.end());
    std::string text = "((";
    for (const int entry : list) {
      if (text.size() > 2) text += ", ";
      text += "f(<" + std::to_string(entry) + ">, <" + std::to_string(_number) + ">)";
    }
    return text + "))";
  }

  std::string expanded(std::string text) const {
    const auto replace = [&text](const std::string& what, const std::string& with) {
      for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        if (text.compare(at + what.size(), 1, "'") != 0) text.replace(at, what.size(), with);
      }
    };
    replace("@block", "b.@ONE :n");
    replace("@ONE", "1");
    replace(":n", "<" + std::to_string(_number) + ">");
    return text;
  }

  std::int64_t _number;
  std::vector<int> _list;
  bool _pairs;
};

// The SQL of a plan with its values in the places of the question marks.
std::string withValues(const Assembled& assembled) {
  std::string text;
  std::size_t next = 0;
  for (const char character : assembled.sql) {
    if (character != '?') {
      text += character;
      continue;
    }
    const Value& value = assembled.values.at(next++);
    text += value.isNull() ? "<null>" : "<" + std::to_string(value.integer().value_or(-1)) + ">";
  }
  EXPECT_EQ(next, assembled.values.size());
  return text;
}

TEST(RandomPlans, AgreeWithAPlainAssembly) {
  std::size_t statements = 0;
  for (unsigned seed = 0; seed < 1500; ++seed) {
    Generator generator(seed);
    const std::vector<Fragment> fragments = generator.fragments(4);
    const std::string text =
        "<d><const ONE='1'/><sql id='block'>b.@ONE :n</sql><select id='m' arguments='n, l, d, missing' result='int'>" +
        xmlOf(fragments) + "</select></d>";
    const DefinitionSetBuilder::Result result = buildSet({text});
    ASSERT_TRUE(result.set) << text << result.errors.front().message;
    std::map<std::string, std::string> texts;
    for (int call = 0; call < 6; ++call) {
      const std::int64_t number = generator.below(6);
      std::vector<int> list(static_cast<std::size_t>(generator.below(4)));
      for (int& entry : list) entry = generator.below(100);
      const bool pairs = generator.below(2) == 0;
      const Dictionary dictionary = pairs ? Dictionary{{"c", nullptr}, {"a\"b", 7}} : Dictionary();
      const Assembled assembled =
          assemble(result.set->plan("m")->units()[0], {{"n", number}, {"l", list}, {"d", dictionary}});
      ASSERT_FALSE(assembled.error) << assembled.error->message;
      PlainAssembly plain(number, list, pairs);
      bool stopped = false;
      const std::string expected = plain.of(fragments, stopped);
      ASSERT_EQ(assembled.quits, plain.quits) << text;
      if (plain.quits) continue;
      ASSERT_EQ(withValues(assembled), expected) << text << "\n" << number << " " << list.size();
      const auto known = texts.emplace(assembled.key, assembled.sql).first;
      ASSERT_EQ(known->second, assembled.sql) << "one key, two texts";
      ++statements;
    }
  }
  EXPECT_GT(statements, 5000U);
}

}  // namespace
}  // namespace korvex
