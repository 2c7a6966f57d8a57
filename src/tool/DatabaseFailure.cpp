#include "tool/DatabaseFailure.h"

#include <ostream>

#include "tool/InputFiles.h"
#include "tool/VisibleText.h"

namespace korvex {

ExitCode printFailure(const Console& console, const DatabaseError& error) {
  console.err << visibleText(error.text()) << '\n';
  if (!error.sql.empty()) console.err << error.sql << '\n';
  return error.kind == DatabaseErrorKind::Call ? ExitCodeTrouble : ExitCodeSomethingFound;
}

ExitCode printUnopened(const Console& console, const std::string& path, const DatabaseError& error) {
  printUnreadable(console.err, {shownPath(path), error.message});
  return ExitCodeTrouble;
}

}  // namespace korvex
