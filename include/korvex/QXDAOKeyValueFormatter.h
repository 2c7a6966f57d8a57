#pragma once

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <format>: how the engine formats key-value pairs at this place of the SQL. All three attributes are
// required and kept as written; other attributes and the content are ignored.
class KORVEX_EXPORT QXDAOKeyValueFormatter final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindKeyValueFormatter;
  QXDAOKeyValueFormatter() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // Not empty in a finished element.
  [[nodiscard]] OptionalStringView prefix() const { return _prefix.view(); }
  void setPrefix(OptionalStringView prefix) { _prefix = kept(prefix); }
  [[nodiscard]] OptionalStringView pairs() const { return _pairs.view(); }
  void setPairs(OptionalStringView pairs) { _pairs = kept(pairs); }
  [[nodiscard]] OptionalStringView join() const { return _join.view(); }
  void setJoin(OptionalStringView join) { _join = kept(join); }

 private:
  CompactString _prefix;
  CompactString _pairs;
  CompactString _join;
};

}  // namespace korvex
