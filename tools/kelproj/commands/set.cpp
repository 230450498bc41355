#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {

using projectdb::ProjectContents;

ExitStatus Run(const SetArguments& arguments, const Console& console) {
  const Key key = FindKey(arguments.key);
  if (!key.write) throw Trouble(arguments.key + " cannot be set");
  std::optional<projectdb::ParameterType> type;
  if (arguments.type) {
    if (!key.has_type) throw Trouble(arguments.key + " has no type: only parameters have one");
    type = ParameterTypeFromName(*arguments.type);
  }
  ChangeProject(arguments.file, console,
                [&](ProjectContents& project) { key.write(project, arguments.value, type); });
  return ExitStatus::kYes;
}

}  // namespace kelproj
