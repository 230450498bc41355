#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "json_reading.h"
#include "standard_input.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const ApplyArguments& arguments, const Console& console) {
  const std::string document = ReadInput(arguments.document);
  ChangeValues(arguments.file, console,
               [&](projectdb::ProjectContents& project) { ApplyJson(document, project); });
  return ExitStatus::kYes;
}

}  // namespace kelproj
