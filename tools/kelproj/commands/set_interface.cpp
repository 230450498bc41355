#include <projectdb/project_db.h>

#include "commands.h"
#include "keys.h"
#include "named_files.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console) {
  const Key key = FindKey("constraint.interface");
  ChangeProject(arguments.file, console, [&](projectdb::KelProjectDatabase& database) {
    key.write(database, arguments.path, std::nullopt);
    WarnOfMissingFiles(console, database.GetProjectCurrentPath(), {arguments.path});
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
