#pragma once

#include <memory>
#include <utility>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <const NAME="text"/>: a named constant.
class KORVEX_EXPORT QXDAOConst final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindConst;
  QXDAOConst() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // Present in a finished element.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }

 private:
  [[nodiscard]] bool readDeclaration(const XMLNode& xml);

  std::unique_ptr<QXDAOText> _text;
};

}  // namespace korvex
