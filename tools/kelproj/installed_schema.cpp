#include "installed_schema.h"

#include <filesystem>
#include <system_error>

#include "console.h"
#include "running_program.h"

namespace kelproj {

std::string InstalledSchema() {
  namespace fs = std::filesystem;
  const fs::path candidates[] = {
      (RunningProgram().parent_path() / KELPROJ_SCHEMA_FROM_PROGRAM).lexically_normal(),
      KELPROJ_INSTALLED_SCHEMA};
  for (const fs::path& candidate : candidates) {
    std::error_code error;
    if (fs::exists(candidate, error)) return candidate.string();
  }
  throw Trouble("the installed schema is neither " + candidates[0].string() + " nor " +
                candidates[1].string() + ": --schema names another");
}

}  // namespace kelproj
