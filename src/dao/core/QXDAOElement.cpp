#include "korvex/QXDAOElement.h"

#include <array>

#include "dao/core/Building.h"
#include "dao/core/Messages.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

using ElementBuilder = std::unique_ptr<QXDAOElement> (*)(const XMLNode& xml, TreeMemory* memory);

template <typename T>
std::unique_ptr<QXDAOElement> buildPlainRoot(const XMLNode& xml, TreeMemory* memory) {
  auto element = Building::element<T>(memory);
  element->initWithXML(xml);
  return element;
}

template <typename T>
std::unique_ptr<QXDAOElement> buildNamedRoot(const XMLNode& xml, TreeMemory* memory) {
  auto element = Building::element<T>(memory);
  element->initNamedElementWithXML(xml);
  return element;
}

struct RootTag {
  std::string_view tag;
  ElementBuilder build;
};

// Every other tag is a method, or is rejected by the method.
constexpr std::array<RootTag, 5> rootTags = {{
    {C_SQL, buildNamedRoot<QXDAOSqlBlock>},
    {C_MAP, buildNamedRoot<QXDAOMap>},
    {C_CONST, buildPlainRoot<QXDAOConst>},
    {C_CRYPT, buildPlainRoot<QXDAOCryptProperty>},
    {C_PACK, buildPlainRoot<QXDAOPack>},
}};

ElementBuilder builderOfRootTag(OptionalStringView tag) {
  const RootTag* row = rowWith(rootTags, &RootTag::tag, tag);
  return row ? row->build : buildNamedRoot<QXDAOMethod>;
}

using Destroyer = void (*)(QXDAOElement* element);

template <typename T>
void destroyAs(QXDAOElement* element) {
  static_cast<T*>(element)->~T();
}

template <typename... Elements>
constexpr auto destroyersOf() {
  std::array<Destroyer, sizeof...(Elements)> byKind{};
  ((byKind[Elements::Kind] = destroyAs<Elements>), ...);
  return byKind;
}

constexpr auto destroyers = destroyersOf<QXDAOText, QXDAOForeach, QXDAOKeyValueFormatter, QXDAOSqlBlock, QXDAOConst,
                                         QXDAOMap, QXDAOCryptProperty, QXDAOPack, QXDAOMethod, QXDAOMethodStep,
                                         QXDAOTry, QXDAOExcept, QXDAOCondition, QXDAOChoose, QXDAOTrim>();

// The tree under construction in an arena.
class OpenTree {
 public:
  explicit OpenTree(Arena& arena) : _arena(arena), _memory(arena.beginTree()) {}
  OpenTree(const OpenTree&) = delete;
  OpenTree& operator=(const OpenTree&) = delete;
  ~OpenTree() { _arena.endTree(_memory); }

  [[nodiscard]] TreeMemory* memory() const { return &_memory; }

 private:
  Arena& _arena;
  TreeMemory& _memory;
};

constexpr std::size_t usualTreeSize = 1024;

}  // namespace

std::unique_ptr<QXDAOElement> QXDAOElement::elementWithXML(const XMLNode& xml, std::optional<QXDAOError>* error) {
  Arena arena(usualTreeSize);
  return Building::tree(arena, xml, error);
}

std::unique_ptr<QXDAOElement> Building::tree(Arena& arena, const XMLNode& xml, std::optional<QXDAOError>* error) {
  const OpenTree tree(arena);
  std::unique_ptr<QXDAOElement> element = builderOfRootTag(xml.name())(xml, tree.memory());
  if (!element->failed()) {
    QXDAOElement::keepMemory(*element);
    return element;
  }
  if (error) *error = element->takenError(xml);
  return nullptr;
}

std::unique_ptr<QXDAOText> Building::text(TreeMemory* memory, OptionalStringView text) {
  auto element = Building::element<QXDAOText>(memory);
  element->initWithText(text);
  return element;
}

CompactString Building::string(TreeMemory* memory, OptionalStringView text) {
  if (!text || !memory) return CompactString(text);
  char* const characters = memory->arena()->allocateCharacters(text->size());
  return CompactString::borrowed({characters, text->copy(characters, text->size())});
}

void QXDAOElement::operator delete(QXDAOElement* element, std::destroying_delete_t /*tag*/) {
  TreeMemory* const memory = element->_memory;
  const bool keepsMemory = element->_keepsMemory;
  destroyers[element->_kind](element);
  if (keepsMemory) memory->release();
  if (!memory) ::operator delete(element);
}

CompactString QXDAOElement::kept(OptionalStringView text) const {
  return Building::string(Building::memoryOf(*this), text);
}

void QXDAOElement::keepMemory(QXDAOElement& element) {
  if (!element._memory || element._keepsMemory) return;
  element._memory->retain();
  element._keepsMemory = true;
}

QXDAOError QXDAOElement::takenError(const XMLNode& xml) {
  QXDAOError error;
  error.domain = QXDAO_ERROR_DOMAIN;
  error.rule = _error->rule;
  error.userInfo.emplace("error", std::move(_error->message));
  error.userInfo.emplace("xml", xml);
  error.origin = _error->origin ? _error->origin : xml;
  return error;
}

void QXDAOElement::initWithXML(const XMLNode& /*xml*/) {
  _name = {};
  _error.reset();
}

void QXDAOElement::initNamedElementWithXML(const XMLNode& xml) {
  _name = {};
  _error.reset();
  if (xml.kind() == XMLNodeKind::Element) setName(xml.valueOfAttribute(C_ID));
  if (isEmpty(name())) setError(QXDAORule::MissingName);
}

void QXDAOElement::setError(QXDAORule rule, OptionalStringView quoted, const XMLNode& origin) {
  _error = std::make_unique<Failure>(Failure{rule, filledFormat(ruleTextOf(rule).message, quoted), origin});
}

void QXDAOElement::setErrorWithName(QXDAORule rule) { setError(rule, name()); }

bool QXDAOElement::adoptErrorOf(const QXDAOElement& child, const XMLNode& childXML) {
  if (!child.failed()) return false;
  _error = std::make_unique<Failure>(*child._error);
  if (!_error->origin) _error->origin = childXML;
  return true;
}

}  // namespace korvex
