#include <filesystem>
#include <system_error>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "commands/changing.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::KelProjectDatabase;

void RequireNewProjectFile(const std::string& file) {
  RequireName(file);
  RequireProjectFileName(file);
  std::error_code error;
  if (std::filesystem::exists(PathFrom(file), error)) throw Trouble(file + " exists already");
  if (error) throw Trouble(file + ": " + error.message());
  RequireWritable(file);
}

}  // namespace

ExitStatus Run(const NewArguments& arguments, const Console& /*console*/) {
  RequireNewProjectFile(arguments.file);
  KelProjectDatabase database;
  database.CreateNewProjectDatabase(arguments.name);
  if (arguments.family) database.SetDeviceFamily(*arguments.family);
  if (arguments.device) database.SetDeviceModel(*arguments.device);
  if (arguments.timing_model) database.SetDeviceTimingModel(*arguments.timing_model);
  if (arguments.top_module) database.SetDesignTopModuleName(*arguments.top_module);
  projectdb::ExportProjectDataDurably(database, arguments.file);
  return ExitStatus::kYes;
}

}  // namespace kelproj
