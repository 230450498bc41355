#include "xml/schema.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "xml/error_handler.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/parser_settings.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

// Regular files only: a device or a pipe may have no end.
std::optional<std::string> ReadBytes(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

bool IsWellFormedWithoutDoctype(const xercesc::InputSource& input) {
  KelProjectDbErrorHandler errors;
  const Owned<xercesc::DOMLSParser> parser = CreateParser(errors);
  Set(*parser, xercesc::XMLUni::fgXercesSchema, false);
  Set(*parser, xercesc::XMLUni::fgDOMValidate, false);
  Parse(*parser, input);
  return !errors.failed;
}

}  // namespace

std::unique_ptr<xercesc::InputSource> SchemaSource::Open(const std::filesystem::path& path) {
  std::optional<std::string> bytes = ReadBytes(path);
  if (!bytes) return nullptr;
  auto input = std::make_unique<BytesInput>(std::move(*bytes), FileUri(path));
  if (IsWellFormedWithoutDoctype(*input)) return input;
  refused_ = true;
  return nullptr;
}

xercesc::InputSource* SchemaSource::resolveEntity(xercesc::XMLResourceIdentifier* identifier) {
  Transcoder transcoder;
  const auto path = LocalPath(transcoder.ToUtf8(identifier->getSystemId()),
                              transcoder.ToUtf8(identifier->getBaseURI()));
  std::unique_ptr<xercesc::InputSource> input = path ? Open(*path) : nullptr;
  return input ? input.release() : new NoInput();
}

}  // namespace projectdb::xml
