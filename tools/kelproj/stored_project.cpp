#include "stored_project.h"

#include <stdexcept>

#include <projectdb/check.h>
#include <projectdb/durable_export.h>

#include "problems.h"

namespace kelproj {

using projectdb::KelProjectDatabase;

namespace {

bool Load(KelProjectDatabase& database, const std::string& file, const Console& console) {
  try {
    return database.LoadProjectData(file, "");
  } catch (const std::runtime_error& error) {
    WriteMessage(console.err, Diag::MessageType::kError, error.what());
    return false;
  }
}

}  // namespace

std::unique_ptr<KelProjectDatabase> LoadProject(const std::string& file, const Console& console) {
  auto database = std::make_unique<KelProjectDatabase>();
  if (Load(*database, file, console)) return database;
  WriteProblems(console.err, file, projectdb::CheckProjectFile(file, ""));
  throw Trouble(file + " does not load");
}

void ChangeProject(const std::string& file, const Console& console,
                   const std::function<void(KelProjectDatabase&)>& change) {
  const auto database = LoadProject(file, console);
  change(*database);
  // What the file has beside the project is lost with the former file.
  WriteProblems(console.err, file, projectdb::CheckProjectFile(file, ""));
  projectdb::ExportProjectDataDurably(*database, file);
}

}  // namespace kelproj
