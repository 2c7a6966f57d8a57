// Prepared statements by the decisions that their SQL came from.
#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "sqlite/RowMapping.h"

namespace korvex {

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

// A statement and what is worked out about it once.
struct Statement {
  StatementHandle handle;
  bool readOnly = false;
  RowMapping mapping;
};

// Keeps a bounded number of statements, those that were used last. Plans make a key of each variant of a method; how
// many variants there are does not matter.
class StatementCache {
 public:
  explicit StatementCache(std::size_t limit) : _limit(std::max<std::size_t>(limit, 1)) {}

  // Null when it is not there.
  [[nodiscard]] Statement* find(std::string_view key);
  // Takes a statement whose key is not there. It is valid until the next one is added; the least recently used ones
  // make room for it.
  Statement& add(std::string_view key, std::unique_ptr<Statement> statement);
  void clear();

 private:
  struct Entry {
    std::string key;
    std::unique_ptr<Statement> statement;
  };
  using Entries = std::list<Entry>;

  std::size_t _limit;
  Entries _entries;  // the last used first
  std::unordered_map<std::string_view, Entries::iterator> _byKey;
};

}  // namespace korvex
