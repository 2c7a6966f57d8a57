#pragma once

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

class QXDAOMethod;

// <step>: one of several parts of a method that is not a select. A method with a single step is built
// as if the content of the step stood in the method itself; the step and its "resumable" are dropped.
class KORVEX_EXPORT QXDAOMethodStep final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMethodStep;
  QXDAOMethodStep() : QXDAOContainerElement(Kind) {}

  // The method must not be null and must outlive the step.
  void initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod);

  // The method that holds this step; not owned.
  [[nodiscard]] QXDAOMethod* parentMethod() const { return _parentMethod; }
  void setParentMethod(QXDAOMethod* parentMethod) { _parentMethod = parentMethod; }
  // The attribute "resumable", for the engine; false if it is absent or empty.
  [[nodiscard]] bool resumable() const { return _resumable; }
  void setResumable(bool resumable) { _resumable = resumable; }

 private:
  QXDAOMethod* _parentMethod = nullptr;
  bool _resumable = false;
};

}  // namespace korvex
