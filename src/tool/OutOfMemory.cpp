#include "tool/OutOfMemory.h"

#include <unistd.h>

#include <new>
#include <string_view>

#include "tool/Tool.h"

namespace korvex {

namespace {

std::string_view inputInProgress;

// Nothing here may allocate. A failed write is ignored.
void say(std::string_view text) { static_cast<void>(!write(STDERR_FILENO, text.data(), text.size())); }

[[noreturn]] void endProcess() {
  say("korvex-dao: ");
  say(inputInProgress);
  say(inputInProgress.empty() ? "not enough memory\n" : ": not enough memory\n");
  _exit(ExitCodeTrouble);
}

}  // namespace

void endWhenMemoryRunsOut() { std::set_new_handler(endProcess); }

InputInProgress::InputInProgress(const std::string& shownName) { inputInProgress = shownName; }

InputInProgress::~InputInProgress() { inputInProgress = {}; }

}  // namespace korvex
