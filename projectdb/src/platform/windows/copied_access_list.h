#pragma once

#include <filesystem>

#include "platform/open_file.h"

/// Who may do what with a file.
namespace projectdb::files {

/// Gives a file the access control list of another, if the file system has lists.
/// @exception Failure if it cannot be given, and the file has another
void CopyAccessList(const std::filesystem::path& former, const OpenFile& file);

/// Requires that a file has the list of another, if the file system has lists.
/// @exception Failure if it has not
void RequireAccessList(const std::filesystem::path& former, const OpenFile& file);

}  // namespace projectdb::files
