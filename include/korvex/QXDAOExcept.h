#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

class QXDAOTry;

// <except>: what runs when the content of its try block fails.
class KORVEX_EXPORT QXDAOExcept final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindExcept;
  QXDAOExcept() : QXDAOContainerElement(Kind) {}

  // The try block must not be null, must have its parentMethod, and must outlive the except block,
  // which registers with it unless it fails.
  void initWithXML(const XMLNode& xml, QXDAOTry* tryElement);

  [[nodiscard]] QXDAOTry* tryElement() const { return _tryElement; }
  void setTryElement(QXDAOTry* tryElement) { _tryElement = tryElement; }

 private:
  QXDAOTry* _tryElement = nullptr;
};

}  // namespace korvex
