#include <algorithm>
#include <filesystem>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/changing.h"
#include "named_files.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::ProjectContents;

void RequireArgumentsOfKind(const AddArguments& arguments) {
  if (!arguments.kind) {
    throw Trouble("one of " + OptionsInSentence(FlatFileKinds()) + " is needed");
  }
  if (!arguments.kind->is_source && (arguments.hdl_version || arguments.library)) {
    throw Trouble("only --rtl and --sim files have an HDL version and a library");
  }
  const auto& paths = arguments.paths;
  if (std::find(paths.begin(), paths.end(), "") != paths.end()) {
    throw Trouble("the empty text names no file");
  }
}

void RequireTimingConstraintFiles(const std::vector<std::string>& paths,
                                  const std::filesystem::path& directory) {
  for (const std::string& path : paths) {
    if (projectdb::HasEnding(path, projectdb::kTimingConstraintFileEnding) &&
        !std::filesystem::is_directory(directory / path)) {
      continue;
    }
    throw Trouble("\"" + path + "\" is no timing constraint file: its name must end in " +
                  projectdb::kTimingConstraintFileEnding + " and not be that of a directory");
  }
}

/// Appends files to lists of each type.
class Addition {
 public:
  explicit Addition(const AddArguments& arguments) : arguments_(arguments) {}

  void operator()(std::vector<DesignFile>& list) const {
    for (const std::string& path : arguments_.paths) {
      list.emplace_back(path, arguments_.hdl_version.value_or(""),
                        arguments_.library.value_or(projectdb::kDefaultLibrary));
    }
  }

  void operator()(std::vector<std::string>& list) const {
    list.insert(list.end(), arguments_.paths.begin(), arguments_.paths.end());
  }

  void operator()(std::vector<projectdb::IP>& /*list*/) const {}

 private:
  const AddArguments& arguments_;
};

void AddFiles(ProjectContents& project, const AddArguments& arguments) {
  if (TermOf(*arguments.kind).file_ending == projectdb::kTimingConstraintFileEnding) {
    RequireTimingConstraintFiles(arguments.paths, project.current_path);
  }
  WithList(*arguments.kind, project, Addition(arguments));
}

}  // namespace

ExitStatus Run(const AddArguments& arguments, const Console& console) {
  RequireArgumentsOfKind(arguments);
  ChangeProject(arguments.file, console, [&](ProjectContents& project) {
    AddFiles(project, arguments);
    WarnOfMissingFiles(console, project.current_path, arguments.paths);
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
