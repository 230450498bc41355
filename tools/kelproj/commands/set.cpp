#include <projectdb/project_contents.h>

#include "commands.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {

using projectdb::KelProjectDatabase;
using projectdb::ProjectContents;

ExitStatus Run(const SetArguments& arguments, const Console& console) {
  const Key key = FindKey(arguments.key);
  if (!key.write) throw Trouble(arguments.key + " cannot be set");
  std::optional<projectdb::ParameterType> type;
  if (arguments.type) {
    if (!key.has_type) throw Trouble(arguments.key + " has no type: only parameters have one");
    type = ParameterTypeFromName(*arguments.type);
  }
  ChangeProject(arguments.file, console, [&](KelProjectDatabase& database) {
    ProjectContents project = projectdb::GetProjectContents(database);
    key.write(project, arguments.value, type);
    projectdb::SetProjectContents(database, project);
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
