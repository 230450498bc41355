#include "platform/file_status.h"

#include "base/failure.h"
#include "platform/paths.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {

std::optional<FileStatus> StatusOf(const std::filesystem::path& path) {
  const HANDLE handle =
      TryToOpen(path, {FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS});
  if (handle != NoFile()) return OpenFile(reinterpret_cast<OpenFile::Handle>(handle)).Status();
  if (!IsMissing(GetLastError())) ThrowSystemFailure();
  return std::nullopt;
}

std::optional<FileStatus> FindStatus(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
  return StatusOf(paths::FromBytes(path));
}

}  // namespace projectdb::files
