#include "plan/PlanCompiler.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

#include "korvex/Keywords.h"
#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
#include "plan/SqlText.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// Limits for everything that references of a set insert, in pieces and bytes: a few lines can request gigabytes.
constexpr std::size_t maxPieces = std::size_t{1} << 22U;
constexpr std::size_t maxBytes = std::size_t{64} << 20U;
constexpr std::size_t maxArguments = 60000;
constexpr std::size_t fewArguments = 32;  // are found as fast without a map

// Pairs the children of an element with the nodes that they were built from.
class ChildWalk {
 public:
  explicit ChildWalk(const XMLNode& parent) : _next(parent.firstChild()) {}

  // The node of the next child, which is of that kind.
  XMLNode nodeOf(const QXDAOElement& child) {
    const bool text = child.kind() == QXDAOElementKindText;
    while (_next && (text ? !becameText(_next) : _next.kind() != XMLNodeKind::Element)) _next = _next.next();
    return std::exchange(_next, _next.next());
  }

 private:
  // Texts are dropped if they are empty after trimming and expansion. Only a text that begins with a list reference can
  // become empty by expansion.
  static bool becameText(const XMLNode& node) {
    if (node.kind() != XMLNodeKind::Text) return false;
    const std::string_view text = spaceNewLineTabBothEndsTrimmed(node.text().value_or(std::string_view()));
    if (text.empty()) return false;
    return text.front() != '%' || QXDAOText::expandedLength(text) != 0;
  }

  XMLNode _next;
};

}  // namespace

class PlanCompiler final : public NameResolver {
 public:
  PlanCompiler(SetCompilation& compilation, std::uint32_t document, PlaceCursor& cursor)
      : _compilation(compilation), _contents(compilation.contents), _cursor(cursor), _document(document) {}

  // Compiles a method, built from that node, to a plan of the contents.
  void compile(Plan& plan, QXDAOMethod& method, const XMLNode& xml) {
    _method = &method;
    _xml = xml;
    _plan = &plan;
    _place = _cursor.of(xml);
    plan._contents = &_contents;
    plan._method = &method;
    plan._place = static_cast<std::uint32_t>(_contents.instructions.size());
    emitPlace(_place);
    plan._firstUnit = static_cast<std::uint32_t>(_contents.units.size());
    readNames();
    checkResult();
    if (method.steped()) return compileSteps();
    if (method.tryBlock()) return compileTry();
    compileUnit(*method.children(), contentNode(), _place, false);
  }

  [[nodiscard]] std::optional<ValueSlot> slotOf(std::string_view name) const override {
    if (const auto argument = _slots.find(name); argument != _slots.end()) return argument->second;
    const auto found = std::find(_names.begin() + static_cast<std::ptrdiff_t>(_slots.size()), _names.end(), name);
    if (found == _names.end()) return std::nullopt;
    return static_cast<ValueSlot>(found - _names.begin());
  }

  [[nodiscard]] std::string undeclared(std::string_view name) const override {
    std::string message = quoted(name) + " is no argument of " + title();
    std::string_view separator = ": declare it, or write one of ";
    for (const std::string_view declared : _names) {
      if (!declared.empty()) message.append(std::exchange(separator, ", ")).append(declared);
    }
    return separator == ", " ? message : message + ": declare it in arguments";
  }

 private:
  // "method 'find'", or "the upgrade to 2.5".
  [[nodiscard]] std::string title() const {
    if (_method->operation() == QXDAOOperationUpgrade) return "an upgrade";
    return "method " + quoted(_method->name().value_or(std::string_view()));
  }

  void fail(const XMLPosition& position, std::string message, DefinitionErrorKind kind = DefinitionErrorKind::Other) {
    _compilation.fail(_document, position, std::move(message), kind);
  }

  // The arguments, then the item of the method's foreach, then that of a foreach element.
  void readNames() {
    _names.clear();
    _slots.clear();
    const auto& arguments = *_method->arguments();
    if (arguments.size() > maxArguments) return fail(_place, "a method has no more than 60000 arguments");
    for (const QXDAOMethodArgument& argument : arguments) {
      const std::string_view name = argument.name().value_or(std::string_view());
      if (slotOf(name)) {
        fail(placeInAttribute(_xml, C_ARGUMENTS, 0), "argument " + quoted(name) + " is declared twice",
             DefinitionErrorKind::DuplicateName);
      }
      if (arguments.size() > fewArguments) _slots.emplace(name, static_cast<ValueSlot>(_names.size()));
      _names.push_back(name);
    }
    _names.push_back(_method->foreachItemName().value_or(std::string_view()));
    _names.emplace_back();
  }

  void checkResult() {
    if (_method->operation() != QXDAOOperationSelect || _method->resultType() != QXDAOSelectResultTypeMappedObject)
      return;
    const std::string_view map = _method->resultTypeName().value_or(std::string_view());
    if (!_contents.maps.find(map)) {
      fail(placeInAttribute(_xml, C_RESULT, 0), "there is no map " + quoted(map), DefinitionErrorKind::UnknownMap);
    }
  }

  // The children of a single step have moved to the method.
  [[nodiscard]] XMLNode contentNode() const {
    for (const XMLNode& child : _xml.children()) {
      if (child.kind() == XMLNodeKind::Element) return child.name() == C_STEP ? child : _xml;
    }
    return _xml;
  }

  void compileSteps() {
    _plan->_structure = PlanStructure::Steps;
    ChildWalk walk(_xml);
    for (const auto& child : *_method->children()) {
      const XMLNode node = walk.nodeOf(*child);
      const auto& step = static_cast<const QXDAOMethodStep&>(*child);
      compileUnit(*step.children(), node, _cursor.of(node), step.resumable());
    }
  }

  void compileTry() {
    _plan->_structure = PlanStructure::Try;
    const auto& tried = static_cast<const QXDAOTry&>(*_method->children()->front());
    const XMLNode node = ChildWalk(_xml).nodeOf(tried);
    const XMLNode except = compileUnit(*tried.children(), node, _cursor.of(node), false);
    compileUnit(*tried.exceptElement()->children(), except, _cursor.of(except), false);
  }

  // Returns the node of the except block, if there is one.
  XMLNode compileUnit(QXDAOElementSpan children, const XMLNode& xml, const XMLPosition& place, bool resumable) {
    _fixedText = true;
    const std::size_t begin = _contents.instructions.size();
    emitPlace(place);
    const XMLNode except = compileChildren(children, xml);
    emit(PlanOperation::End);
    addUnit(begin, resumable);
    return except;
  }

  void addUnit(std::size_t begin, bool resumable) {
    PlanUnit& unit = _contents.units.emplace_back();
    unit._contents = &_contents;
    unit._number = static_cast<std::uint32_t>(_contents.units.size() - 1);
    unit._plan = static_cast<std::uint32_t>(_plan - _contents.plans.data());
    unit._begin = static_cast<std::uint32_t>(begin);
    unit._resumable = resumable;
    unit._fixedText = _fixedText;
    ++_plan->_unitCount;
  }

  XMLNode compileChildren(QXDAOElementSpan children, const XMLNode& xml) {
    ChildWalk walk(xml);
    std::string_view textInFront;
    for (const auto& child : children) {
      const XMLNode node = walk.nodeOf(*child);
      if (child->kind() == QXDAOElementKindExcept) return node;
      compileChild(*child, node, textInFront);
      const auto* text = QXDAOElementCast<QXDAOText>(child.get());
      textInFront = text ? text->expression().value_or(std::string_view()) : std::string_view();
    }
    return {};
  }

  void compileChild(const QXDAOElement& child, const XMLNode& node, std::string_view textInFront) {
    switch (child.kind()) {
      case QXDAOElementKindText:
        return compileText(static_cast<const QXDAOText&>(child), node);
      case QXDAOElementKindCondition:
        return compileLoneCondition(static_cast<const QXDAOCondition&>(child), node);
      case QXDAOElementKindChoose:
        return compileChoose(static_cast<const QXDAOChoose&>(child), node);
      case QXDAOElementKindTrim:
        return compileTrim(static_cast<const QXDAOTrim&>(child), node);
      case QXDAOElementKindForeach:
        return compileForeach(static_cast<const QXDAOForeach&>(child), node, textInFront);
      case QXDAOElementKindKeyValueFormatter:
        return compileFormat(static_cast<const QXDAOKeyValueFormatter&>(child), node);
      default:
        return;
    }
  }

  void compileText(const QXDAOText& text, const XMLNode& node) {
    const std::size_t begin = _contents.instructions.size();
    compileSql(text.expression().value_or(std::string_view()), node, _cursor.ofText(node));
    markPiece(begin);
  }

  void compileLoneCondition(const QXDAOCondition& condition, const XMLNode& node) {
    const std::optional<std::size_t> jump = compileTest(condition, node);
    compileChildren(*condition.children(), node);
    if (jump) land(*jump);
  }

  void compileChoose(const QXDAOChoose& choose, const XMLNode& xml) {
    ChildWalk walk(xml);
    std::vector<std::size_t> ends;
    for (const auto& child : *choose.children()) {
      const XMLNode node = walk.nodeOf(*child);
      const auto& condition = static_cast<const QXDAOCondition&>(*child);
      const std::optional<std::size_t> other = compileTest(condition, node);
      compileChildren(*condition.children(), node);
      if (other) ends.push_back(emit(PlanOperation::Jump)), land(*other);
    }
    for (const std::size_t end : ends) land(end);
  }

  // The jump that skips the content; absent if the content always applies.
  std::optional<std::size_t> compileTest(const QXDAOCondition& condition, const XMLNode& node) {
    if (condition.type() == QXDAOConditionTypeOtherwise) return std::nullopt;
    _fixedText = false;
    emitPlace(_cursor.of(node));
    const std::size_t test = emit(PlanOperation::If, condition.evaluateAsTrue() ? WantsTrue : 0);
    _contents.instructions[test].number = static_cast<std::uint32_t>(_contents.expressions.steps.size());
    const std::string_view expression = condition.expression().value_or(std::string_view());
    const auto fault = compileExpression(expression, *condition.tokenList(), *this, _contents.expressions);
    const std::string_view attribute = condition.evaluateAsTrue() ? C_TRUE : C_FALSE;
    if (fault) failInExpression(node, attribute, *fault);
    return test;
  }

  void failInExpression(const XMLNode& node, std::string_view attribute, const ExpressionFault& fault) {
    const std::string_view value = node.valueOfAttribute(attribute).value_or(std::string_view());
    const std::string_view trimmed = spaceNewLineTabBothEndsTrimmed(value);
    const auto begin = static_cast<std::size_t>(trimmed.data() - value.data());
    fail(placeInAttribute(node, attribute, begin + fault.offset), "condition: " + fault.message,
         fault.undeclared ? DefinitionErrorKind::UndeclaredValue : DefinitionErrorKind::Expression);
  }

  void compileTrim(const QXDAOTrim& trim, const XMLNode& node) {
    emitPlace(_cursor.of(node));
    checkPlainText(trim.operationName(), node, C_PREFIX);
    emitElement(PlanOperation::Trim, trim);
    compileChildren(*trim.children(), node);
    emit(PlanOperation::TrimEnd);
  }

  void compileForeach(const QXDAOForeach& loop, const XMLNode& node, std::string_view textInFront) {
    _fixedText = false;
    emitPlace(_cursor.of(node));
    const std::size_t begin = emitElement(PlanOperation::Foreach, loop);
    const std::string_view open = loop.open().value_or(std::string_view());
    const bool opensAlone =
        beginOfCode(open) == open.size() || open.find_first_not_of(" \t\r\n(") == std::string_view::npos;
    if (opensAlone && endsInNotIn(textInFront)) _contents.instructions[begin].flags |= AfterNotIn;
    _contents.instructions[begin].slot = slotOfPath(loop.collection(), node, C_COLLECTION);
    const std::string_view item = loop.item().value_or(std::string_view());
    if (slotOf(item))
      fail(placeInAttribute(node, C_ITEM, 0), "item " + quoted(item) + " hides an argument: give it another name");
    for (const std::string_view attribute : {C_OPEN, C_SEPARATOR, C_CLOSE}) {
      checkPlainText(node.valueOfAttribute(attribute), node, attribute);
    }
    _names.back() = item;
    compileSql(loop.text()->expression().value_or(std::string_view()), node, _cursor.ofContent(node));
    _names.back() = {};
    _contents.instructions[begin].number = static_cast<std::uint32_t>(_contents.instructions.size());
  }

  void compileFormat(const QXDAOKeyValueFormatter& format, const XMLNode& node) {
    _fixedText = false;
    emitPlace(_cursor.of(node));
    const std::size_t begin = emitElement(PlanOperation::Format, format);
    _contents.instructions[begin].slot = slotOfPath(format.pairs(), node, C_PAIRS);
    checkPlainText(format.prefix(), node, C_PREFIX);
    checkPlainText(format.join(), node, C_JOIN);
  }

  ValueSlot slotOfPath(OptionalStringView path, const XMLNode& node, std::string_view attribute) {
    const std::string_view name = path->substr(0, path->find('.'));
    const std::optional<ValueSlot> slot = slotOf(name);
    if (!slot) fail(placeInAttribute(node, attribute, 0), undeclared(name), DefinitionErrorKind::UndeclaredValue);
    return slot.value_or(0);
  }

  // An attribute is written literally, so values and references in it are errors.
  void checkPlainText(OptionalStringView text, const XMLNode& node, std::string_view attribute) {
    const std::string_view sql = text.value_or(std::string_view());
    SqlReader reader(sql);
    for (SqlPart part = reader.next(); part.kind != SqlPartKind::End; part = reader.next()) {
      if (part.kind == SqlPartKind::Text && !part.endsInLineComment) continue;
      const bool marked = part.kind == SqlPartKind::Value || part.kind == SqlPartKind::Reference;
      const std::size_t offset = static_cast<std::size_t>(part.text.data() - sql.data()) - (marked ? 1 : 0);
      fail(placeInAttribute(node, attribute, offset), std::string(attribute) + faultOfPlainText(part));
      return;
    }
  }
  static std::string faultOfPlainText(const SqlPart& part) {
    if (part.kind == SqlPartKind::Fault) return ": " + std::string(part.message);
    if (part.kind == SqlPartKind::Text) return " ends in a comment, which would swallow what comes next: take it out";
    return " is written as it is, without values and references: move " + quoted(withMark(part.text)) + " to the text";
  }

  // The text of a node, or of all texts below it.
  void compileSql(std::string_view sql, const XMLNode& node, XMLPosition place) {
    _sql = sql;
    _sqlNode = node;
    emitSql(sql, _document, place, 0);
  }

  // A text, or one that a reference inserts, with its nesting depth.
  void emitSql(std::string_view sql, std::uint32_t document, XMLPosition place, std::uint32_t depth) {
    emitPlace(place, document);
    SqlReader reader(sql);
    for (SqlPart part = reader.next(); part.kind != SqlPartKind::End; part = reader.next()) {
      if (depth > 0 && !chargeReference(part)) return;
      switch (part.kind) {
        case SqlPartKind::Text:
          emitText(part);
          break;
        case SqlPartKind::Value:
          emitValue(part.text, depth);
          break;
        case SqlPartKind::Reference:
          emitReference(part.text, sql, document, place, depth);
          break;
        default:
          failInText(part.text, std::string(part.message));
          break;
      }
    }
  }

  // The first piece of a text, which may follow the positions of references.
  void markPiece(std::size_t first) {
    while (first < _contents.instructions.size() && _contents.instructions[first].operation == PlanOperation::Place)
      ++first;
    if (first < _contents.instructions.size()) _contents.instructions[first].flags |= BeginsPiece;
  }

  void emitText(const SqlPart& part) {
    std::uint8_t flags = beginOfCode(part.text) < part.text.size() ? HasCode : 0;
    if (part.endsInLineComment) flags |= EndsInLineComment;
    PlanInstruction& text = _contents.instructions[emit(PlanOperation::Text, flags)];
    text.pointer = part.text.data();
    text.number = static_cast<std::uint32_t>(part.text.size());
  }

  void emitValue(std::string_view path, std::uint32_t depth) {
    const std::string_view name = path.substr(0, path.find('.'));
    const std::optional<ValueSlot> slot = slotOf(name);
    if (!slot && depth > 0)
      return failInText(
          _reference,
          "'@" + std::string(_reference.substr(1)) + "' binds ':" + std::string(path) + "', but " + undeclared(name),
          DefinitionErrorKind::UndeclaredValue);
    if (!slot) return failInText(withMark(path), undeclared(name), DefinitionErrorKind::UndeclaredValue);
    PlanInstruction& value = _contents.instructions[emit(PlanOperation::Value, HasCode)];
    value.pointer = path.data();
    value.number = static_cast<std::uint32_t>(path.size());
    value.slot = *slot;
  }

  void emitReference(std::string_view name, std::string_view sql, std::uint32_t document, const XMLPosition& place,
                     std::uint32_t depth) {
    if (depth == 0) _reference = withMark(name);
    if (name == C_RESERVED_TABLE) return emitTable(name);
    const ReusableText* text = _compilation.textsByName.find(name);
    if (!text && depth == 0)
      failInText(_reference, "'@" + std::string(name) + "' is neither an sql block nor a constant",
                 DefinitionErrorKind::UnknownReference);
    if (!text || text->state != ReusableText::State::Sound) return;  // reported at its definition
    emitSql(text->text, text->document, text->position, depth + 1);
    const std::size_t behind = static_cast<std::size_t>(name.data() - sql.data()) + name.size();
    if (behind < sql.size()) emitPlace(advanced(place, sql.substr(0, behind)), document);
  }

  void emitTable(std::string_view name) {
    if (!_method->assignedTable()) {
      return failInText(_reference, "there is no assigned table: only a select with assignedTable=\"true\" has '@T'");
    }
    _fixedText = false;
    PlanInstruction& table = _contents.instructions[emit(PlanOperation::Table, HasCode)];
    table.pointer = name.data();
    table.number = static_cast<std::uint32_t>(name.size());
  }

  bool chargeReference(const SqlPart& part) {
    _compilation.putIn += 2;
    _compilation.bytesPutIn += part.text.size();
    if (_compilation.putIn <= maxPieces && _compilation.bytesPutIn <= maxBytes) return true;
    if (!std::exchange(_overflown, true))
      failInText(_reference, "the references of all methods put in too much: more than 64 MB, or four million pieces");
    return false;
  }

  // At a word of the current text.
  void failInText(std::string_view word, std::string message, DefinitionErrorKind kind = DefinitionErrorKind::Other) {
    const bool exact = !_compilation.hasManyErrors();
    fail(exact ? placeInText(_sqlNode, word, occurrencesBefore(_sql, word)) : _place, std::move(message), kind);
  }

  std::size_t emit(PlanOperation operation, std::uint8_t flags = 0) {
    PlanInstruction& instruction = _contents.instructions.emplace_back();
    instruction.operation = operation;
    instruction.flags = flags;
    return _contents.instructions.size() - 1;
  }
  std::size_t emitElement(PlanOperation operation, const QXDAOElement& element) {
    const std::size_t index = emit(operation);
    _contents.instructions[index].pointer = &element;
    return index;
  }
  void emitPlace(const XMLPosition& place) { emitPlace(place, _document); }
  void emitPlace(const XMLPosition& place, std::uint32_t document) {
    PlanInstruction& mark = _contents.instructions[emit(PlanOperation::Place)];
    mark.number = document;
    mark.place.line = static_cast<std::uint32_t>(place.line);
    mark.place.column = static_cast<std::uint32_t>(place.column);
  }
  void land(std::size_t jump) { _contents.instructions[jump].target = _contents.instructions.size(); }

  SetCompilation& _compilation;
  SetContents& _contents;
  PlaceCursor& _cursor;
  std::uint32_t _document;
  QXDAOMethod* _method = nullptr;
  Plan* _plan = nullptr;
  XMLNode _xml;
  XMLPosition _place;
  std::vector<std::string_view> _names;          // by slot; empty if there is none
  std::map<std::string_view, ValueSlot> _slots;  // of the arguments, if they are many
  bool _fixedText = true;
  bool _overflown = false;
  // The current text, and the outermost reference in it.
  std::string_view _sql;
  XMLNode _sqlNode;
  std::string_view _reference;
};

void compileMethod(SetCompilation& compilation, std::uint32_t document, PlaceCursor& cursor, Plan& plan,
                   QXDAOMethod& method, const XMLNode& xml) {
  PlanCompiler(compilation, document, cursor).compile(plan, method, xml);
}

}  // namespace korvex
