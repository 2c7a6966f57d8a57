#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

class QXDAOMethod;
class QXDAOExcept;

// <try>: guarded content, followed by the except block that runs when it fails. The except block
// is the last child.
class KORVEX_EXPORT QXDAOTry final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTry;
  QXDAOTry() : QXDAOContainerElement(Kind) {}

  // The method must not be null and must outlive the try block; its tryBlock is set.
  void initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod);

  [[nodiscard]] QXDAOMethod* parentMethod() const { return _parentMethod; }
  void setParentMethod(QXDAOMethod* parentMethod) { _parentMethod = parentMethod; }
  // The last child, owned by children(); null until it is built and after a failure.
  [[nodiscard]] QXDAOExcept* exceptElement() const { return _exceptElement; }
  void setExceptElement(QXDAOExcept* exceptElement) { _exceptElement = exceptElement; }

 private:
  [[nodiscard]] bool endsWithExcept() const;

  QXDAOMethod* _parentMethod = nullptr;
  QXDAOExcept* _exceptElement = nullptr;
};

}  // namespace korvex
