#pragma once

#include <memory>
#include <utility>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"

namespace korvex {

// <sql>: a named piece of SQL text without dynamic fragments. Its content may be text and comments
// only. The names "T" and "t" are reserved.
class KORVEX_EXPORT QXDAOSqlBlock final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindSqlBlock;
  QXDAOSqlBlock() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // The pieces of text, each trimmed, joined with nothing between them; owned by this element. Present
  // in a finished element; its expression may be empty.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }

 private:
  void readText(const XMLNode& xml);

  std::unique_ptr<QXDAOText> _text;
};

}  // namespace korvex
