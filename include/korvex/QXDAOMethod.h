#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "korvex/CompactList.h"
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

// <select>, <update>, <insert>, <delete> and <upgrade>: one data-access method, whose body is its
// children. It is named by its "id"; an upgrade has no name, only the version it leads to.
class KORVEX_EXPORT QXDAOMethod final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMethod;
  QXDAOMethod() : QXDAOContainerElement(Kind) {}

  // Reads the attributes, walks the children and applies the rules on steps, try blocks and "foreach".
  // Attributes that are absent or empty leave their properties alone. The first violated rule ends
  // it, with one exception: the children are walked even if the result type is undefined, and a
  // failure among them is then the one reported.
  void initNamedElementWithXML(const XMLNode& xml);

  // True if an argument has exactly this name, without the "$" mark; an absent name is never found.
  [[nodiscard]] bool hasArgumentWithName(OptionalStringView name) const;

  // Fields that the engine reads and writes directly. The mapping layer sets _profile alone, from the
  // attribute "profile".
  bool _profile = false;
  bool _ignoreCounter = false;
  std::unique_ptr<QXSCDAOMethodCounter> _counter;
  const ModelClass* _cls = nullptr;  // not owned
  std::unique_ptr<QXDAOEngineList> _mappingInfo;
  std::int32_t _mappingSequence = 0;

  // The engine's slot; absent until the engine sets it.
  [[nodiscard]] OptionalStringView module() const { return _module.view(); }
  void setModule(OptionalStringView module) { _module = kept(module); }

  [[nodiscard]] QXDAOOperation operation() const { return _operation; }
  void setOperation(QXDAOOperation operation) { _operation = operation; }

  // What one row of a select becomes. Other operations keep Int.
  [[nodiscard]] QXDAOSelectResultType resultType() const { return _resultType; }
  void setResultType(QXDAOSelectResultType resultType) { _resultType = resultType; }
  // True if a select yields a list of results.
  [[nodiscard]] bool resultArrayed() const { return _resultArrayed; }
  void setResultArrayed(bool resultArrayed) { _resultArrayed = resultArrayed; }
  // The attribute "assignedTable" of a select, for the engine; false for other operations.
  [[nodiscard]] bool assignedTable() const { return _assignedTable; }
  void setAssignedTable(bool assignedTable) { _assignedTable = assignedTable; }
  // The keyword of the result type, the class name or the name of the <map>, which may be empty.
  // Absent for operations other than select.
  [[nodiscard]] OptionalStringView resultTypeName() const { return _resultTypeName.view(); }
  void setResultTypeName(OptionalStringView resultTypeName) { _resultTypeName = kept(resultTypeName); }

  // The declared arguments in order; an empty list in a finished method that declares none. Reading
  // them absent means that the attributes have not been read.
  [[nodiscard]] const std::optional<std::span<const QXDAOMethodArgument>>& arguments() const {
    return _arguments.view();
  }
  // The same for changing the arguments in place; none if they are absent.
  [[nodiscard]] std::span<QXDAOMethodArgument> mutableArguments() { return _arguments.items(); }
  // Copies the arguments.
  void setArguments(std::optional<std::span<const QXDAOMethodArgument>> arguments);

  // True if the children are two or more steps.
  [[nodiscard]] bool steped() const { return _steped; }
  void setSteped(bool steped) { _steped = steped; }
  // True if the only child is a try block.
  [[nodiscard]] bool tryBlock() const { return _tryBlock; }
  void setTryBlock(bool tryBlock) { _tryBlock = tryBlock; }

  // The attribute "parallel" of a select, for the engine; false for other operations.
  [[nodiscard]] bool parallel() const { return _parallel; }
  void setParallel(bool parallel) { _parallel = parallel; }

  // True if the method has a "foreach" attribute, "collection.item", and runs once for each entry.
  // clang-format off
  [[nodiscard]] bool foreach() const { return _foreach; }
  // clang-format on
  void setForeach(bool foreach) { _foreach = foreach; }
  // The attribute "resumable", which is read only beside a "foreach".
  [[nodiscard]] bool foreachResumable() const { return _foreachResumable; }
  void setForeachResumable(bool foreachResumable) { _foreachResumable = foreachResumable; }
  // The name of the iteration variable, which no argument has, and the argument it runs over.
  [[nodiscard]] OptionalStringView foreachItemName() const { return _foreachItemName.view(); }
  void setForeachItemName(OptionalStringView name) { _foreachItemName = kept(name); }
  [[nodiscard]] OptionalStringView foreachCollection() const { return _foreachCollection.view(); }
  void setForeachCollection(OptionalStringView name) { _foreachCollection = kept(name); }

  // The version that an upgrade leads to: always finite, 0 for "initial". A number too large for a
  // double becomes the largest double, one too small becomes 0. 0 for other operations.
  [[nodiscard]] double toVersion() const { return _toVersion; }
  void setToVersion(double toVersion) { _toVersion = toVersion; }

 private:
  struct Attributes;

  [[nodiscard]] bool readUpgradeDeclaration(const XMLNode& xml);
  // The second stage of building and its steps in order. Each reports failure through the element's
  // error; the first two then end the setup.
  void setupMethod(const XMLNode& xml);
  void decideOperation(const XMLNode& xml);
  void readArguments(OptionalStringView declarations);
  void readOptions(const Attributes& attributes);
  void decideResultType(OptionalStringView declaration);
  void checkStepElements();
  void checkTryBlock();
  void readForeach(const Attributes& attributes);
  [[nodiscard]] bool readForeachNames(std::string_view declaration);

  CompactString _module;
  QXDAOOperation _operation = QXDAOOperationSelect;
  QXDAOSelectResultType _resultType = QXDAOSelectResultTypeInt;
  bool _resultArrayed = false;
  bool _assignedTable = false;
  CompactString _resultTypeName;
  CompactList<QXDAOMethodArgument> _arguments;
  bool _steped = false;
  bool _tryBlock = false;
  bool _parallel = false;
  bool _foreach = false;
  bool _foreachResumable = false;
  CompactString _foreachItemName;
  CompactString _foreachCollection;
  double _toVersion = 0;
};

}  // namespace korvex
