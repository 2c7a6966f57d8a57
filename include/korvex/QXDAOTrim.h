#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// What the engine does when the content of a <trim>, <where> or <set> turns out empty.
enum QXDAOTrimOnVoidType : std::uint64_t {
  QXDAOTrimOnVoidTypeNone = 0,
  QXDAOTrimOnVoidTypeQuit = 1,
  QXDAOTrimOnVoidTypeIgnoreAfter = 2,
};

// <trim>, <where> and <set>: content whose ends are cleaned up when the SQL is put together.
class KORVEX_EXPORT QXDAOTrim final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTrim;
  QXDAOTrim() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // The keyword to put before the content: "where", "set", or the "prefix" of a trim.
  [[nodiscard]] OptionalStringView operationName() const { return _operationName.view(); }
  void setOperationName(OptionalStringView operationName) { _operationName = CompactString(operationName); }
  // What to remove from the start and the end of the content, in order, spaces included.
  [[nodiscard]] const std::vector<std::string>& prefixOverrides() const { return _prefixOverrides; }
  void setPrefixOverrides(std::vector<std::string> overrides) { _prefixOverrides = std::move(overrides); }
  [[nodiscard]] const std::vector<std::string>& suffixOverrides() const { return _suffixOverrides; }
  void setSuffixOverrides(std::vector<std::string> overrides) { _suffixOverrides = std::move(overrides); }
  [[nodiscard]] QXDAOTrimOnVoidType onVoid() const { return _onVoid; }
  void setOnVoid(QXDAOTrimOnVoidType onVoid) { _onVoid = onVoid; }

 private:
  void readOperation(const XMLNode& xml);
  void readTrim(const XMLNode& xml);

  QXDAOTrimOnVoidType _onVoid : 8 = QXDAOTrimOnVoidTypeNone;
  CompactString _operationName;
  std::vector<std::string> _prefixOverrides;
  std::vector<std::string> _suffixOverrides;
};

}  // namespace korvex
