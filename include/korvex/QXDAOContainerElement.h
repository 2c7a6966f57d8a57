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

// An element with an ordered list of child elements.
class KORVEX_EXPORT QXDAOContainerElement : public QXDAOElement {
 public:
  // In document order; absent until the children have been walked.
  [[nodiscard]] const std::optional<QXDAOElementList>& children() const { return _children; }
  // Links that children have to this element, or this element to a child, are not looked after.
  void setChildren(std::optional<QXDAOElementList> children) { _children = std::move(children); }
  // Gives the children away and leaves them absent here.
  [[nodiscard]] std::optional<QXDAOElementList> takeChildren();

 protected:
  using QXDAOElement::QXDAOElement;

  // The child walk: turns the nodes below `xml` into children. Comments are skipped, texts that
  // are empty after trimming and expansion are dropped, elements are looked up in the tag table.
  // The first failure is stored in this element, ends the walk and leaves children() undefined.
  void processNodes(const XMLNode& xml);

 private:
  // One step of the walk each; appendElement is false when this element failed over the node.
  static void appendText(const XMLNode& node, QXDAOElementList& children);
  [[nodiscard]] bool appendElement(const XMLNode& node, QXDAOElementList& children);

  std::optional<QXDAOElementList> _children;
};

}  // namespace korvex
