// Schemas of definition documents, for editors and validators: written from the vocabulary.
//
// A schema checks less than the checker and must not reject what the checker accepts; docs/editors.md lists the rare
// exceptions. RELAX NG expresses more than XML Schema, which allows neither an arbitrary root nor attributes that
// depend on each other.
#pragma once
#include <string>
#include <string_view>

namespace korvex::schema {

enum class Format { RelaxNgCompact, RelaxNg, XmlSchema };

// The whole schema file. `root` is the tag of the element around the definitions; if it is empty, RELAX NG allows
// any, and XML Schema `korvex`. A definition may always be the root.
[[nodiscard]] std::string schemaText(Format format, std::string_view root = {});

// Whether a root may have this tag: a name without a colon that is not the tag of a definition.
[[nodiscard]] bool mayBeRoot(std::string_view tag);

}  // namespace korvex::schema
