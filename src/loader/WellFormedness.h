// What pugixml accepts although it is not well-formed.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <string_view>

namespace korvex {

// Follows the nodes that pugixml made of a text and looks for what it tolerates. May doubt a
// well-formed text, never trusts a malformed one. Unusual texts are doubted: those with a DOCTYPE,
// with names that are not ASCII, with markup in comments, or with many attributes in one element.
class WellFormedness {
 public:
  // The text, and the beginning of the copy that was parsed in place. Both outlive this object.
  WellFormedness(std::string_view source, const char* parsed);

  // Every node but texts, in document order, as it was parsed.
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
  std::size_t _instructions = 0;  // an XML declaration is none
  std::size_t _followed = 0;      // references were checked up to here
};

}  // namespace korvex
