#include "xml/schema.h"

#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "xml/error_handler.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/parser_settings.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

// The bytes of a file, or its first ones if it has more than it may: a size that the system tells
// need not be true. Regular files only: a device or a pipe may keep the reader waiting.
std::optional<std::string> ReadBytes(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string bytes;
  for (char byte = 0; bytes.size() <= SchemaSource::kMaxSize && file.get(byte);) bytes += byte;
  if (file.bad()) return std::nullopt;
  return bytes;
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
  const bool is_too_large = bytes->size() > kMaxSize;
  auto input = std::make_unique<BytesInput>(std::move(*bytes), FileUri(path));
  if (!is_too_large && IsWellFormedWithoutDoctype(*input)) return input;
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
