#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#include "platform/windows/windows_system.h"

namespace test_support {

/// For as long as it lives, the system knows the renaming of open files that came with Windows 10,
/// or does not, whichever system it is. Where it does, the former way of renaming answers, if the
/// new one is asked for as the system wants it.
class SystemRenaming {
 public:
  explicit SystemRenaming(bool is_known) {
    projectdb::files::FunctionsOfSystem().set_file_information = is_known ? Rename : Refuse;
  }
  ~SystemRenaming() {
    projectdb::files::FunctionsOfSystem().set_file_information = SetFileInformationByHandle;
  }
  SystemRenaming(const SystemRenaming&) = delete;
  SystemRenaming& operator=(const SystemRenaming&) = delete;

 private:
  static constexpr int kRenameInfo = 3;
  static constexpr int kRenameInfoEx = 22;
  static constexpr DWORD kReplaceIfExists = 1;
  static constexpr DWORD kPosixSemantics = 2;

  static BOOL WINAPI Refuse(HANDLE, FILE_INFO_BY_HANDLE_CLASS, void*, DWORD) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }

  static BOOL WINAPI Rename(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* data, DWORD size) {
    // The system takes so many bytes for the name, and what stands in for it goes to a zero.
    std::vector<std::byte> former(size + sizeof(wchar_t));
    std::memcpy(former.data(), data, size);
    auto& information = *reinterpret_cast<FILE_RENAME_INFO*>(former.data());
    const std::size_t name_begin = offsetof(FILE_RENAME_INFO, FileName);
    const DWORD flags = information.Flags;
    if (static_cast<int>(kind) != kRenameInfoEx || (flags & ~kReplaceIfExists) != kPosixSemantics ||
        information.RootDirectory != nullptr || information.FileNameLength == 0 ||
        name_begin + information.FileNameLength > size) {
      SetLastError(ERROR_BAD_LENGTH);
      return FALSE;
    }
    std::memset(former.data() + name_begin + information.FileNameLength, 0, sizeof(wchar_t));
    information.Flags = 0;
    information.ReplaceIfExists = (flags & kReplaceIfExists) != 0 ? TRUE : FALSE;
    return SetFileInformationByHandle(file, static_cast<FILE_INFO_BY_HANDLE_CLASS>(kRenameInfo),
                                      former.data(), static_cast<DWORD>(former.size()));
  }
};

}  // namespace test_support
