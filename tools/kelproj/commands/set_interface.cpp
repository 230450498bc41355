#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

#include "commands.h"
#include "keys.h"
#include "named_files.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console) {
  const Key key = FindKey("constraint.interface");
  ChangeProject(arguments.file, console, [&](projectdb::KelProjectDatabase& database) {
    projectdb::ProjectContents project = projectdb::GetProjectContents(database);
    key.write(project, arguments.path, std::nullopt);
    projectdb::SetProjectContents(database, project);
    WarnOfMissingFiles(console, database.GetProjectCurrentPath(), {arguments.path});
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
