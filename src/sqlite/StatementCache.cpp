#include "sqlite/StatementCache.h"

#include <utility>

namespace korvex {

Statement* StatementCache::find(std::string_view key) {
  const auto found = _byKey.find(key);
  if (found == _byKey.end()) return nullptr;
  if (found->second != _entries.begin()) _entries.splice(_entries.begin(), _entries, found->second);
  return found->second->statement.get();
}

Statement& StatementCache::add(std::string_view key, std::unique_ptr<Statement> statement) {
  for (; _entries.size() >= _limit; _entries.pop_back()) _byKey.erase(_entries.back().key);
  _entries.push_front({std::string(key), std::move(statement)});
  _byKey.emplace(_entries.front().key, _entries.begin());
  return *_entries.front().statement;
}

void StatementCache::clear() {
  _byKey.clear();
  _entries.clear();
}

}  // namespace korvex
