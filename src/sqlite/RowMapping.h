// Which field of an object receives which column of a row.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/DefinitionSet.h"
#include "korvex/ModelClass.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOPack.h"
#include "korvex/Value.h"

namespace korvex {

// What becomes of one column: one of both is there.
struct ColumnTarget {
  int column;
  bool encrypted;
  const ModelField* field;
  const QXDAOPack* pack;
};

// For one statement and one class. Columns that no property receives are left out.
class RowMapping {
 public:
  // Works the targets out when they are for another class, or SQLite has prepared the statement again since.
  const std::vector<ColumnTarget>& targets(sqlite3_stmt* statement, const QXDAOMethod& method, const DefinitionSet& set,
                                           const ModelClass& modelClass);
  // The property of the result map that the class does not have, or that cannot be set; empty when there is none.
  [[nodiscard]] const std::string& missingProperty() const { return _missingProperty; }

 private:
  const ModelClass* _class = nullptr;
  int _preparations = 0;
  std::vector<ColumnTarget> _targets;
  std::string _missingProperty;
};

// The name of the class that a select's rows become; empty when they become none.
[[nodiscard]] std::string_view resultClassOf(const QXDAOMethod& method, const DefinitionSet& set);

// A column of the row at which a statement stands, without a copy: valid until the next row.
[[nodiscard]] ValueView columnView(sqlite3_stmt* statement, int column);

// Stores a value in a field. False, and the field is as before, when it is of no type or range that the field takes.
[[nodiscard]] bool storeInField(ModelObject& object, const ModelField& field, const ValueView& value);

}  // namespace korvex
