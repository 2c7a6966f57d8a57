// The text of a document, with its lines.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/Export.h"
#include "korvex/XMLNode.h"

namespace korvex {

// UTF-8 text without a byte order mark. Its lines are indexed once, on first use. All operations may
// run on any thread. Views are valid while the SourceText lives.
class KORVEX_EXPORT SourceText {
 public:
  explicit SourceText(std::string text) : _text(std::move(text)) {}
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  [[nodiscard]] std::string_view text() const { return _text; }
  // The position of the byte at `offset`; an offset past the end yields the position of the end.
  // The cost depends on the number of lines, not on their length.
  [[nodiscard]] XMLPosition position(std::size_t offset) const;
  // Line `number`, counted from 1, without its line terminator; empty if there is no such line.
  [[nodiscard]] std::string_view line(std::size_t number) const;

 private:
  // Makes positions cheap to find.
  struct Index {
    std::vector<std::size_t> lineStarts;        // the offset of each line's first byte
    std::vector<std::size_t> charactersBefore;  // the characters before each block of the text
  };

  const Index& index() const;
  void findLines() const;
  void countCharacters() const;
  [[nodiscard]] std::size_t charactersBefore(std::size_t offset) const;

  std::string _text;
  mutable std::once_flag _indexed;
  mutable Index _index;
};

}  // namespace korvex
