#include "loader/Decoding.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "korvex/XMLNode.h"
#include "loader/DocumentErrors.h"
#include "loader/ExpatParser.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Two bytes per character: a byte order mark, or a first character with a zero byte.
bool looksLikeUTF16(std::string_view bytes) {
  const std::string_view first = bytes.substr(0, 2);
  return first == "\xFE\xFF" || first == "\xFF\xFE" || first.find('\0') != std::string_view::npos;
}

std::string_view xmlDeclaration(std::string_view bytes) {
  if (!bytes.starts_with("<?xml")) return {};
  return bytes.substr(0, bytes.find("?>"));
}

void skipWhiteSpace(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(xmlWhiteSpace), text.size()));
}

// Whether the XML declaration, if any, leaves the encoding at UTF-8. An unusually written declaration counts as
// another encoding; the parser then decides.
bool declaresUTF8(std::string_view declaration) {
  constexpr std::string_view keyword = "encoding";
  const std::size_t at = declaration.find(keyword);
  if (at == std::string_view::npos) return true;
  std::string_view rest = declaration.substr(at + keyword.size());
  skipWhiteSpace(rest);
  if (!rest.starts_with('=')) return false;
  rest.remove_prefix(1);
  skipWhiteSpace(rest);
  const std::string value = asciiLowerCase(rest.substr(0, 7));
  return value == "\"utf-8\"" || value == "'utf-8'";
}

bool isUTF8(std::string_view bytes) {
  if (looksLikeUTF16(bytes)) return false;
  if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
  // A second byte order mark is not allowed; the parser reports it.
  return !bytes.starts_with(byteOrderMark) && declaresUTF8(xmlDeclaration(bytes));
}

// The markup of a document as the parser returns it, always in UTF-8.
void XMLCALL appendMarkup(void* text, const XML_Char* markup, int length) {
  static_cast<std::string*>(text)->append(markup, static_cast<std::size_t>(length));
}

// The text is not available here, so the position is the parser's own.
DocumentError errorOf(const ExpatParser& parser) {
  if (isOutOfMemory(parser)) return documentError(DocumentRule::OutOfMemory);
  const XMLPosition position{XML_GetCurrentLineNumber(parser.get()), XML_GetCurrentColumnNumber(parser.get()) + 1};
  const XML_Error code = XML_GetErrorCode(parser.get());
  if (code == XML_ERROR_UNKNOWN_ENCODING) return documentError(DocumentRule::UnknownEncoding, {}, position);
  return documentError(DocumentRule::NotWellFormed, {XML_ErrorString(code)}, position);
}

// A parser with only a default handler returns the document unchanged, in UTF-8.
DecodedText convertedText(std::string_view bytes) {
  constexpr std::size_t maxGrowth = 2;  // ISO-8859-1: a byte becomes two
  DecodedText decoded;
  decoded.text.reserve(maxGrowth * bytes.size());  // here, so that the parser's handler does not allocate
  const ExpatParser parser(XML_ParserCreate(nullptr));
  XML_SetUserData(parser.get(), &decoded.text);
  XML_SetDefaultHandler(parser.get(), appendMarkup);
  if (!parseWhole(parser, bytes)) decoded.error = errorOf(parser);
  return decoded;
}

}  // namespace

DecodedText decodedText(std::string bytes) {
  if (!isUTF8(bytes)) return convertedText(bytes);
  if (bytes.starts_with(byteOrderMark)) bytes.erase(0, byteOrderMark.size());
  return {std::move(bytes), std::nullopt};
}

}  // namespace korvex
