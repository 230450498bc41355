#include "platform/windows/copied_access_list.h"

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

// Null if the file system has no lists.
template <typename Function, typename File>
Descriptor ListOf(const char* name, Function function, File file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const auto ask = [&]() -> BOOL {
    const DWORD error =
        function(file, SE_FILE_OBJECT, kList, nullptr, nullptr, nullptr, nullptr, &descriptor);
    SetLastError(error);
    return error == ERROR_SUCCESS ? TRUE : FALSE;
  };
  if (CallSystem(name, ask) == 0 && !HasNoLists(GetLastError())) ThrowSystemFailure();
  return Descriptor(descriptor);
}

Descriptor ListOf(const std::filesystem::path& path) {
  return ListOf("GetNamedSecurityInfo", ::GetNamedSecurityInfoW, SystemName(path).c_str());
}

Descriptor ListOf(const OpenFile& file) {
  return ListOf("GetSecurityInfo", ::GetSecurityInfo, HandleOf(file));
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

// Entries that came from a directory are still known for such, as the system forgets by default.
void KeepInheritance(PSECURITY_DESCRIPTOR descriptor) {
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  RequireSuccess(GetSecurityDescriptorControl(descriptor, &control, &revision));
  if ((control & SE_DACL_AUTO_INHERITED) == 0) return;
  constexpr SECURITY_DESCRIPTOR_CONTROL kKept = SE_DACL_AUTO_INHERIT_REQ | SE_DACL_AUTO_INHERITED;
  RequireSuccess(SetSecurityDescriptorControl(descriptor, kKept, kKept));
}

}  // namespace

bool HasAccessList(const OpenFile& file, PSECURITY_DESCRIPTOR list) {
  const Descriptor own = ListOf(file);
  return !own || EntriesOf(own.get()) == EntriesOf(list);
}

// The list is taken as it is: other calls would add what files of the directory get by default.
void CopyAccessList(const std::filesystem::path& former, const OpenFile& file) {
  const Descriptor list = ListOf(former);
  if (!list) return;
  KeepInheritance(list.get());
  if (CallSystem("SetKernelObjectSecurity", ::SetKernelObjectSecurity, HandleOf(file), kList,
                 list.get()) != 0) {
    return;
  }
  const DWORD error = GetLastError();
  if (HasNoLists(error)) return;
  // Where nobody may change lists, both files may have got theirs from the directory.
  const bool may_be_there = error == ERROR_ACCESS_DENIED;
  if (!may_be_there || !HasAccessList(file, list.get())) ThrowSystemFailure(error);
}

}  // namespace projectdb::files
