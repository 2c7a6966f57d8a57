#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "korvex/CompactList.h"
#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/XMLNode.h"

namespace korvex {

// What the engine does when the content of a <trim>, <where> or <set> turns out empty; the comment is
// how "onVoid" spells it.
enum QXDAOTrimOnVoidType : std::uint64_t {
  QXDAOTrimOnVoidTypeNone = 0,         // no "onVoid", or any other text
  QXDAOTrimOnVoidTypeQuit = 1,         // quit
  QXDAOTrimOnVoidTypeIgnoreAfter = 2,  // ignoreAfter
};

// <trim>, <where> and <set>: content whose beginning and end are cleaned up when the engine assembles
// the SQL. <where> and <set> have fixed overrides; a <trim> needs a "prefix" and at least one of
// "prefixOverrides" and "suffixOverrides".
class KORVEX_EXPORT QXDAOTrim final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTrim;
  QXDAOTrim() : QXDAOContainerElement(Kind) {}

  // On failure the operation name and onVoid are set, the overrides are empty and the children absent.
  void initWithXML(const XMLNode& xml);

  // The keyword to put before the content: "where", "set", or the "prefix" of a trim.
  [[nodiscard]] OptionalStringView operationName() const { return _operationName.view(); }
  void setOperationName(OptionalStringView operationName) { _operationName = kept(operationName); }
  // The texts to remove from the beginning and the end of the content, in the order written and
  // untrimmed. An override attribute of a trim is split at every "|": an empty one gives one empty
  // text, an absent one gives none.
  [[nodiscard]] std::span<const std::string_view> prefixOverrides() const { return *_prefixOverrides.view(); }
  void setPrefixOverrides(std::span<const std::string_view> overrides);
  [[nodiscard]] std::span<const std::string_view> suffixOverrides() const { return *_suffixOverrides.view(); }
  void setSuffixOverrides(std::span<const std::string_view> overrides);
  [[nodiscard]] QXDAOTrimOnVoidType onVoid() const { return _onVoid; }
  void setOnVoid(QXDAOTrimOnVoidType onVoid) { _onVoid = onVoid; }

 private:
  void readOperation(const XMLNode& xml);
  void readTrim(const XMLNode& xml);

  CompactString _operationName;
  CompactList<std::string_view> _prefixOverrides{{}, false};  // never absent
  CompactList<std::string_view> _suffixOverrides{{}, false};
  QXDAOTrimOnVoidType _onVoid = QXDAOTrimOnVoidTypeNone;
};

}  // namespace korvex
