#pragma once

#include <filesystem>

#include "platform/open_file.h"

namespace projectdb::files {

/// Gives a file the permission bits, access control list, group and owner of the one that it is to
/// replace. Group and owner stay if the process may not change them; the group then gets no
/// permission that all others do not have.
///
/// @param former_path of the file to be replaced, which is no symbolic link
/// @param former its status
/// @exception Failure if the permissions cannot be kept
void CopyPermissions(const std::filesystem::path& former_path, const FileStatus& former,
                     const OpenFile& file);

}  // namespace projectdb::files
