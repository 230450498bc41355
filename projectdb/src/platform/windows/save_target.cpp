#include "platform/save_target.h"

#include "base/failure.h"
#include "platform/paths.h"
#include "platform/windows/links.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

void RequireReplaceable(const FileStatus& status, const std::filesystem::path& path) {
  if (status.kind == FileStatus::Kind::kDirectory) ThrowSystemFailure(std::errc::is_a_directory);
  if (!status.IsRegular()) throw Failure("not a regular file");
  // A process with all privileges may open a file that is to be read only.
  const DWORD attributes = AttributesOf(path).dwFileAttributes;
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) ThrowSystemFailure(ERROR_ACCESS_DENIED);
  // The directory alone would let the process replace what it must not write. To whom else the
  // file is open, the system asks later.
  const HANDLE handle = TryToOpen(path, {GENERIC_WRITE});
  if (handle == NoFile() && GetLastError() != ERROR_SHARING_VIOLATION) ThrowSystemFailure();
  if (handle != NoFile()) CloseSystemHandle(handle);
}

// What a link leads to is replaced, not the link.
std::filesystem::path WithoutLinks(const std::filesystem::path& path) {
  const HANDLE handle = TryToOpen(path, kToAsk);
  if (handle == NoFile()) ThrowSystemFailure();
  return FinalPath(OpenFile(reinterpret_cast<OpenFile::Handle>(handle)), path);
}

// Where a link leads to no file, the file is made there.
std::filesystem::path FollowLinks(std::filesystem::path path) {
  constexpr int kMaxLinks = 40;
  for (int links = 0; links <= kMaxLinks; ++links) {
    const std::optional<std::filesystem::path> next = ReadLink(path);
    if (!next) return path;
    // A link on the way to this one counts before a ".." in it.
    path = paths::IsOnShare(*next) ? *next : paths::Below(WithoutLinks(path.parent_path()), *next);
  }
  ThrowTooManyLinks();
}

}  // namespace

SaveTarget FindSaveTarget(const std::string& path) {
  if (path.find('\0') != std::string::npos) ThrowSystemFailure(std::errc::invalid_argument);
  if (!IsNameToWrite(path)) throw Failure("the name is not UTF-8 text");
  // Another thread may change the working directory.
  const std::filesystem::path absolute = paths::Absolute(paths::FromBytes(path));
  const std::optional<FileStatus> former = StatusOf(absolute);
  if (!former) return {FollowLinks(absolute), former};
  RequireReplaceable(*former, absolute);
  return {WithoutLinks(absolute), former};
}

}  // namespace projectdb::files
