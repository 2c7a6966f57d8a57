#pragma once

#include <atomic>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "korvex/CompactList.h"
#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/SpinLock.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct QXDAOPackClassInfo;

// <pack as="column" properties="a, b…" crypt="true"/>: several properties of an object, stored together
// in one column. It has no name and does not name a class: one pack serves the objects of any class.
//
// Threads: any number may pack and unpack with one pack at the same time. Objects belong to the
// caller, who keeps other threads from changing one while it is packed or unpacked. Setters and the
// destructor must not run at the same time as anything else.
class KORVEX_EXPORT QXDAOPack final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindPack;
  QXDAOPack() : QXDAOElement(Kind) {}
  ~QXDAOPack() { releaseLayouts(); }

  void initWithXML(const XMLNode& xml);

  // The name of the column, without spaces at both ends; not empty in a finished element.
  [[nodiscard]] OptionalStringView column() const { return _column.view(); }
  void setColumn(OptionalStringView column) { _column = kept(column); }
  // The names of the properties, each without spaces at both ends, in the order written and including
  // empty and repeated ones; two or more in a finished element.
  [[nodiscard]] const std::optional<std::span<const std::string_view>>& propertyList() const {
    return _propertyList.view();
  }
  void setPropertyList(std::optional<std::span<const std::string_view>> list);
  // True if the engine encrypts the column. Packing and unpacking ignore it.
  [[nodiscard]] bool crypted() const { return _crypted; }
  void setCrypted(bool crypted) { _crypted = crypted; }

  // The value of the column: one record (see QXDAOPackReader) for each listed property that has a
  // value, in ascending byte order of the names. A string goes in up to its first zero byte; one that
  // is not valid UTF-8 goes in as an empty string. Empty if no property has a value; absent if the
  // object is null or there was no memory for the layout of its class.
  [[nodiscard]] std::optional<std::string> packWithObject(const ModelObject* object) const;
  // Stores the records of a value in the object. A record for a property that the class of the object
  // does not pack, or of a type that its field cannot hold, is skipped; a field without a record keeps
  // its value. A number goes into a scalar field of another width without conversion: missing bytes
  // are zero, surplus high bytes are dropped. A string that is not valid UTF-8 makes its field absent.
  // A record that ends early or whose encode is unknown ends the reading; the records before it stay
  // applied. Nothing is reported. The value may be any bytes; a null object is ignored.
  void unpackWithObject(ModelObject* object, std::string_view data) const;

  // The layout of the class of the object, owned by the pack: worked out when the class is first met
  // and kept until the pack is destroyed. Null if the object is null or there was no memory. Setting
  // another propertyList does not change layouts that exist.
  [[nodiscard]] const QXDAOPackClassInfo* getClassInfoWithObject(const ModelObject* object) const;

 private:
  void releaseLayouts();
  void readPropertyList(std::string_view properties);
  [[nodiscard]] QXDAOPackClassInfo* initializeWithClass(const ModelClass& cls) const;

  // The layouts, newest first. The list is walked without the lock, which is held only to link one.
  mutable std::atomic<QXDAOPackClassInfo*> _head{nullptr};
  mutable SpinLock _lock;
  bool _crypted = false;
  CompactString _column;
  CompactList<std::string_view> _propertyList;
};

}  // namespace korvex
