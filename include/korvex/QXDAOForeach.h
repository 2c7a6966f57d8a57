#pragma once

#include <memory>
#include <utility>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <foreach>: text that the engine repeats for each entry of a collection. "item" and "collection" are
// required, "open", "separator", "close" and "reverse" optional; no other attribute is allowed. Texts
// are kept as written; one that is not given stays absent.
class KORVEX_EXPORT QXDAOForeach final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindForeach;
  QXDAOForeach() : QXDAOElement(Kind) {}

  // Reads the attributes, then the content, which may be text and comments only. If the attributes
  // fail, text() stays absent; if the content fails, it holds what comes before the fault.
  void initWithXML(const XMLNode& xml);

  // The name of the iteration variable and the collection it runs over; not empty in a finished
  // element.
  [[nodiscard]] OptionalStringView item() const { return _item.view(); }
  void setItem(OptionalStringView item) { _item = kept(item); }
  [[nodiscard]] OptionalStringView collection() const { return _collection.view(); }
  void setCollection(OptionalStringView collection) { _collection = kept(collection); }
  // The texts before, between and after the repetitions.
  [[nodiscard]] OptionalStringView open() const { return _open.view(); }
  void setOpen(OptionalStringView open) { _open = kept(open); }
  [[nodiscard]] OptionalStringView separator() const { return _separator.view(); }
  void setSeparator(OptionalStringView separator) { _separator = kept(separator); }
  [[nodiscard]] OptionalStringView close() const { return _close.view(); }
  void setClose(OptionalStringView close) { _close = kept(close); }
  // The text to repeat, owned by this element. Present in a finished element; its expression may be
  // empty.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }
  // True if the engine goes from the last entry to the first.
  [[nodiscard]] bool reverse() const { return _reverse; }
  void setReverse(bool reverse) { _reverse = reverse; }
  // The engine's flag; false until the engine sets it.
  [[nodiscard]] bool commonBindModel() const { return _commonBindModel; }
  void setCommonBindModel(bool commonBindModel) { _commonBindModel = commonBindModel; }

 private:
  void readAttributes(const XMLNode& xml);
  void readText(const XMLNode& xml);

  CompactString _item;
  CompactString _collection;
  CompactString _open;
  CompactString _separator;
  CompactString _close;
  std::unique_ptr<QXDAOText> _text;
  bool _reverse = false;
  bool _commonBindModel = false;
};

}  // namespace korvex
