#include "testing/file_state.h"

#include <sstream>
#include <stdexcept>

#include <windows.h>

namespace test_support {
namespace {

/// A file of which the system is asked.
class AskedFile {
 public:
  AskedFile(const std::string& path, DWORD access)
      : handle_(CreateFileW(NativePath(path).c_str(), access,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) throw std::runtime_error("no status of " + path);
  }
  ~AskedFile() { CloseHandle(handle_); }
  AskedFile(const AskedFile&) = delete;
  AskedFile& operator=(const AskedFile&) = delete;

  HANDLE get() const { return handle_; }

  BY_HANDLE_FILE_INFORMATION Information() const {
    BY_HANDLE_FILE_INFORMATION information{};
    GetFileInformationByHandle(handle_, &information);
    return information;
  }

 private:
  HANDLE handle_;
};

std::int64_t Ticks(const FILETIME& time) {
  return static_cast<std::int64_t>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

}  // namespace

std::string FileStatusText(const std::string& path) {
  const BY_HANDLE_FILE_INFORMATION information =
      AskedFile(path, FILE_READ_ATTRIBUTES).Information();
  std::ostringstream text;
  text << "file " << information.dwVolumeSerialNumber << ' ' << information.nFileIndexHigh << ' '
       << information.nFileIndexLow << ", attributes " << information.dwFileAttributes
       << ", created " << Ticks(information.ftCreationTime) << ", written "
       << Ticks(information.ftLastWriteTime);
  return text.str();
}

std::int64_t WriteTimeOf(const std::string& path) {
  return Ticks(AskedFile(path, FILE_READ_ATTRIBUTES).Information().ftLastWriteTime);
}

void SetWriteTime(const std::string& path, std::int64_t time) {
  const FILETIME written{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32U)};
  const AskedFile file(path, FILE_WRITE_ATTRIBUTES);
  if (SetFileTime(file.get(), nullptr, nullptr, &written) == 0) {
    throw std::runtime_error("cannot change " + path);
  }
}

bool IsOpen(const std::string& path) {
  // To have a file alone is refused while it is open.
  const HANDLE file = CreateFileW(NativePath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    if (GetLastError() == ERROR_SHARING_VIOLATION) return true;
    throw std::runtime_error("cannot ask for " + path);
  }
  CloseHandle(file);
  return false;
}

}  // namespace test_support
