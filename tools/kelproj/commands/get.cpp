#include <ostream>

#include <projectdb/project_contents.h>

#include "commands.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const GetArguments& arguments, const Console& console) {
  const Key key = FindKey(arguments.key);
  const auto database = LoadProject(arguments.file, console);
  const auto value = key.read(projectdb::GetProjectContents(*database));
  if (!value) return ExitStatus::kNo;
  console.out << *value << '\n';
  return ExitStatus::kYes;
}

}  // namespace kelproj
