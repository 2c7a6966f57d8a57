// The mapping language as typed element trees.
//
// QXDAOElement::elementWithXML takes one definition element of a document and gives the tree of
// elements that it describes, or an error record that names a violated rule, normally the first:
//
//   QXDAOElement
//     QXDAOText               a piece of SQL text, list references expanded
//     QXDAOForeach            <foreach>: text repeated for each entry of a collection
//     QXDAOKeyValueFormatter  <format>: prefix, pairs and join of key-value pairs
//     QXDAOSqlBlock           <sql>: named, reusable SQL text
//     QXDAOConst              <const>: a named constant
//     QXDAOMap                <map>: columns of a result row → properties of a class
//     QXDAOCryptProperty      <crypt>: a property that is stored encrypted
//     QXDAOPack               <pack>: several properties in one column
//     QXDAOContainerElement   elements with children:
//       QXDAOMethod           <select>, <update>, <insert>, <delete>, <upgrade>
//       QXDAOMethodStep       <step>
//       QXDAOTry              <try>
//       QXDAOExcept           <except>
//       QXDAOCondition        <if>, <when>, <otherwise>
//       QXDAOChoose           <choose>
//       QXDAOTrim             <trim>, <where>, <set>
//
// Construction: a new element is blank; its one initWith… operation fills it from a document node.
// These operations are not virtual: whoever builds an element knows its class. They always finish;
// a violated rule leaves a message that travels up to the error record. Elements copy what they
// keep, so a finished tree outlives the document it was read from. Building and destroying recurse
// as deep as the document is nested: who brings a parser of his own limits that depth, as the loader
// does.
//
// Ownership: a parent owns its children; plain pointers (parentMethod, exceptElement, tryElement)
// own nothing and point inside the same tree.
//
// Threads: a tree is built on the caller's thread, and trees may be built on any number of threads
// at once. A finished tree is only read, except for the slots marked as the engine's, which the
// engine guards itself. Setters are plain stores without a lock.
//
// Destructors are inline on purpose: an engine that is compiled with run-time type information can
// derive from QXDAOEngineValue although the library is compiled without.
//
// Absence: an OptionalString tells an absent string from an empty one; a list or dictionary that
// has not been set is nullopt. Setters replace the old value and check nothing.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/QXSCDAOMethodCounter.h"
#include "korvex/SpinLock.h"
#include "korvex/Strings.h"
#include "korvex/XMLNode.h"

namespace korvex {

// ---------------------------------------------------------------------------------------------
// Keywords of the language: tags, attributes and the attribute values that are reserved.

inline constexpr std::string_view C_ID = "id";
inline constexpr std::string_view C_SQL = "sql";
inline constexpr std::string_view C_MAP = "map";
inline constexpr std::string_view C_CONST = "const";
inline constexpr std::string_view C_RESULT = "result";
inline constexpr std::string_view C_ARGUMENTS = "arguments";
inline constexpr std::string_view C_PARALLEL = "parallel";
inline constexpr std::string_view C_PROFILE = "profile";
inline constexpr std::string_view C_PROPERTY = "property";
inline constexpr std::string_view C_COLUMN = "column";
inline constexpr std::string_view C_SELECT = "select";
inline constexpr std::string_view C_UPDATE = "update";
inline constexpr std::string_view C_INSERT = "insert";
inline constexpr std::string_view C_DELETE = "delete";
inline constexpr std::string_view C_UPGRADE = "upgrade";
inline constexpr std::string_view C_CRYPT = "crypt";
inline constexpr std::string_view C_CLASS = "class";
inline constexpr std::string_view C_TO_VERSION = "toVersion";
inline constexpr std::string_view C_STEP = "step";
inline constexpr std::string_view C_FORMAT = "format";
inline constexpr std::string_view C_IF = "if";
inline constexpr std::string_view C_WHEN = "when";
inline constexpr std::string_view C_CHOOSE = "choose";
inline constexpr std::string_view C_OTHERWISE = "otherwise";
inline constexpr std::string_view C_FOREACH = "foreach";
inline constexpr std::string_view C_WHERE = "where";
inline constexpr std::string_view C_SET = "set";
inline constexpr std::string_view C_TRIM = "trim";
inline constexpr std::string_view C_TRUE = "true";
inline constexpr std::string_view C_FALSE = "false";
inline constexpr std::string_view C_RESERVED_TABLE = "T";
inline constexpr std::string_view C_ITEM = "item";
inline constexpr std::string_view C_COLLECTION = "collection";
inline constexpr std::string_view C_OPEN = "open";
inline constexpr std::string_view C_CLOSE = "close";
inline constexpr std::string_view C_REVERSE = "reverse";
inline constexpr std::string_view C_SEPARATOR = "separator";
inline constexpr std::string_view C_PREFIX = "prefix";
inline constexpr std::string_view C_PREFIX_OVERRIDES = "prefixOverrides";
inline constexpr std::string_view C_SUFFIX_OVERRIDES = "suffixOverrides";
inline constexpr std::string_view C_ON_VOID = "onVoid";
inline constexpr std::string_view C_TRY = "try";
inline constexpr std::string_view C_EXCEPT = "except";
inline constexpr std::string_view C_ASSIGNED_TABLE = "assignedTable";
inline constexpr std::string_view C_INITIAL = "initial";
inline constexpr std::string_view C_PAIRS = "pairs";
inline constexpr std::string_view C_JOIN = "join";
inline constexpr std::string_view C_RESUMABLE = "resumable";
inline constexpr std::string_view C_PACK = "pack";
inline constexpr std::string_view C_PROPERTIES = "properties";
inline constexpr std::string_view C_AS = "as";

// ---------------------------------------------------------------------------------------------
// Enumerations

enum QXDAOOperation : std::uint64_t {
  QXDAOOperationSelect = 0,
  QXDAOOperationUpdate = 1,
  QXDAOOperationInsert = 2,
  QXDAOOperationDelete = 3,
  QXDAOOperationUpgrade = 4,
};

// What one row of a select becomes; the comment is how "result" spells it.
enum QXDAOSelectResultType : std::uint64_t {
  QXDAOSelectResultTypeInt = 0,           // int
  QXDAOSelectResultTypeLongLong = 1,      // long long
  QXDAOSelectResultTypeBool = 2,          // bool
  QXDAOSelectResultTypeDouble = 3,        // double
  QXDAOSelectResultTypeString = 4,        // string
  QXDAOSelectResultTypeBinary = 5,        // binary
  QXDAOSelectResultTypeColumnMap = 6,     // {}
  QXDAOSelectResultTypeObject = 7,        // any other text: a class name
  QXDAOSelectResultTypeMappedObject = 8,  // ":" and the name of a <map>
};

enum QXDAOConditionType : std::uint64_t {
  QXDAOConditionTypeIf = 0,
  QXDAOConditionTypeWhen = 1,
  QXDAOConditionTypeOtherwise = 2,
};

// What the engine does when the content of a <trim>, <where> or <set> turns out empty.
enum QXDAOTrimOnVoidType : std::uint64_t {
  QXDAOTrimOnVoidTypeNone = 0,
  QXDAOTrimOnVoidTypeQuit = 1,
  QXDAOTrimOnVoidTypeIgnoreAfter = 2,
};

// The engine's note on its own analysis of a text.
enum QXDAOTextSpeedyStatus : std::uint64_t {
  QXDAOTextSpeedyStatusNone = 0,
  QXDAOTextSpeedyStatusValid = 1,
  QXDAOTextSpeedyStatusInvalid = 2,
};

// The class of an element, as a value: the library builds without run-time type information.
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

// ---------------------------------------------------------------------------------------------
// Error records

// The domain of every error record.
inline constexpr std::string_view QXDAO_ERROR_DOMAIN = "korvex.dao";

// Why a definition was refused. Failures differ by their message alone; the code is always 0.
struct KORVEX_EXPORT QXDAOError {
  using Value = std::variant<std::string, XMLNode>;

  std::string domain;
  int code = 0;
  // Two entries: "error", the message (a string), and "xml", the definition element that was
  // handed to the factory (a node of the caller's tree: valid while that tree is).
  std::map<std::string, Value, std::less<>> userInfo;
  // The node whose own rule failed, at or below "xml": the element at fault, or the parent of a
  // text at fault. Valid while the caller's tree is.
  XMLNode origin;

  // The entries of userInfo by type. An empty message or a null node on a record without them.
  [[nodiscard]] std::string_view message() const;
  [[nodiscard]] XMLNode xml() const;
};

// ---------------------------------------------------------------------------------------------
// Elements

// Whatever an engine keeps in the slots that the elements hold for it: derive from this.
class KORVEX_EXPORT QXDAOEngineValue {
 public:
  QXDAOEngineValue() = default;
  QXDAOEngineValue(const QXDAOEngineValue&) = delete;
  QXDAOEngineValue& operator=(const QXDAOEngineValue&) = delete;
  virtual ~QXDAOEngineValue() = default;
};

using QXDAOEngineList = std::vector<std::unique_ptr<QXDAOEngineValue>>;

class KORVEX_EXPORT QXDAOElement {
 public:
  QXDAOElement(const QXDAOElement&) = delete;
  QXDAOElement& operator=(const QXDAOElement&) = delete;
  virtual ~QXDAOElement() = default;

  // The root factory: builds the element tree of one definition element. The tag decides the
  // class: sql, map, const, crypt and pack have their own, every other tag goes to QXDAOMethod,
  // which refuses what is not a method. Never null without a reason: on failure the result is
  // null and `error`, if given, is filled; on success `error` is left as it was.
  [[nodiscard]] static std::unique_ptr<QXDAOElement> elementWithXML(const XMLNode& xml,
                                                                    std::optional<QXDAOError>* error = nullptr);

  [[nodiscard]] QXDAOElementKind kind() const { return _kind; }

  // The "id" of methods, sql blocks and maps, the declared name of a constant; absent elsewhere.
  [[nodiscard]] OptionalStringView name() const { return _name.view(); }
  void setName(OptionalStringView name) { _name = CompactString(name); }

 protected:
  explicit QXDAOElement(QXDAOElementKind kind) : _kind(kind) {}

  // Base constructions. The plain one reads nothing; the named one takes the name from "id" and
  // fails without one.
  void initWithXML(const XMLNode& xml);
  void initNamedElementWithXML(const XMLNode& xml);

  // The failure message; absent while no rule was violated. Only construction writes it.
  [[nodiscard]] OptionalStringView error() const;
  [[nodiscard]] bool failed() const { return _error != nullptr; }
  // Stores a message in place of any earlier one. `origin` is the node at fault; without one the
  // element's own node is meant, which whoever built the element fills in.
  void setError(std::string message, const XMLNode& origin = {});
  // The same with the element's own name in the place of the format's "%@".
  void setErrorWithName(std::string_view format);
  // Takes over the failure of a child that was built from `childXML`; false when it has none.
  bool adoptErrorOf(const QXDAOElement& child, const XMLNode& childXML);

 private:
  struct Failure {
    std::string message;
    XMLNode origin;
  };

  // The failure as a record; the message is moved into it.
  [[nodiscard]] QXDAOError takenError(const XMLNode& xml);

  CompactString _name;
  std::unique_ptr<Failure> _error;
  QXDAOElementKind _kind;
};

// The element as a T, or null when it is null or of another class.
template <typename T>
[[nodiscard]] T* QXDAOElementCast(QXDAOElement* element) {
  return element && element->kind() == T::Kind ? static_cast<T*>(element) : nullptr;
}
template <typename T>
[[nodiscard]] const T* QXDAOElementCast(const QXDAOElement* element) {
  return element && element->kind() == T::Kind ? static_cast<const T*>(element) : nullptr;
}

using QXDAOElementList = std::vector<std::unique_ptr<QXDAOElement>>;

// An element with an ordered list of child elements.
class KORVEX_EXPORT QXDAOContainerElement : public QXDAOElement {
 public:
  // In document order; absent until the children have been walked.
  [[nodiscard]] const std::optional<QXDAOElementList>& children() const { return _children; }
  // Links that children have to this element, or this element to a child, are not looked after.
  void setChildren(std::optional<QXDAOElementList> children) { _children = std::move(children); }
  // Gives the children away and leaves them absent here.
  [[nodiscard]] std::optional<QXDAOElementList> takeChildren();

 protected:
  using QXDAOElement::QXDAOElement;

  // The child walk: turns the nodes below `xml` into children. Comments are skipped, texts that
  // are empty after trimming and expansion are dropped, elements are looked up in the tag table.
  // The first failure is stored in this element, ends the walk and leaves children() undefined.
  void processNodes(const XMLNode& xml);

 private:
  // One step of the walk each; appendElement is false when this element failed over the node.
  static void appendText(const XMLNode& node, QXDAOElementList& children);
  [[nodiscard]] bool appendElement(const XMLNode& node, QXDAOElementList& children);

  std::optional<QXDAOElementList> _children;
};

// ---------------------------------------------------------------------------------------------
// Text and dynamic fragments

// One piece of SQL text. Never fails and has no name.
//
// A list reference %{'FORMAT', STAR, STAR…} in the text is written out as the format once per
// star, every "*" in it replaced by the star, joined by ", ". Time and memory are in proportion to
// the text and its expansion; a format of many "*" and many stars expand to their product:
// expandedLength tells how much that is.
class KORVEX_EXPORT QXDAOText final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindText;
  QXDAOText() : QXDAOElement(Kind) {}

  // The string value of a node, normally a text, without spaces, tabs and line feeds at both ends.
  void initWithXML(const XMLNode& xml);
  // The text as given; absent stays absent.
  void initWithText(OptionalStringView text);
  // A new element, initialised with the text. Its expression stands behind it in the same block of
  // memory.
  [[nodiscard]] static std::unique_ptr<QXDAOText> elementWithText(OptionalStringView text);

  // The SQL text with its list references expanded.
  [[nodiscard]] OptionalStringView expression() const {
    return _lengthBehind == notBehind ? _expression.view() : std::string_view(behind(), _lengthBehind);
  }
  void setExpression(OptionalStringView expression) {
    CompactString replacement(expression);
    _lengthBehind = notBehind;
    _expression = std::move(replacement);
  }
  // Expands the list references of the expression, which the operations above have done already.
  void processText();
  // The bytes that a text would have with its list references expanded, in time that is in
  // proportion to the text alone. Exact for texts below 4 GiB.
  [[nodiscard]] static std::size_t expandedLength(std::string_view text);

  static void* operator new(std::size_t size) { return ::operator new(size); }
  // Not the one that is told the size: with characters behind it, that is not the size of the block.
  static void operator delete(void* text) { ::operator delete(text); }

  // The engine's slots; null and None until the engine sets them.
  [[nodiscard]] const std::unique_ptr<QXDAOEngineList>& speedyList() const { return _speedyList; }
  void setSpeedyList(std::unique_ptr<QXDAOEngineList> list) { _speedyList = std::move(list); }
  [[nodiscard]] QXDAOTextSpeedyStatus speedyStatus() const { return _speedyStatus; }
  void setSpeedyStatus(QXDAOTextSpeedyStatus status) { _speedyStatus = status; }

 private:
  static void* operator new(std::size_t size, std::size_t lengthBehind) { return ::operator new(size + lengthBehind); }
  [[nodiscard]] char* behind() const { return reinterpret_cast<char*>(const_cast<QXDAOText*>(this) + 1); }

  static constexpr std::size_t notBehind = static_cast<std::size_t>(-1);

  QXDAOTextSpeedyStatus _speedyStatus : 8 = QXDAOTextSpeedyStatusNone;
  std::size_t _lengthBehind = notBehind;  // of the expression when it stands behind the element
  CompactString _expression;              // when it does not
  std::unique_ptr<QXDAOEngineList> _speedyList;
};

// <if>, <when> and <otherwise>: content that applies under a condition. The attribute "true" or
// "false" of if and when holds the expression and says which outcome applies.
class KORVEX_EXPORT QXDAOCondition final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindCondition;
  QXDAOCondition() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  [[nodiscard]] QXDAOConditionType type() const { return _type; }
  void setType(QXDAOConditionType type) { _type = type; }
  // True when the content applies if the expression holds, false when it applies if it does not.
  [[nodiscard]] bool evaluateAsTrue() const { return _evaluateAsTrue; }
  void setEvaluateAsTrue(bool evaluateAsTrue) { _evaluateAsTrue = evaluateAsTrue; }
  // The trimmed expression; absent for otherwise. The tokens may be pieces of it, so replacing it
  // leaves them absent.
  [[nodiscard]] OptionalStringView expression() const { return _expression.view(); }
  void setExpression(OptionalStringView expression) {
    _tokenList.reset();
    _expression = CompactString(expression);
  }
  // The evaluator's tokens, never empty in a finished element, where they are pieces of the
  // expression; absent for otherwise. Whoever sets others keeps their texts alive.
  [[nodiscard]] const std::optional<QXDAOTokenList>& tokenList() const { return _tokenList; }
  void setTokenList(std::optional<QXDAOTokenList> tokens) { _tokenList = std::move(tokens); }

 private:
  [[nodiscard]] bool readCondition(const XMLNode& xml);
  [[nodiscard]] bool readExpression(const XMLAttribute& attribute);

  QXDAOConditionType _type : 8 = QXDAOConditionTypeIf;
  bool _evaluateAsTrue = false;
  CompactString _expression;
  std::optional<QXDAOTokenList> _tokenList;
};

// <choose>: its children are conditions, any number of when and then at most one otherwise.
class KORVEX_EXPORT QXDAOChoose final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindChoose;
  QXDAOChoose() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);
};

// <foreach>: text that the engine repeats for each entry of a collection. String attributes are
// kept as written; those that are not given stay absent.
class KORVEX_EXPORT QXDAOForeach final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindForeach;
  QXDAOForeach() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // The name of the iteration variable and the collection it runs over; never empty when finished.
  [[nodiscard]] OptionalStringView item() const { return _item.view(); }
  void setItem(OptionalStringView item) { _item = CompactString(item); }
  [[nodiscard]] OptionalStringView collection() const { return _collection.view(); }
  void setCollection(OptionalStringView collection) { _collection = CompactString(collection); }
  // The texts before, between and after the repetitions.
  [[nodiscard]] OptionalStringView open() const { return _open.view(); }
  void setOpen(OptionalStringView open) { _open = CompactString(open); }
  [[nodiscard]] OptionalStringView separator() const { return _separator.view(); }
  void setSeparator(OptionalStringView separator) { _separator = CompactString(separator); }
  [[nodiscard]] OptionalStringView close() const { return _close.view(); }
  void setClose(OptionalStringView close) { _close = CompactString(close); }
  // The text to repeat; present in a finished element, its expression may be empty.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }
  // From the last entry to the first.
  [[nodiscard]] bool reverse() const { return _reverse; }
  void setReverse(bool reverse) { _reverse = reverse; }
  // The engine's flag; false until the engine sets it.
  [[nodiscard]] bool commonBindModel() const { return _commonBindModel; }
  void setCommonBindModel(bool commonBindModel) { _commonBindModel = commonBindModel; }

 private:
  void readAttributes(const XMLNode& xml);
  void readText(const XMLNode& xml);

  CompactString _item;
  CompactString _collection;
  CompactString _open;
  CompactString _separator;
  CompactString _close;
  std::unique_ptr<QXDAOText> _text;
  bool _reverse = false;
  bool _commonBindModel = false;
};

// <trim>, <where> and <set>: content whose ends are cleaned up when the SQL is put together.
class KORVEX_EXPORT QXDAOTrim final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTrim;
  QXDAOTrim() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // The keyword to put before the content: "where", "set", or the "prefix" of a trim.
  [[nodiscard]] OptionalStringView operationName() const { return _operationName.view(); }
  void setOperationName(OptionalStringView operationName) { _operationName = CompactString(operationName); }
  // What to remove from the start and the end of the content, in order, spaces included.
  [[nodiscard]] const std::vector<std::string>& prefixOverrides() const { return _prefixOverrides; }
  void setPrefixOverrides(std::vector<std::string> overrides) { _prefixOverrides = std::move(overrides); }
  [[nodiscard]] const std::vector<std::string>& suffixOverrides() const { return _suffixOverrides; }
  void setSuffixOverrides(std::vector<std::string> overrides) { _suffixOverrides = std::move(overrides); }
  [[nodiscard]] QXDAOTrimOnVoidType onVoid() const { return _onVoid; }
  void setOnVoid(QXDAOTrimOnVoidType onVoid) { _onVoid = onVoid; }

 private:
  void readOperation(const XMLNode& xml);
  void readTrim(const XMLNode& xml);

  QXDAOTrimOnVoidType _onVoid : 8 = QXDAOTrimOnVoidTypeNone;
  CompactString _operationName;
  std::vector<std::string> _prefixOverrides;
  std::vector<std::string> _suffixOverrides;
};

// <format>: how the engine writes key-value pairs at this place. Content is ignored.
class KORVEX_EXPORT QXDAOKeyValueFormatter final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindKeyValueFormatter;
  QXDAOKeyValueFormatter() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // None of the three is empty in a finished element.
  [[nodiscard]] OptionalStringView prefix() const { return _prefix.view(); }
  void setPrefix(OptionalStringView prefix) { _prefix = CompactString(prefix); }
  [[nodiscard]] OptionalStringView pairs() const { return _pairs.view(); }
  void setPairs(OptionalStringView pairs) { _pairs = CompactString(pairs); }
  [[nodiscard]] OptionalStringView join() const { return _join.view(); }
  void setJoin(OptionalStringView join) { _join = CompactString(join); }

 private:
  CompactString _prefix;
  CompactString _pairs;
  CompactString _join;
};

// ---------------------------------------------------------------------------------------------
// Reusable text

// <sql>: a named piece of SQL text without dynamic fragments. "T" and "t" are reserved names.
class KORVEX_EXPORT QXDAOSqlBlock final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindSqlBlock;
  QXDAOSqlBlock() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // Present in a finished element; its expression may be empty.
  [[nodiscard]] const std::unique_ptr<QXDAOText>& text() const { return _text; }
  void setText(std::unique_ptr<QXDAOText> text) { _text = std::move(text); }

 private:
  void readText(const XMLNode& xml);

  std::unique_ptr<QXDAOText> _text;
};

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

// ---------------------------------------------------------------------------------------------
// Object mapping

// <map>: which property of a class receives which column of a result row.
class KORVEX_EXPORT QXDAOMap final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMap;
  QXDAOMap() : QXDAOElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // The class that a row becomes; never empty in a finished element.
  [[nodiscard]] OptionalStringView resultClass() const { return _resultClass.view(); }
  void setResultClass(OptionalStringView resultClass) { _resultClass = CompactString(resultClass); }
  // Column name → property name; the last of several entries for one column wins.
  using ColumnPropertyMap = std::unordered_map<std::string, std::string>;
  [[nodiscard]] const std::optional<ColumnPropertyMap>& columnPropertyMap() const { return _columnPropertyMap; }
  void setColumnPropertyMap(std::optional<ColumnPropertyMap> map) { _columnPropertyMap = std::move(map); }

 private:
  void readColumns(const XMLNode& xml);
  [[nodiscard]] bool readColumn(const XMLNode& node);

  CompactString _resultClass;
  std::optional<ColumnPropertyMap> _columnPropertyMap;
};

// <crypt>: one property of one class whose stored value the engine encrypts. It has no name.
class KORVEX_EXPORT QXDAOCryptProperty final : public QXDAOElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindCryptProperty;
  QXDAOCryptProperty() : QXDAOElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  // Neither is empty in a finished element.
  [[nodiscard]] OptionalStringView className() const { return _className.view(); }
  void setClassName(OptionalStringView className) { _className = CompactString(className); }
  [[nodiscard]] OptionalStringView propertyName() const { return _propertyName.view(); }
  void setPropertyName(OptionalStringView propertyName) { _propertyName = CompactString(propertyName); }

 private:
  [[nodiscard]] bool validCryptDescription(const XMLNode& xml);

  CompactString _className;
  CompactString _propertyName;
};

// How a value stands in a packed column, written into every record. A positive value is 16 × type
// index + bytes of the value.
enum QXDAOPackEncode : std::int16_t {
  QXDAOPackEncodeNumber = -2,  // a number object's field in a layout; never in a record
  QXDAOPackEncodeString = -1,
  QXDAOPackEncodeNone = 0,
  QXDAOPackEncodeBOOL = 1,
  QXDAOPackEncodeInt8 = 17,
  QXDAOPackEncodeUInt8 = 33,
  QXDAOPackEncodeInt16 = 50,
  QXDAOPackEncodeUInt16 = 66,
  QXDAOPackEncodeInt32 = 84,
  QXDAOPackEncodeUInt32 = 100,
  QXDAOPackEncodeInt64 = 120,
  QXDAOPackEncodeUInt64 = 136,
  QXDAOPackEncodeFloat = 148,
  QXDAOPackEncodeDouble = 168,
};

// The widths of a record's name length and string length.
using QXDAOPackNameLengthType = std::uint8_t;
using QXDAOPackStringLengthType = std::uint32_t;

// One packed property of one class. Empty, with no field and no name, when the class lacks the
// property or its field, or when the name of either is longer than 255 bytes: a record has no room
// for such a name.
struct QXDAOPackPropertyInfo {
  const ModelField* field = nullptr;   // owned by the class
  std::int8_t encode_c = 0;            // a scalar's type code, -2 number object, -1 string, 0 other
  const char* name = nullptr;          // ends with a zero byte; owned by the class
  QXDAOPackNameLengthType length = 0;  // bytes of the name
  // What the above means for every object, worked out once.
  QXDAOPackEncode encode = QXDAOPackEncodeNone;  // String, Number, or the encode of a scalar
  std::ptrdiff_t offset = 0;                     // of the field, in bytes from the ModelObject
  const char* head = nullptr;                    // the first bytes of each record: name length, name, zero byte, encode
};

// The layout of one class: its packed properties in ascending byte order of their names, empty
// entries at the end.
struct QXDAOPackClassInfo {
  const ModelClass* cls = nullptr;
  std::int32_t count = 0;
  QXDAOPackPropertyInfo* properties = nullptr;  // `count` of them, owned
  char* heads = nullptr;                        // of all properties, owned
  std::size_t bytesWithoutTexts = 0;            // of a value in which all strings are empty, or more
  QXDAOPackClassInfo* next = nullptr;           // owned by the pack
};

// Negative, zero or positive as the first entry sorts before, equal to or after the second: names
// byte by byte, a name before a longer one that it begins, an entry without a name after all.
[[nodiscard]] KORVEX_EXPORT int property_info_cmp(const QXDAOPackPropertyInfo& first,
                                                  const QXDAOPackPropertyInfo& second);

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

// ---------------------------------------------------------------------------------------------
// Methods

// One declared argument of a method.
class QXDAOMethodArgument {
 public:
  // Without the "$" mark.
  [[nodiscard]] OptionalStringView name() const { return _name; }
  void setName(OptionalString name) { _name = std::move(name); }
  // The declaration began with "$".
  [[nodiscard]] bool notNull() const { return _notNull; }
  void setNotNull(bool notNull) { _notNull = notNull; }

 private:
  OptionalString _name;
  bool _notNull = false;
};

// <select>, <update>, <insert>, <delete> and <upgrade>: one data-access method. Its children are
// its body. An upgrade has no name, only the version it leads to.
class KORVEX_EXPORT QXDAOMethod final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMethod;
  QXDAOMethod() : QXDAOContainerElement(Kind) {}

  void initNamedElementWithXML(const XMLNode& xml);

  // True when an argument has exactly this name, the "$" mark not counted.
  [[nodiscard]] bool hasArgumentWithName(std::string_view name) const;

  // The "profile" attribute.
  bool _profile = false;
  // The engine's fields; the mapping layer never touches them.
  bool _ignoreCounter = false;
  std::int32_t _mappingSequence = 0;
  std::unique_ptr<QXSCDAOMethodCounter> _counter;
  const ModelClass* _cls = nullptr;  // not owned
  std::unique_ptr<QXDAOEngineList> _mappingInfo;

  // The engine's slot; absent until the engine sets it.
  [[nodiscard]] OptionalStringView module() const { return _module.view(); }
  void setModule(OptionalStringView module) { _module = CompactString(module); }

  [[nodiscard]] QXDAOOperation operation() const { return _operation; }
  void setOperation(QXDAOOperation operation) { _operation = operation; }

  // What a select yields; Int, false and absent on other operations. The type name is the keyword,
  // the class name, or the name of the result map.
  [[nodiscard]] QXDAOSelectResultType resultType() const { return _resultType; }
  void setResultType(QXDAOSelectResultType resultType) { _resultType = resultType; }
  [[nodiscard]] bool resultArrayed() const { return _resultArrayed; }
  void setResultArrayed(bool resultArrayed) { _resultArrayed = resultArrayed; }
  // The "assignedTable" attribute of a select, recorded for the engine; false on other operations.
  [[nodiscard]] bool assignedTable() const { return _assignedTable; }
  void setAssignedTable(bool assignedTable) { _assignedTable = assignedTable; }
  [[nodiscard]] OptionalStringView resultTypeName() const { return _resultTypeName.view(); }
  void setResultTypeName(OptionalStringView resultTypeName) { _resultTypeName = CompactString(resultTypeName); }

  // The declared arguments in order; empty when none is declared.
  [[nodiscard]] const std::optional<std::vector<QXDAOMethodArgument>>& arguments() const { return _arguments; }
  void setArguments(std::optional<std::vector<QXDAOMethodArgument>> arguments) { _arguments = std::move(arguments); }

  // The children are two or more steps; the only child is a try block.
  [[nodiscard]] bool steped() const { return _steped; }
  void setSteped(bool steped) { _steped = steped; }
  [[nodiscard]] bool tryBlock() const { return _tryBlock; }
  void setTryBlock(bool tryBlock) { _tryBlock = tryBlock; }

  // The "parallel" attribute of a select, recorded for the engine; false on other operations.
  [[nodiscard]] bool parallel() const { return _parallel; }
  void setParallel(bool parallel) { _parallel = parallel; }

  // The "foreach" attribute "collection.item": the method runs once for each entry.
  // clang-format off
  [[nodiscard]] bool foreach() const { return _foreach; }
  // clang-format on
  void setForeach(bool foreach) { _foreach = foreach; }
  [[nodiscard]] bool foreachResumable() const { return _foreachResumable; }
  void setForeachResumable(bool foreachResumable) { _foreachResumable = foreachResumable; }
  [[nodiscard]] OptionalStringView foreachItemName() const { return _foreachItemName.view(); }
  void setForeachItemName(OptionalStringView name) { _foreachItemName = CompactString(name); }
  [[nodiscard]] OptionalStringView foreachCollection() const { return _foreachCollection.view(); }
  void setForeachCollection(OptionalStringView name) { _foreachCollection = CompactString(name); }

  // The version that an upgrade leads to, 0 for "initial"; 0 on other operations.
  [[nodiscard]] double toVersion() const { return _toVersion; }
  void setToVersion(double toVersion) { _toVersion = toVersion; }

 private:
  [[nodiscard]] bool readUpgradeDeclaration(const XMLNode& xml);
  // The second stage of building, and its own stages in their order. Each reports through the
  // element's error; the first two end the setup by it.
  void setupMethod(const XMLNode& xml);
  void decideOperation(const XMLNode& xml);
  void readArguments(const XMLNode& xml);
  void readOptions(const XMLNode& xml);
  void decideResultType(OptionalStringView declaration);
  void checkStepElements();
  void checkTryBlock();
  void readForeach(const XMLNode& xml);
  [[nodiscard]] bool readForeachNames(std::string_view declaration);

  // In one word: an app has thousands of methods.
  QXDAOOperation _operation : 8 = QXDAOOperationSelect;
  QXDAOSelectResultType _resultType : 8 = QXDAOSelectResultTypeInt;
  bool _resultArrayed : 1 = false;
  bool _assignedTable : 1 = false;
  bool _steped : 1 = false;
  bool _tryBlock : 1 = false;
  bool _parallel : 1 = false;
  bool _foreach : 1 = false;
  bool _foreachResumable : 1 = false;
  CompactString _module;
  CompactString _resultTypeName;
  std::optional<std::vector<QXDAOMethodArgument>> _arguments;
  CompactString _foreachItemName;
  CompactString _foreachCollection;
  double _toVersion = 0;
};

// <step>: one of several parts of a method. A method with a single step is built as if the step's
// content stood in the method itself.
class KORVEX_EXPORT QXDAOMethodStep final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindMethodStep;
  QXDAOMethodStep() : QXDAOContainerElement(Kind) {}

  // The method must not be null and must outlive the step.
  void initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod);

  [[nodiscard]] QXDAOMethod* parentMethod() const { return _parentMethod; }
  void setParentMethod(QXDAOMethod* parentMethod) { _parentMethod = parentMethod; }
  // Recorded for the engine.
  [[nodiscard]] bool resumable() const { return _resumable; }
  void setResumable(bool resumable) { _resumable = resumable; }

 private:
  QXDAOMethod* _parentMethod = nullptr;
  bool _resumable = false;
};

class QXDAOExcept;

// <try>: guarded content, followed by the except block that runs when it fails. The except block
// is the last child.
class KORVEX_EXPORT QXDAOTry final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindTry;
  QXDAOTry() : QXDAOContainerElement(Kind) {}

  // The method must not be null and must outlive the try block; its tryBlock is set.
  void initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod);

  [[nodiscard]] QXDAOMethod* parentMethod() const { return _parentMethod; }
  void setParentMethod(QXDAOMethod* parentMethod) { _parentMethod = parentMethod; }
  // The last child, owned by children(); null until it is built and after a failure.
  [[nodiscard]] QXDAOExcept* exceptElement() const { return _exceptElement; }
  void setExceptElement(QXDAOExcept* exceptElement) { _exceptElement = exceptElement; }

 private:
  [[nodiscard]] bool endsWithExcept() const;

  QXDAOMethod* _parentMethod = nullptr;
  QXDAOExcept* _exceptElement = nullptr;
};

// <except>: what runs when the content of its try block fails.
class KORVEX_EXPORT QXDAOExcept final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindExcept;
  QXDAOExcept() : QXDAOContainerElement(Kind) {}

  // The try block must not be null, must have its parentMethod, and must outlive the except block,
  // which registers with it unless it fails.
  void initWithXML(const XMLNode& xml, QXDAOTry* tryElement);

  [[nodiscard]] QXDAOTry* tryElement() const { return _tryElement; }
  void setTryElement(QXDAOTry* tryElement) { _tryElement = tryElement; }

 private:
  QXDAOTry* _tryElement = nullptr;
};

// ---------------------------------------------------------------------------------------------
// The mapping sequence: one process-wide counter for the engine, starting at 0. Nothing in the
// mapping layer calls these. Safe on any thread; past the largest value it wraps around.

[[nodiscard]] KORVEX_EXPORT std::int32_t GetQXDAOMappingSequence();
KORVEX_EXPORT void IncreaseQXDAOMappingSequence();

}  // namespace korvex
