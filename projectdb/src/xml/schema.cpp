#include "xml/schema.h"

#include <optional>
#include <utility>

#include <xercesc/dom/impl/DOMErrorImpl.hpp>
#include <xercesc/dom/impl/DOMLocatorImpl.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "xml/dom_parser.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

bool IsWellFormedWithoutDoctype(const xercesc::InputSource& input,
                                KelProjectDbErrorHandler& errors) {
  const bool failed_before = std::exchange(errors.failed, false);
  SyntaxParser parser;
  Configure(parser, errors);
  Set(parser, xercesc::XMLUni::fgXercesSchema, false);
  Set(parser, xercesc::XMLUni::fgDOMValidate, false);
  Parse(parser, input);
  const bool is_refused = errors.failed;
  errors.failed = is_refused || failed_before;
  return !is_refused;
}

void ReportTooLarge(const xercesc::InputSource& input, KelProjectDbErrorHandler& errors) {
  xercesc::DOMLocatorImpl location(1, 1, nullptr, input.getSystemId());
  errors.handleError(xercesc::DOMErrorImpl(xercesc::DOMError::DOM_SEVERITY_FATAL_ERROR,
                                           u"the schema is larger than any that is read",
                                           &location));
}

}  // namespace

std::unique_ptr<xercesc::InputSource> SchemaSource::Open(const std::filesystem::path& path) {
  std::optional<std::string> bytes = ReadBytes(path, kMaxSize + 1);
  if (!bytes) return nullptr;
  const bool is_too_large = bytes->size() > kMaxSize;
  auto input = std::make_unique<BytesInput>(std::move(*bytes), FileUri(path));
  if (is_too_large) {
    ReportTooLarge(*input, errors_);
    return nullptr;
  }
  if (!IsWellFormedWithoutDoctype(*input, errors_)) return nullptr;
  return input;
}

xercesc::InputSource* SchemaSource::resolveEntity(xercesc::XMLResourceIdentifier* identifier) {
  Transcoder transcoder;
  const auto path = LocalPath(transcoder.ToUtf8(identifier->getSystemId()),
                              transcoder.ToUtf8(identifier->getBaseURI()));
  std::unique_ptr<xercesc::InputSource> input = path ? Open(*path) : nullptr;
  return input ? input.release() : new NoInput();
}

}  // namespace projectdb::xml
