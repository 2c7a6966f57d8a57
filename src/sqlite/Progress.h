// The record, in the file itself, of how far an interrupted method has come.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "korvex/sqlite/Outcome.h"
#include "sqlite/Connection.h"

namespace korvex {

// The work that comes next.
struct Position {
  std::int64_t entry = 0;
  std::int64_t step = 0;
};

// The record of one call, which equal arguments find again. All operations run in the transaction that is open, so the
// record says what the file holds, whenever both are read.
class Progress {
 public:
  // `units` of another number than stored tell that the method has changed since.
  Progress(Connection& connection, std::string method, std::string digest, std::int64_t units)
      : _connection(connection), _method(std::move(method)), _digest(std::move(digest)), _units(units) {}

  // Where to go on; the beginning when there is no record.
  [[nodiscard]] Outcome<Position> load();
  [[nodiscard]] Failure store(const Position& position);
  // Fails when the record is no longer what was stored: another process went on with the work.
  [[nodiscard]] Failure confirm(const Position& position);
  [[nodiscard]] Failure remove();

 private:
  // Runs SQL with the method, the digest and numbers; gives the numbers of the row, if there is one.
  using Numbers = std::vector<std::int64_t>;
  [[nodiscard]] Outcome<Numbers> run(const char* sql, const Numbers& numbers);

  Connection& _connection;
  std::string _method;
  std::string _digest;
  std::int64_t _units;
  bool _stored = false;
};

}  // namespace korvex
