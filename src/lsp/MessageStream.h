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
  Malformed,  // bytes that are no message, or a header without a valid length; they were skipped
  TooLarge,   // a message that was skipped
  End,        // of the input, possibly in the middle of a message
};

struct Frame {
  FrameStatus status = FrameStatus::End;
  std::string content;  // of a Message; otherwise empty
};

// Reads one message after another. Whatever the input contains, at most `maximumBytes` of it are held in memory, and
// reading continues after it: at the next "Content-Length: N", even in the middle of a line, since the content of a
// message whose length was missing or wrong does not end with a line feed.
class MessageReader {
 public:
  MessageReader(std::istream& in, std::size_t maximumBytes) : _in(in), _maximumBytes(maximumBytes) {}

  // Waits for the next message.
  [[nodiscard]] Frame next();

 private:
  // What a header says. `afterOtherBytes`: something that belongs to no header stood before its length.
  struct Header {
    std::optional<std::size_t> length;
    bool afterOtherBytes = false;
  };

  // Reads the lines of a header up to the empty one; absent at the end of the input.
  [[nodiscard]] std::optional<Header> readHeader();
  [[nodiscard]] bool readLine(std::string& line);
  [[nodiscard]] Frame readContent(std::size_t length);

  std::istream& _in;
  std::size_t _maximumBytes;
  std::optional<std::size_t> _pendingLength;  // of the message after skipped bytes
};

// Writes a message and flushes. Failure shows in the stream's state.
void writeMessage(std::ostream& out, const std::string& content);

}  // namespace korvex::lsp
