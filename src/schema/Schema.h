// Schemas of definition documents, for editors and validators: written from the vocabulary.
//
// A schema knows less than the checker, and is never to refuse what the checker accepts; docs/editors.md has the rare
// documents for which it is not so. RELAX NG says more than XML Schema, which has no root of any name and no attributes
// that depend on each other.
#pragma once
#include <string>
#include <string_view>

namespace korvex::schema {

enum class Format { RelaxNgCompact, RelaxNg, XmlSchema };

// The whole schema file. `root` is the tag of the element around the definitions; when it is empty, RELAX NG takes any,
// and XML Schema that of the examples, `korvex`. A definition may be the root in any case.
[[nodiscard]] std::string schemaText(Format format, std::string_view root = {});

// Whether a root may have this tag: a name without a colon that is not the tag of a definition.
[[nodiscard]] bool mayBeRoot(std::string_view tag);

}  // namespace korvex::schema
