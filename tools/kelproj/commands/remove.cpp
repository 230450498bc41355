#include <algorithm>
#include <filesystem>
#include <type_traits>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/changing.h"
#include "list_entries.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::IP;
using projectdb::ProjectContents;

// Calls the function with each list of the kind, or of all kinds, and with the directory against
// which its names are resolved; with the sources of IP instances before the instances.
template <typename Function>
void ForEachList(ProjectContents& project, const FileKind* kind, Function function) {
  const std::filesystem::path directory = PathFrom(project.current_path);
  for (const FileKind& each : ListedFileKinds()) {
    if (kind && kind != &each) continue;
    WithList(each, project, [&](auto& list) {
      if constexpr (std::is_same_v<std::decay_t<decltype(list)>, std::vector<IP>>) {
        for (IP& ip : list) function(ip.src_files, PathIn(directory, ip.path).parent_path());
      }
      function(list, directory);
    });
  }
}

[[noreturn]] void Refuse(const RemoveArguments& arguments, const std::string& name,
                         const ProjectContents& project, EntryChoice& known) {
  const bool is_of_instance = arguments.kind == &InstanceKind();
  RefuseMissing(is_of_instance ? name : StoredName(name, PathFrom(project.current_path)),
                arguments.kind ? TitleInSentence(TermOf(*arguments.kind)) : "",
                known.HintFor(name));
}

void Remove(const RemoveArguments& arguments, ProjectContents& project) {
  EntryChoice removed(PathFrom(project.current_path));
  ForEachList(project, arguments.kind,
              [&](const auto& list, const auto& directory) { removed.Know(list, directory); });
  for (const std::string& name : arguments.names) {
    if (!removed.Choose(name)) Refuse(arguments, name, project, removed);
  }
  ForEachList(project, arguments.kind, [&](auto& list, const auto& directory) {
    const auto end = std::remove_if(
        list.begin(), list.end(), [&](const auto& entry) { return removed.Has(entry, directory); });
    list.erase(end, list.end());
  });
}

}  // namespace

ExitStatus Run(const RemoveArguments& arguments, const Console& console) {
  ChangeProject(arguments.file, console,
                [&](ProjectContents& project) { Remove(arguments, project); });
  return ExitStatus::kYes;
}

}  // namespace kelproj
