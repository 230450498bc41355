#include "platform/temporary_file.h"

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
#include "platform/windows/access_lists.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

constexpr DWORD kOwnAccess = GENERIC_READ | GENERIC_WRITE | DELETE;
// Renaming writes through too, so that nothing is left to flush.
constexpr DWORD kOwnFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH;

// For anybody if there is no list.
HANDLE TryToCreate(const std::filesystem::path& path, const SecurityDescriptor& list) {
  const Opening for_anybody{kOwnAccess, CREATE_NEW, kOwnFlags};
  if (!list) return TryToOpen(path, for_anybody);
  SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), list.get(), FALSE};
  Opening with_list = for_anybody;
  with_list.access |= WRITE_DAC;
  with_list.security = &security;
  const HANDLE handle = TryToOpen(path, with_list);
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
  return error == ERROR_INVALID_PARAMETER || error == ERROR_INVALID_LEVEL || IsUnsupported(error);
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
  const SecurityDescriptor list = former ? ListOfThisUserAlone() : nullptr;
  name_ = UnforeseeableName();
  const HANDLE handle = TryToCreate(path(), list);
  if (handle == NoFile()) ThrowSystemFailure();
  file_.emplace(reinterpret_cast<OpenFile::Handle>(handle));
  // What others may read must have the former file's list before anything is written.
  if (former && !HasAccessList(*file_, list)) CopyAccessList(*former, *file_);
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
