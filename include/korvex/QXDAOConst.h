#pragma once

#include <memory>
#include <utility>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <const NAME="text"/>: a named constant. It has exactly one attribute, whose name is the name of the
// constant, and no content, not even white space or a comment.
class KORVEX_EXPORT QXDAOConst final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindConst;
  QXDAOConst() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // The value with its list references expanded, untrimmed; owned by this element, present when
  // finished.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }

 private:
  [[nodiscard]] bool readDeclaration(const XMLNode& xml);

  std::unique_ptr<QXDAOText> _text;
};

}  // namespace korvex
