#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOEngineValue.h"
#include "korvex/XMLNode.h"

namespace korvex {

// What the engine notes about its own analysis of a text.
enum QXDAOTextSpeedyStatus : std::uint64_t {
  QXDAOTextSpeedyStatusNone = 0,
  QXDAOTextSpeedyStatusValid = 1,
  QXDAOTextSpeedyStatusInvalid = 2,
};

// One piece of SQL text. It has no name and building it never fails.
//
// A list reference %{'FORMAT', STAR, STAR…} expands to one copy of the format for each star, with every
// "*" in the copy replaced by the star, and the copies joined by ", ". Time and memory are proportional
// to the text and its expansion. An expansion can be as long as the number of "*" times the length of
// the stars; expandedLength() computes its length beforehand.
class KORVEX_EXPORT QXDAOText final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindText;
  QXDAOText() : QXDAOElement(Kind) {}

  // The string value of a node, usually a text node, without spaces, tabs and line feeds at both ends.
  void initWithXML(const XMLNode& xml);
  // The text as given; absent stays absent.
  void initWithText(OptionalStringView text);
  // The SQL text. The init operations expand the list references; the setter stores its text as given.
  [[nodiscard]] OptionalStringView expression() const { return _expression.view(); }
  void setExpression(OptionalStringView expression) { _expression = kept(expression); }
  // Expands the list references of the expression. The init operations have called it already.
  void processText();
  // The length in bytes of the text with its list references expanded, worked out in time proportional
  // to the text. Exact for texts shorter than 4 GiB.
  [[nodiscard]] static std::size_t expandedLength(std::string_view text);

  // The engine's slots; null and None until the engine sets them. The element owns the list.
  [[nodiscard]] const std::unique_ptr<QXDAOEngineList>& speedyList() const { return _speedyList; }
  void setSpeedyList(std::unique_ptr<QXDAOEngineList> list) { _speedyList = std::move(list); }
  [[nodiscard]] QXDAOTextSpeedyStatus speedyStatus() const { return _speedyStatus; }
  void setSpeedyStatus(QXDAOTextSpeedyStatus status) { _speedyStatus = status; }

 private:
  void setExpanded(OptionalStringView text);

  CompactString _expression;
  std::unique_ptr<QXDAOEngineList> _speedyList;
  QXDAOTextSpeedyStatus _speedyStatus = QXDAOTextSpeedyStatusNone;
};

}  // namespace korvex
