#pragma once

#include <filesystem>
#include <memory>

#include "platform/windows/windows_system.h"

/// Who may do what with a file.
namespace projectdb::files {

/// What the system keeps an access control list in.
using SecurityDescriptor = std::unique_ptr<void, FreeLocal>;

/// A list that lets nobody do anything but this user, whom another machine may know by another
/// name: there he is the owner.
/// @exception Failure if the system does not make it
SecurityDescriptor ListOfThisUserAlone();

/// @return true also if the file system has no lists
/// @exception Failure if the list cannot be read
bool HasAccessList(const OpenFile& file, const SecurityDescriptor& list);

/// Gives a file the access control list of another, if the file system has lists.
/// @exception Failure if it cannot be given, and the file has another
void CopyAccessList(const std::filesystem::path& former, const OpenFile& file);

}  // namespace projectdb::files
