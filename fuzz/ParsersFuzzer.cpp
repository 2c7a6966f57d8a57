// Every document that the strict pass accepts must have the same tree with it, without it, and from the events of
// Expat. Trees are compared as outlines, a line for each start tag, attribute, text, end tag, comment
// and processing instruction, with its place in the source.
#include <cctype>
#include <optional>

#include "fuzz/Disagreement.h"
#include "fuzz/Input.h"
#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"
#include "loader/ExpatParser.h"
#include "platform/Strings.h"

namespace korvex {
namespace {

using Outline = std::vector<std::string>;

std::string at(std::size_t line, std::size_t column) {
  return std::to_string(line) + ':' + std::to_string(column) + ' ';
}

// ---------------------------------------------------------------------------------------------
// The outline of a document tree

std::string labelOf(const XMLNode& node) {
  switch (node.kind()) {
    case XMLNodeKind::Element:
      return "<" + std::string(node.name().value());
    case XMLNodeKind::Text:
      return "text " + std::string(node.text().value());
    case XMLNodeKind::Comment:
      return "comment";
    case XMLNodeKind::ProcessingInstruction:
      return "instruction " + std::string(node.name().value());
    default:
      return "kind " + std::to_string(static_cast<int>(node.kind()));
  }
}

void append(Outline& outline, const XMLNode& node) {
  const XMLPosition position = node.position().value();
  outline.push_back(at(position.line, position.column) + labelOf(node));
  if (node.kind() != XMLNodeKind::Element) return;
  for (const XMLAttribute& attribute : node.attributes()) {
    outline.push_back(std::string(attribute.name().value()).append("=").append(attribute.stringValue().value()));
  }
  for (const XMLNode& child : node.children()) append(outline, child);
  outline.emplace_back(">");
}

Outline outlineOf(const Document& document) {
  Outline outline;
  append(outline, document.root());
  return outline;
}

// ---------------------------------------------------------------------------------------------
// The outline by Expat's events

bool beginsWithUTF8Mark(std::string_view bytes) { return bytes.starts_with("\xEF\xBB\xBF"); }

bool beginsWithMark(std::string_view bytes) {
  return beginsWithUTF8Mark(bytes) || bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE");
}

class Events {
 public:
  Events(std::string_view bytes, bool keepWhiteSpace)
      : _parser(XML_ParserCreate(nullptr)),
        _hasMark(beginsWithMark(bytes)),
        _hasUTF8Mark(beginsWithUTF8Mark(bytes)),
        _keepWhiteSpace(keepWhiteSpace) {
    XML_SetUserData(_parser.get(), this);
    XML_SetElementHandler(_parser.get(), startTag, endTag);
    XML_SetCharacterDataHandler(_parser.get(), characters);
    XML_SetCdataSectionHandler(_parser.get(), startSection, [](void*) {});
    XML_SetCommentHandler(_parser.get(), comment);
    XML_SetProcessingInstructionHandler(_parser.get(), instruction);
    XML_SetStartDoctypeDeclHandler(_parser.get(), doctype);
    XML_SetXmlDeclHandler(_parser.get(), declaration);
    _accepted = parseWhole(_parser, bytes);
  }

  [[nodiscard]] bool accepted() const { return _accepted; }
  [[nodiscard]] bool hasDoctype() const { return _hasDoctype; }
  // Expat counts the columns of its first line by the declared encoding, those of a byte order mark of UTF-8 included:
  // where the two contradict each other, its places cannot be used.
  [[nodiscard]] bool contradictsItsMark() const { return _contradictsItsMark; }
  // In documents that are not in UTF-8, Expat takes three characters for letters of names that XML does not.
  [[nodiscard]] bool hasDoubtfulName() const { return _hasDoubtfulName; }
  [[nodiscard]] const Outline& outline() const { return _outline; }

 private:
  static Events& self(void* userData) { return *static_cast<Events*>(userData); }

  // Expat counts a byte order mark as a column; from 0, as it counts columns, that is the one too few.
  [[nodiscard]] std::string place() const {
    const std::size_t line = XML_GetCurrentLineNumber(_parser.get());
    return at(line, XML_GetCurrentColumnNumber(_parser.get()) + (line == 1 && _hasMark ? 0 : 1));
  }

  // Notes what stands in the root element; the text before it ends here.
  void add(const std::string& line) {
    endText();
    if (_depth > 0) _outline.push_back(line);
  }

  void beginText() {
    if (!_textPlace) _textPlace = place();
  }

  void endText() {
    const bool counts = _keepWhiteSpace ? !_text.empty() : _text.find_first_not_of(" \t\r\n") != std::string::npos;
    if (counts) _outline.push_back(*_textPlace + "text " + _text);
    _text.clear();
    _textPlace.reset();
  }

  void noteName(std::string_view name) {
    for (const std::string_view letter : {"\u00AA", "\u00B5", "\u00BA"}) {
      if (name.find(letter) != std::string_view::npos) _hasDoubtfulName = true;
    }
  }

  static void XMLCALL startTag(void* userData, const XML_Char* tag, const XML_Char** attributes) {
    Events& events = self(userData);
    ++events._depth;
    events.noteName(tag);
    events.add(events.place() + "<" + tag);
    for (; *attributes; attributes += 2) {
      events.noteName(attributes[0]);
      events._outline.push_back(attributes[0] + std::string("=") + attributes[1]);
    }
  }
  static void XMLCALL endTag(void* userData, const XML_Char* /*tag*/) {
    self(userData).add(">");
    --self(userData)._depth;
  }
  static void XMLCALL characters(void* userData, const XML_Char* text, int length) {
    self(userData).beginText();
    self(userData)._text.append(text, static_cast<std::size_t>(length));
  }
  static void XMLCALL startSection(void* userData) { self(userData).beginText(); }
  static void XMLCALL comment(void* userData, const XML_Char* /*text*/) {
    self(userData).add(self(userData).place() + "comment");
  }
  static void XMLCALL instruction(void* userData, const XML_Char* target, const XML_Char* /*text*/) {
    self(userData).noteName(target);
    self(userData).add(self(userData).place() + "instruction " + target);
  }
  static void XMLCALL doctype(void* userData, const XML_Char* /*name*/, const XML_Char* /*systemId*/,
                              const XML_Char* /*publicId*/, int /*hasInternalSubset*/) {
    self(userData)._hasDoctype = true;
  }

  static void XMLCALL declaration(void* userData, const XML_Char* /*version*/, const XML_Char* encoding,
                                  int /*standalone*/) {
    Events& events = self(userData);
    events._contradictsItsMark = events._hasUTF8Mark && encoding && asciiLowerCase(encoding) != "utf-8";
  }

  ExpatParser _parser;
  bool _hasMark;
  bool _hasUTF8Mark;
  bool _keepWhiteSpace;
  bool _accepted = false;
  bool _hasDoctype = false;
  bool _contradictsItsMark = false;
  bool _hasDoubtfulName = false;
  std::size_t _depth = 0;
  std::string _text;
  std::optional<std::string> _textPlace;
  Outline _outline;
};

// ---------------------------------------------------------------------------------------------

void compare(std::string_view input, bool keepWhiteSpace) {
  LoadOptions options{.keepWhiteSpaceText = keepWhiteSpace};
  const Events events(input, keepWhiteSpace);
  const Document::Result strict = Document::fromBytes(std::string(input), options);
  if (!strict.document) {
    const bool mayBeRefused =
        events.hasDoctype() || events.hasDoubtfulName() || strict.error->rule == DocumentRule::TooDeep;
    expectThat(!events.accepted() || mayBeRefused, "a document that Expat accepts is accepted");
    return;
  }
  expectThat(events.accepted(), "Expat accepts an accepted document");
  if (events.contradictsItsMark()) return;
  options.strict = false;
  const Document::Result lenient = Document::fromBytes(std::string(input), options);
  expectThat(lenient.document != nullptr, "an accepted document is accepted without the strict pass");
  expectSame("outline", outlineOf(*strict.document), events.outline());
  expectSame("outline without the strict pass", outlineOf(*lenient.document), events.outline());
}

}  // namespace
}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const bool keepWhiteSpace : {false, true}) korvex::compare(korvex::inputOf(data, size), keepWhiteSpace);
  return 0;
}
