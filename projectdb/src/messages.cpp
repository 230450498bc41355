#include "messages.h"

#include <fmt/format.h>

namespace projectdb::messages {
namespace {

template <typename... Texts>
Diag::DiagStorage Format(Diag::MessageType type, std::string_view format, const Texts&... texts) {
  return Diag::DiagStorage({}, type, fmt::vformat(format, fmt::make_format_args(texts...)), {});
}

}  // namespace

Diag::DiagStorage MsgProjectExists() {
  return Format(Diag::MessageType::kError,
                "Project database has already existed. Fail to create new project");
}

Diag::DiagStorage MsgDeprecatedTag(std::string_view tag) {
  return Format(Diag::MessageType::kWarning, "Found a deprecated tag name {}. Skipping ...", tag);
}

Diag::DiagStorage MsgUnexpectedTag(std::string_view tag) {
  return Format(Diag::MessageType::kError, "Unexpected tag name {}", tag);
}

Diag::DiagStorage MsgProjectFileMissing(std::string_view path) {
  return Format(Diag::MessageType::kError, "Project XML file \"{}\" does not exist", path);
}

Diag::DiagStorage MsgReadingProject(std::string_view path) {
  return Format(Diag::MessageType::kInfo, "Reading project database \"{}\"", path);
}

Diag::DiagStorage MsgSchemaFileMissing(std::string_view path) {
  return Format(Diag::MessageType::kWarning, "XML schema file \"{}\" does not exist", path);
}

Diag::DiagStorage MsgProjectFileMalformed(std::string_view path) {
  return Format(Diag::MessageType::kError,
                "Failed to parse the project XML file \"{}\". The file format is unexpected", path);
}

void Post(const Diag::DiagStorage& message) { Diag::GlobalInst().PostImpl(message); }

}  // namespace projectdb::messages
