#include "platform/file_permissions.h"

#include <memory>

#include <aclapi.h>

#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

using Descriptor = std::unique_ptr<void, FreeLocal>;

constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;

/// Who may do what with a file.
struct AccessList {
  Descriptor memory;
  ACL* list = nullptr;
  bool is_protected = false;  ///< Whether it takes nothing from that of the directory.
};

bool IsProtected(PSECURITY_DESCRIPTOR descriptor) {
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  RequireSuccess(GetSecurityDescriptorControl(descriptor, &control, &revision));
  return (control & SE_DACL_PROTECTED) != 0;
}

// A file system may have no lists.
bool HasNoLists(DWORD error) {
  return error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

BOOL GetList(const wchar_t* path, AccessList* result) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error = GetNamedSecurityInfoW(path, SE_FILE_OBJECT, kList, nullptr, nullptr,
                                            &result->list, nullptr, &descriptor);
  result->memory.reset(descriptor);
  SetLastError(error);
  return error == ERROR_SUCCESS ? TRUE : FALSE;
}

BOOL SetList(HANDLE file, const AccessList* access) {
  const SECURITY_INFORMATION protection = access->is_protected
                                              ? PROTECTED_DACL_SECURITY_INFORMATION
                                              : UNPROTECTED_DACL_SECURITY_INFORMATION;
  const DWORD error = SetSecurityInfo(file, SE_FILE_OBJECT, kList | protection, nullptr, nullptr,
                                      access->list, nullptr);
  SetLastError(error);
  return error == ERROR_SUCCESS ? TRUE : FALSE;
}

void CopyAccessList(const std::wstring& former, const OpenFile& file) {
  AccessList access;
  if (CallSystem("GetNamedSecurityInfo", GetList, former.c_str(), &access) == 0) {
    if (!HasNoLists(GetLastError())) ThrowSystemFailure();
    return;
  }
  access.is_protected = IsProtected(access.memory.get());
  const AccessList* const list = &access;
  if (CallSystem("SetSecurityInfo", SetList, HandleOf(file), list) == 0 &&
      !HasNoLists(GetLastError())) {
    ThrowSystemFailure();
  }
}

// Whether it is shown, and whether its content is searched for.
void CopyAttributes(const std::wstring& former, const OpenFile& file) {
  constexpr DWORD kCopied =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD attributes = GetFileAttributesW(former.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & kCopied) == 0) return;
  FILE_BASIC_INFO information{};
  information.FileAttributes = attributes & kCopied;
  RequireSuccess(CallSystem("SetFileInformationByHandle", ::SetFileInformationByHandle,
                            HandleOf(file), FileBasicInfo, LPVOID{&information},
                            static_cast<DWORD>(sizeof(information))));
}

}  // namespace

void CopyPermissions(const std::filesystem::path& former_path, const FileStatus& /*former*/,
                     const OpenFile& file) {
  const std::wstring former = SystemName(former_path);
  CopyAccessList(former, file);
  CopyAttributes(former, file);
}

}  // namespace projectdb::files
