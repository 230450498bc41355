#include "platform/file_names.h"

#include "platform/windows/shares.h"
#include "platform/windows/texts.h"

namespace kelproj {

std::filesystem::path PathFrom(const std::string& name) { return Utf16From(name); }

bool IsAbsolute(const std::string& name) {
  const std::filesystem::path path = PathFrom(name);
  return IsOnShare(path) || path.is_absolute();
}

// Stored so, a name is the same file on every system.
std::string NameFrom(const std::filesystem::path& path) {
  if (!IsOnShare(path)) return Utf8From(path.generic_wstring());
  const auto [share, place] = TakeApart(path);
  return Utf8From(share.native() + place.generic_wstring());
}

}  // namespace kelproj
