#include "platform/open_file.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/paths.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {
namespace {

std::uint64_t Joined(DWORD high, DWORD low) {
  return (std::uint64_t{high} << 32U) | std::uint64_t{low};
}

// The system counts tenths of microseconds since 1601.
std::int64_t NanosecondsSince1970(const FILETIME& time) {
  constexpr std::int64_t kFrom1601To1970 = 116'444'736'000'000'000;
  const auto ticks = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
  return (ticks - kFrom1601To1970) * 100;
}

FileStatus StatusFrom(const BY_HANDLE_FILE_INFORMATION& information) {
  FileStatus status;
  const bool is_directory = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  status.kind = is_directory ? FileStatus::Kind::kDirectory : FileStatus::Kind::kRegular;
  status.device = information.dwVolumeSerialNumber;
  status.number = Joined(information.nFileIndexHigh, information.nFileIndexLow);
  status.names = information.nNumberOfLinks;
  status.size = Joined(information.nFileSizeHigh, information.nFileSizeLow);
  status.changed_at = NanosecondsSince1970(information.ftLastWriteTime);
  return status;
}

}  // namespace

OpenFile::~OpenFile() {
  if (handle_ != kNone) CloseSystemHandle(HandleOf(*this));
}

bool OpenFile::Close() {
  return CloseSystemHandle(reinterpret_cast<HANDLE>(std::exchange(handle_, kNone))) != 0;
}

FileStatus OpenFile::Status() const {
  SetLastError(NO_ERROR);  // Of a file of unknown kind there is none either.
  const DWORD type = CallSystem("GetFileType", ::GetFileType, HandleOf(*this));
  if (type == FILE_TYPE_UNKNOWN && GetLastError() != NO_ERROR) ThrowSystemFailure();
  // Devices and pipes have no more to tell.
  if (type != FILE_TYPE_DISK) return {};
  BY_HANDLE_FILE_INFORMATION information{};
  RequireSuccess(CallSystem("GetFileInformationByHandle", ::GetFileInformationByHandle,
                            HandleOf(*this), &information));
  return StatusFrom(information);
}

std::size_t OpenFile::Read(unsigned char* target, std::size_t most) const {
  constexpr std::size_t kMostAtOnce = std::numeric_limits<int>::max();
  std::size_t size = 0;
  while (size < most) {
    const auto wanted = static_cast<DWORD>(std::min(most - size, kMostAtOnce));
    DWORD count = 0;
    const BOOL is_read = CallSystem("ReadFile", ::ReadFile, HandleOf(*this), LPVOID{target + size},
                                    wanted, &count, LPOVERLAPPED{nullptr});
    // The other end of a pipe was closed.
    if (is_read == 0 && GetLastError() != ERROR_BROKEN_PIPE) ThrowSystemFailure();
    if (is_read == 0 || count == 0) break;
    size += count;
  }
  return size;
}

OpenFile OpenForReading(const std::string& path) {
  return Open(paths::FromBytes(path), {GENERIC_READ});
}

OpenFile OpenForWriting(const std::string& path) {
  return Open(paths::FromBytes(path), {GENERIC_WRITE});
}

}  // namespace projectdb::files
