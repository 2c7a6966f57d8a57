#include "verification/TextFile.h"

#include <array>

namespace korvex::verification {

bool appendRest(std::istream& file, std::string& text) {
  std::array<char, 65536> block{};
  while (text.size() <= maxTextFile && (file.read(block.data(), block.size()), file.gcount() > 0)) {
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  return file.eof() && text.size() <= maxTextFile;
}

}  // namespace korvex::verification
