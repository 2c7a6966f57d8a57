// Where in a source text the things stand that findings are about.
#pragma once

#include "Language/Markup.h"
#include "Loader/SourceText.h"
#include "Platform/XMLNode.h"

namespace korvex {

class Places {
 public:
  // The source must live as long as the Places.
  explicit Places(const SourceText& source) : _source(source), _markup(source.text()) {}

  [[nodiscard]] const SourceText& source() const { return _source; }
  [[nodiscard]] const Markup& markup() const { return _markup; }

  // The element whose start tag begins there; null when there is none.
  [[nodiscard]] const MarkupElement* elementAt(std::size_t offset) const;
  // The tag's "<" and name where an element begins, else the rest of the line.
  [[nodiscard]] Span spanAt(std::size_t offset) const;

 private:
  const SourceText& _source;
  Markup _markup;
};

}  // namespace korvex
