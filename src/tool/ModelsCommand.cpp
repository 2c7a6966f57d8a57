#include "tool/ModelsCommand.h"

#include <ostream>

#include "tool/InputFiles.h"
#include "tool/VisibleText.h"
#include "verification/ModelList.h"

namespace korvex {

ExitCode listModels(const ModelsOptions& options, const Console& console) {
  const verification::ModelList::Reading reading = verification::ModelList::read(options.path);
  if (!reading.fault.empty()) {
    console.err << "korvex-dao: " << visibleText(options.path) << ": " << visibleText(reading.fault) << '\n';
    return ExitCodeTrouble;
  }
  console.out << reading.models.json();
  return ExitCodeNothingFound;
}

}  // namespace korvex
