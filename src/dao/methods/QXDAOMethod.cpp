#include "korvex/QXDAOMethod.h"

#include <algorithm>
#include <array>

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

// A leading "$" marks an argument that must not be null.
QXDAOMethodArgument argumentOf(std::string_view declaration) {
  const bool notNull = declaration.front() == '$';
  QXDAOMethodArgument argument;
  argument.setNotNull(notNull);
  argument.setName(declaration.substr(notNull ? 1 : 0));
  return argument;
}

}  // namespace

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
  return argumentName && _arguments &&
         std::any_of(_arguments->begin(), _arguments->end(),
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
  readArguments(xml);
  if (failed()) return;
  readOptions(xml);
  processNodes(xml);  // even if the result type is undefined; a failure here then replaces that one
  if (!failed()) checkStepElements();
  if (!failed()) checkTryBlock();
  if (!failed()) readForeach(xml);
}

void QXDAOMethod::decideOperation(const XMLNode& xml) {
  if (const OperationTag* row = rowWith(operationTags, &OperationTag::tag, xml.name())) {
    _operation = row->operation;
  } else {
    setError(QXDAORule::UnknownDefinition, xml.name());
  }
}

void QXDAOMethod::readArguments(const XMLNode& xml) {
  OptionalStringView rest = xml.valueOfAttribute(C_ARGUMENTS);
  if (isEmpty(rest)) rest.reset();
  std::vector<QXDAOMethodArgument> list;
  list.reserve(rest ? 1 + countOf(',', *rest) : 0);
  while (rest) {
    const std::string_view declaration = spaceBothEndsTrimmed(takePiece(rest, ','));
    if (declaration.empty()) {
      setErrorWithName(QXDAORule::ArgumentsFormat);
      return;
    }
    list.push_back(argumentOf(declaration));
  }
  _arguments = std::move(list);
}

void QXDAOMethod::readOptions(const XMLNode& xml) {
  const auto [profile, parallel, assignedTable, result] =
      xml.valuesOfAttributes(C_PROFILE, C_PARALLEL, C_ASSIGNED_TABLE, C_RESULT);
  readBoolean(profile, _profile);
  if (_operation != QXDAOOperationSelect) return;
  readBoolean(parallel, _parallel);
  readBoolean(assignedTable, _assignedTable);
  decideResultType(result);
}

// A single step is dissolved into its method; a method with two or more is marked as stepped.
void QXDAOMethod::checkStepElements() {
  const QXDAOElementList& list = *children();
  const auto stepCount = static_cast<std::size_t>(std::count_if(
      list.begin(), list.end(), [](const auto& child) { return child->kind() == QXDAOElementKindMethodStep; }));
  if (stepCount == 0) return;
  if (_operation == QXDAOOperationSelect) {
    setErrorWithName(QXDAORule::StepsInSelect);
  } else if (stepCount != list.size()) {
    setErrorWithName(QXDAORule::ContentBesideSteps);
  } else if (stepCount == 1) {
    setChildren(QXDAOElementCast<QXDAOMethodStep>(list.front().get())->takeChildren());
  } else {
    _steped = true;
  }
}

void QXDAOMethod::checkTryBlock() {
  if (_tryBlock && children()->size() != 1) setErrorWithName(QXDAORule::ContentBesideTry);
}

void QXDAOMethod::readForeach(const XMLNode& xml) {
  const auto [declaration, resumable] = xml.valuesOfAttributes(C_FOREACH, C_RESUMABLE);
  if (isEmpty(declaration)) return;
  readBoolean(resumable, _foreachResumable);
  _foreach = readForeachNames(*declaration);
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
