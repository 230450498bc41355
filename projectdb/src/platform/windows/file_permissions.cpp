#include "platform/file_permissions.h"

#include <memory>

#include <aclapi.h>

#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

using Descriptor = std::unique_ptr<void, FreeLocal>;

constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;

// A file system may have no lists.
bool HasNoLists(DWORD error) {
  return error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

BOOL GetList(const wchar_t* path, Descriptor* result) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error = GetNamedSecurityInfoW(path, SE_FILE_OBJECT, kList, nullptr, nullptr, nullptr,
                                            nullptr, &descriptor);
  result->reset(descriptor);
  SetLastError(error);
  return error == ERROR_SUCCESS ? TRUE : FALSE;
}

// Entries that came from a directory are still known for such, as the system forgets by default.
void KeepInheritance(PSECURITY_DESCRIPTOR descriptor) {
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  RequireSuccess(GetSecurityDescriptorControl(descriptor, &control, &revision));
  if ((control & SE_DACL_AUTO_INHERITED) == 0) return;
  constexpr SECURITY_DESCRIPTOR_CONTROL kKept = SE_DACL_AUTO_INHERIT_REQ | SE_DACL_AUTO_INHERITED;
  RequireSuccess(SetSecurityDescriptorControl(descriptor, kKept, kKept));
}

// The list is taken as it is: other calls would add what files of the directory get by default.
void CopyAccessList(const std::wstring& former, const OpenFile& file) {
  Descriptor descriptor;
  if (CallSystem("GetNamedSecurityInfo", GetList, former.c_str(), &descriptor) == 0) {
    if (!HasNoLists(GetLastError())) ThrowSystemFailure();
    return;
  }
  KeepInheritance(descriptor.get());
  if (CallSystem("SetKernelObjectSecurity", ::SetKernelObjectSecurity, HandleOf(file), kList,
                 descriptor.get()) == 0 &&
      !HasNoLists(GetLastError())) {
    ThrowSystemFailure();
  }
}

// Whether it is shown, and whether its content is searched for.
void CopyAttributes(const std::filesystem::path& former, const OpenFile& file) {
  constexpr DWORD kCopied =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD attributes = AttributesOf(former).dwFileAttributes;
  if ((attributes & kCopied) == 0) return;
  FILE_BASIC_INFO information{};
  information.FileAttributes = attributes & kCopied;
  RequireSuccess(CallSystem("SetFileInformationByHandle", ::SetFileInformationByHandle,
                            HandleOf(file), FileBasicInfo, LPVOID{&information},
                            static_cast<DWORD>(sizeof(information))));
}

}  // namespace

void CopyPermissions(const std::filesystem::path& former_path, const FileStatus& /*former*/,
                     const OpenFile& file) {
  CopyAccessList(SystemName(former_path), file);
  CopyAttributes(former_path, file);
}

}  // namespace projectdb::files
