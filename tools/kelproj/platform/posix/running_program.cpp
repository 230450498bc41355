#include "platform/running_program.h"

#include <system_error>

#include "platform/file_names.h"

namespace kelproj {

std::filesystem::path RunningProgram() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

std::filesystem::path PlaceOfInstallation(const std::string& name) { return PathFrom(name); }

}  // namespace kelproj
