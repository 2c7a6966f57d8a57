#include "loader/StrictPass.h"

#include <string>
#include <string_view>
#include <utility>

#include "korvex/QXDAOPackReader.h"
#include "loader/DocumentErrors.h"
#include "loader/ExpatParser.h"
#include "loader/SyntaxErrors.h"

namespace korvex {

namespace {

// One pass over a text, without handlers for ordinary markup, which would slow the parser down.
class StrictPass {
 public:
  explicit StrictPass(const SourceText& source) : _source(source), _parser(XML_ParserCreate("UTF-8")) {
    XML_SetUserData(_parser.get(), this);
    XML_SetEntityDeclHandler(_parser.get(), refuseEntityDeclaration);
    XML_SetAttlistDeclHandler(_parser.get(), refuseAttributeDeclaration);
    XML_SetNotStandaloneHandler(_parser.get(), expectUnknownReferences);
    XML_SetSkippedEntityHandler(_parser.get(), refuseSkippedReference);
  }

  [[nodiscard]] std::optional<SyntaxError> run() {
    if (parseWhole(_parser, text())) return std::nullopt;
    if (_refusal) return explained(*_refusal);
    if (isOutOfMemory(_parser)) return SyntaxError{DocumentRule::OutOfMemory};
    return explainedError(_source, XML_GetErrorCode(_parser.get()), offset());
  }

 private:
  // Handlers do not allocate: an exception would have to propagate through the parser.
  struct Refusal {
    DocumentRule rule;
    std::size_t offset;
  };

  static StrictPass& self(void* userData) { return *static_cast<StrictPass*>(userData); }

  [[nodiscard]] std::string_view text() const { return _source.text(); }
  [[nodiscard]] std::size_t offset() const { return currentOffset(_parser); }

  [[nodiscard]] SyntaxError explained(const Refusal& refusal) const {
    if (refusal.rule == DocumentRule::UnknownEntity) return undefinedEntity(text(), refusal.offset);
    return {refusal.rule, refusal.offset};
  }

  void refuse(const Refusal& refusal) {
    if (!_refusal) _refusal = refusal;
    XML_StopParser(_parser.get(), XML_FALSE);
  }

  // The parser's position is somewhere after the keyword of the declaration.
  void refuseDeclaration(std::string_view keyword, DocumentRule rule) {
    refuse({rule, text().rfind(keyword, offset())});
  }

  static void XMLCALL refuseEntityDeclaration(void* userData, const XML_Char* /*name*/, int /*isParameterEntity*/,
                                              const XML_Char* /*value*/, int /*length*/, const XML_Char* /*base*/,
                                              const XML_Char* /*systemId*/, const XML_Char* /*publicId*/,
                                              const XML_Char* /*notation*/) {
    self(userData).refuseDeclaration("<!ENTITY", DocumentRule::EntityDeclaration);
  }

  static void XMLCALL refuseAttributeDeclaration(void* userData, const XML_Char* /*element*/,
                                                 const XML_Char* /*attribute*/, const XML_Char* /*type*/,
                                                 const XML_Char* /*value*/, int /*isRequired*/) {
    self(userData).refuseDeclaration("<!ATTLIST", DocumentRule::AttributeListDeclaration);
  }

  // Called if something outside the document may declare entities. From then on, the parser skips references to unknown
  // entities, and reports only those in text.
  static int XMLCALL expectUnknownReferences(void* userData) {
    StrictPass& pass = self(userData);
    if (pass.text().substr(pass.offset()).starts_with('%')) {
      pass.refuse({DocumentRule::ParameterEntityReference, pass.offset()});
    }
    XML_SetStartElementHandler(pass._parser.get(), checkReferencesOfTag);
    return XML_STATUS_OK;
  }

  static void XMLCALL refuseSkippedReference(void* userData, const XML_Char* /*name*/, int /*isParameterEntity*/) {
    StrictPass& pass = self(userData);
    pass.refuse({DocumentRule::UnknownEntity, pass.offset()});
  }

  static void XMLCALL checkReferencesOfTag(void* userData, const XML_Char* /*tag*/, const XML_Char** /*attributes*/) {
    StrictPass& pass = self(userData);
    const auto length = static_cast<std::size_t>(XML_GetCurrentByteCount(pass._parser.get()));
    const std::size_t at = unknownReference(pass.text().substr(pass.offset(), length));
    if (at != std::string_view::npos) pass.refuse({DocumentRule::UnknownEntity, pass.offset() + at});
  }

  const SourceText& _source;
  ExpatParser _parser;
  std::optional<Refusal> _refusal;
};

}  // namespace

std::optional<DocumentError> findSyntaxError(const SourceText& source) {
  std::optional<SyntaxError> error = StrictPass(source).run();
  if (!error) return std::nullopt;
  return DocumentError{error->rule, std::move(error->message), source.position(error->offset), error->offset};
}

}  // namespace korvex
