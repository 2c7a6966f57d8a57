// The heap that element trees hold, and the allocations that make them.
#include <pugixml.hpp>

#include "benchmarks/Heap.h"
#include "benchmarks/Measuring.h"
#include "korvex/Definition.h"
#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"

namespace korvex::benchmarks {

namespace {

using Children = std::optional<QXDAOElementSpan>;

constexpr const Children* noChildren = nullptr;

template <typename Container>
const Children* childrenAs(const QXDAOElement& element) {
  const auto* container = QXDAOElementCast<Container>(&element);
  return container ? &container->children() : noChildren;
}

template <typename... Containers>
const Children* firstChildrenAs(const QXDAOElement& element) {
  const Children* children = noChildren;
  static_cast<void>(((children = childrenAs<Containers>(element)) || ...));
  return children;
}

// The elements of a tree, texts among them.
double countElements(const QXDAOElement& element) {
  double count = 1;
  const Children* children =
      firstChildrenAs<QXDAOMethod, QXDAOMethodStep, QXDAOTry, QXDAOExcept, QXDAOCondition, QXDAOChoose, QXDAOTrim>(
          element);
  if (!children || !*children) return count;
  for (const auto& child : **children) count += countElements(*child);
  return count;
}

void measureTrees(Figures& figures) {
  const HeapMeter meter;
  Loaded loaded = load(document(), false);
  figures["heap/allocations"] = static_cast<double>(meter.use().allocations);
  loaded.document.reset();
  figures["heap/trees"] = static_cast<double>(meter.use().bytes);
  double& elements = figures["document/elements"];
  for (const Definition& definition : loaded.definitions) elements += countElements(*definition.element);
}

void measurePugixml(Figures& figures) {
  const HeapMeter meter;
  pugi::xml_document parsed;
  require(parsed.load_buffer(document().data(), document().size()), "pugixml refused the document");
  figures["heap/pugixml"] = static_cast<double>(meter.use().bytes);
}

}  // namespace

void measureHeap(Figures& figures) {
  figures["document/bytes"] = static_cast<double>(document().size());
  require(!load(document(), true).definitions.empty(), "there are no definitions");
  measureTrees(figures);
  measurePugixml(figures);
}

}  // namespace korvex::benchmarks
