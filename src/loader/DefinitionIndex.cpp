#include "korvex/DefinitionIndex.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

#include "loader/DefinitionNodes.h"

namespace korvex {

namespace {

constexpr std::array namelessTags{C_UPGRADE, C_CRYPT, C_PACK};

constexpr std::size_t usualTreeSize = 1024;

}  // namespace

struct DefinitionIndex::Entry {
  Definition definition;  // the node is set from the start, the rest once it is built
  std::once_flag built;
};

DefinitionIndex::DefinitionIndex(std::unique_ptr<const Document> document)
    : _document(std::move(document)), _entries(new Entry[maxDefinitions(*_document)]) {
  forEachDefinition(*_document, [this](const XMLNode& node) { _entries[_size++].definition.xml = node; });
}

DefinitionIndex::~DefinitionIndex() = default;

std::string_view DefinitionIndex::tag(std::size_t place) const { return _entries[place].definition.tag(); }

// A constant's only attribute is its name.
OptionalStringView DefinitionIndex::name(std::size_t place) const {
  const XMLNode& node = _entries[place].definition.xml;
  if (node.name() == C_CONST) return node.onlyAttribute().name();
  if (std::find(namelessTags.begin(), namelessTags.end(), node.name()) != namelessTags.end()) return std::nullopt;
  return node.valueOfAttribute(C_ID);
}

XMLPosition DefinitionIndex::position(std::size_t place) const { return _entries[place].definition.position(); }

const Definition& DefinitionIndex::operator[](std::size_t place) const {
  Entry& entry = _entries[place];
  std::call_once(entry.built, [&entry] {
    Arena arena(usualTreeSize);
    build(entry.definition, arena);
  });
  return entry.definition;
}

}  // namespace korvex
