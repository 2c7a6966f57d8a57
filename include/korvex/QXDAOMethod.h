#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOEngineValue.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXSCDAOMethodCounter.h"
#include "korvex/XMLNode.h"

namespace korvex {

enum QXDAOOperation : std::uint64_t {
  QXDAOOperationSelect = 0,
  QXDAOOperationUpdate = 1,
  QXDAOOperationInsert = 2,
  QXDAOOperationDelete = 3,
  QXDAOOperationUpgrade = 4,
};

// What one row of a select becomes; the comment is how "result" spells it.
enum QXDAOSelectResultType : std::uint64_t {
  QXDAOSelectResultTypeInt = 0,           // int
  QXDAOSelectResultTypeLongLong = 1,      // long long
  QXDAOSelectResultTypeBool = 2,          // bool
  QXDAOSelectResultTypeDouble = 3,        // double
  QXDAOSelectResultTypeString = 4,        // string
  QXDAOSelectResultTypeBinary = 5,        // binary
  QXDAOSelectResultTypeColumnMap = 6,     // {}
  QXDAOSelectResultTypeObject = 7,        // any other text: a class name
  QXDAOSelectResultTypeMappedObject = 8,  // ":" and the name of a <map>
};

// <select>, <update>, <insert>, <delete> and <upgrade>: one data-access method. Its children are
// its body. An upgrade has no name, only the version it leads to.
class KORVEX_EXPORT QXDAOMethod final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMethod;
  QXDAOMethod() : QXDAOContainerElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // True when an argument has exactly this name, the "$" mark not counted.
  [[nodiscard]] bool hasArgumentWithName(std::string_view name) const;

  // The "profile" attribute.
  bool _profile = false;
  // The engine's fields; the mapping layer never touches them.
  bool _ignoreCounter = false;
  std::int32_t _mappingSequence = 0;
  std::unique_ptr<QXSCDAOMethodCounter> _counter;
  const ModelClass* _cls = nullptr;  // not owned
  std::unique_ptr<QXDAOEngineList> _mappingInfo;

  // The engine's slot; absent until the engine sets it.
  [[nodiscard]] OptionalStringView module() const { return _module.view(); }
  void setModule(OptionalStringView module) { _module = CompactString(module); }

  [[nodiscard]] QXDAOOperation operation() const { return _operation; }
  void setOperation(QXDAOOperation operation) { _operation = operation; }

  // What a select yields; Int, false and absent on other operations. The type name is the keyword,
  // the class name, or the name of the result map.
  [[nodiscard]] QXDAOSelectResultType resultType() const { return _resultType; }
  void setResultType(QXDAOSelectResultType resultType) { _resultType = resultType; }
  [[nodiscard]] bool resultArrayed() const { return _resultArrayed; }
  void setResultArrayed(bool resultArrayed) { _resultArrayed = resultArrayed; }
  // The "assignedTable" attribute of a select, recorded for the engine; false on other operations.
  [[nodiscard]] bool assignedTable() const { return _assignedTable; }
  void setAssignedTable(bool assignedTable) { _assignedTable = assignedTable; }
  [[nodiscard]] OptionalStringView resultTypeName() const { return _resultTypeName.view(); }
  void setResultTypeName(OptionalStringView resultTypeName) { _resultTypeName = CompactString(resultTypeName); }

  // The declared arguments in order; empty when none is declared.
  [[nodiscard]] const std::optional<std::vector<QXDAOMethodArgument>>& arguments() const { return _arguments; }
  void setArguments(std::optional<std::vector<QXDAOMethodArgument>> arguments) { _arguments = std::move(arguments); }

  // The children are two or more steps; the only child is a try block.
  [[nodiscard]] bool steped() const { return _steped; }
  void setSteped(bool steped) { _steped = steped; }
  [[nodiscard]] bool tryBlock() const { return _tryBlock; }
  void setTryBlock(bool tryBlock) { _tryBlock = tryBlock; }

  // The "parallel" attribute of a select, recorded for the engine; false on other operations.
  [[nodiscard]] bool parallel() const { return _parallel; }
  void setParallel(bool parallel) { _parallel = parallel; }

  // The "foreach" attribute "collection.item": the method runs once for each entry.
  // clang-format off
  [[nodiscard]] bool foreach() const { return _foreach; }
  // clang-format on
  void setForeach(bool foreach) { _foreach = foreach; }
  [[nodiscard]] bool foreachResumable() const { return _foreachResumable; }
  void setForeachResumable(bool foreachResumable) { _foreachResumable = foreachResumable; }
  [[nodiscard]] OptionalStringView foreachItemName() const { return _foreachItemName.view(); }
  void setForeachItemName(OptionalStringView name) { _foreachItemName = CompactString(name); }
  [[nodiscard]] OptionalStringView foreachCollection() const { return _foreachCollection.view(); }
  void setForeachCollection(OptionalStringView name) { _foreachCollection = CompactString(name); }

  // The version that an upgrade leads to, 0 for "initial"; 0 on other operations.
  [[nodiscard]] double toVersion() const { return _toVersion; }
  void setToVersion(double toVersion) { _toVersion = toVersion; }

 private:
  [[nodiscard]] bool readUpgradeDeclaration(const XMLNode& xml);
  // The second stage of building, and its own stages in their order. Each reports through the
  // element's error; the first two end the setup by it.
  void setupMethod(const XMLNode& xml);
  void decideOperation(const XMLNode& xml);
  void readArguments(const XMLNode& xml);
  void readOptions(const XMLNode& xml);
  void decideResultType(OptionalStringView declaration);
  void checkStepElements();
  void checkTryBlock();
  void readForeach(const XMLNode& xml);
  [[nodiscard]] bool readForeachNames(std::string_view declaration);

  // In one word: an app has thousands of methods.
  QXDAOOperation _operation : 8 = QXDAOOperationSelect;
  QXDAOSelectResultType _resultType : 8 = QXDAOSelectResultTypeInt;
  bool _resultArrayed : 1 = false;
  bool _assignedTable : 1 = false;
  bool _steped : 1 = false;
  bool _tryBlock : 1 = false;
  bool _parallel : 1 = false;
  bool _foreach : 1 = false;
  bool _foreachResumable : 1 = false;
  CompactString _module;
  CompactString _resultTypeName;
  std::optional<std::vector<QXDAOMethodArgument>> _arguments;
  CompactString _foreachItemName;
  CompactString _foreachCollection;
  double _toVersion = 0;
};

}  // namespace korvex
