#include "tool/InputFiles.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <istream>
#include <ostream>
#include <system_error>

#include "loader/DocumentErrors.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// Reads at most one block beyond `most` bytes: enough to detect an input that is too large.
std::string readAll(std::istream& in, std::size_t most) {
  std::string bytes;
  std::array<char, 65536> block{};
  while (in && bytes.size() <= most) {
    in.read(block.data(), block.size());
    bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
  }
  return bytes;
}

constexpr std::size_t longestValue = 1'000'000'000;

InputBytes readStream(const std::string& name, std::istream& in) {
  if (!in) return {name, "", std::generic_category().message(errno)};
  std::string bytes = readAll(in, longestValue);
  if (in.bad()) return {name, "", std::generic_category().message(errno)};
  if (bytes.size() > longestValue) return {name, "", "larger than " + std::to_string(longestValue) + " bytes"};
  return {name, std::move(bytes), std::nullopt};
}

Document::Result readStandardInput(std::istream& in, const LoadOptions& options) {
  std::string bytes = readAll(in, options.maximumBytes);
  if (!in.bad()) return Document::fromBytes(std::move(bytes), options);
  return {nullptr, documentError(DocumentRule::UnreadableInput), nullptr};
}

}  // namespace

std::string shownPath(const std::string& path) { return path == standardInput ? "<stdin>" : path; }

void printUnreadable(std::ostream& err, const UnreadablePath& path) {
  err << "korvex-dao: " << visibleText(path.path) << ": " << visibleText(path.message) << '\n';
}

InputBytes readBytes(const std::string& path, std::istream& in) {
  if (path == standardInput) return readStream(shownPath(path), in);
  std::ifstream file(path, std::ios::binary);
  return readStream(path, file);
}

Document::Result readDocument(const std::string& path, std::istream& in, const LoadOptions& options) {
  return path == standardInput ? readStandardInput(in, options) : Document::fromFile(path, options);
}

}  // namespace korvex
