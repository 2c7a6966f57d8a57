// mutate_documents COUNT [SEED]: checks that many mutated documents, and prints the numbers. Each document is an
// earlier one with a few random changes; trusted ones are mutated further.
#include "fuzz/Mutator.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace korvex {
namespace {

constexpr std::array<std::string_view, 8> origins = {
    R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- people --><mapper><select id="find" arguments="$a, b" result="[:Person]">SELECT %{'p.*', id} FROM person p
<where><if true="a &lt; 1 &amp;&amp; b">AND a = '<![CDATA[<&>]]>'</if></where></select><?p q?></mapper>
)",
    "<a/>",
    "<a b='1' c=\"2\"><b/>x<!--y--><![CDATA[z]]></a>",
    "<?xml version='1.0'?><a>&#65;&#x1F600;&quot;</a>",
    "<!-- a --><?p q?>\n<r>\xC3\xA9<s t='\xE2\x82\xAC'/>]] ></r>\n",
    "<a><b><c d=''></c></b>\r\n<?p?></a >",
    "<!DOCTYPE a><a>&lt;</a>",
    "<const A='1 > 2' B='&#x9;'/>",
};

constexpr std::array<std::string_view, 76> tokens = {
    "<",
    ">",
    "&",
    "/",
    "=",
    "'",
    "\"",
    "]]>",
    "]]",
    "]",
    "--",
    "-",
    "-->",
    "<!--",
    "--->",
    "<!-->",
    "<!",
    "<![CDATA[",
    "<![CDATA[]]>",
    "<![CDATA[x]]>",
    "?",
    "?>",
    "<?",
    "<?p",
    "<?p?>",
    "<?p q?>",
    "<?xml ",
    "<?xml version='1.0'?>",
    "<?XmL?>",
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>",
    "<?xml version='1.0' standalone='yes'?>",
    "<?xml version='1.1'?>",
    "<!DOCTYPE a>",
    "<!DOCTYPE a [",
    "]>",
    "<!ENTITY e 'x'>",
    "&e;",
    "&lt;",
    "&amp;",
    "&gt",
    "&quot;",
    "&apos;",
    "&#",
    "&#0;",
    "&#9;",
    "&#x1f;",
    "&#xD800;",
    "&#xfffe;",
    "&#1114112;",
    "&#x10FFFF;",
    "&#x;",
    "&#00000065;",
    "&#x0000000041;",
    "a",
    "b",
    "x:y",
    " a=''",
    " b=\"<\"",
    " b='&'",
    "<a>",
    "</a>",
    "<a/>",
    "</a \n>",
    "<b a='1' a='2'>",
    " ",
    "\n",
    "\r",
    "\t",
    "\xC3\xA9",
    "\xC3",
    "\xEF\xBF\xBE",
    "\xEF\xBB\xBF",
    "\xED\xA0\x80",
    "\xF4\x90\x80\x80",
    "\x01",
    "\x7F",
};

class Mutator {
 public:
  explicit Mutator(std::uint64_t seed) : _random(seed), _pool(origins.begin(), origins.end()) {}

  // Valid until the next call.
  const std::string& next() {
    _text = _pool[below(_pool.size())];
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) change();
    return _text;
  }

  // Makes the last document the origin of others.
  void keep() {
    constexpr std::size_t poolSize = 2000;
    constexpr std::size_t maxLength = 700;
    if (_text.size() > maxLength) return;
    if (_pool.size() < poolSize) {
      _pool.push_back(_text);
    } else {
      _pool[origins.size() + below(poolSize - origins.size())] = _text;
    }
  }

 private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(_random() % limit); }
  std::size_t place() { return below(_text.size() + 1); }
  std::size_t length() { return below(below(4) == 0 ? 40 : 4); }
  std::string_view pieceOf(std::string_view text) { return text.substr(below(text.size() + 1), length()); }

  void change() {
    switch (below(8)) {
      case 0:
        _text.erase(place(), 1 + length());
        break;
      case 1:
        _text.insert(place(), std::string(pieceOf(_text)));
        break;
      case 2:
        _text.insert(place(), pieceOf(_pool[below(_pool.size())]));
        break;
      case 3:
        if (!_text.empty()) _text[below(_text.size())] = static_cast<char>(below(256));
        break;
      case 4:
        _text.replace(place(), length(), tokens[below(tokens.size())]);
        break;
      default:
        _text.insert(place(), tokens[below(tokens.size())]);
    }
  }

  std::mt19937_64 _random;
  std::vector<std::string> _pool;
  std::string _text;
};

int run(std::uint64_t count, std::uint64_t seed) {
  constexpr std::uint64_t reportEvery = 1'000'000;
  Mutator mutator(seed);
  std::uint64_t trusted = 0;
  for (std::uint64_t done = 1; done <= count; ++done) {
    if (judge(mutator.next()) == Verdict::Trusted) {
      ++trusted;
      mutator.keep();
    }
    if (done % reportEvery == 0 || done == count) {
      std::cout << done << " documents, " << trusted << " trusted" << std::endl;
    }
  }
  return trusted > 0 ? 0 : 1;
}

}  // namespace
}  // namespace korvex

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: mutate_documents COUNT [SEED]\n";
    return 2;
  }
  return korvex::run(std::strtoull(argv[1], nullptr, 10), argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
}
