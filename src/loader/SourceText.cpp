#include "korvex/SourceText.h"

#include <algorithm>
#include <functional>

#include "korvex/QXDAOPackReader.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::size_t blockLength = 1024;

// Every byte except UTF-8 continuation bytes.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), std::not_fn(continuesCharacter)));
}

// The offset after the line end that begins at `at`.
std::size_t afterLineEnd(std::string_view text, std::size_t at) { return at + (text.substr(at, 2) == "\r\n" ? 2 : 1); }

// Finds the line ends in order. It searches for each of the two characters separately, and only as often as it occurs,
// which is much faster than searching for either.
class LineEnds {
 public:
  explicit LineEnds(std::string_view text) : _text(text), _feed(text.find('\n')), _return(text.find('\r')) {}

  // The offset of the first line end at or after `from`, which must not decrease between calls; npos if there is none.
  std::size_t next(std::size_t from) {
    if (_feed < from) _feed = _text.find('\n', from);
    if (_return < from) _return = _text.find('\r', from);
    return std::min(_feed, _return);
  }

 private:
  std::string_view _text;
  std::size_t _feed;
  std::size_t _return;
};

}  // namespace

XMLPosition SourceText::position(std::size_t offset) const {
  const std::vector<std::size_t>& starts = index().lineStarts;
  offset = std::min(offset, _text.size());
  const auto after = std::upper_bound(starts.begin(), starts.end(), offset);
  const auto line = static_cast<std::size_t>(after - starts.begin());
  return {line, charactersBefore(offset) - charactersBefore(starts[line - 1]) + 1};
}

std::string_view SourceText::line(std::size_t number) const {
  const std::vector<std::size_t>& starts = index().lineStarts;
  if (number == 0 || number > starts.size()) return {};
  const std::size_t end = number < starts.size() ? starts[number] : _text.size();
  const std::string_view line = text().substr(starts[number - 1], end - starts[number - 1]);
  return line.substr(0, line.find_last_not_of("\r\n") + 1);
}

const SourceText::Index& SourceText::index() const {
  std::call_once(_indexed, [this] {
    findLines();
    countCharacters();
  });
  return _index;
}

void SourceText::findLines() const {
  LineEnds ends(_text);
  _index.lineStarts.push_back(0);
  for (std::size_t end = ends.next(0); end != std::string_view::npos; end = ends.next(_index.lineStarts.back())) {
    _index.lineStarts.push_back(afterLineEnd(_text, end));
  }
}

void SourceText::countCharacters() const {
  std::size_t counted = 0;
  for (std::size_t begin = 0; begin <= _text.size(); begin += blockLength) {
    _index.charactersBefore.push_back(counted);
    counted += characterCount(text().substr(begin, blockLength));
  }
}

std::size_t SourceText::charactersBefore(std::size_t offset) const {
  const std::size_t block = offset / blockLength;
  return _index.charactersBefore[block] + characterCount(text().substr(block * blockLength, offset % blockLength));
}

}  // namespace korvex
