#include "platform/file_permissions.h"

#include "platform/windows/access_lists.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

// Whether it is shown, and whether its content is searched for.
void CopyAttributes(const std::filesystem::path& former, const OpenFile& file) {
  constexpr DWORD kCopied =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD attributes = AttributesOf(former).dwFileAttributes;
  if ((attributes & kCopied) == 0) return;
  FILE_BASIC_INFO information{};
  // As of any file that was written.
  information.FileAttributes = (attributes & kCopied) | FILE_ATTRIBUTE_ARCHIVE;
  RequireSuccess(CallSystem("SetFileInformationByHandle", ::SetFileInformationByHandle,
                            HandleOf(file), FileBasicInfo, LPVOID{&information},
                            static_cast<DWORD>(sizeof(information))));
}

}  // namespace

void CopyPermissions(const std::filesystem::path& former_path, const FileStatus& /*former*/,
                     const OpenFile& file) {
  CopyAccessList(former_path, file);
  CopyAttributes(former_path, file);
}

}  // namespace projectdb::files
