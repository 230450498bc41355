#include "platform/file_names.h"

#include <cstring>

#include "platform/windows/shares.h"
#include "platform/windows/texts.h"

namespace kelproj {

// To the system the letter of a drive is the same in either case, and a shell may pass on both.
std::filesystem::path PathFrom(const std::string& name) {
  std::wstring native = Utf16From(name);
  const bool has_small_drive =
      native.size() > 1 && native[0] >= L'a' && native[0] <= L'z' && native[1] == L':';
  if (has_small_drive) native[0] = static_cast<wchar_t>(native[0] - L'a' + L'A');
  return native;
}

bool IsAbsolute(const std::string& name) {
  const std::filesystem::path path = PathFrom(name);
  return IsOnShare(path) || path.is_absolute();
}

// The shell of git for Windows passes the name that git gives on as that of the system.
bool IsNoFile(const std::string& name) {
  return name == kNoFile || _stricmp(name.c_str(), "nul") == 0;
}

// Stored so, a name is the same file on every system.
std::string NameFrom(const std::filesystem::path& path) {
  if (!IsOnShare(path)) return Utf8From(path.generic_wstring());
  const auto [share, place] = TakeApart(path);
  return Utf8From(share.native() + place.generic_wstring());
}

}  // namespace kelproj
