#include "installed_schema.h"

#include <filesystem>
#include <system_error>

#include "console.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "platform/running_program.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

std::string Absence(const fs::path& beside_program, const fs::path& of_installation) {
  if (of_installation.empty()) return "not at " + NameFrom(beside_program);
  return "neither " + NameFrom(beside_program) + " nor " + NameFrom(of_installation);
}

}  // namespace

std::string InstalledSchema(const std::string& advice) {
  const fs::path beside_program =
      LexicallyNormal(RunningProgram().parent_path() / PathFrom(KELPROJ_SCHEMA_FROM_PROGRAM));
  const fs::path of_installation = PlaceOfInstallation(KELPROJ_INSTALLED_SCHEMA);
  for (const fs::path& candidate : {beside_program, of_installation}) {
    std::error_code error;
    if (fs::exists(candidate, error)) return NameFrom(candidate);
  }
  throw Trouble("the installed schema is " + Absence(beside_program, of_installation) + ": " +
                advice);
}

}  // namespace kelproj
