#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {
namespace {

Key RemovableKey(const std::string& text) {
  Key key = FindKey(text);
  if (!key.remove) throw Trouble(text + " cannot be unset");
  return key;
}

}  // namespace

ExitStatus Run(const UnsetArguments& arguments, const Console& console) {
  std::vector<Key> keys;
  for (const std::string& text : arguments.keys) keys.push_back(RemovableKey(text));
  ChangeProject(arguments.file, console, [&](projectdb::ProjectContents& project) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (!keys[i].remove(project)) throw Refusal("there is no " + arguments.keys[i]);
    }
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
