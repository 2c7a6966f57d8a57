#include "korvex/QXDAOMethod.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "dao/core/Building.h"
#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAORule.h"
#include "platform/NumberScanner.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct OperationTag {
  std::string_view tag;
  QXDAOOperation operation;
};

constexpr std::array<OperationTag, 5> operationTags = {{
    {C_SELECT, QXDAOOperationSelect},
    {C_UPDATE, QXDAOOperationUpdate},
    {C_INSERT, QXDAOOperationInsert},
    {C_DELETE, QXDAOOperationDelete},
    {C_UPGRADE, QXDAOOperationUpgrade},
}};

std::size_t countOf(char character, std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), character));
}

}  // namespace

// The data that the setup reads in one walk.
struct QXDAOMethod::Attributes {
  OptionalStringView arguments, profile, parallel, assignedTable, result, foreach, resumable;
};

void QXDAOMethod::initNamedElementWithXML(const XMLNode& xml) {
  if (xml.name() == C_UPGRADE) {
    QXDAOElement::initWithXML(xml);
    if (!readUpgradeDeclaration(xml)) setError(QXDAORule::UpgradeFormat, xml.stringValue());
  } else {
    QXDAOElement::initNamedElementWithXML(xml);
  }
  if (!failed()) setupMethod(xml);
}

bool QXDAOMethod::hasArgumentWithName(OptionalStringView argumentName) const {
  return argumentName && arguments() &&
         std::any_of(arguments()->begin(), arguments()->end(),
                     [argumentName](const auto& argument) { return argument.name() == argumentName; });
}

bool QXDAOMethod::readUpgradeDeclaration(const XMLNode& xml) {
  const XMLAttribute attribute = xml.onlyAttribute();
  if (attribute.name() != C_TO_VERSION) return false;
  const OptionalStringView version = attribute.stringValue();
  const std::optional<double> number = version == C_INITIAL ? 0.0 : scanDecimalNumber(version.value_or(""));
  _toVersion = number.value_or(0.0);
  return number.has_value();
}

void QXDAOMethod::setupMethod(const XMLNode& xml) {
  decideOperation(xml);
  if (failed()) return;
  const auto [arguments, profile, parallel, assignedTable, result, foreach, resumable] =
      xml.valuesOfAttributes(C_ARGUMENTS, C_PROFILE, C_PARALLEL, C_ASSIGNED_TABLE, C_RESULT, C_FOREACH, C_RESUMABLE);
  const Attributes attributes{arguments, profile, parallel, assignedTable, result, foreach, resumable};
  readArguments(attributes.arguments);
  if (failed()) return;
  readOptions(attributes);
  processNodes(xml);  // even if the result type is undefined; a failure here then replaces that one
  if (!failed()) checkStepElements();
  if (!failed()) checkTryBlock();
  if (!failed()) readForeach(attributes);
}

void QXDAOMethod::decideOperation(const XMLNode& xml) {
  if (const OperationTag* row = rowWith(operationTags, &OperationTag::tag, xml.name())) {
    _operation = row->operation;
  } else {
    setError(QXDAORule::UnknownDefinition, xml.name());
  }
}

// A leading "$" marks an argument that must not be null.
void QXDAOMethod::readArguments(OptionalStringView declarations) {
  if (isEmpty(declarations)) declarations.reset();
  TreeMemory* const memory = Building::memoryOf(*this);
  auto list = Building::list<QXDAOMethodArgument>(memory, declarations ? 1 + countOf(',', *declarations) : 0);
  for (QXDAOMethodArgument& argument : list.items()) {
    const std::string_view declaration = spaceBothEndsTrimmed(takePiece(declarations, ','));
    if (declaration.empty()) {
      setErrorWithName(QXDAORule::ArgumentsFormat);
      return;
    }
    const bool notNull = declaration.front() == '$';
    argument = QXDAOMethodArgument(kept(declaration.substr(notNull ? 1 : 0)), notNull);
  }
  _arguments = std::move(list);
}

void QXDAOMethod::setArguments(std::optional<std::span<const QXDAOMethodArgument>> arguments) {
  std::vector<QXDAOMethodArgument> copies;
  if (arguments) copies.assign(arguments->begin(), arguments->end());
  _arguments = arguments ? Building::list(Building::memoryOf(*this), std::span(copies)) : decltype(_arguments)();
}

void QXDAOMethod::readOptions(const Attributes& attributes) {
  readBoolean(attributes.profile, _profile);
  if (_operation != QXDAOOperationSelect) return;
  readBoolean(attributes.parallel, _parallel);
  readBoolean(attributes.assignedTable, _assignedTable);
  decideResultType(attributes.result);
}

// A single step is merged into its method; a method with two or more steps is marked as stepped.
void QXDAOMethod::checkStepElements() {
  const QXDAOElementSpan list = *children();
  const auto stepCount = static_cast<std::size_t>(std::count_if(
      list.begin(), list.end(), [](const auto& child) { return child->kind() == QXDAOElementKindMethodStep; }));
  if (stepCount == 0) return;
  if (_operation == QXDAOOperationSelect) {
    setErrorWithName(QXDAORule::StepsInSelect);
  } else if (stepCount != list.size()) {
    setErrorWithName(QXDAORule::ContentBesideSteps);
  } else if (stepCount == 1) {
    dissolveChild(*QXDAOElementCast<QXDAOMethodStep>(list.front().get()));
  } else {
    _steped = true;
  }
}

void QXDAOMethod::checkTryBlock() {
  if (_tryBlock && children()->size() != 1) setErrorWithName(QXDAORule::ContentBesideTry);
}

void QXDAOMethod::readForeach(const Attributes& attributes) {
  if (isEmpty(attributes.foreach)) return;
  readBoolean(attributes.resumable, _foreachResumable);
  _foreach = readForeachNames(*attributes.foreach);
  if (!_foreach) setErrorWithName(QXDAORule::MethodForeachFormat);
}

// "collection.item": the collection is an argument, and no argument has the name of the item.
bool QXDAOMethod::readForeachNames(std::string_view declaration) {
  if (countOf('.', declaration) != 1) return false;
  OptionalStringView rest = declaration;
  const std::string_view collection = spaceBothEndsTrimmed(takePiece(rest, '.'));
  const std::string_view item = spaceBothEndsTrimmed(*rest);
  setForeachCollection(collection);
  setForeachItemName(item);
  return hasArgumentWithName(collection) && !item.empty() && !hasArgumentWithName(item);
}

}  // namespace korvex
