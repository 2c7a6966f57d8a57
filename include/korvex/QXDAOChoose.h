#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <choose>: its children are conditions, any number of when and then at most one otherwise.
class KORVEX_EXPORT QXDAOChoose final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindChoose;
  QXDAOChoose() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);
};

}  // namespace korvex
