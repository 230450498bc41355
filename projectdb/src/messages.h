#pragma once

#include <string_view>

#include <kel/diag.h>

/// The messages of this library. Each function formats one message; Post delivers it.
namespace projectdb::messages {

Diag::DiagStorage MsgProjectExists();
Diag::DiagStorage MsgDeprecatedTag(std::string_view tag);
Diag::DiagStorage MsgUnexpectedTag(std::string_view tag);
Diag::DiagStorage MsgProjectFileMissing(std::string_view path);
Diag::DiagStorage MsgReadingProject(std::string_view path);
Diag::DiagStorage MsgSchemaFileMissing(std::string_view path);
Diag::DiagStorage MsgProjectFileMalformed(std::string_view path);

void Post(const Diag::DiagStorage& message);

}  // namespace projectdb::messages
