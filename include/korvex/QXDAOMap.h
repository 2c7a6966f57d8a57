#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <map>: which property of a class receives which column of a result row.
class KORVEX_EXPORT QXDAOMap final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMap;
  QXDAOMap() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // The class that a row becomes; never empty in a finished element.
  [[nodiscard]] OptionalStringView resultClass() const { return _resultClass.view(); }
  void setResultClass(OptionalStringView resultClass) { _resultClass = CompactString(resultClass); }
  // Column name → property name; the last of several entries for one column wins.
  using ColumnPropertyMap = std::unordered_map<std::string, std::string>;
  [[nodiscard]] const std::optional<ColumnPropertyMap>& columnPropertyMap() const { return _columnPropertyMap; }
  void setColumnPropertyMap(std::optional<ColumnPropertyMap> map) { _columnPropertyMap = std::move(map); }

 private:
  void readColumns(const XMLNode& xml);
  [[nodiscard]] bool readColumn(const XMLNode& node);

  CompactString _resultClass;
  std::optional<ColumnPropertyMap> _columnPropertyMap;
};

}  // namespace korvex
