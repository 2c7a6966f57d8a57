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
  // A new element, initialised with the text; its expression is stored inline after the object.
  [[nodiscard]] static std::unique_ptr<QXDAOText> elementWithText(OptionalStringView text);

  // The SQL text. The init operations expand the list references; the setter stores its text as given.
  [[nodiscard]] OptionalStringView expression() const {
    return _lengthBehind == notBehind ? _expression.view() : std::string_view(behind(), _lengthBehind);
  }
  void setExpression(OptionalStringView expression) {
    CompactString replacement(expression);
    _lengthBehind = notBehind;
    _expression = std::move(replacement);
  }
  // Expands the list references of the expression. The init operations have called it already.
  void processText();
  // The length in bytes of the text with its list references expanded, worked out in time proportional
  // to the text. Exact for texts shorter than 4 GiB.
  [[nodiscard]] static std::size_t expandedLength(std::string_view text);

  static void* operator new(std::size_t size) { return ::operator new(size); }
  // Not the one that is told the size: with characters behind it, that is not the size of the block.
  static void operator delete(void* text) { ::operator delete(text); }

  // The engine's slots; null and None until the engine sets them. The element owns the list.
  [[nodiscard]] const std::unique_ptr<QXDAOEngineList>& speedyList() const { return _speedyList; }
  void setSpeedyList(std::unique_ptr<QXDAOEngineList> list) { _speedyList = std::move(list); }
  [[nodiscard]] QXDAOTextSpeedyStatus speedyStatus() const { return _speedyStatus; }
  void setSpeedyStatus(QXDAOTextSpeedyStatus status) { _speedyStatus = status; }

 private:
  static void* operator new(std::size_t size, std::size_t lengthBehind) { return ::operator new(size + lengthBehind); }
  [[nodiscard]] char* behind() const { return reinterpret_cast<char*>(const_cast<QXDAOText*>(this) + 1); }

  static constexpr std::size_t notBehind = static_cast<std::size_t>(-1);

  std::size_t _lengthBehind = notBehind;  // of the expression when it stands behind the element
  CompactString _expression;              // when it does not
  std::unique_ptr<QXDAOEngineList> _speedyList;
  QXDAOTextSpeedyStatus _speedyStatus = QXDAOTextSpeedyStatusNone;
};

}  // namespace korvex
