#include "loader/WellFormedness.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::size_t notFound = std::string_view::npos;
constexpr std::size_t maxAttributes = 16;  // they are compared pairwise

constexpr std::string_view sectionEnd = "]]>";

bool isBlank(std::string_view text) { return text.find_first_not_of(xmlWhiteSpace) == notFound; }

bool isASCIIText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80U; });
}

struct Alphabet {
  bool hasControls;  // other than white space
  bool isASCII;
};

// Accumulates into bytes without a branch, so that compilers can vectorise the loop.
Alphabet alphabetOf(std::string_view text) {
  std::uint8_t controls = 0;
  std::uint8_t bits = 0;
  for (const char byte : text) {
    const bool isControl = static_cast<std::uint8_t>(byte) < 0x20U;
    const bool isWhiteSpace = (byte == '\t') | (byte == '\n') | (byte == '\r');
    controls = static_cast<std::uint8_t>(controls | static_cast<std::uint8_t>(isControl & !isWhiteSpace));
    bits = static_cast<std::uint8_t>(bits | static_cast<std::uint8_t>(byte));
  }
  return {controls != 0, bits < 0x80U};
}

bool holdsNoncharacter(std::string_view text) {
  return text.find("\uFFFE") != notFound || text.find("\uFFFF") != notFound;
}

// ---------------------------------------------------------------------------------------------
// References

bool isCharacter(std::uint32_t code) {
  if (code < 0x20U) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xD800U || (code >= 0xE000U && code < 0xFFFEU) || (code >= 0x10000U && code < 0x110000U);
}

std::optional<std::uint32_t> digitOf(char character, std::uint32_t base) {
  const auto decimal = static_cast<std::uint32_t>(static_cast<unsigned char>(character)) - '0';
  if (decimal < 10) return decimal;
  const auto letter = (static_cast<std::uint32_t>(static_cast<unsigned char>(character)) | 0x20U) - 'a';
  if (base == 16 && letter < 6) return letter + 10;
  return std::nullopt;
}

// For the text after "&#".
bool beginsWithCharacterNumber(std::string_view text) {
  constexpr std::size_t maxDigits = 7;
  const std::uint32_t base = text.starts_with('x') ? 16 : 10;
  if (base == 16) text.remove_prefix(1);
  std::uint32_t code = 0;
  std::size_t digits = 0;
  while (digits < std::min(text.size(), maxDigits)) {
    const std::optional<std::uint32_t> digit = digitOf(text[digits], base);
    if (!digit) break;
    code = code * base + *digit;
    ++digits;
  }
  return digits > 0 && text.substr(digits).starts_with(';') && isCharacter(code);
}

// For the text after "&".
bool beginsWithReference(std::string_view text) {
  constexpr std::array<std::string_view, 5> entities = {"lt;", "gt;", "amp;", "quot;", "apos;"};
  if (text.starts_with('#')) return beginsWithCharacterNumber(text.substr(1));
  return std::any_of(entities.begin(), entities.end(),
                     [text](std::string_view name) { return text.starts_with(name); });
}

bool referencesAreSound(std::string_view text) {
  for (std::size_t at = text.find('&'); at != notFound; at = text.find('&', at + 1)) {
    if (!beginsWithReference(text.substr(at + 1))) return false;
  }
  return true;
}

// ---------------------------------------------------------------------------------------------
// Counts over the whole text

// The length of the XML declaration that a text begins with: 0 without one, absent for an unusual one.
std::optional<std::size_t> lengthOfDeclaration(std::string_view text) {
  constexpr std::array<std::string_view, 6> usual = {R"(<?xml version="1.0" encoding="UTF-8"?>)",
                                                     R"(<?xml version="1.0" encoding="utf-8"?>)",
                                                     R"(<?xml version='1.0' encoding='UTF-8'?>)",
                                                     R"(<?xml version='1.0' encoding='utf-8'?>)",
                                                     R"(<?xml version="1.0"?>)",
                                                     R"(<?xml version='1.0'?>)"};
  if (!text.starts_with("<?xml")) return 0;
  const auto* found =
      std::find_if(usual.begin(), usual.end(), [text](std::string_view each) { return text.starts_with(each); });
  if (found == usual.end()) return std::nullopt;
  return found->size();
}

// A node whose content is not parsed as markup.
struct LiteralType {
  std::size_t opening;  // the length of the markup before the content, or before the name of an instruction
  std::string_view end;
};

LiteralType literalTypeOf(pugi::xml_node node) {
  if (node.type() == pugi::node_comment) return {std::string_view("<!--").size(), "-->"};
  if (node.type() == pugi::node_cdata) return {std::string_view("<![CDATA[").size(), sectionEnd};
  return {std::string_view("<?").size(), "?>"};
}

// No "--", and no "-" at the end.
bool isCommentSound(std::string_view content) { return content.find("--") == notFound && !content.ends_with('-'); }

std::size_t countOfSectionEnds(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(sectionEnd); at != notFound; at = text.find(sectionEnd, at + sectionEnd.size())) {
    ++count;
  }
  return count;
}

// Searches for the rarer of the two characters.
std::size_t countOfInstructionOpenings(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find('?', 1); at != notFound; at = text.find('?', at + 1)) {
    if (text[at - 1] == '<') ++count;
  }
  return count;
}

}  // namespace

WellFormedness::WellFormedness(std::string_view source, const char* parsed) : _source(source), _parsed(parsed) {
  const Alphabet alphabet = alphabetOf(source);
  _isASCII = alphabet.isASCII;
  _sound = !alphabet.hasControls && (_isASCII || (isValidUTF8(source) && !holdsNoncharacter(source)));
}

void WellFormedness::add(pugi::xml_node node) {
  if (!_sound) return;
  switch (node.type()) {
    case pugi::node_element:
      _sound = isPlainName(node.name()) && attributesAreSound(node);
      break;
    case pugi::node_cdata:
      _sound = node.parent().type() == pugi::node_element;
      ++_sections;
      addLiteral(node);
      break;
    case pugi::node_comment:
      _sound = isCommentSound(node.value());
      addLiteral(node);
      break;
    case pugi::node_pi:
      _sound = isPlainName(node.name());
      ++_instructions;
      addLiteral(node);
      break;
    default:
      _sound = false;
  }
}

// Every "&" between the literals begins a reference.
void WellFormedness::addLiteral(pugi::xml_node node) {
  const auto [begin, end] = markupOf(node);
  _sound = _sound && referencesAreSound(_source.substr(_followed, begin - _followed));
  _followed = end;
}

WellFormedness::Range WellFormedness::markupOf(pugi::xml_node literal) const {
  const LiteralType type = literalTypeOf(literal);
  const std::size_t content = offsetOf(literal.type() == pugi::node_pi ? literal.name() : literal.value());
  return {content - type.opening, _source.find(type.end, content) + type.end.size()};
}

bool WellFormedness::isPlainName(const char* name) const { return _isASCII || isASCIIText(name); }

bool WellFormedness::attributesAreSound(pugi::xml_node element) const {
  std::array<const char*, maxAttributes> names{};
  auto* end = names.begin();
  for (pugi::xml_attribute attribute = element.first_attribute(); attribute; attribute = attribute.next_attribute()) {
    const char* const name = attribute.name();
    const auto isSame = [name](const char* other) { return std::strcmp(name, other) == 0; };
    if (end == names.end() || std::any_of(names.begin(), end, isSame)) return false;
    if (!isPlainName(name) || !valueIsSound(attribute.value())) return false;
    *end++ = name;
  }
  return true;
}

// A "<" may only be written as a reference. Only values with a decoded "<" need a look at the source.
bool WellFormedness::valueIsSound(const char* value) const {
  if (!std::strchr(value, '<')) return true;
  const std::size_t begin = offsetOf(value);
  const char quote = _source[begin - 1];
  const std::string_view written = _source.substr(begin, _source.find(quote, begin) - begin);
  return written.find('<') == notFound;
}

bool WellFormedness::isCertain(const pugi::xml_document& document) {
  return _sound && referencesAreSound(_source.substr(_followed)) && countOfSectionEnds(_source) == _sections &&
         surroundingsAreSound(document);
}

// Only white space may surround the root element; comments and instructions may precede it.
bool WellFormedness::surroundingsAreSound(const pugi::xml_document& document) const {
  const std::optional<std::size_t> declaration = lengthOfDeclaration(_source);
  if (!declaration) return false;
  if (countOfInstructionOpenings(_source) != _instructions + (*declaration > 0 ? 1 : 0)) return false;
  std::size_t end = *declaration;
  pugi::xml_node node = document.first_child();
  for (; node && node.type() != pugi::node_element; node = node.next_sibling()) {
    const Range markup = markupOf(node);
    if (!isBlank(_source.substr(end, markup.begin - end))) return false;
    end = markup.end;
  }
  if (!node || node.next_sibling()) return false;
  const std::size_t root = offsetOf(node.name()) - 1;
  return isBlank(_source.substr(end, root - end)) && endsWithRoot(node);
}

// The last end tag of a text must be the root's: a later one would have nothing to close.
bool WellFormedness::endsWithRoot(pugi::xml_node root) const {
  const std::size_t endTag = _source.rfind("</");
  if (endTag == notFound) return false;
  std::string_view rest = _source.substr(endTag + 2);
  const std::string_view name = root.name();
  if (!rest.starts_with(name)) return false;
  rest.remove_prefix(name.size());
  const std::size_t close = rest.find('>');
  return close != notFound && isBlank(rest.substr(0, close)) && isBlank(rest.substr(close + 1));
}

}  // namespace korvex
