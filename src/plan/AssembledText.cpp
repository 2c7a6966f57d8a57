#include <algorithm>

#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOTrim.h"
#include "plan/AssemblyState.h"
#include "plan/SqlText.h"

namespace korvex {

namespace {

constexpr std::size_t unitNumberBytes = 4;

std::string_view textOr(OptionalStringView text) { return text.value_or(std::string_view()); }

bool holdsCode(std::string_view text) { return beginOfCode(text) < text.size(); }

}  // namespace

void appendNumber(std::string& key, std::uint64_t number) {
  for (; number >= 0x80; number >>= 7U) key += static_cast<char>(number | 0x80U);
  key += static_cast<char>(number);
}

std::uint64_t takeNumber(std::string_view& key) {
  std::uint64_t number = 0;
  for (unsigned shift = 0;; shift += 7) {
    const auto byte = static_cast<unsigned char>(key.front());
    key.remove_prefix(1);
    number |= std::uint64_t{byte & 0x7FU} << shift;
    if (byte < 0x80U) return number;
  }
}

void appendName(std::string& key, std::string_view name) {
  appendNumber(key, name.size());
  key += name;
}

std::string_view takeName(std::string_view& key) {
  const std::size_t size = takeNumber(key);
  const std::string_view name = key.substr(0, size);
  key.remove_prefix(size);
  return name;
}

void appendUnit(std::string& key, std::uint32_t number) {
  for (std::size_t byte = 0; byte < unitNumberBytes; ++byte) key += static_cast<char>(number >> (8 * byte));
}

AssembledText::AssembledText(const SetContents& contents, const PlanUnit& unit, std::string_view key)
    : _contents(contents), _key(key.substr(unitNumberBytes)), _at(unit._begin), _place(unit._begin) {
  while (!_ended && _contents.instructions[_at].operation != PlanOperation::End) write(_at++);
}

void AssembledText::write(std::size_t at) {
  const PlanInstruction& instruction = _contents.instructions[at];
  switch (instruction.operation) {
    case PlanOperation::Place:
      _place = at;
      return;
    case PlanOperation::Text:
      beginPiece(instruction);
      append(instruction.text(), instruction.has(HasCode));
      _inLineComment = instruction.has(EndsInLineComment);
      return;
    case PlanOperation::Value:
      beginPiece(instruction);
      return append("?", true);
    case PlanOperation::Table:
      beginPiece(instruction);
      appendQuotedName(_sql, takeName(_key));
      ++_code;
      return;
    case PlanOperation::If:
      if (!takeBit()) _at = instruction.target;
      return;
    case PlanOperation::Jump:
      _at = instruction.target;
      return;
    case PlanOperation::Trim:
      return writeTrim(instruction);
    case PlanOperation::TrimEnd:
      return endTrim();
    case PlanOperation::Foreach:
      return writeForeach(at);
    case PlanOperation::Format:
      return writeFormat(instruction);
    case PlanOperation::End:
      return;
  }
}

void AssembledText::writeTrim(const PlanInstruction& instruction) {
  const auto& trim = instruction.element<QXDAOTrim>();
  const std::size_t begin = _sql.size();
  const std::size_t pieces = _pieces.size();
  beginPiece(instruction);
  separate();
  _sql += textOr(trim.operationName());
  separate();
  _trims.push_back({&trim, begin, _sql.size(), pieces, _code});
}

// A trim without code writes nothing. One with ignoreAfter ends all open trims.
void AssembledText::endTrim() {
  const OpenTrim open = _trims.back();
  _trims.pop_back();
  if (_code == open.code) {
    _sql.resize(open.begin);
    _pieces.resize(open.pieces);
    _inLineComment = false;
    if (open.trim->onVoid() != QXDAOTrimOnVoidTypeIgnoreAfter) return;
    _ended = true;
    while (!_trims.empty()) endTrim();
    return;
  }
  const auto take = [&](std::span<const std::string_view> overrides, auto find) {
    for (const std::string_view override : overrides) {
      const SqlRange range = find(std::string_view(_sql).substr(open.content), override);
      if (range.begin < range.end) return erase(open.content, range.begin, range.end);
    }
  };
  take(open.trim->prefixOverrides(), findPrefixOverride);
  take(open.trim->suffixOverrides(), findSuffixOverride);
}

// A range of a trim's content. The piece in which it ends continues after it with the rest of its text.
void AssembledText::erase(std::size_t content, std::size_t begin, std::size_t end) {
  begin += content;
  end += content;
  const auto behind =
      std::find_if(_pieces.begin(), _pieces.end(), [end](const Piece& piece) { return piece.offset > end; });
  for (auto piece = behind; piece != _pieces.end(); ++piece) piece->offset -= end - begin;
  Piece rest = *std::prev(behind);
  rest.skipped += end - rest.offset;
  rest.offset = begin;
  const auto inside =
      std::find_if(_pieces.begin(), behind, [begin](const Piece& piece) { return piece.offset >= begin; });
  _pieces.insert(_pieces.erase(inside, behind), rest);
  _sql.erase(begin, end - begin);
}

void AssembledText::writeForeach(std::size_t at) {
  const PlanInstruction& instruction = _contents.instructions[at];
  const auto& loop = instruction.element<QXDAOForeach>();
  const std::size_t end = instruction.number;
  const std::size_t place = _place;
  beginPiece(instruction);
  separate();
  append(textOr(loop.open()), holdsCode(textOr(loop.open())));
  const std::uint64_t count = takeNumber(_key);
  for (std::uint64_t entry = 0; entry < count; ++entry) {
    if (entry > 0) append(textOr(loop.separator()), holdsCode(textOr(loop.separator())));
    for (_at = at + 1; _at < end;) write(_at++);
  }
  _at = end;
  _place = place;
  append(textOr(loop.close()), holdsCode(textOr(loop.close())));
}

void AssembledText::writeFormat(const PlanInstruction& instruction) {
  const auto& format = instruction.element<QXDAOKeyValueFormatter>();
  const std::uint64_t count = takeNumber(_key);
  if (count == 0) return;
  beginPiece(instruction);
  separate();
  append(textOr(format.prefix()), true);
  for (std::uint64_t pair = 0; pair < count; ++pair) {
    if (pair > 0) append(textOr(format.join()), true);
    appendQuotedName(_sql, takeName(_key));
    append(" = ?", true);
  }
}

// Records the origin of the piece, and separates it with a space if it is the first one of a text.
void AssembledText::beginPiece(const PlanInstruction& instruction) {
  if (instruction.has(BeginsPiece) || _inLineComment) separate();
  const std::size_t index = static_cast<std::size_t>(&instruction - _contents.instructions.data());
  _pieces.push_back({_sql.size(), _place, index});
}

void AssembledText::separate() {
  if (_sql.empty()) return;
  if (_inLineComment) _sql += '\n';
  _inLineComment = false;
  if (sqlWhiteSpace.find(_sql.back()) == std::string_view::npos) _sql += ' ';
}

void AssembledText::append(std::string_view text, bool isCode) {
  _sql += text;
  if (isCode) ++_code;
}

bool AssembledText::takeBit() {
  const bool bit = _key.front() != '\0';
  _key.remove_prefix(1);
  return bit;
}

SourcePlace AssembledText::placeOf(std::size_t offset) const {
  const auto behind = std::upper_bound(_pieces.begin(), _pieces.end(), offset,
                                       [](std::size_t wanted, const Piece& piece) { return wanted < piece.offset; });
  if (behind == _pieces.begin()) return placeOfInstruction(_contents, _place, _place);
  const Piece& piece = *std::prev(behind);
  const bool text = _contents.instructions[piece.instruction].operation == PlanOperation::Text;
  const std::size_t length = text ? _contents.instructions[piece.instruction].number : 0;
  return placeOfInstruction(_contents, piece.place, piece.instruction,
                            std::min(piece.skipped + offset - piece.offset, length));
}

}  // namespace korvex
