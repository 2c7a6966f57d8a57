#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <choose>: alternatives. Its children are any number of <when>, then at most one <otherwise>, with only
// white space and comments between them. It has no attributes and no properties of its own.
class KORVEX_EXPORT QXDAOChoose final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindChoose;
  QXDAOChoose() : QXDAOContainerElement(Kind) {}

  // A failure inside a child is reported before a child that is not allowed here.
  void initWithXML(const XMLNode& xml);
};

}  // namespace korvex
