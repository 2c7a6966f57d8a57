#include "korvex/Document.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "korvex/QXDAOPackReader.h"
#include "loader/Decoding.h"
#include "loader/DocumentErrors.h"
#include "loader/PugiTree.h"
#include "loader/StrictPass.h"

namespace korvex {

namespace {

DocumentError unreadable(int errorNumber) {
  return documentError(DocumentRule::UnreadableFile, {std::generic_category().message(errorNumber)});
}

DocumentError tooLarge(const LoadOptions& options) {
  return documentError(DocumentRule::TooLarge, {std::to_string(options.maximumBytes)});
}

struct FileCloser {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The size of a regular file, to allocate its text at once; 0 if it is unknown.
std::size_t expectedSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

// Appends the content of the file, but not much more than `limit` bytes.
void readBytes(const File& file, std::size_t limit, std::string& bytes) {
  std::array<char, 65536> chunk{};
  std::size_t count = chunk.size();
  while (count == chunk.size() && bytes.size() <= limit) {
    count = std::fread(chunk.data(), 1, chunk.size(), file.get());
    bytes.append(chunk.data(), count);
  }
}

}  // namespace

class Document::Implementation {
 public:
  explicit Implementation(std::string text)
      : _source(std::make_shared<const SourceText>(std::move(text))), _tree(*_source) {}

  static Result load(std::string bytes, const LoadOptions& options) {
    if (bytes.size() > options.maximumBytes) return {nullptr, tooLarge(options), nullptr};
    DecodedText decoded = decodedText(std::move(bytes));
    if (decoded.error) return {nullptr, std::move(decoded.error), nullptr};
    auto implementation = std::make_unique<Implementation>(std::move(decoded.text));
    Result result;
    result.source = implementation->_source;
    result.error = implementation->build(options);
    if (!result.error) result.document.reset(new Document(std::move(implementation)));
    return result;
  }

  [[nodiscard]] XMLNode root() const { return {_tree, _tree.root()}; }
  [[nodiscard]] const std::shared_ptr<const SourceText>& source() const { return _source; }

 private:
  // The strict parser decides, and explains, whatever the fast one rejects or the quick check leaves open. Its rules
  // for a DOCTYPE apply to every document.
  std::optional<DocumentError> build(const LoadOptions& options) {
    std::optional<DocumentError> error = _tree.parse(options);
    const bool parsed = !error;
    if (parsed) error = _tree.arrange(options);
    if (error && error->rule == DocumentRule::OutOfMemory) return error;
    const bool settled = options.strict ? !error && _tree.isSurelyWellFormed() : parsed && !_tree.hasInternalSubset();
    if (settled) return error;
    std::optional<DocumentError> syntaxError = findSyntaxError(*_source);
    return syntaxError ? std::move(syntaxError) : std::move(error);
  }

  std::shared_ptr<const SourceText> _source;
  PugiTree _tree;
};

Document::Document(std::unique_ptr<Implementation> implementation) : _implementation(std::move(implementation)) {}

Document::~Document() = default;

Document::Result Document::fromBytes(std::string bytes, const LoadOptions& options) {
  return Implementation::load(std::move(bytes), options);
}

Document::Result Document::fromFile(const std::string& path, const LoadOptions& options) {
  const File file(std::fopen(path.c_str(), "rb"));
  if (!file) return {nullptr, unreadable(errno), nullptr};
  std::string bytes;
  bytes.reserve(std::min(expectedSize(path), options.maximumBytes));
  readBytes(file, options.maximumBytes, bytes);
  if (std::ferror(file.get()) != 0) return {nullptr, unreadable(errno), nullptr};
  return Implementation::load(std::move(bytes), options);
}

XMLNode Document::root() const { return _implementation->root(); }

const SourceText& Document::source() const { return *_implementation->source(); }

const std::shared_ptr<const SourceText>& Document::sharedSource() const { return _implementation->source(); }

}  // namespace korvex
