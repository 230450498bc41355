#include "platform/file_names.h"

#include "platform/windows/texts.h"

namespace kelproj {
namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

}  // namespace

std::filesystem::path PathFrom(const std::string& name) { return Utf16From(name); }

// Some standard libraries do not know the name of a share for a root.
bool IsAbsolute(const std::string& name) {
  const bool is_on_share = name.size() > 1 && IsSeparator(name[0]) && IsSeparator(name[1]);
  return is_on_share || PathFrom(name).is_absolute();
}

// Stored so, a name is the same file on every system.
std::string NameFrom(const std::filesystem::path& path) { return Utf8From(path.generic_wstring()); }

}  // namespace kelproj
