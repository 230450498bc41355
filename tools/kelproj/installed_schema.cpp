#include "installed_schema.h"

#include <filesystem>
#include <system_error>

#include "console.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "platform/running_program.h"

namespace kelproj {

std::string InstalledSchema() {
  namespace fs = std::filesystem;
  const fs::path candidates[] = {
      LexicallyNormal(RunningProgram().parent_path() / PathFrom(KELPROJ_SCHEMA_FROM_PROGRAM)),
      PathFrom(KELPROJ_INSTALLED_SCHEMA)};
  for (const fs::path& candidate : candidates) {
    std::error_code error;
    if (fs::exists(candidate, error)) return NameFrom(candidate);
  }
  throw Trouble("the installed schema is neither " + NameFrom(candidates[0]) + " nor " +
                NameFrom(candidates[1]) + ": --schema names another");
}

}  // namespace kelproj
