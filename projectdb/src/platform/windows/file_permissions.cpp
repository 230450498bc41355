#include "platform/file_permissions.h"

#include <memory>
#include <optional>
#include <string_view>

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

BOOL GetListOfOpen(HANDLE file, Descriptor* result) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error =
      GetSecurityInfo(file, SE_FILE_OBJECT, kList, nullptr, nullptr, nullptr, nullptr, &descriptor);
  result->reset(descriptor);
  SetLastError(error);
  return error == ERROR_SUCCESS ? TRUE : FALSE;
}

// Nothing if there is no list, which lets everybody do anything.
std::optional<std::string_view> EntriesOf(PSECURITY_DESCRIPTOR descriptor) {
  BOOL is_there = FALSE;
  BOOL is_default = FALSE;
  PACL list = nullptr;
  RequireSuccess(GetSecurityDescriptorDacl(descriptor, &is_there, &list, &is_default));
  if (is_there == 0 || !list) return std::nullopt;
  ACL_SIZE_INFORMATION size{};
  RequireSuccess(GetAclInformation(list, &size, sizeof(size), AclSizeInformation));
  return std::string_view(reinterpret_cast<const char*>(list), size.AclBytesInUse)
      .substr(sizeof(*list));
}

bool HasList(const OpenFile& file, PSECURITY_DESCRIPTOR descriptor) {
  Descriptor own;
  if (CallSystem("GetSecurityInfo", GetListOfOpen, HandleOf(file), &own) == 0) ThrowSystemFailure();
  return EntriesOf(own.get()) == EntriesOf(descriptor);
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
                 descriptor.get()) != 0) {
    return;
  }
  const DWORD error = GetLastError();
  if (HasNoLists(error)) return;
  // Where nobody may change lists, both files may have got theirs from the directory.
  if (error != ERROR_ACCESS_DENIED || !HasList(file, descriptor.get())) ThrowSystemFailure(error);
}

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
  CopyAccessList(SystemName(former_path), file);
  CopyAttributes(former_path, file);
}

void LimitReaders(const std::filesystem::path& former_path, const OpenFile& file) {
  CopyAccessList(SystemName(former_path), file);
}

}  // namespace projectdb::files
