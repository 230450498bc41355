#include "stored_project.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <projectdb/project_file.h>
#include <unistd.h>

#include "installed_schema.h"
#include "problems.h"

namespace kelproj {

using projectdb::FileProblem;
using projectdb::ProblemSeverity;
using projectdb::ProjectContents;
using projectdb::ProjectFile;

namespace {

// To whoever hears the messages of the library too.
void ReportReading(const std::string& file) {
  Diag::GlobalInst().PostImpl(
      {{}, Diag::MessageType::kInfo, "Reading project database \"" + file + "\"", {}});
}

}  // namespace

void RequireReadable(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    throw Trouble(path + " does not exist");
  }
  if (error) throw Trouble(path + ": " + error.message());
  if (std::filesystem::is_directory(status)) throw Trouble(path + " is a directory");
  if (::access(path.c_str(), R_OK) != 0) throw Trouble(path + " may not be read");
}

bool HasError(const std::vector<FileProblem>& problems) {
  return std::any_of(problems.begin(), problems.end(), [](const FileProblem& problem) {
    return problem.severity == ProblemSeverity::kError;
  });
}

ProjectContents ReadProject(const std::string& file, const Console& console) {
  RequireReadable(file);
  ReportReading(file);
  ProjectFile read = projectdb::ReadProjectFile(file, "");
  WriteProblems(console.err, file, read.problems);
  if (read.contents && !HasError(read.problems)) return *std::move(read.contents);
  throw Trouble(file + " does not load");
}

void ChangeProject(const ChangedFile& file, const Console& console,
                   const std::function<void(ProjectContents&)>& change) {
  RequireReadable(file.path);
  ReportReading(file.path);
  const std::string schema = InstalledSchema();
  std::vector<FileProblem> problems;
  projectdb::UpdateOptions options;
  // With a schema, what it refuses has no contents.
  if (!file.despite_errors) options.schema_file = schema;
  options.despite_errors = file.despite_errors;
  options.on_reading = [&](const ProjectFile& read) {
    problems = file.despite_errors ? projectdb::CheckProjectFile(file.path, schema) : read.problems;
    const bool is_refused = !file.despite_errors && HasError(problems);
    if (read.contents && !is_refused) return;
    WriteProblems(console.err, file.path, problems);
    throw Trouble(file.path + (is_refused ? " has errors; it is not changed without --force"
                                          : " does not load"));
  };
  projectdb::UpdateProjectFile(file.path, change, options);
  // What the file has beside the project is lost with the former file.
  WriteProblems(console.err, file.path, problems);
}

}  // namespace kelproj
