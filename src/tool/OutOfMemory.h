// What the command does when memory runs out.
#pragma once
#include <string>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

// From now on the process ends where an allocation fails, wherever that is: with a message that names the input in
// progress, and the exit code for trouble. For main: to go on after std::bad_alloc is not for a program whose libraries
// are built without exceptions.
void endWhenMemoryRunsOut();

// Names an input for that message as long as it lives; the name must live as long. One thread, one at a time.
class InputInProgress {
 public:
  explicit InputInProgress(const std::string& shownName);
  InputInProgress(const InputInProgress&) = delete;
  InputInProgress& operator=(const InputInProgress&) = delete;
  ~InputInProgress();
};

}  // namespace korvex
