// What the command does when memory runs out.
#pragma once
#include <string>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

// Makes every failed allocation end the process, with a message that names the current input, and exit code 2. Call it
// from main. The program cannot continue after std::bad_alloc, because its libraries are built without exceptions.
void endWhenMemoryRunsOut();

// Names the input for that message during its lifetime; the name must live as long. One at a time, on one thread.
class InputInProgress {
 public:
  explicit InputInProgress(const std::string& shownName);
  InputInProgress(const InputInProgress&) = delete;
  InputInProgress& operator=(const InputInProgress&) = delete;
  ~InputInProgress();
};

}  // namespace korvex
