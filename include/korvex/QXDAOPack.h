#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/SpinLock.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct QXDAOPackClassInfo;

// <pack>: several properties of an object stored together in one column. It has no name and
// names no class: one pack serves every class whose objects it meets.
class KORVEX_EXPORT QXDAOPack final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindPack;
  QXDAOPack() : QXDAOElement(Kind) {}
  ~QXDAOPack() override;

  void initWithXML(const XMLNode& xml);

  // The column's name; never empty in a finished element.
  [[nodiscard]] OptionalStringView column() const { return _column.view(); }
  void setColumn(OptionalStringView column) { _column = CompactString(column); }
  // The names in the order written, empty and repeated ones included; two or more when finished.
  [[nodiscard]] const std::optional<std::vector<std::string>>& propertyList() const { return _propertyList; }
  void setPropertyList(std::optional<std::vector<std::string>> list) { _propertyList = std::move(list); }
  // Whether the engine stores the column encrypted; packing and unpacking do not look at it.
  [[nodiscard]] bool crypted() const { return _crypted; }
  void setCrypted(bool crypted) { _crypted = crypted; }

  // The listed properties of an object as the bytes of its column: a record for each that has a
  // value, in ascending order of the names (docs/packed-format.md). Empty when none has one;
  // absent when the object is null or its layout could not be allocated. Threads may pack and
  // unpack at once on one pack; each object belongs to its caller.
  [[nodiscard]] std::optional<std::string> packWithObject(const ModelObject* object) const;
  // Stores the records of such bytes in the object. Names and types that the object's class does
  // not pack are skipped; fields without a record keep their value; reading ends, with what came
  // before applied, at a record that is cut short or cannot be read. Nothing is reported.
  void unpackWithObject(ModelObject* object, std::string_view data) const;

  // The layout of the object's class, worked out when the class is first met and kept until the
  // pack is destroyed. Null when the object is null or the layout could not be allocated. Setting
  // another propertyList does not change the layouts that are there.
  [[nodiscard]] const QXDAOPackClassInfo* getClassInfoWithObject(const ModelObject* object) const;

 private:
  void readPropertyList(std::string_view properties);
  [[nodiscard]] QXDAOPackClassInfo* initializeWithClass(const ModelClass& cls) const;

  // The layouts, newest first. Walked without the lock; the lock is held while one is linked.
  mutable std::atomic<QXDAOPackClassInfo*> _head{nullptr};
  mutable SpinLock _lock;
  bool _crypted = false;
  CompactString _column;
  std::optional<std::vector<std::string>> _propertyList;
};

}  // namespace korvex
