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

// <map>: which property of a class receives which column of a result row. Its children are comments
// and <result property="…" column="…"/>; white space between them must not reach it as text.
class KORVEX_EXPORT QXDAOMap final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMap;
  QXDAOMap() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // The name of the class that a row becomes, as written; not empty in a finished element.
  [[nodiscard]] OptionalStringView resultClass() const { return _resultClass.view(); }
  void setResultClass(OptionalStringView resultClass) { _resultClass = CompactString(resultClass); }
  // The name of the property for each column name, both as written; if a column is named more than
  // once, its last entry counts. Absent until the attributes have been read; after a failure among
  // the children it holds what comes before the fault.
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
