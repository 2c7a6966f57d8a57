// What stands behind a Row: a statement and the select that it belongs to.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "korvex/DefinitionSet.h"
#include "korvex/ModelRegistry.h"
#include "korvex/Plan.h"
#include "korvex/sqlite/Cipher.h"
#include "korvex/sqlite/Row.h"
#include "sqlite/RowMapping.h"

namespace korvex {

// What was loaded; never changed, shared by all calls that it was there for.
struct Loaded {
  std::shared_ptr<const DefinitionSet> set;
  ModelRegistry models;
  std::shared_ptr<Cipher> cipher;
};

class Row::Source {
 public:
  // All of them outlive the source.
  Source(const Loaded& loaded, const Plan& plan, sqlite3_stmt* statement, RowMapping& mapping)
      : _loaded(loaded), _plan(plan), _statement(statement), _mapping(mapping) {}

  [[nodiscard]] Outcome<Value> value();
  [[nodiscard]] Outcome<ValueView> scalar();
  [[nodiscard]] Dictionary dictionary();
  [[nodiscard]] Failure fill(ModelObject& object);
  [[nodiscard]] DatabaseError failure(std::string message) const;

 private:
  [[nodiscard]] bool givesObjects() const;
  [[nodiscard]] Outcome<Value> object();
  [[nodiscard]] Failure store(ModelObject& object, const ColumnTarget& target, const ValueView& value);
  [[nodiscard]] Failure storeEncrypted(ModelObject& object, const ColumnTarget& target);
  [[nodiscard]] std::string noProperty(const ModelClass& modelClass) const;
  [[nodiscard]] DatabaseError misfit(const ColumnTarget& target, const ValueView& value) const;

  const Loaded& _loaded;
  const Plan& _plan;
  sqlite3_stmt* _statement;
  RowMapping& _mapping;
  const ModelClass* _filled = nullptr;  // the class that the targets were last asked for
  std::string _number;                  // a number as a text, while it is looked at
};

}  // namespace korvex
