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

bool IsSource(FileKind kind) { return kind == FileKind::kRtl || kind == FileKind::kSim; }

void RequireArgumentsOfKind(const AddArguments& arguments) {
  if (!arguments.kind) throw Trouble("one of --rtl, --sim, --misc and --sdc is needed");
  if (!IsSource(*arguments.kind) && (arguments.hdl_version || arguments.library)) {
    throw Trouble("only --rtl and --sim files have an HDL version and a library");
  }
  const auto& paths = arguments.paths;
  if (std::find(paths.begin(), paths.end(), "") != paths.end()) {
    throw Trouble("the empty text names no file");
  }
}

std::vector<DesignFile> DesignFiles(const AddArguments& arguments) {
  std::vector<DesignFile> files;
  for (const std::string& path : arguments.paths) {
    files.emplace_back(path, arguments.hdl_version.value_or(""),
                       arguments.library.value_or(projectdb::kDefaultLibrary));
  }
  return files;
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

template <typename Entry>
void Append(std::vector<Entry>& list, const std::vector<Entry>& entries) {
  list.insert(list.end(), entries.begin(), entries.end());
}

void AddFiles(ProjectContents& project, const AddArguments& arguments) {
  switch (*arguments.kind) {
    case FileKind::kRtl:
      return Append(project.design_info.design_files, DesignFiles(arguments));
    case FileKind::kSim:
      return Append(project.sim_files, DesignFiles(arguments));
    case FileKind::kMisc:
      return Append(project.misc_files, DesignFiles(arguments));
    case FileKind::kSdc:
      RequireTimingConstraintFiles(arguments.paths, project.current_path);
      return Append(project.design_constraint.sdc_files, arguments.paths);
  }
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
