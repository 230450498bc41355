#include "platform/running_program.h"

#include <system_error>

namespace kelproj {

std::filesystem::path RunningProgram() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

}  // namespace kelproj
