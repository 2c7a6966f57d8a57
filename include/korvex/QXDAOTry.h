#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

class QXDAOMethod;
class QXDAOExcept;

// <try>: guarded content, followed by the except block that runs when it fails. The except block is
// the last child, and there is exactly one. A try block has no attributes.
class KORVEX_EXPORT QXDAOTry final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTry;
  QXDAOTry() : QXDAOContainerElement(Kind) {}

  // The method must not be null and must outlive the try block. Its tryBlock becomes true, even if
  // the try block then fails.
  void initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod);

  // The method that holds this try block; not owned.
  [[nodiscard]] QXDAOMethod* parentMethod() const { return _parentMethod; }
  void setParentMethod(QXDAOMethod* parentMethod) { _parentMethod = parentMethod; }
  // The except block, which children() owns; null until it has been built, and null again if a child
  // fails, since the children are then gone. It does not follow setChildren() or takeChildren().
  [[nodiscard]] QXDAOExcept* exceptElement() const { return _exceptElement; }
  void setExceptElement(QXDAOExcept* exceptElement) { _exceptElement = exceptElement; }

 private:
  [[nodiscard]] bool endsWithExcept() const;

  QXDAOMethod* _parentMethod = nullptr;
  QXDAOExcept* _exceptElement = nullptr;
};

}  // namespace korvex
