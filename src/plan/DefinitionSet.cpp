#include "korvex/DefinitionSet.h"

#include <utility>

#include "plan/SetCompilation.h"
#include "plan/SetContents.h"

namespace korvex {

DefinitionSet::DefinitionSet(std::unique_ptr<SetContents> contents) : _contents(std::move(contents)) {
  _contents->set = this;
}

DefinitionSet::~DefinitionSet() = default;

const Plan* DefinitionSet::plan(std::string_view name) const { return _contents->plansByName.find(name); }

std::span<const Plan* const> DefinitionSet::plans() const { return _contents->methodPlans; }

std::span<const Plan* const> DefinitionSet::upgrades() const { return _contents->upgradePlans; }

const QXDAOMap* DefinitionSet::map(std::string_view name) const { return _contents->maps.find(name); }

const QXDAOPack* DefinitionSet::pack(std::string_view column) const { return _contents->packs.find(column); }

bool DefinitionSet::encrypts(const ModelClass& modelClass, std::string_view property) const {
  if (_contents->crypts.empty()) return false;
  for (const ModelClass* level = &modelClass; level; level = level->superclass) {
    if (declaresCrypt(*_contents, level->name, property)) return true;
  }
  return false;
}

std::span<const std::string> DefinitionSet::documents() const { return _contents->documents; }

std::uint32_t DefinitionSet::unitCount() const { return static_cast<std::uint32_t>(_contents->units.size()); }

struct DefinitionSetBuilder::State {
  std::vector<SourceDocument> documents;
};

DefinitionSetBuilder::DefinitionSetBuilder() : _state(std::make_unique<State>()) {}

DefinitionSetBuilder::DefinitionSetBuilder(DefinitionSetBuilder&&) noexcept = default;

DefinitionSetBuilder& DefinitionSetBuilder::operator=(DefinitionSetBuilder&&) noexcept = default;

DefinitionSetBuilder::~DefinitionSetBuilder() = default;

void DefinitionSetBuilder::add(std::string document, std::vector<Definition> definitions) {
  _state->documents.push_back({std::move(document), std::move(definitions)});
}

DefinitionSetBuilder::Result DefinitionSetBuilder::build() && {
  Result result;
  auto contents = std::make_unique<SetContents>();
  compileSet(_state->documents, *contents, result.errors);
  if (result.errors.empty()) result.set.reset(new DefinitionSet(std::move(contents)));
  return result;
}

}  // namespace korvex
