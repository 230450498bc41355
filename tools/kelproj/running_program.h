#pragma once

#include <filesystem>
#include <system_error>

namespace kelproj {

/// Where the program lies now, wherever its installation was moved to; empty if that is unknown.
inline std::filesystem::path RunningProgram() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

}  // namespace kelproj
