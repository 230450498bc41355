#pragma once

#include <filesystem>

#include "platform/windows/windows_system.h"

/// Who may do what with a file.
namespace projectdb::files {

/// @return true also if the file system has no lists
/// @exception Failure if the list cannot be read
bool HasAccessList(const OpenFile& file, PSECURITY_DESCRIPTOR list);

/// Gives a file the access control list of another, if the file system has lists.
/// @exception Failure if it cannot be given, and the file has another
void CopyAccessList(const std::filesystem::path& former, const OpenFile& file);

}  // namespace projectdb::files
