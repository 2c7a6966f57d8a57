#include "plan/PathUses.h"

#include <utility>

#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "plan/SetContents.h"

namespace korvex {

class PathUseWalk {
 public:
  explicit PathUseWalk(const PlanUnit& unit) : _contents(*unit._contents), _method(unit.plan().method()) {
    walk(unit._begin);
  }

  std::vector<PathUse> uses;

 private:
  void walk(std::size_t begin) {
    for (std::size_t at = begin; _contents.instructions[at].operation != PlanOperation::End; ++at) {
      visit(_contents.instructions[at]);
    }
  }

  void visit(const PlanInstruction& instruction) {
    switch (instruction.operation) {
      case PlanOperation::Place:
        _place = &instruction;
        return;
      case PlanOperation::Value:
        return add(instruction.slot, std::string(instruction.text()));
      case PlanOperation::If:
        return visitExpression(instruction.number);
      case PlanOperation::Foreach:
        add(instruction.slot, std::string(*instruction.element<QXDAOForeach>().collection()));
        _loop = &instruction.element<QXDAOForeach>();
        return;
      case PlanOperation::Format:
        return add(instruction.slot, std::string(*instruction.element<QXDAOKeyValueFormatter>().pairs()));
      default:
        return;
    }
  }

  void visitExpression(std::size_t at) {
    for (; _contents.expressions.steps[at].operation != ExpressionOperation::End; ++at) {
      const ExpressionStep& step = _contents.expressions.steps[at];
      if (step.operation != ExpressionOperation::Path) continue;
      std::string path(nameOf(step.slot));
      if (step.length > 0) path.append(".").append(step.text());
      add(step.slot, std::move(path));
    }
  }

  [[nodiscard]] std::string_view nameOf(ValueSlot slot) const {
    const auto& arguments = *_method.arguments();
    if (slot < arguments.size()) return arguments[slot].name().value_or(std::string_view());
    const OptionalStringView item = slot == arguments.size() || !_loop ? _method.foreachItemName() : _loop->item();
    return item.value_or(std::string_view());
  }

  void add(ValueSlot slot, std::string path) {
    const bool isItem = _loop && slot > _method.arguments()->size();
    const void* owner = isItem ? static_cast<const void*>(_loop) : &_method;
    const SourcePlace place{_contents.documents[_place->number], {_place->place.line, _place->place.column}};
    uses.push_back({std::move(path), owner, place});
  }

  const SetContents& _contents;
  const QXDAOMethod& _method;
  const PlanInstruction* _place = nullptr;
  const QXDAOForeach* _loop = nullptr;  // the last one: only its own text can name its item
};

std::vector<PathUse> pathUsesOf(const PlanUnit& unit) { return std::move(PathUseWalk(unit).uses); }

}  // namespace korvex
