// The framing of the Language Server Protocol: a header with the length of a message, an empty line, the message
// (https://microsoft.github.io/language-server-protocol, "Base Protocol").
#pragma once
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "korvex/QXDAOPackReader.h"

namespace korvex::lsp {

enum class FrameStatus {
  Message,
  Malformed,  // a header without a valid length, which was skipped
  TooLarge,   // a message that was skipped
  End,        // of the input, possibly in the middle of a message
};

struct Frame {
  FrameStatus status = FrameStatus::End;
  std::string content;  // of a Message; otherwise empty
};

// Reads one message after another. Whatever the input contains, at most `maximumBytes` of it are held in memory, and
// reading continues after it.
class MessageReader {
 public:
  MessageReader(std::istream& in, std::size_t maximumBytes) : _in(in), _maximumBytes(maximumBytes) {}

  // Waits for the next message.
  [[nodiscard]] Frame next();

 private:
  // Reads the lines of a header up to the empty one; false at the end of the input.
  [[nodiscard]] bool readHeader(std::optional<std::size_t>& length);
  [[nodiscard]] bool readLine(std::string& line);
  [[nodiscard]] Frame readContent(std::size_t length);

  std::istream& _in;
  std::size_t _maximumBytes;
};

// Writes a message and flushes. Failure shows in the stream's state.
void writeMessage(std::ostream& out, const std::string& content);

}  // namespace korvex::lsp
