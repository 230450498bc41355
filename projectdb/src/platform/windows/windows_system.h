#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <type_traits>

#include <windows.h>

// The header makes a macro of what is a function of this library, also for what is compiled
// together with these sources.
#undef ReplaceFile

#include "platform/open_file.h"
#include "platform/system_calls.h"

/// What the sources for Windows have in common.
namespace projectdb::files {

/// @exception Failure with the system's reason, that of the last failed call by default, in the
///            words that other systems have for it, or its own where those would mislead
[[noreturn]] void ThrowSystemFailure(DWORD error = GetLastError());

[[noreturn]] void ThrowSystemFailure(std::errc error);

/// The system's library has no words for it.
[[noreturn]] void ThrowTooManyLinks();

/// Whether an error says that there is no such file.
bool IsMissing(DWORD error);

/// The system's functions in whose place a test answers: what stands in for the system on other
/// machines does not know all that the system does.
struct SystemFunctions {
  decltype(&::CreateFileW) create_file = ::CreateFileW;
  decltype(&::DeviceIoControl) control_device = ::DeviceIoControl;
  decltype(&::SetFileInformationByHandle) set_file_information = ::SetFileInformationByHandle;
};

/// Those of this process, which a test changes while nobody saves.
inline SystemFunctions& FunctionsOfSystem() {
  static SystemFunctions functions;
  return functions;
}

/// Whether an error says that the system, or the file system, does not know what is asked for.
bool IsUnsupported(DWORD error);

/// Whether an error says that others have a file open and do not share it.
bool IsInUse(DWORD error);

/// When a wait is over, if not by itself.
using WaitEnd = std::optional<std::chrono::steady_clock::time_point>;

/// Makes a call again and again for a second and a bit: virus scanners and indexers do not keep a
/// file open longer.
/// @param call gives whether it succeeds
/// @param may_pass whether it may succeed later after an error
/// @param end behind which it is made no more
/// @return whether it succeeded; if not, the last error is why
bool TryRepeatedly(const std::function<bool()>& call, bool (*may_pass)(DWORD error),
                   const WaitEnd& end = std::nullopt);

/// What the system gives for a file that it did not open.
inline HANDLE NoFile() { return INVALID_HANDLE_VALUE; }

/// Makes a call that gives zero or no file if it fails; the last error is then why.
template <typename Function, typename... Arguments>
auto CallSystem(const char* name, Function function, Arguments... arguments) {
  using Result = decltype(function(arguments...));
  const int error = ErrorOfFilter({name, -1});
  if (error == 0) return function(arguments...);
  SetLastError(static_cast<DWORD>(error));
  if constexpr (std::is_same_v<Result, HANDLE>) {
    return NoFile();
  } else {
    return Result{0};
  }
}

/// Closes what is open, also where a test lets that fail.
/// @return zero if it fails; the last error is then why
template <typename Close>
BOOL CloseSystem(const char* name, Close close, HANDLE handle) {
  const int error = ErrorOfFilter({name, -1});
  const BOOL result = close(handle);
  if (error == 0) return result;
  SetLastError(static_cast<DWORD>(error));
  return FALSE;
}

inline BOOL CloseSystemHandle(HANDLE handle) {
  return CloseSystem("CloseHandle", ::CloseHandle, handle);
}

/// @exception Failure if a call failed
inline void RequireSuccess(BOOL result) {
  if (result == 0) ThrowSystemFailure();
}

inline HANDLE HandleOf(const OpenFile& file) { return reinterpret_cast<HANDLE>(file.handle()); }

/// Frees what the system has allocated.
struct FreeLocal {
  void operator()(void* memory) const { LocalFree(memory); }
};

/// Whether a file may be made under the name: not beyond a zero, where the system would not see it,
/// nor of bytes that are not UTF-8, for which it would make another name.
bool IsNameToWrite(const std::string& name);

/// The name by which the system knows a path, however long.
std::wstring SystemName(const std::filesystem::path& path);

/// The name of a path on a drive or a share without the prefix that long names have.
std::wstring WithoutPrefix(const std::wstring& name);

/// How a file is opened. Others may do with it meanwhile what they could do if it was not open.
struct Opening {
  DWORD access = 0;
  DWORD disposition = OPEN_EXISTING;
  DWORD flags = FILE_ATTRIBUTE_NORMAL;
  DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  SECURITY_ATTRIBUTES* security = nullptr;
};

/// How a file or a directory is opened to ask what it is.
inline constexpr Opening kToAsk{0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS};

/// @return NoFile() if it cannot be opened; the last error is then why
HANDLE TryToOpen(const std::filesystem::path& path, const Opening& opening);

/// As TryToOpen, but waits a while for others who have the file open and do not share it.
HANDLE WaitToOpen(const std::filesystem::path& path, const Opening& opening,
                  const WaitEnd& end = std::nullopt);

/// As WaitToOpen.
/// @exception Failure with the system's reason if it cannot be opened
OpenFile Open(const std::filesystem::path& path, const Opening& opening,
              const WaitEnd& end = std::nullopt);

/// What a path has for attributes, which are those of a link if it is one.
/// @return nothing if the system does not tell; the last error is then why
std::optional<WIN32_FILE_ATTRIBUTE_DATA> FindAttributes(const std::filesystem::path& path);

/// @exception Failure if the system does not tell
WIN32_FILE_ATTRIBUTE_DATA AttributesOf(const std::filesystem::path& path);

/// The path of the file itself, without links on the way to it. Some file systems do not tell: then
/// it is the path by which it was opened.
/// @param path by which it was opened, absolute
/// @exception Failure if the system does not tell what a link leads to
std::filesystem::path FinalPath(const OpenFile& file, const std::filesystem::path& path);

/// @param path a link stands for what it leads to
/// @return nothing if there is no such file
/// @exception Failure if the system does not tell
std::optional<FileStatus> StatusOf(const std::filesystem::path& path);

}  // namespace projectdb::files
