#include "platform/windows/access_lists.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <aclapi.h>
#include <sddl.h>

namespace projectdb::files {
namespace {

constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;

// Null if the file system has no lists.
template <typename Function, typename File>
SecurityDescriptor ListOf(const char* name, Function function, File file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const auto ask = [&]() -> BOOL {
    const DWORD error =
        function(file, SE_FILE_OBJECT, kList, nullptr, nullptr, nullptr, nullptr, &descriptor);
    SetLastError(error);
    return error == ERROR_SUCCESS ? TRUE : FALSE;
  };
  if (CallSystem(name, ask) == 0 && !IsUnsupported(GetLastError())) ThrowSystemFailure();
  return SecurityDescriptor(descriptor);
}

SecurityDescriptor ListOf(const std::filesystem::path& path) {
  return ListOf("GetNamedSecurityInfo", ::GetNamedSecurityInfoW, SystemName(path).c_str());
}

SecurityDescriptor ListOf(const OpenFile& file) {
  return ListOf("GetSecurityInfo", ::GetSecurityInfo, HandleOf(file));
}

// Nothing if there is no list, which lets everybody do anything.
std::optional<std::string_view> EntriesOf(const SecurityDescriptor& descriptor) {
  BOOL is_there = FALSE;
  BOOL is_default = FALSE;
  PACL list = nullptr;
  RequireSuccess(GetSecurityDescriptorDacl(descriptor.get(), &is_there, &list, &is_default));
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

struct CloseToken {
  using pointer = HANDLE;
  void operator()(HANDLE token) const { CloseSystemHandle(token); }
};

// The user that this process runs as, in the form in which lists name users.
std::wstring NameOfUser() {
  HANDLE handle = nullptr;
  RequireSuccess(CallSystem("OpenProcessToken", ::OpenProcessToken, GetCurrentProcess(),
                            DWORD{TOKEN_QUERY}, &handle));
  const std::unique_ptr<HANDLE, CloseToken> token(handle);
  alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> memory;
  DWORD size = 0;
  RequireSuccess(CallSystem("GetTokenInformation", ::GetTokenInformation, handle, TokenUser,
                            LPVOID{memory.data()}, static_cast<DWORD>(memory.size()), &size));
  wchar_t* text = nullptr;
  RequireSuccess(CallSystem("ConvertSidToStringSid", ::ConvertSidToStringSidW,
                            reinterpret_cast<TOKEN_USER*>(memory.data())->User.Sid, &text));
  const std::unique_ptr<wchar_t, FreeLocal> name(text);
  return text;
}

}  // namespace

SecurityDescriptor ListOfThisUserAlone() {
  constexpr wchar_t kOwner[] = L"S-1-3-4";
  const std::wstring text =
      L"D:P(A;;FA;;;" + NameOfUser() + L")(A;;FA;;;" + std::wstring(kOwner) + L")";
  PSECURITY_DESCRIPTOR list = nullptr;
  RequireSuccess(CallSystem("ConvertStringSecurityDescriptorToSecurityDescriptor",
                            ::ConvertStringSecurityDescriptorToSecurityDescriptorW, text.c_str(),
                            DWORD{SDDL_REVISION_1}, &list, PULONG{nullptr}));
  return SecurityDescriptor(list);
}

bool HasAccessList(const OpenFile& file, const SecurityDescriptor& list) {
  const SecurityDescriptor own = ListOf(file);
  return !own || EntriesOf(own) == EntriesOf(list);
}

// The list is taken as it is: other calls would add what files of the directory get by default.
void CopyAccessList(const std::filesystem::path& former, const OpenFile& file) {
  const SecurityDescriptor list = ListOf(former);
  if (!list) return;
  KeepInheritance(list.get());
  if (CallSystem("SetKernelObjectSecurity", ::SetKernelObjectSecurity, HandleOf(file), kList,
                 list.get()) != 0) {
    return;
  }
  const DWORD error = GetLastError();
  if (IsUnsupported(error)) return;
  // Where nobody may change lists, both files may have got theirs from the directory.
  const bool may_be_there = error == ERROR_ACCESS_DENIED;
  if (!may_be_there || !HasAccessList(file, list)) ThrowSystemFailure(error);
}

}  // namespace projectdb::files
