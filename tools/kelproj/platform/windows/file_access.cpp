#include "platform/file_access.h"

#include <windows.h>

namespace kelproj {
namespace {

// What others do with it meanwhile does not count.
bool MayOpen(const std::filesystem::path& path, DWORD access) {
  const HANDLE file =
      CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(file);
  return true;
}

}  // namespace

bool MayRead(const std::filesystem::path& path) { return MayOpen(path, GENERIC_READ); }

bool MayWrite(const std::filesystem::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  const bool is_known = attributes != INVALID_FILE_ATTRIBUTES;
  // Of a directory the attribute says nothing.
  if (is_known && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return MayOpen(path, FILE_ADD_FILE);
  }
  return is_known && (attributes & FILE_ATTRIBUTE_READONLY) == 0 && MayOpen(path, GENERIC_WRITE);
}

}  // namespace kelproj
