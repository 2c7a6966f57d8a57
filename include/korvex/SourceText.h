// The text of a document and the lines in it.
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

// UTF-8 text, without a byte order mark. The lines are found when they are first asked for, once;
// all operations may run on any thread. Views are valid while the SourceText lives.
class KORVEX_EXPORT SourceText {
 public:
  explicit SourceText(std::string text) : _text(std::move(text)) {}
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  [[nodiscard]] std::string_view text() const { return _text; }
  // The position of the byte at `offset`; an offset past the end gives the position of the end.
  // The time it takes depends on the number of lines, not on their length.
  [[nodiscard]] XMLPosition position(std::size_t offset) const;
  // Line `number` (from 1) without its line end; empty when there is no such line.
  [[nodiscard]] std::string_view line(std::size_t number) const;

 private:
  // What makes a position cheap to find.
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
