#include "platform/temporary_file.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/paths.h"
#include "platform/temporary_name.h"
#include "platform/windows/copied_access_list.h"
#include "platform/windows/windows_system.h"

#include <sddl.h>  // After the system's own header, without which it does not compile.

namespace projectdb::files {
namespace {

constexpr DWORD kOwnAccess = GENERIC_READ | GENERIC_WRITE | DELETE;
// Renaming writes through too, so that nothing is left to flush.
constexpr DWORD kOwnFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH;

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

/// A list that lets nobody do anything but this user, whom another machine may know by another
/// name: there he is the owner.
class OnlyThisUser {
 public:
  OnlyThisUser() {
    constexpr wchar_t kOwner[] = L"S-1-3-4";
    const std::wstring list =
        L"D:P(A;;FA;;;" + NameOfUser() + L")(A;;FA;;;" + std::wstring(kOwner) + L")";
    RequireSuccess(CallSystem("ConvertStringSecurityDescriptorToSecurityDescriptor",
                              ::ConvertStringSecurityDescriptorToSecurityDescriptorW, list.c_str(),
                              DWORD{SDDL_REVISION_1}, &attributes_.lpSecurityDescriptor,
                              PULONG{nullptr}));
  }
  ~OnlyThisUser() { LocalFree(attributes_.lpSecurityDescriptor); }
  OnlyThisUser(const OnlyThisUser&) = delete;
  OnlyThisUser& operator=(const OnlyThisUser&) = delete;

  PSECURITY_DESCRIPTOR list() { return attributes_.lpSecurityDescriptor; }
  SECURITY_ATTRIBUTES* attributes() { return &attributes_; }

 private:
  SECURITY_ATTRIBUTES attributes_ = {sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

HANDLE TryToCreate(const std::filesystem::path& path, std::optional<OnlyThisUser>& user) {
  const Opening for_anybody{kOwnAccess, CREATE_NEW, kOwnFlags};
  if (!user) return TryToOpen(path, for_anybody);
  Opening for_this_user = for_anybody;
  for_this_user.access |= WRITE_DAC;
  for_this_user.security = user->attributes();
  const HANDLE handle = TryToOpen(path, for_this_user);
  // Many shares let nobody give a file a list. Whatever the reason is, the list is looked at then.
  return handle != NoFile() ? handle : TryToOpen(path, for_anybody);
}

// Whether the system may do later what it does not do while somebody has a file open.
bool MayPass(DWORD error) { return IsInUse(error) || error == ERROR_ACCESS_DENIED; }

// FileRenameInfoEx, which the headers of some compilers lack.
constexpr auto kRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);

// As systems since Windows 10 rename: the former file may be open to others, who keep it.
BOOL RenameOpenFile(HANDLE file, const wchar_t* path, bool replaces) {
  const std::size_t path_size = std::wcslen(path) * sizeof(wchar_t);
  std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + path_size);
  auto& information = *reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
  information.Flags = FILE_RENAME_FLAG_POSIX_SEMANTICS;
  if (replaces) information.Flags |= FILE_RENAME_FLAG_REPLACE_IF_EXISTS;
  information.FileNameLength = static_cast<DWORD>(path_size);
  std::memcpy(&information.FileName[0], path, path_size);
  return FunctionsOfSystem().set_file_information(file, kRenameInfoEx, memory.data(),
                                                  static_cast<DWORD>(memory.size()));
}

// Older systems, and file systems of other kinds, do not know that way.
bool IsUnknownWay(DWORD error) {
  return error == ERROR_INVALID_PARAMETER || error == ERROR_INVALID_LEVEL ||
         error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

// Denied while the former file is open to anybody.
bool MoveOver(const std::wstring& from, const std::wstring& to, bool replaces) {
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (replaces ? MOVEFILE_REPLACE_EXISTING : 0U);
  const auto move = [&] {
    return CallSystem("MoveFileEx", ::MoveFileExW, from.c_str(), to.c_str(), flags) != 0;
  };
  return TryRepeatedly(move, MayPass);
}

// Whether it was moved; the last error is why not.
bool Move(std::optional<OpenFile>& file, const std::filesystem::path& from,
          const std::filesystem::path& to, bool replaces) {
  const std::wstring name = SystemName(to);
  const auto rename = [&] {
    return CallSystem("RenameOpenFile", RenameOpenFile, HandleOf(*file), name.c_str(), replaces) !=
           0;
  };
  const bool is_renamed = TryRepeatedly(rename, MayPass);
  if (is_renamed || !IsUnknownWay(GetLastError())) return is_renamed;
  // Nobody moves a file that is open to be written; open to be read, nobody takes it for an
  // abandoned one.
  const HANDLE reading = WaitToOpen(from, {GENERIC_READ});
  if (reading == NoFile()) return false;
  file.emplace(reinterpret_cast<OpenFile::Handle>(reading));
  return MoveOver(SystemName(from), name, replaces);
}

void RemoveIfAbandoned(const std::filesystem::path& path) {
  // Its maker would have it open.
  constexpr DWORD kFlags = FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
  const HANDLE handle = TryToOpen(path, {DELETE, OPEN_EXISTING, kFlags, 0});
  if (handle != NoFile()) CloseSystemHandle(handle);
}

std::filesystem::path FoundNames() { return std::string(kTemporaryPrefix) + "*"; }

struct CloseSearch {
  using pointer = HANDLE;
  void operator()(HANDLE search) const { CloseSystem("FindClose", ::FindClose, search); }
};

}  // namespace

Directory::Directory(std::filesystem::path path)
    : path_(std::move(path)),
      file_(Open(path_, {FILE_LIST_DIRECTORY, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS})) {}

void Directory::Flush() const {}

TemporaryFile::TemporaryFile(const Directory& directory, const std::filesystem::path* former)
    : TemporaryFile(directory) {
  Create(former);
}

void TemporaryFile::Create(const std::filesystem::path* former) {
  std::optional<OnlyThisUser> only_this_user;
  if (former) only_this_user.emplace();
  name_ = UnforeseeableName();
  const HANDLE handle = TryToCreate(path(), only_this_user);
  if (handle == NoFile()) ThrowSystemFailure();
  file_.emplace(reinterpret_cast<OpenFile::Handle>(handle));
  // What others may read must have the former file's list before anything is written.
  if (former && !HasAccessList(*file_, only_this_user->list())) CopyAccessList(*former, *file_);
}

TemporaryFile::~TemporaryFile() {
  if (!file_ || stays_) return;
  file_.reset();
  // Nothing else can be done if that fails: the next save removes it.
  CallSystem("DeleteFile", ::DeleteFileW, SystemName(directory_.path() / name_).c_str());
}

void TemporaryFile::Flush() const {
  RequireSuccess(CallSystem("FlushFileBuffers", ::FlushFileBuffers, HandleOf(*file_)));
}

void TemporaryFile::RenameTo(const std::filesystem::path& name) {
  if (!Move(file_, directory_.path() / name_, directory_.path() / name, true)) ThrowSystemFailure();
  stays_ = true;
}

bool TemporaryFile::LinkTo(const std::filesystem::path& name) {
  stays_ = Move(file_, directory_.path() / name_, directory_.path() / name, false);
  if (stays_) return true;
  const DWORD error = GetLastError();
  if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) return false;
  ThrowSystemFailure(error);
}

// The temporary file is open to this process alone until it is closed.
void TemporaryFile::Unlock() const {}

void RemoveAbandonedFiles(const Directory& directory) {
  const std::wstring pattern = SystemName(directory.path() / FoundNames());
  WIN32_FIND_DATAW found{};
  const HANDLE search = CallSystem("FindFirstFile", ::FindFirstFileW, pattern.c_str(), &found);
  if (search == NoFile()) return;
  const std::unique_ptr<HANDLE, CloseSearch> closing(search);
  do {
    const std::string name = paths::ToBytes(&found.cFileName[0]);
    if (IsTemporaryName(name)) RemoveIfAbandoned(directory.path() / name);
  } while (CallSystem("FindNextFile", ::FindNextFileW, search, &found) != 0);
}

}  // namespace projectdb::files
