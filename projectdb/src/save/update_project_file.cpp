#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>
#include <projectdb/project_file.h>

#include "base/failure.h"
#include "save/write_project_file.h"

namespace projectdb {
namespace {

std::string TextOf(const std::string& path, const FileProblem& problem) {
  const std::string place =
      problem.line > 0 ? fmt::format("{}:{}:{}", path, problem.line, problem.column) : path;
  return fmt::format("{}: error: {}\n", place, problem.message);
}

ProjectFile ReadWithoutErrors(const std::string& path, const UpdateOptions& options) {
  ProjectFile file = ReadProjectFile(path, options.schema_file);
  if (file.contents && options.despite_errors) return file;
  const auto error = std::find_if(
      file.problems.begin(), file.problems.end(),
      [](const FileProblem& problem) { return problem.severity == ProblemSeverity::kError; });
  if (error != file.problems.end()) throw std::runtime_error(TextOf(path, *error));
  return file;
}

ProjectFileLock Lock(const std::string& path, const UpdateOptions& options) {
  return options.longest_wait ? ProjectFileLock(path, *options.longest_wait)
                              : ProjectFileLock(path);
}

bool TryToUpdate(const std::string& path, const std::function<void(ProjectContents&)>& change,
                 const UpdateOptions& options) {
  const ProjectFileLock lock = Lock(path, options);
  const ProjectFile file = ReadWithoutErrors(path, options);
  ProjectContents contents = *file.contents;
  change(contents);
  WriteOptions write;
  write.keep_stamps = options.keep_stamps;
  write.expected = file.version;
  return WriteOver(path, file, contents, write);
}

}  // namespace

bool UpdateProjectFile(const std::string& path, const std::function<void(ProjectContents&)>& change,
                       const UpdateOptions& options) {
  for (;;) {
    try {
      return TryToUpdate(path, change, options);
    } catch (const ProjectFileChanged&) {
      // Somebody without the lock was faster; their change is to be kept too.
    }
  }
}

}  // namespace projectdb
