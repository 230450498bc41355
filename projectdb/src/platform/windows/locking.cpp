#include "platform/locking.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <thread>

#include "base/failure.h"
#include "platform/paths.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

constexpr std::chrono::milliseconds kShortestPause{1};
constexpr std::chrono::milliseconds kLongestPause{50};
// A second of pauses: a lock that was given back is gone by then.
constexpr int kMostDenials = 24;

constexpr std::size_t kLongestName = 255;

// The system lets nobody replace a file that is open to somebody else, as a locked one would be.
// Beside it is another, which is there for as long as somebody has the lock.
std::filesystem::path LockPath(const std::string& path, const WaitEnd& end) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) ThrowSystemFailure(std::errc::invalid_argument);
  const std::filesystem::path absolute = paths::Absolute(paths::FromBytes(path));
  const Opening opening{GENERIC_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS};
  const OpenFile file = Open(absolute, opening, end);
  const FileStatus status = file.Status();
  if (status.kind == FileStatus::Kind::kDirectory) ThrowSystemFailure(std::errc::is_a_directory);
  if (!status.IsRegular()) throw Failure("not a regular file");
  const std::filesystem::path final_path = FinalPath(file, absolute);
  return final_path.parent_path() / (L".kel_lock_" + final_path.filename().native());
}

// A lock that was given back is denied for as long as others, such as virus scanners, have its file
// open.
bool MayBeGoing(DWORD error) {
  return error == ERROR_ACCESS_DENIED || error == ERROR_DELETE_PENDING;
}

// What has the name of a lock and is none must not be removed with it: a lock is an empty file.
void RequireNothingElse(const std::filesystem::path& lock_path) {
  const std::optional<WIN32_FILE_ATTRIBUTE_DATA> found = FindAttributes(lock_path);
  if (!found) {
    const DWORD error = GetLastError();
    if (!IsMissing(error) && !MayBeGoing(error)) ThrowSystemFailure(error);
    return;
  }
  constexpr DWORD kOthers = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
  if ((found->dwFileAttributes & kOthers) != 0 || found->nFileSizeLow != 0 ||
      found->nFileSizeHigh != 0) {
    throw Failure("\"" + paths::ToBytes(lock_path.filename()) + "\" is there and is no lock");
  }
}

// Nobody else can open it meanwhile, and it goes when this process ends, however that happens.
HANDLE TryToLock(const std::filesystem::path& lock_path) {
  constexpr DWORD kFlags = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_TEMPORARY |
                           FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
  return TryToOpen(lock_path, {GENERIC_READ | DELETE, OPEN_ALWAYS, kFlags, 0});
}

}  // namespace

std::unique_ptr<OpenFile> LockFile(const std::string& path,
                                   std::optional<LockClock::time_point> end) {
  const std::filesystem::path lock_path = LockPath(path, end);
  if (lock_path.filename().native().size() > kLongestName) {
    ThrowSystemFailure(std::errc::filename_too_long);
  }
  RequireNothingElse(lock_path);
  std::chrono::milliseconds pause = kShortestPause;
  int denials = 0;
  bool was_locked = false;
  for (;;) {
    const HANDLE handle = TryToLock(lock_path);
    if (handle != NoFile()) {
      return std::make_unique<OpenFile>(reinterpret_cast<OpenFile::Handle>(handle));
    }
    const DWORD error = GetLastError();
    const bool is_locked = error == ERROR_SHARING_VIOLATION;
    was_locked = was_locked || is_locked || error == ERROR_DELETE_PENDING;
    const LockClock::time_point now = LockClock::now();
    const bool is_over = end && now >= *end;
    if (was_locked && is_over) throw Failure("it is locked by others");
    if (is_locked) {
      denials = 0;
    } else if (!MayBeGoing(error) || is_over || ++denials > kMostDenials) {
      ThrowSystemFailure(error);
    }
    std::this_thread::sleep_until(end ? std::min(now + pause, *end) : now + pause);
    pause = std::min(2 * pause, kLongestPause);
  }
}

std::optional<FileStatus> StatusOfLocked(const std::string& path) {
  if (!IsRegularFile(path)) return std::nullopt;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  const HANDLE handle =
      TryToOpen(LockPath(path, std::nullopt), {FILE_READ_ATTRIBUTES, OPEN_EXISTING, kFlags});
  if (handle != NoFile()) return OpenFile(reinterpret_cast<OpenFile::Handle>(handle)).Status();
  const DWORD error = GetLastError();
  if (!IsMissing(error) && !MayBeGoing(error)) ThrowSystemFailure(error);
  return std::nullopt;
}

std::unique_ptr<OpenFile> LockReplacement(const OpenFile& /*replacement*/) { return nullptr; }

}  // namespace projectdb::files
