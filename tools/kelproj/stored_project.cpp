#include "stored_project.h"

#include <stdexcept>

#include <projectdb/check.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_file.h>

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

// Without a lock where there can be none: on some file systems, and for what is no file, of which
// the load tells more.
std::unique_ptr<projectdb::ProjectFileLock> Lock(const std::string& file) {
  try {
    return std::make_unique<projectdb::ProjectFileLock>(file);
  } catch (const std::runtime_error&) {
    return nullptr;
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
  const std::unique_ptr<projectdb::ProjectFileLock> lock = Lock(file);
  const auto database = LoadProject(file, console);
  change(*database);
  // What the file has beside the project is lost with the former file.
  WriteProblems(console.err, file, projectdb::CheckProjectFile(file, ""));
  projectdb::WriteProjectFile(file, projectdb::GetProjectContents(*database));
}

}  // namespace kelproj
