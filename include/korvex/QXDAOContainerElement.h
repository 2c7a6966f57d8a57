#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

using QXDAOElementList = std::vector<std::unique_ptr<QXDAOElement>>;

// An element with an ordered list of child elements, which it owns.
class KORVEX_EXPORT QXDAOContainerElement : public QXDAOElement {
 public:
  // The children in document order: texts that are not empty and the elements of child tags. Absent
  // until the children have been walked, and after takeChildren().
  [[nodiscard]] const std::optional<QXDAOElementList>& children() const { return _children; }
  // Replaces the children and destroys the old ones. Links between this element and its children
  // (parentMethod, tryElement, exceptElement) are not updated.
  void setChildren(std::optional<QXDAOElementList> children) { _children = std::move(children); }
  // Hands the children over to the caller and leaves them absent here. Links to this element are not
  // updated.
  [[nodiscard]] std::optional<QXDAOElementList> takeChildren();

 protected:
  using QXDAOElement::QXDAOElement;

  // The child walk: turns the nodes below `xml` into children. Comments are skipped, texts that are
  // empty after trimming and expansion are dropped, elements are looked up in the tag table. The
  // first failure is stored in this element and ends the walk; children() then stays as it was.
  void processNodes(const XMLNode& xml);

 private:
  // One step of the walk each; appendElement is false when this element failed over the node.
  static void appendText(const XMLNode& node, QXDAOElementList& children);
  [[nodiscard]] bool appendElement(const XMLNode& node, QXDAOElementList& children);

  std::optional<QXDAOElementList> _children;
};

}  // namespace korvex
