#include "platform/windows/links.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "platform/windows/windows_system.h"

#include <winioctl.h>  // After the system's own header, without which it does not compile.

namespace projectdb::files {
namespace {

constexpr std::wstring_view kObjectPrefix = LR"(\??\)";

/// How the data of a symbolic link begins, which stands in the headers for drivers alone.
struct LinkHead {
  std::uint32_t tag;
  std::uint16_t size;
  std::uint16_t unused;
  std::uint16_t name_begin;  ///< In bytes from the end of this head, like the size.
  std::uint16_t name_size;
  std::uint16_t shown_name_begin;
  std::uint16_t shown_name_size;
  std::uint32_t flags;
};

// A file system may have no links; what came to be there meanwhile is none.
bool IsNoLink(DWORD error) {
  return error == ERROR_NOT_A_REPARSE_POINT || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_PARAMETER;
}

}  // namespace

std::optional<std::filesystem::path> TargetIn(const std::vector<std::byte>& data) {
  LinkHead head{};
  if (data.size() < sizeof(head)) return std::nullopt;
  std::memcpy(&head, data.data(), sizeof(head));
  const std::size_t begin = sizeof(head) + head.name_begin;
  if (head.tag != IO_REPARSE_TAG_SYMLINK || begin + head.name_size > data.size()) {
    return std::nullopt;
  }
  std::wstring name(head.name_size / sizeof(wchar_t), L'\0');
  std::memcpy(name.data(), data.data() + begin, name.size() * sizeof(wchar_t));
  // The prefix by which the system itself knows absolute names is not one for programs.
  const bool has_prefix = name.compare(0, kObjectPrefix.size(), kObjectPrefix) == 0;
  return has_prefix ? WithoutPrefix(LR"(\\?\)" + name.substr(kObjectPrefix.size())) : name;
}

std::optional<std::filesystem::path> ReadLink(const std::filesystem::path& path) {
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  const HANDLE handle = TryToOpen(path, {FILE_READ_ATTRIBUTES, OPEN_EXISTING, kFlags});
  if (handle == NoFile()) {
    if (!IsMissing(GetLastError())) ThrowSystemFailure();
    return std::nullopt;
  }
  const OpenFile link(reinterpret_cast<OpenFile::Handle>(handle));
  std::vector<std::byte> data(MAXIMUM_REPARSE_DATA_BUFFER_SIZE);
  DWORD size = 0;
  if (CallSystem("DeviceIoControl", FunctionsOfSystem().control_device, handle,
                 DWORD{FSCTL_GET_REPARSE_POINT}, LPVOID{nullptr}, DWORD{0}, LPVOID{data.data()},
                 static_cast<DWORD>(data.size()), &size, LPOVERLAPPED{nullptr}) == 0) {
    if (!IsNoLink(GetLastError())) ThrowSystemFailure();
    return std::nullopt;
  }
  data.resize(size);
  return TargetIn(data);
}

}  // namespace projectdb::files
