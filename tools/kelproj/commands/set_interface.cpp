#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "keys.h"
#include "named_files.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console) {
  const Key key = FindKey("constraint.interface");
  ChangeProject(arguments.file, console, [&](projectdb::ProjectContents& project) {
    key.write(project, arguments.path, std::nullopt);
    WarnOfMissingFiles(console, project.current_path, {arguments.path});
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
