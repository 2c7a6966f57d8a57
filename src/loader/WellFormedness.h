// Finds documents that pugixml accepts although they are not well-formed.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <string_view>

namespace korvex {

// Follows the nodes that pugixml made from a text and checks what pugixml tolerates. It may doubt a well-formed text,
// but never trusts a malformed one. It doubts unusual texts: those with a DOCTYPE, with names outside ASCII, with
// markup in comments, or with many attributes in one element.
class WellFormedness {
 public:
  // The text, and the start of the copy that was parsed in place. Both must outlive this object.
  WellFormedness(std::string_view source, const char* parsed);

  // Adds a parsed node. Call it for every node except texts, in document order.
  void add(pugi::xml_node node);
  // Whether the text is certainly well-formed. Call it once, after all nodes were added.
  [[nodiscard]] bool isCertain(const pugi::xml_document& document);

 private:
  struct Range {
    std::size_t begin;
    std::size_t end;
  };

  void addLiteral(pugi::xml_node node);
  [[nodiscard]] Range markupOf(pugi::xml_node literal) const;
  [[nodiscard]] bool isPlainName(const char* name) const;
  [[nodiscard]] bool attributesAreSound(pugi::xml_node element) const;
  [[nodiscard]] bool valueIsSound(const char* value) const;
  [[nodiscard]] bool surroundingsAreSound(const pugi::xml_document& document) const;
  [[nodiscard]] bool endsWithRoot(pugi::xml_node root) const;
  [[nodiscard]] std::size_t offsetOf(const char* place) const { return static_cast<std::size_t>(place - _parsed); }

  std::string_view _source;
  const char* _parsed;
  bool _sound = false;  // as far as is known
  bool _isASCII = false;
  std::size_t _sections = 0;      // of CDATA
  std::size_t _instructions = 0;  // without the XML declaration
  std::size_t _followed = 0;      // references were checked up to here
};

}  // namespace korvex
