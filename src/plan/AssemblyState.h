// The state of an assembly between the decisions and the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Plan.h"
#include "korvex/QXDAOTrim.h"
#include "plan/SetContents.h"
#include "plan/ValueReading.h"

namespace korvex {

struct Assembly::State {
  const SetContents* contents = nullptr;
  const Plan* plan = nullptr;
  std::string_view table;
  const ValueList* entries = nullptr;  // of the method's foreach
  ValueScope scope;

  const PlanUnit* unit = nullptr;
  std::string key;
  std::vector<BoundValue> values;
  bool quits = false;
  bool empty = true;

  // Scratch memory.
  std::vector<ValueView> stack;
  std::vector<std::uint32_t> trims;
  std::vector<const Dictionary::Entry*> pairs;
};

// Numbers in keys: seven bits per byte, the lowest first.
void appendNumber(std::string& key, std::uint64_t number);
[[nodiscard]] std::uint64_t takeNumber(std::string_view& key);
void appendName(std::string& key, std::string_view name);
[[nodiscard]] std::string_view takeName(std::string_view& key);
// The start of every key.
void appendUnit(std::string& key, std::uint32_t number);

// The SQL of a unit, written from the decisions in a key, and the instructions of its pieces.
class AssembledText {
 public:
  AssembledText(const SetContents& contents, const PlanUnit& unit, std::string_view key);

  [[nodiscard]] std::string& sql() { return _sql; }
  [[nodiscard]] SourcePlace placeOf(std::size_t offset) const;
  // Calls visit(offset, place, instruction, skipped) for each piece in order; see Piece.
  template <typename Visit>
  void forEachPiece(const Visit& visit) const {
    for (const Piece& piece : _pieces) visit(piece.offset, piece.place, piece.instruction, piece.skipped);
  }

 private:
  struct Piece {
    std::size_t offset;
    std::size_t place;
    std::size_t instruction;
    std::size_t skipped = 0;  // of its text
  };
  struct OpenTrim {
    const QXDAOTrim* trim;
    std::size_t begin;    // of its whole output
    std::size_t content;  // behind its keyword
    std::size_t pieces;
    std::size_t code;
  };

  void write(std::size_t at);
  void writeTrim(const PlanInstruction& instruction);
  void endTrim();
  void writeForeach(std::size_t at);
  void writeFormat(const PlanInstruction& instruction);
  void beginPiece(const PlanInstruction& instruction);
  void separate();
  void append(std::string_view text, bool isCode);
  void erase(std::size_t content, std::size_t begin, std::size_t end);
  [[nodiscard]] bool takeBit();

  const SetContents& _contents;
  std::string_view _key;
  std::string _sql;
  std::vector<Piece> _pieces;
  std::vector<OpenTrim> _trims;
  std::size_t _at = 0;
  std::size_t _place = 0;
  std::size_t _code = 0;
  bool _inLineComment = false;
  bool _ended = false;
};

}  // namespace korvex
