#include "korvex/QXDAOMap.h"

#include <algorithm>
#include <vector>

#include "dao/core/Building.h"
#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"

namespace korvex {

namespace {

bool isBefore(const QXDAOColumn& first, const QXDAOColumn& second) { return first.column < second.column; }
bool isSameColumn(const QXDAOColumn& first, const QXDAOColumn& second) { return first.column == second.column; }

// What a child declares; empty if it declares no column or no property.
QXDAOColumn columnOf(const XMLNode& node) {
  if (node.kind() != XMLNodeKind::Element || node.name() != C_RESULT) return {};
  const auto [property, column] = node.valuesOfAttributes(C_PROPERTY, C_COLUMN);
  return {column.value_or(std::string_view()), property.value_or(std::string_view())};
}

}  // namespace

void QXDAOMap::initNamedElementWithXML(const XMLNode& xml) {
  QXDAOElement::initNamedElementWithXML(xml);
  if (failed()) return;
  setResultClass(xml.valueOfAttribute(C_RESULT));
  if (isEmpty(resultClass())) {
    setErrorWithName(QXDAORule::MissingMapResult);
    return;
  }
  readColumns(xml);
}

void QXDAOMap::readColumns(const XMLNode& xml) {
  std::vector<QXDAOColumn> columns;
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Comment) continue;
    const QXDAOColumn column = columnOf(node);
    if (column.property.empty() || column.column.empty()) {
      setError(QXDAORule::MapFormat, name(), nodeAtFault(node, xml));
      break;
    }
    columns.push_back(column);
  }
  setColumnPropertyMap(columns);
}

void QXDAOMap::setColumnPropertyMap(std::optional<std::span<const QXDAOColumn>> columns) {
  std::vector<QXDAOColumn> sorted;
  if (columns) {
    sorted.assign(columns->rbegin(), columns->rend());
    std::stable_sort(sorted.begin(), sorted.end(), isBefore);
    sorted.erase(std::unique(sorted.begin(), sorted.end(), isSameColumn), sorted.end());
    columns = sorted;
  }
  _columnPropertyMap = Building::texts(Building::memoryOf(*this), columns);
}

OptionalStringView QXDAOMap::propertyOfColumn(std::string_view column) const {
  if (!columnPropertyMap()) return std::nullopt;
  const std::span<const QXDAOColumn> columns = *columnPropertyMap();
  const auto found = std::lower_bound(columns.begin(), columns.end(), QXDAOColumn{column, {}}, isBefore);
  return found != columns.end() && found->column == column ? OptionalStringView(found->property) : std::nullopt;
}

}  // namespace korvex
