#include <algorithm>

#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

#include "commands.h"
#include "named_files.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::KelProjectDatabase;

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

[[noreturn]] void RefuseTimingConstraintFile(const std::string& path) {
  throw Trouble("\"" + path + "\" is no timing constraint file: its name must end in " +
                KelProjectDatabase::SDC_FILE_EXT + " and not be that of a directory");
}

void AddTimingConstraintFiles(KelProjectDatabase& database, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (!database.AddTimingConstraintFile(path)) RefuseTimingConstraintFile(path);
  }
}

void AddFiles(KelProjectDatabase& database, const AddArguments& arguments) {
  std::vector<std::string> paths = arguments.paths;
  std::vector<DesignFile> files = DesignFiles(arguments);
  switch (*arguments.kind) {
    case FileKind::kRtl:
      return database.AddDesignRTLFile(files);
    case FileKind::kSim:
      return database.AddSimulationTestBenchFile(files);
    case FileKind::kMisc:
      return database.AddMiscellaneousFile(paths);
    case FileKind::kSdc:
      return AddTimingConstraintFiles(database, paths);
  }
}

}  // namespace

ExitStatus Run(const AddArguments& arguments, const Console& console) {
  RequireArgumentsOfKind(arguments);
  ChangeProject(arguments.file, console, [&](KelProjectDatabase& database) {
    AddFiles(database, arguments);
    WarnOfMissingFiles(console, database.GetProjectCurrentPath(), arguments.paths);
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
