// Reasons for having no document that several steps of loading give.
#pragma once

#include "korvex/Document.h"

namespace korvex {

[[nodiscard]] inline DocumentError outOfMemory() {
  return {DocumentErrorKind::OutOfMemory, "not enough memory to read the document", {}};
}

}  // namespace korvex
