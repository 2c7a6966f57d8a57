#include <algorithm>
#include <utility>

#include "korvex/Keywords.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "plan/PlanCompiler.h"
#include "plan/SetCompilation.h"
#include "plan/SourcePlaces.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// A method in its document.
struct SourceMethod {
  QXDAOMethod* method;
  XMLNode xml;
  std::uint32_t document;
  std::uint32_t plan = 0;  // its index in the set
};

std::string_view nameOf(const QXDAOElement& element) { return element.name().value_or(std::string_view()); }

class SetCompiler {
 public:
  SetCompiler(std::vector<SourceDocument>& documents, SetCompilation& compilation)
      : _documents(documents), _compilation(compilation), _contents(compilation.contents) {}

  void compile() {
    for (const SourceDocument& document : _documents) _contents.documents.push_back(document.name);
    for (std::uint32_t document = 0; document < _documents.size(); ++document) collect(document);
    std::sort(_contents.crypts.begin(), _contents.crypts.end(), cryptComesBefore);
    checkReusableTexts(_compilation);
    arrangePlans();
    compileMethods();
    listPlans();
  }

 private:
  // The first definition of each name, and its position.
  struct Declared {
    XMLNode xml;
    std::uint32_t document;
  };
  using Names = NameTable<Declared>;

  void collect(std::uint32_t document) {
    PlaceCursor cursor(_documents[document].definitions.empty() ? XMLNode()
                                                                : _documents[document].definitions.front().xml);
    for (Definition& definition : _documents[document].definitions) {
      if (definition.element) {
        collect(*definition.element, definition.xml, document, cursor);
        _contents.elements.push_back(std::move(definition.element));
      } else if (definition.error) {
        const XMLPosition place = definition.error->origin.position().value_or(definition.position());
        _compilation.fail(document, place, std::string(definition.error->message()), DefinitionErrorKind::Rejected);
      }
    }
  }

  void collect(QXDAOElement& element, const XMLNode& xml, std::uint32_t document, PlaceCursor& cursor) {
    const Declared place{xml, document};
    switch (element.kind()) {
      case QXDAOElementKindSqlBlock:
        return addText(static_cast<QXDAOSqlBlock&>(element).text()->expression(), element, place, cursor);
      case QXDAOElementKindConst:
        return addConstant(static_cast<QXDAOConst&>(element), place, cursor);
      case QXDAOElementKindMap: {
        auto& map = static_cast<QXDAOMap&>(element);
        if (declare(_mapNames, nameOf(map), place, "map")) _contents.maps.add(nameOf(map), map);
        return;
      }
      case QXDAOElementKindPack: {
        auto& pack = static_cast<QXDAOPack&>(element);
        const std::string_view column = pack.column().value_or(std::string_view());
        if (declare(_packColumns, column, place, "pack of column")) _contents.packs.add(column, pack);
        return;
      }
      case QXDAOElementKindCryptProperty:
        _contents.crypts.push_back(&static_cast<QXDAOCryptProperty&>(element));
        return;
      case QXDAOElementKindMethod:
        return addMethod(static_cast<QXDAOMethod&>(element), place);
      default:
        return;
    }
  }

  // Returns false and adds an error for a duplicate name.
  bool declare(Names& names, std::string_view name, const Declared& place, std::string_view kind) {
    Declared& kept = _declared.emplace_back(place);
    const Declared* first = names.add(name, kept);
    if (!first) return true;
    fail(place, std::string(kind) + " " + quoted(name) + " is declared twice, first at " + placeOf(*first),
         DefinitionErrorKind::DuplicateName);
    return false;
  }

  [[nodiscard]] std::string placeOf(const Declared& declared) const {
    const XMLPosition position = declared.xml.position().value_or(XMLPosition());
    return _contents.documents[declared.document] + ":" + std::to_string(position.line) + ":" +
           std::to_string(position.column);
  }

  void addConstant(QXDAOConst& constant, const Declared& place, PlaceCursor& cursor) {
    if (nameOf(constant) == C_RESERVED_TABLE)
      return fail(place, "a constant cannot be called T: '@T' is the assigned table");
    addText(constant.text()->expression(), constant, place, cursor);
  }

  void addText(OptionalStringView expression, const QXDAOElement& element, const Declared& place, PlaceCursor& cursor) {
    ReusableText& text = _compilation.texts.emplace_back();
    text.name = nameOf(element);
    text.text = expression.value_or(std::string_view());
    text.xml = place.xml;
    text.document = place.document;
    text.isConstant = element.kind() == QXDAOElementKindConst;
    text.position = cursor.ofContent(text.xml);
    if (declare(_textNames, text.name, place, "sql block or constant")) _compilation.textsByName.add(text.name, text);
  }

  void addMethod(QXDAOMethod& method, const Declared& place) {
    const bool upgrade = method.operation() == QXDAOOperationUpgrade;
    if (upgrade && method.toVersion() < 0)
      fail(place, "an upgrade leads to a version from 0 on, not to a negative one");
    if (upgrade || declare(_methodNames, nameOf(method), place, "method"))
      _methods.push_back({&method, place.xml, place.document});
  }

  static bool comesBefore(const SourceMethod& left, const SourceMethod& right) {
    const bool leftUpgrade = left.method->operation() == QXDAOOperationUpgrade;
    const bool rightUpgrade = right.method->operation() == QXDAOOperationUpgrade;
    if (leftUpgrade != rightUpgrade) return rightUpgrade;
    if (leftUpgrade) return left.method->toVersion() < right.method->toVersion();
    return nameOf(*left.method) < nameOf(*right.method);
  }

  // Assigns the plans to the methods in order, and finds upgrades to the same version.
  void arrangePlans() {
    std::vector<SourceMethod*> order;
    order.reserve(_methods.size());
    for (SourceMethod& method : _methods) order.push_back(&method);
    std::stable_sort(order.begin(), order.end(),
                     [](const auto* left, const auto* right) { return comesBefore(*left, *right); });
    for (std::uint32_t index = 0; index < order.size(); ++index) {
      order[index]->plan = index;
      if (index > 0) checkVersions(*order[index - 1], *order[index]);
    }
    _contents.plans.resize(order.size());
  }

  void checkVersions(const SourceMethod& first, const SourceMethod& second) {
    if (second.method->operation() != QXDAOOperationUpgrade || comesBefore(first, second)) return;
    fail({second.xml, second.document},
         "there are two upgrades to this version, the first at " + placeOf({first.xml, first.document}),
         DefinitionErrorKind::DuplicateName);
  }

  void compileMethods() {
    for (std::size_t next = 0; next < _methods.size();) {
      const std::uint32_t document = _methods[next].document;
      PlaceCursor cursor(_methods[next].xml);
      for (; next < _methods.size() && _methods[next].document == document; ++next) {
        const SourceMethod& source = _methods[next];
        source.method->setModule(_contents.documents[document]);
        compileMethod(_compilation, document, cursor, _contents.plans[source.plan], *source.method, source.xml);
      }
    }
  }

  void listPlans() {
    for (const Plan& plan : _contents.plans) {
      const bool upgrade = plan.operation() == QXDAOOperationUpgrade;
      (upgrade ? _contents.upgradePlans : _contents.methodPlans).push_back(&plan);
      if (!upgrade) _contents.plansByName.add(plan.name(), plan);
    }
  }

  void fail(const Declared& place, std::string message, DefinitionErrorKind kind = DefinitionErrorKind::Other) {
    _compilation.fail(place.document, place.xml.position().value_or(XMLPosition()), std::move(message), kind);
  }

  std::vector<SourceDocument>& _documents;
  SetCompilation& _compilation;
  SetContents& _contents;
  std::vector<SourceMethod> _methods;  // in the order of the documents
  std::deque<Declared> _declared;
  Names _methodNames;
  Names _textNames;
  Names _mapNames;
  Names _packColumns;
};

bool comesBefore(const DefinitionError& left, const DefinitionError& right) {
  return std::pair(left.position.line, left.position.column) < std::pair(right.position.line, right.position.column);
}

// By position within the documents, whose order is kept.
void sortErrors(const std::vector<std::string>& documents, std::vector<DefinitionError>& errors) {
  const auto numberOf = [&documents](const DefinitionError& error) {
    return std::find(documents.begin(), documents.end(), error.document) - documents.begin();
  };
  std::stable_sort(errors.begin(), errors.end(), comesBefore);
  if (documents.size() < 2) return;
  std::stable_sort(errors.begin(), errors.end(),
                   [&](const auto& left, const auto& right) { return numberOf(left) < numberOf(right); });
}

}  // namespace

void compileSet(std::vector<SourceDocument>& documents, SetContents& contents, std::vector<DefinitionError>& errors) {
  SetCompilation compilation{contents, errors, {}, {}};
  SetCompiler(documents, compilation).compile();
  sortErrors(contents.documents, errors);
  contents.instructions.shrink_to_fit();
  contents.expressions.steps.shrink_to_fit();
  contents.units.shrink_to_fit();
}

}  // namespace korvex
