// A text that is open in an editor.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "lsp/Json.h"
#include "markup/Markup.h"

namespace korvex::lsp {

// A position as in the protocol: line and character count from 0, characters in UTF-16 code units.
struct Position {
  std::size_t line = 0;
  std::size_t character = 0;
};

struct Range {
  Position begin;
  Position end;
};

class TextDocument {
 public:
  TextDocument(std::string uri, std::string text);

  [[nodiscard]] const std::string& uri() const { return _uri; }
  [[nodiscard]] const std::string& text() const { return _text; }

  // Applies a content change, which replaces a range or the whole text.
  void change(const Json& contentChange);

  // A character past the end of a line means its end, a line past the last one the end of the text.
  [[nodiscard]] std::size_t offsetOf(const Position& position) const;
  [[nodiscard]] Position positionOf(std::size_t offset) const;
  [[nodiscard]] Range positionsOf(Span span) const { return {positionOf(span.begin), positionOf(span.end)}; }
  [[nodiscard]] Json rangeOf(Span span) const;

 private:
  void replace(Span span, std::string_view replacement);
  // Updates the lines after a replacement that now ends at `end`.
  void findLines(Span replaced, std::size_t end);
  // Without its line end.
  [[nodiscard]] std::size_t endOfLine(std::size_t line) const;
  [[nodiscard]] std::size_t unitsBefore(std::size_t offset) const;
  [[nodiscard]] std::size_t unitsBetween(std::size_t begin, std::size_t end) const;

  std::string _uri;
  std::string _text;
  std::vector<std::size_t> _lineStarts{0};
  mutable std::vector<std::size_t> _unitsBeforeBlock{0};  // as far as it was measured
};

[[nodiscard]] Json jsonOf(const Range& range);
[[nodiscard]] Position positionIn(const Json& params);

}  // namespace korvex::lsp
