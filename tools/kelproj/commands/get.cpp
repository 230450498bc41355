#include <ostream>

#include "commands/asking.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {

ExitStatus Run(const GetArguments& arguments, const Console& console) {
  const Key key = FindKey(arguments.key);
  const auto value = key.read(ReadProject(arguments.file, console));
  if (!value) return ExitStatus::kNo;
  console.out << *value << '\n';
  return ExitStatus::kYes;
}

}  // namespace kelproj
