#include <algorithm>
#include <optional>
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
  if (options.on_reading) options.on_reading(file);
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

// Whether the file was written; nothing if somebody without the lock was faster.
std::optional<bool> TryToWrite(const std::string& path, const ProjectFile& former,
                               const ProjectContents& contents, const UpdateOptions& options) {
  WriteOptions write;
  write.keep_stamps = options.keep_stamps;
  write.expected = former.version;
  write.canonical = options.canonical;
  try {
    return WriteOver(path, former, contents, write);
  } catch (const ProjectFileChanged&) {
    return std::nullopt;
  }
}

}  // namespace

bool UpdateProjectFile(const std::string& path, const std::function<void(ProjectContents&)>& change,
                       const UpdateOptions& options) {
  for (;;) {
    const ProjectFileLock lock = Lock(path, options);
    const ProjectFile file = ReadWithoutErrors(path, options);
    ProjectContents contents = *file.contents;
    change(contents);
    const std::optional<bool> written = TryToWrite(path, file, contents, options);
    if (written) return *written;
  }
}

}  // namespace projectdb
