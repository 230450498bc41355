#include "project_file.h"

#include <stdexcept>

#include <projectdb/durable_export.h>

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
  throw Trouble(file + " does not load");
}

void ChangeProject(const std::string& file, const Console& console,
                   const std::function<void(KelProjectDatabase&)>& change) {
  const auto database = LoadProject(file, console);
  change(*database);
  projectdb::ExportProjectDataDurably(*database, file);
}

}  // namespace kelproj
