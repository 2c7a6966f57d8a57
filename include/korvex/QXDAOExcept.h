#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

class QXDAOTry;

// <except>: what runs when the content of its try block fails. It has no attributes.
class KORVEX_EXPORT QXDAOExcept final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindExcept;
  QXDAOExcept() : QXDAOContainerElement(Kind) {}

  // The try block must not be null, must have a parentMethod and must outlive the except block. The
  // except block registers with it before its children are walked, unless it has failed by then.
  void initWithXML(const XMLNode& xml, QXDAOTry* tryElement);

  // The try block that holds this except block; not owned. Null if this failed before it registered.
  [[nodiscard]] QXDAOTry* tryElement() const { return _tryElement; }
  void setTryElement(QXDAOTry* tryElement) { _tryElement = tryElement; }

 private:
  QXDAOTry* _tryElement = nullptr;
};

}  // namespace korvex
