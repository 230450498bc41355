#include "installed_schema.h"

#include <filesystem>
#include <system_error>

#include "console.h"

namespace kelproj {

std::string InstalledSchema() {
  namespace fs = std::filesystem;
  // Where the program lies now, wherever its installation was moved to.
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  const fs::path candidates[] = {
      (program.parent_path() / KELPROJ_SCHEMA_FROM_PROGRAM).lexically_normal(),
      KELPROJ_INSTALLED_SCHEMA};
  for (const fs::path& candidate : candidates) {
    std::error_code error;
    if (fs::exists(candidate, error)) return candidate.string();
  }
  throw Trouble("the installed schema is neither " + candidates[0].string() + " nor " +
                candidates[1].string() + ": --schema names another");
}

}  // namespace kelproj
