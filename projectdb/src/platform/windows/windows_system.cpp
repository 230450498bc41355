#include "platform/windows/windows_system.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/failure.h"
#include "base/utf8.h"

namespace projectdb::files {
namespace {

// Names up to here are known without a prefix, those of directories too.
constexpr std::size_t kLongestPlainName = 247;
constexpr std::wstring_view kPrefix = LR"(\\?\)";
constexpr std::wstring_view kDevicePrefix = LR"(\\.\)";
constexpr std::wstring_view kShare = LR"(\\)";
constexpr std::wstring_view kSharePrefix = LR"(\\?\UNC\)";

constexpr int kTries = 12;
constexpr std::chrono::milliseconds kShortestDelay{1};
constexpr std::chrono::milliseconds kLongestDelay{256};

bool StartsWith(std::wstring_view text, std::wstring_view start) {
  return text.substr(0, start.size()) == start;
}

bool HasPrefix(std::wstring_view name) {
  return StartsWith(name, kPrefix) || StartsWith(name, kDevicePrefix);
}

bool IsNameOf(const std::wstring& name, const FileStatus& file) {
  const HANDLE handle = TryToOpen(name, kToAsk);
  if (handle == NoFile()) return false;
  return OpenFile(reinterpret_cast<OpenFile::Handle>(handle)).Status().IsSameFile(file);
}

// Empty if the system does not tell; the last error is then why.
std::wstring FinalName(const OpenFile& file) {
  const auto get = [&file](wchar_t* target, DWORD size) {
    return CallSystem("GetFinalPathNameByHandle", ::GetFinalPathNameByHandleW, HandleOf(file),
                      target, size, DWORD{FILE_NAME_NORMALIZED});
  };
  std::wstring name(get(nullptr, 0), L'\0');
  if (!name.empty()) name.resize(get(name.data(), static_cast<DWORD>(name.size())));
  return name;
}

// The last error is why there is none.
std::optional<std::wstring> FindName(const OpenFile& file) {
  const std::wstring final_name = FinalName(file);
  if (final_name.empty()) return std::nullopt;
  // With a prefix, a drive alone would name the drive and not its root. Without, the system changes
  // some names, such as those that end in a dot.
  const FileStatus status = file.Status();
  for (const std::wstring& name : {WithoutPrefix(final_name), final_name}) {
    if (IsNameOf(name, status)) return name;
  }
  SetLastError(ERROR_FILE_NOT_FOUND);
  return std::nullopt;
}

std::wstring FullName(const std::wstring& name) {
  std::wstring full(GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
  const auto size = static_cast<DWORD>(full.size());
  full.resize(GetFullPathNameW(name.c_str(), size, full.data(), nullptr));
  return full;
}

}  // namespace

void ThrowSystemFailure(DWORD error) {
  if (error == ERROR_FILENAME_EXCED_RANGE) ThrowSystemFailure(std::errc::filename_too_long);
  if (error == ERROR_CANT_RESOLVE_FILENAME) ThrowTooManyLinks();
  // In the standard's words it would be a missing file, which nobody could make.
  if (error == ERROR_INVALID_NAME) throw Failure("no file can have that name");
  // In the standard's words it would be a denied permission, which nobody could give.
  if (IsInUse(error)) throw Failure("others have it open and do not share it");
  const int number = static_cast<int>(error);
  const std::error_condition condition = std::system_category().default_error_condition(number);
  const bool is_known =
      condition.category() == std::generic_category() && condition.value() != number;
  if (is_known || error == ERROR_FILE_NOT_FOUND) throw Failure(condition.message());
  // The system's own words are in the language and the encoding of its user.
  throw Failure("system error " + std::to_string(number));
}

void ThrowSystemFailure(std::errc error) {
  throw Failure(std::make_error_condition(error).message());
}

void ThrowTooManyLinks() { throw Failure("Too many levels of symbolic links"); }

bool IsMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_INVALID_NAME || error == ERROR_BAD_NETPATH || error == ERROR_BAD_NET_NAME ||
         error == ERROR_INVALID_DRIVE || error == ERROR_NOT_READY;
}

bool IsUnsupported(DWORD error) {
  return error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

bool IsInUse(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

bool TryRepeatedly(const std::function<bool()>& call, bool (*may_pass)(DWORD error),
                   const WaitEnd& end) {
  std::chrono::milliseconds pause = kShortestDelay;
  for (int tries_left = kTries; !call(); --tries_left) {
    const DWORD error = GetLastError();
    const auto now = std::chrono::steady_clock::now();
    if (tries_left == 1 || (end && now >= *end) || !may_pass(error)) {
      SetLastError(error);
      return false;
    }
    std::this_thread::sleep_until(end ? std::min(now + pause, *end) : now + pause);
    pause = std::min(2 * pause, kLongestDelay);
  }
  return true;
}

bool IsNameToWrite(const std::string& name) {
  return name.find('\0') == std::string::npos && utf8::IsValid(name);
}

std::wstring SystemName(const std::filesystem::path& path) {
  const std::wstring& name = path.native();
  if (name.empty() || HasPrefix(name)) return name;
  const std::wstring full = FullName(name);
  if (full.size() <= kLongestPlainName) return name;
  // One that was spelled with slashes.
  if (HasPrefix(full)) return full;
  if (!StartsWith(full, kShare)) return std::wstring(kPrefix) + full;
  return std::wstring(kSharePrefix) + full.substr(kShare.size());
}

std::wstring WithoutPrefix(const std::wstring& name) {
  if (StartsWith(name, kSharePrefix)) {
    return std::wstring(kShare) + name.substr(kSharePrefix.size());
  }
  const bool is_on_drive = StartsWith(name, kPrefix) && name.size() > kPrefix.size() + 1 &&
                           name[kPrefix.size() + 1] == L':';
  return is_on_drive ? name.substr(kPrefix.size()) : name;
}

std::optional<WIN32_FILE_ATTRIBUTE_DATA> FindAttributes(const std::filesystem::path& path) {
  WIN32_FILE_ATTRIBUTE_DATA attributes{};
  if (CallSystem("GetFileAttributesEx", ::GetFileAttributesExW, SystemName(path).c_str(),
                 GetFileExInfoStandard, LPVOID{&attributes}) == 0) {
    return std::nullopt;
  }
  return attributes;
}

WIN32_FILE_ATTRIBUTE_DATA AttributesOf(const std::filesystem::path& path) {
  const std::optional<WIN32_FILE_ATTRIBUTE_DATA> attributes = FindAttributes(path);
  if (!attributes) ThrowSystemFailure();
  return *attributes;
}

std::filesystem::path FinalPath(const OpenFile& file, const std::filesystem::path& path) {
  std::optional<std::wstring> name = FindName(file);
  // Another file may have taken its place meanwhile.
  for (int tries_left = 3; !name && tries_left > 0; --tries_left) {
    const HANDLE handle = TryToOpen(path, kToAsk);
    if (handle == NoFile()) break;
    name = FindName(OpenFile(reinterpret_cast<OpenFile::Handle>(handle)));
  }
  if (name) return *name;
  const DWORD error = GetLastError();
  if ((AttributesOf(path).dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return path;
  ThrowSystemFailure(error);
}

HANDLE TryToOpen(const std::filesystem::path& path, const Opening& opening) {
  return CallSystem("CreateFile", FunctionsOfSystem().create_file, SystemName(path).c_str(),
                    opening.access, opening.sharing, opening.security, opening.disposition,
                    opening.flags, HANDLE{nullptr});
}

HANDLE WaitToOpen(const std::filesystem::path& path, const Opening& opening, const WaitEnd& end) {
  HANDLE handle = NoFile();
  const auto open = [&] {
    handle = TryToOpen(path, opening);
    return handle != NoFile();
  };
  TryRepeatedly(open, IsInUse, end);
  return handle;
}

OpenFile Open(const std::filesystem::path& path, const Opening& opening, const WaitEnd& end) {
  const HANDLE handle = WaitToOpen(path, opening, end);
  if (handle == NoFile()) ThrowSystemFailure();
  return OpenFile(reinterpret_cast<OpenFile::Handle>(handle));
}

}  // namespace projectdb::files
