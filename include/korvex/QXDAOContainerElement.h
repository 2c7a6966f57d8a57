#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "korvex/CompactList.h"
#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

using QXDAOElementList = std::vector<std::unique_ptr<QXDAOElement>>;
using QXDAOElementSpan = std::span<const std::unique_ptr<QXDAOElement>>;

// An element with an ordered list of child elements, which it owns.
class KORVEX_EXPORT QXDAOContainerElement : public QXDAOElement {
 public:
  // The children in document order: texts that are not empty and the elements of child tags. Absent
  // until the children have been walked, and after takeChildren().
  [[nodiscard]] const std::optional<QXDAOElementSpan>& children() const { return _children.view(); }
  // Replaces the children and destroys the old ones. Links between this element and its children
  // (parentMethod, tryElement, exceptElement) are not updated.
  void setChildren(std::optional<QXDAOElementList> children);
  // Transfers the children to the caller; they are then absent here. Links to this element are not updated.
  [[nodiscard]] std::optional<QXDAOElementList> takeChildren();

 protected:
  using QXDAOElement::QXDAOElement;

  // The child walk: turns the nodes below `xml` into children. Comments are skipped, texts that are
  // empty after trimming and expansion are dropped, elements are looked up in the tag table. The
  // first failure is stored in this element and ends the walk; children() is then unchanged.
  void processNodes(const XMLNode& xml);
  // Replaces the children with those of one child, which is destroyed with the others.
  void dissolveChild(QXDAOContainerElement& child);

 private:
  // Each is false if this element has failed.
  [[nodiscard]] bool appendChildren(const XMLNode& xml, QXDAOElementList& children);
  [[nodiscard]] bool appendElement(const XMLNode& node, QXDAOElementList& children);

  void appendText(const XMLNode& node, QXDAOElementList& children) const;

  CompactList<std::unique_ptr<QXDAOElement>> _children;
};

}  // namespace korvex
