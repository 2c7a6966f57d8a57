#include "tool/StreamedJson.h"

#include <algorithm>
#include <ostream>
#include <string>

namespace korvex {
namespace {

constexpr std::size_t spacesOfALevel = 2;

// Where the entries of an empty array begin. Quotes in a text are escaped, so that no text looks like the member.
std::size_t placeOfEntries(std::string_view text, std::string_view name) {
  const std::string member = name.empty() ? "[" : '"' + std::string(name) + "\": [";
  return text.find(member) + member.size();
}

void printIndented(std::ostream& out, std::string_view text, std::size_t spaces) {
  const std::string margin = '\n' + std::string(spaces, ' ');
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    out << margin << text.substr(begin, end - begin);
    begin = end + 1;
  }
}

}  // namespace

void StreamedJson::begin(const Json& json) {
  const std::string text = jsonText(json);
  _out << std::string_view(text).substr(0, placeOfEntries(text, _name));
}

void StreamedJson::add(const Json& entry) {
  if (!_isEmpty) _out << ',';
  _isEmpty = false;
  printIndented(_out, jsonText(entry), (_depth + 1) * spacesOfALevel);
}

void StreamedJson::end(const Json& json) {
  const std::string text = jsonText(json);
  if (!_isEmpty) _out << '\n' << std::string(_depth * spacesOfALevel, ' ');
  _out << std::string_view(text).substr(placeOfEntries(text, _name)) << '\n';
}

}  // namespace korvex
