#pragma once

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <crypt class="…" property="…"/>: one property of one class, whose stored value the engine encrypts.
// It has exactly these two attributes, no content and no name.
class KORVEX_EXPORT QXDAOCryptProperty final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindCryptProperty;
  QXDAOCryptProperty() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // As written; neither is empty in a finished element.
  [[nodiscard]] OptionalStringView className() const { return _className.view(); }
  void setClassName(OptionalStringView className) { _className = kept(className); }
  [[nodiscard]] OptionalStringView propertyName() const { return _propertyName.view(); }
  void setPropertyName(OptionalStringView propertyName) { _propertyName = kept(propertyName); }

 private:
  [[nodiscard]] bool validCryptDescription(const XMLNode& xml);

  CompactString _className;
  CompactString _propertyName;
};

}  // namespace korvex
