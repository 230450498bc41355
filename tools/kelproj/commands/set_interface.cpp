#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/changing.h"
#include "keys.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console) {
  RequireName(arguments.path);
  const Key key = FindKey(projectdb::kInterfaceConstraintFileKey);
  std::optional<std::string> doubt;
  ChangeValues(arguments.file, console, [&](projectdb::ProjectContents& project) {
    key.write(project, arguments.path, std::nullopt);
    doubt = WhyNoFile(PathFrom(project.current_path), project.design_constraint.inter_file);
  });
  if (doubt) WriteMessage(console.err, Diag::MessageType::kWarning, *doubt);
  return ExitStatus::kYes;
}

}  // namespace kelproj
