#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAORule.h"
#include "korvex/XMLNode.h"

namespace korvex {

// The class of an element as a value; the library is built without run-time type information.
enum QXDAOElementKind : std::uint8_t {
  QXDAOElementKindText,
  QXDAOElementKindForeach,
  QXDAOElementKindKeyValueFormatter,
  QXDAOElementKindSqlBlock,
  QXDAOElementKindConst,
  QXDAOElementKindMap,
  QXDAOElementKindCryptProperty,
  QXDAOElementKindPack,
  QXDAOElementKindMethod,
  QXDAOElementKindMethodStep,
  QXDAOElementKindTry,
  QXDAOElementKindExcept,
  QXDAOElementKindCondition,
  QXDAOElementKindChoose,
  QXDAOElementKindTrim,
};

class TreeMemory;

// The base of all elements: a name, and the failure of its construction. Elements cannot be copied.
//
// The elements of a tree, their strings and their lists are stored together in memory of the tree. Elements that are
// built alone, and values that are set later, have their own memory. In either case, a std::unique_ptr owns an element,
// which may outlive the tree that it was taken out of.
class KORVEX_EXPORT QXDAOElement {
 public:
  QXDAOElement(const QXDAOElement&) = delete;
  QXDAOElement& operator=(const QXDAOElement&) = delete;
  // Destroys an element of any class through a pointer to this one, by its kind: elements have no
  // virtual functions.
  static void operator delete(QXDAOElement* element, std::destroying_delete_t);

  // The root factory: builds the element tree of one definition. The tag decides the class: sql, map,
  // const, crypt and pack have their own; every other tag goes to QXDAOMethod, which rejects unknown
  // tags. On success, the caller owns the tree, which no longer needs `xml` or its document, and `error` is unchanged.
  // On failure the result is null, and `error`, if given, holds a new record that refers to `xml`. Any thread; the
  // document is only read.
  [[nodiscard]] static std::unique_ptr<QXDAOElement> elementWithXML(const XMLNode& xml,
                                                                    std::optional<QXDAOError>* error = nullptr);

  [[nodiscard]] QXDAOElementKind kind() const { return _kind; }

  // The "id" of a method, sql block or map, or the name that a constant declares; absent for other
  // elements. Valid until the name is set again or the element is destroyed, like all views that
  // the properties of an element return.
  [[nodiscard]] OptionalStringView name() const { return _name.view(); }
  void setName(OptionalStringView name) { _name = kept(name); }

 protected:
  explicit QXDAOElement(QXDAOElementKind kind) : _kind(kind) {}

  // Base constructions. The plain one reads nothing; the named one takes the name from "id" and
  // fails without one.
  void initWithXML(const XMLNode& xml);
  void initNamedElementWithXML(const XMLNode& xml);

  // A copy of a text for a property of this element.
  [[nodiscard]] CompactString kept(OptionalStringView text) const;
  // Lets an element outlive the root of its tree.
  static void keepMemory(QXDAOElement& element);

  // True once a rule was violated. Only construction stores failures.
  [[nodiscard]] bool failed() const { return _error != nullptr; }
  // Stores the violation of a rule in place of any earlier one. `quoted` fills the "%@" of the rule's message, if it
  // has one. `origin` is the faulty node; without one it is the element's own node, which the code that builds
  // the element fills in.
  void setError(QXDAORule rule, OptionalStringView quoted = {}, const XMLNode& origin = {});
  // The same, quoting the element's own name.
  void setErrorWithName(QXDAORule rule);
  // Takes over the failure of a child that was built from `childXML`; false if it has none.
  bool adoptErrorOf(const QXDAOElement& child, const XMLNode& childXML);

 private:
  struct Failure {
    QXDAORule rule;
    std::string message;
    XMLNode origin;
  };

  // The failure as a record; the message is moved into it.
  [[nodiscard]] QXDAOError takenError(const XMLNode& xml);

  friend struct Building;

  CompactString _name;
  std::unique_ptr<Failure> _error;
  TreeMemory* _memory = nullptr;  // that stores the element; null if it has its own memory
  QXDAOElementKind _kind;
  bool _keepsMemory = false;  // whether the element counts as a user of it
};

// The element as a T; null if it is null or of another class.
template <typename T>
[[nodiscard]] T* QXDAOElementCast(QXDAOElement* element) {
  return element && element->kind() == T::Kind ? static_cast<T*>(element) : nullptr;
}

template <typename T>
[[nodiscard]] const T* QXDAOElementCast(const QXDAOElement* element) {
  return element && element->kind() == T::Kind ? static_cast<const T*>(element) : nullptr;
}

}  // namespace korvex
