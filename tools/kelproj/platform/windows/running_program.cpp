#include "platform/running_program.h"

#include <string>

#include <windows.h>

namespace kelproj {

std::filesystem::path RunningProgram() {
  constexpr std::size_t kLongestName = 0x7FFF;
  std::wstring name(kLongestName, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return name;
}

// No installation has a fixed place there: a name without a drive is on the current one, where all
// users may make directories.
std::filesystem::path PlaceOfInstallation(const std::string& /*name*/) { return {}; }

}  // namespace kelproj
