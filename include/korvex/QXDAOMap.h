#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "korvex/CompactList.h"
#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct QXDAOColumn {
  std::string_view column;
  std::string_view property;

  bool operator==(const QXDAOColumn&) const = default;
};

// <map>: which property of a class receives which column of a result row. Its children are comments
// and <result property="…" column="…"/>; white space between them must not reach it as text.
class KORVEX_EXPORT QXDAOMap final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMap;
  QXDAOMap() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // The name of the class that a row becomes, as written; not empty in a finished element.
  [[nodiscard]] OptionalStringView resultClass() const { return _resultClass.view(); }
  void setResultClass(OptionalStringView resultClass) { _resultClass = kept(resultClass); }
  // The columns in ascending byte order, each with its property, both as written. Absent until the
  // attributes have been read; after a failure among the children it holds what comes before the
  // fault. The setter copies the columns.
  [[nodiscard]] const std::optional<std::span<const QXDAOColumn>>& columnPropertyMap() const {
    return _columnPropertyMap.view();
  }
  // Columns in any order; of several entries for one column the last one counts.
  void setColumnPropertyMap(std::optional<std::span<const QXDAOColumn>> columns);
  // The property of a column; absent if the map does not have the column.
  [[nodiscard]] OptionalStringView propertyOfColumn(std::string_view column) const;

 private:
  void readColumns(const XMLNode& xml);

  CompactString _resultClass;
  CompactList<QXDAOColumn> _columnPropertyMap;
};

}  // namespace korvex
