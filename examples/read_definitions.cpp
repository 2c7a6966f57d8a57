#include <korvex/Definition.h>
#include <korvex/QXDAOMethod.h>

#include <iostream>

int main(int argc, char** argv) {
  const auto read = korvex::Document::fromFile(argc > 1 ? argv[1] : "examples/addressbook.xml");
  if (!read.document) {
    std::cerr << read.error->message << '\n';
    return 2;
  }
  for (const korvex::Definition& definition : korvex::loadDefinitions(*read.document)) {
    if (definition.error) {
      std::cout << "line " << definition.position().line << ": " << definition.error->message() << '\n';
    } else if (const auto* method = korvex::QXDAOElementCast<korvex::QXDAOMethod>(definition.element.get())) {
      std::cout << definition.tag() << ' ' << method->name().value_or("") << ": " << method->arguments()->size()
                << " arguments\n";
    }
  }
}
