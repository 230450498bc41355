#include "stored_project.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include <projectdb/project_file.h>
#include <projectdb/vocabulary.h>

#include "content_warnings.h"
#include "installed_schema.h"
#include "named_files.h"
#include "platform/file_access.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
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

[[noreturn]] void ThrowDoesNotLoad(const std::string& name) {
  throw Trouble(name + " does not load");
}

[[noreturn]] void ThrowIsEmpty(const std::string& name) { throw Trouble(name + " is empty"); }

[[noreturn]] void ThrowHasErrors(const std::string& name) {
  throw Trouble(name + " has errors; it is not changed without --force");
}

void RequireProjectFile(const std::string& path) {
  RequireReadable(path);
  RequireProjectFileName(path);
  const std::filesystem::path file = PathFrom(path);
  std::error_code error;
  const bool is_file = std::filesystem::is_regular_file(file, error);
  if (is_file && std::filesystem::file_size(file, error) == 0) ThrowIsEmpty(path);
}

// In the order of their places.
std::vector<FileProblem> Joined(std::vector<FileProblem> problems,
                                const std::vector<FileProblem>& unkept) {
  problems.insert(problems.end(), unkept.begin(), unkept.end());
  std::stable_sort(problems.begin(), problems.end(), [](const auto& a, const auto& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  return problems;
}

// The problems that were none before.
std::vector<FileProblem> NewOnes(const std::vector<FileProblem>& former,
                                 const std::vector<FileProblem>& present) {
  std::set<std::string> known;
  for (const FileProblem& problem : former) known.insert(problem.message);
  std::vector<FileProblem> problems;
  std::copy_if(present.begin(), present.end(), std::back_inserter(problems),
               [&known](const auto& problem) { return known.count(problem.message) == 0; });
  return problems;
}

// A load takes the names of the files from the directory of the path that it is given.
void WarnOfLink(const std::string& path, const Console& console) {
  const std::filesystem::path file = PathIn(CurrentDirectory(), path);
  const std::filesystem::path target = WithoutLinks(file);
  if (target.parent_path() == WithoutLinks(file.parent_path())) return;
  WriteMessage(console.err, Diag::MessageType::kWarning,
               path + " is a link to " + NameFrom(target) +
                   "; names of files are relative to the directory of the link");
}

bool UpdateOrSayWhyNot(const std::string& path, const std::function<void(ProjectContents&)>& change,
                       const projectdb::UpdateOptions& options) {
  try {
    return projectdb::UpdateProjectFile(path, change, options);
  } catch (const Trouble&) {
    throw;
  } catch (const Refusal&) {
    throw;
  } catch (const std::runtime_error&) {
    // The library's reason names neither of the two that may not be written.
    RequireWritable(path);
    throw;
  }
}

}  // namespace

void RequireReadable(const std::string& path) {
  RequireName(path);
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(PathFrom(path), error);
  if (status.type() == std::filesystem::file_type::not_found) {
    throw Trouble(path + " does not exist");
  }
  if (error) throw Trouble(path + ": " + error.message());
  if (std::filesystem::is_directory(status)) throw Trouble(path + " is a directory");
  if (!MayRead(PathFrom(path))) throw Trouble(path + " may not be read");
}

void RequireProjectFileName(const std::string& path) {
  if (projectdb::HasEnding(path, projectdb::kProjectFileEnding)) return;
  throw Trouble(path + ": the name of a project file ends in " + projectdb::kProjectFileEnding);
}

bool HasError(const std::vector<FileProblem>& problems) {
  return std::any_of(problems.begin(), problems.end(), [](const FileProblem& problem) {
    return problem.severity == ProblemSeverity::kError;
  });
}

ProjectContents ReadProject(const std::string& file, const Console& console) {
  RequireProjectFile(file);
  ReportReading(file);
  ProjectFile read = projectdb::ReadProjectFile(file, "");
  WriteProblems(console.err, file, read.problems);
  if (read.contents && !HasError(read.problems)) return *std::move(read.contents);
  ThrowDoesNotLoad(file);
}

void RequireWritable(const std::string& path) {
  RequireName(path);
  const std::filesystem::path file = PathIn(CurrentDirectory(), path);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) throw Trouble(path + " is a directory");
  // A link is not replaced, but what it leads to.
  const std::filesystem::path directory = WithoutLinks(file).parent_path();
  if (!std::filesystem::is_directory(directory, error)) {
    throw Trouble("there is no directory " + NameFrom(directory));
  }
  if (std::filesystem::exists(file, error) && !MayWrite(file)) {
    throw Trouble(path + " may not be written");
  }
  if (!MayWrite(directory)) {
    throw Trouble("the directory " + NameFrom(directory) + " may not be written");
  }
}

ProjectContents ParseToChange(const std::string& bytes, const std::string& name,
                              bool despite_errors, const Console& console) {
  if (bytes.empty()) ThrowIsEmpty(name);
  const std::string schema = InstalledSchema();
  ProjectFile read = projectdb::ParseProjectFile(bytes, schema);
  WriteProblems(console.err, name, Joined(read.problems, read.unkept));
  if (!despite_errors && HasError(read.problems)) ThrowHasErrors(name);
  // With a schema, what it refuses has no contents.
  if (!read.contents) read = projectdb::ParseProjectFile(bytes, "");
  if (!read.contents) ThrowDoesNotLoad(name);
  return *std::move(read.contents);
}

void ChangeProject(const ChangedFile& file, const Console& console,
                   const std::function<void(ProjectContents&)>& change, const ChangedForm& form) {
  RequireProjectFile(file.path);
  ReportReading(file.path);
  const std::string schema = InstalledSchema();
  std::vector<FileProblem> problems;
  std::vector<FileProblem> unkept;
  projectdb::UpdateOptions options;
  // With a schema, what it refuses has no contents.
  if (!file.despite_errors) options.schema_file = schema;
  options.despite_errors = file.despite_errors;
  options.keep_stamps = form.keep_stamps;
  options.canonical = form.canonical;
  options.on_reading = [&](const ProjectFile& read) {
    problems = file.despite_errors ? projectdb::CheckProjectFile(file.path, schema) : read.problems;
    unkept = read.unkept;
    const bool is_refused = !file.despite_errors && HasError(problems);
    if (read.contents && !is_refused) return;
    WriteProblems(console.err, file.path, problems);
    if (is_refused) ThrowHasErrors(file.path);
    ThrowDoesNotLoad(file.path);
  };
  const bool is_written = UpdateOrSayWhyNot(file.path, change, options);
  // What the file has beside the project is lost with the former file.
  if (is_written) problems = Joined(std::move(problems), unkept);
  WriteProblems(console.err, file.path, problems);
  if (is_written) WarnOfLink(file.path, console);
}

void ChangeValues(const ChangedFile& file, const Console& console,
                  const std::function<void(ProjectContents&)>& change) {
  std::vector<FileProblem> warnings;
  ChangeProject(file, console, [&](ProjectContents& project) {
    const ProjectContents former = project;
    change(project);
    warnings = ContentWarnings(project);
    if (!warnings.empty()) warnings = NewOnes(ContentWarnings(former), warnings);
  });
  WriteProblems(console.err, file.path, warnings);
}

}  // namespace kelproj
