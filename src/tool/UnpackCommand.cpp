#include "tool/UnpackCommand.h"

#include <cstring>
#include <ostream>

#include "korvex/QXDAOPackReader.h"
#include "tool/Counted.h"
#include "tool/Hex.h"
#include "tool/InputFiles.h"
#include "tool/PackedTable.h"
#include "tool/StreamedJson.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// -------------------------------------------------------------------------------------------
// One value

// The bytes that the digits stand for; the digits themselves are in `input.bytes`.
InputBytes decoded(const InputBytes& input) {
  HexBytes hex = bytesOfHex(input.bytes);
  if (!hex.error.empty()) return {input.name, "", std::move(hex.error)};
  return {input.name, std::move(hex.bytes), std::nullopt};
}

InputBytes readInput(const UnpackOptions& options, std::istream& in) {
  if (options.path) return readBytes(*options.path, in);
  const bool elsewhere = *options.hex == standardInput;
  InputBytes digits = elsewhere ? readBytes(*options.hex, in) : InputBytes{"--hex", *options.hex, std::nullopt};
  return digits.error ? digits : decoded(digits);
}

void printValue(std::ostream& out, const std::string& label, const PackedValue& value) {
  out << visibleText(label) << ": " << counted(value.size, "byte") << '\n';
  printPackedTable(out, value);
}

ExitCode unpackValue(const UnpackOptions& options, const Console& console) {
  const InputBytes input = readInput(options, console.in);
  if (input.error) {
    printUnreadable(console.err, {input.name, *input.error});
    return ExitCodeTrouble;
  }
  const PackedValue value = readPackedValue(input.bytes);
  if (options.format == UnpackFormat::Json) {
    console.out << jsonText(packedValueJson(value)) << '\n';
  } else {
    printValue(console.out, input.name, value);
  }
  return value.stop ? ExitCodeSomethingFound : ExitCodeNothingFound;
}

// -------------------------------------------------------------------------------------------
// A column of values

bool isBlob(const ColumnCell& cell) { return std::strcmp(cell.storage, "blob") == 0; }
bool isNull(const ColumnCell& cell) { return std::strcmp(cell.storage, "null") == 0; }

// One run over a column: prints each row as it comes.
class ColumnUnpacking {
 public:
  ColumnUnpacking(const UnpackOptions& options, const Console& console)
      : _options(options), _console(console), _entries(console.out, {}, 0) {}

  ExitCode run() {
    if (_options.format == UnpackFormat::Json) _entries.begin(Json::array());
    const std::optional<std::string> failure =
        readColumn(_options.column, [this](const ColumnCell& cell) { takeRow(cell); });
    if (_options.format == UnpackFormat::Json) _entries.end(Json::array());
    _console.out.flush();
    if (failure) {
      printUnreadable(_console.err, {_options.column.path, *failure});
      return ExitCodeTrouble;
    }
    _console.err << counted(_rows, "row") << ", " << counted(_errors, "error") << '\n';
    return _errors > 0 ? ExitCodeSomethingFound : ExitCodeNothingFound;
  }

 private:
  void takeRow(const ColumnCell& cell) {
    ++_rows;
    const PackedValue value = readPackedValue(cell.bytes);
    if (value.stop || !(isBlob(cell) || isNull(cell))) ++_errors;
    if (_options.format == UnpackFormat::Json) {
      _entries.add(entryOf(cell, value));
    } else {
      printRow(cell, value);
    }
  }

  [[nodiscard]] std::string label(const ColumnCell& cell) const {
    return cell.rowid ? "rowid " + std::to_string(*cell.rowid) : "row " + std::to_string(_rows) + " (no rowid)";
  }

  void printRow(const ColumnCell& cell, const PackedValue& value) const {
    if (isBlob(cell)) {
      printValue(_console.out, label(cell), value);
    } else {
      _console.out << label(cell) << ": " << (isNull(cell) ? "NULL" : std::string(cell.storage) + ", not a BLOB")
                   << '\n';
    }
  }

  [[nodiscard]] Json entryOf(const ColumnCell& cell, const PackedValue& value) const {
    Json entry = {{"row", _rows}, {"rowid", cell.rowid ? Json(*cell.rowid) : Json()}, {"storage", cell.storage}};
    entry.update(packedValueJson(value));
    return entry;
  }

  const UnpackOptions& _options;
  const Console& _console;
  StreamedJson _entries;
  std::size_t _rows = 0;
  std::size_t _errors = 0;
};

}  // namespace

ExitCode runUnpack(const UnpackOptions& options, const Console& console) {
  const bool oneValue = options.path || options.hex;
  return oneValue ? unpackValue(options, console) : ColumnUnpacking(options, console).run();
}

}  // namespace korvex
