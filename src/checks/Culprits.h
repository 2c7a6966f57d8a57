// Where in a rejected definition the fault is, and what to write instead.
#pragma once

#include <string>
#include <string_view>

#include "checks/Places.h"
#include "korvex/Definition.h"
#include "korvex/XMLNode.h"

namespace korvex {

// A change to a tree after which a fault is gone, so that the rest of the definition can be judged.
struct Repair {
  enum class Kind {
    None,              // nothing else can be judged
    RemoveNode,        // with all that is in it
    ReplaceByContent,  // the children take the place of the element and of those with its tag behind it
    Rename,            // the element gets the tag `set`
    ChangeAttributes,  // the attribute `removed` goes, and `set` gets `value`; either may be empty
  };

  Kind kind = Kind::None;
  std::size_t node = 0;  // its offset
  std::string_view removed;
  std::string_view set;
  std::string value;
};

// An error names a rule and a node. The culprit is the attribute, the text or the character in it.
struct Culprit {
  Span place;
  std::string help;  // never empty
  Repair repair;     // its views are valid while the document lives
};

// Of a definition that has an error.
[[nodiscard]] Culprit culpritOf(const Definition& definition, const Places& places);

}  // namespace korvex
