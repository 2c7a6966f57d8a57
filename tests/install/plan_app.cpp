// An engine's first lines, built on korvex::plan and the loader alone: prints the SQL of a method.
#include <korvex/Definition.h>
#include <korvex/DefinitionSet.h>
#include <korvex/Document.h>
#include <korvex/Plan.h>

#include <iostream>
#include <utility>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const auto read = korvex::Document::fromFile(argv[1]);
  if (!read.document) return 2;
  korvex::DefinitionSetBuilder builder;
  builder.add(argv[1], korvex::loadDefinitions(*read.document));
  const auto result = std::move(builder).build();
  const korvex::Plan* plan = result.set ? result.set->plan(argv[2]) : nullptr;
  const korvex::Arguments none;
  korvex::Assembly assembly;
  if (!plan || assembly.begin(*plan, none) || assembly.assemble(plan->units().front())) return 1;
  std::cout << assembly.sql() << '\n';
}
