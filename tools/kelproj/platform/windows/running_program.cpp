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

}  // namespace kelproj
