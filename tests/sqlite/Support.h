// What the tests of the engine share: definitions from a text, and databases on files of their own.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "korvex/Definition.h"
#include "korvex/DefinitionSet.h"
#include "korvex/Document.h"
#include "korvex/sqlite/Database.h"
#include "tests/support/TemporaryDirectory.h"

namespace korvex {

inline std::shared_ptr<const DefinitionSet> setOfDocument(std::string name, Document::Result read) {
  DefinitionSetBuilder builder;
  if (!read.document) {
    ADD_FAILURE() << read.error->message;
    return nullptr;
  }
  builder.add(std::move(name), loadDefinitions(*read.document));
  DefinitionSetBuilder::Result result = std::move(builder).build();
  for (const DefinitionError& error : result.errors) ADD_FAILURE() << error.message;
  return result.set;
}

// Definitions without their root.
inline std::shared_ptr<const DefinitionSet> definitions(const std::string& text) {
  return setOfDocument("test.xml", Document::fromBytes("<korvex>" + text + "</korvex>"));
}

inline std::string textOf(const Failure& failure) { return failure ? failure->text() : "none"; }

template <typename T>
std::string textOf(const Outcome<T>& outcome) {
  return outcome ? "none" : outcome.error().text();
}

// A database in a directory of its own, with these definitions, upgraded. It does not wait for the disk.
class TestDatabase {
 public:
  explicit TestDatabase(const std::string& text, DatabaseOptions options = {}, ModelRegistry models = {})
      : _options(std::move(options)), _set(definitions(text)), _models(std::move(models)) {
    _options.durable = false;
    reopen();
    const Failure failure = _database->upgrade();
    EXPECT_FALSE(failure) << textOf(failure);
  }

  void reopen() {
    _database.reset();
    auto opened = Database::open(path(), _options);
    ASSERT_TRUE(opened) << textOf(opened);
    _database = std::move(*opened);
    _database->load(_set, _models);
  }

  [[nodiscard]] std::string path() const { return (_directory.path() / "test.sqlite").string(); }
  Database& operator*() { return *_database; }
  Database* operator->() { return _database.get(); }

 private:
  TemporaryDirectory _directory;
  DatabaseOptions _options;
  std::shared_ptr<const DefinitionSet> _set;
  ModelRegistry _models;
  std::unique_ptr<Database> _database;
};

}  // namespace korvex
