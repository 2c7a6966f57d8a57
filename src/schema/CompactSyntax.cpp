#include <algorithm>
#include <array>
#include <numeric>

#include "schema/Writers.h"

namespace korvex::schema {

namespace {

constexpr std::size_t lineWidth = 110;
constexpr std::string_view noNamespace = "none";

// Keywords, which are names only after a backslash.
constexpr std::array<std::string_view, 19> keywords{
    "attribute", "default", "datatypes", "div",        "element", "empty", "external", "grammar", "include", "inherit",
    "list",      "mixed",   "namespace", "notAllowed", "parent",  "start", "string",   "text",    "token"};

std::string nameOf(std::string_view name) {
  const bool keyword = std::find(keywords.begin(), keywords.end(), name) != keywords.end();
  return (keyword ? "\\" : "") + std::string(name);
}

std::string quoted(std::string_view text) {
  const char quote = text.find('"') == std::string_view::npos ? '"' : '\'';
  return quote + std::string(text) + quote;
}

bool fitsOneLine(const std::vector<std::string>& pieces, std::size_t indent) {
  const std::size_t length = std::accumulate(pieces.begin(), pieces.end(), indent,
                                             [](std::size_t sum, const auto& piece) { return sum + piece.size() + 3; });
  return length <= lineWidth && std::none_of(pieces.begin(), pieces.end(), [](const std::string& piece) {
           return piece.find('\n') != std::string::npos;
         });
}

// The pieces in brackets: on one line if they fit, otherwise one per line.
std::string bracketed(std::string_view opening, const std::vector<std::string>& pieces, std::string_view separator,
                      std::string_view closing, std::size_t indent, bool spaced) {
  const bool oneLine = fitsOneLine(pieces, indent + opening.size());
  const std::string inner = oneLine ? (spaced ? " " : "") : "\n" + std::string(indent + 2, ' ');
  const std::string between = oneLine ? " " : inner;
  std::string text(opening);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    text.append(i == 0 ? inner : between).append(pieces[i]);
    if (i + 1 < pieces.size()) text.append(separator == "|" ? " |" : separator);
  }
  return text.append(oneLine ? inner : "\n" + std::string(indent, ' ')).append(closing);
}

std::string textOf(const Node& node, std::size_t indent);

std::vector<std::string> textsOf(const std::vector<Node>& nodes, std::size_t indent) {
  std::vector<std::string> texts;
  for (const Node& node : nodes) texts.push_back(textOf(node, indent));
  return texts;
}

bool isNameClass(const Node& node) { return node.name == "anyName"; }
bool isDocumentation(const Node& node) { return node.name == "a:documentation"; }

std::string nameClassOf(const Node& node) {
  const auto anyName = std::find_if(node.children.begin(), node.children.end(), isNameClass);
  if (anyName == node.children.end()) return nameOf(node.valueOf("name"));
  if (anyName->children.empty()) return "*";
  std::vector<std::string> names;
  for (const Node& name : anyName->children.front().children) {
    names.push_back(name.name == "nsName" ? std::string(noNamespace) + ":*" : nameOf(name.text));
  }
  const std::string first = names.front();
  const std::string all = std::accumulate(names.begin() + 1, names.end(), first,
                                          [](const auto& sum, const auto& name) { return sum + " | " + name; });
  return "* - " + (names.size() == 1 ? first : "(" + all + ")");
}

// An element or attribute, below its documentation.
std::string named(const Node& node, std::size_t indent) {
  std::string text;
  std::vector<Node> inside;
  for (const Node& child : node.children) {
    if (isDocumentation(child)) text += "## " + child.text + "\n" + std::string(indent, ' ');
    if (!isDocumentation(child) && !isNameClass(child)) inside.push_back(child);
  }
  const std::string opening = node.name + " " + nameClassOf(node) + " {";
  return text + bracketed(opening, textsOf(inside, indent + 2), ",", "}", indent, true);
}

std::string data(const Node& node, std::size_t indent) {
  std::vector<std::string> parameters;
  for (const Node& parameter : node.children)
    parameters.push_back(std::string(parameter.valueOf("name")) + " = " + quoted(parameter.text));
  return bracketed("xsd:" + std::string(node.valueOf("type")) + " {", parameters, "", "}", indent, true);
}

std::string keyword(const Node& node, std::size_t /*indent*/) { return node.name; }
std::string reference(const Node& node, std::size_t /*indent*/) { return nameOf(node.valueOf("name")); }
std::string value(const Node& node, std::size_t /*indent*/) { return quoted(node.text); }
std::string group(const Node& node, std::size_t indent) {
  return bracketed("(", textsOf(node.children, indent + 2), ",", ")", indent, false);
}
std::string choice(const Node& node, std::size_t indent) {
  return bracketed("(", textsOf(node.children, indent + 2), "|", ")", indent, false);
}

template <char sign>
std::string repeated(const Node& node, std::size_t indent) {
  return textOf(node.children.front(), indent) + sign;
}

struct Writer {
  std::string_view name;
  std::string (*write)(const Node& node, std::size_t indent);
};

constexpr std::array<Writer, 12> writers{{
    {"element", named},
    {"attribute", named},
    {"ref", reference},
    {"text", keyword},
    {"empty", keyword},
    {"value", value},
    {"data", data},
    {"group", group},
    {"choice", choice},
    {"optional", repeated<'?'>},
    {"zeroOrMore", repeated<'*'>},
    {"oneOrMore", repeated<'+'>},
}};

std::string textOf(const Node& node, std::size_t indent) {
  const auto* writer =
      std::find_if(writers.begin(), writers.end(), [&node](const Writer& row) { return row.name == node.name; });
  return writer->write(node, indent);
}

}  // namespace

std::string compactText(const Node& relaxNg) {
  std::string output = "namespace " + std::string(noNamespace) + " = \"\"\n";
  for (const Node& child : relaxNg.children) {
    const std::string name = child.name == "start" ? child.name : nameOf(child.valueOf("name"));
    output.append("\n" + name + " =\n  ").append(textOf(child.children.front(), 2)).append("\n");
  }
  return output;
}

}  // namespace korvex::schema
