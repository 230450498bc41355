#include <projectdb/project_contents.h>

#include "commands.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {

using projectdb::KelProjectDatabase;

ExitStatus Run(const SetArguments& arguments, const Console& console) {
  const Key key = FindKey(arguments.key);
  if (!key.write) throw Trouble(arguments.key + " cannot be set");
  std::optional<projectdb::ParameterType> type;
  if (arguments.type) {
    if (!key.has_type) throw Trouble(arguments.key + " has no type: only parameters have one");
    type = ParameterTypeFromName(*arguments.type);
  }
  ChangeProject(arguments.file, console, [&](KelProjectDatabase& database) {
    key.write(database, arguments.value, type);
    // Names that XML itself uses are taken without being kept.
    if (key.read(projectdb::GetProjectContents(database)) != arguments.value) {
      throw Trouble("a project does not keep " + arguments.key);
    }
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
