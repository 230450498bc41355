#include <algorithm>
#include <optional>
#include <stdexcept>

#include <fmt/format.h>
#include <projectdb/project_file.h>

#include "check/read_project_file.h"
#include "save/write_project_file.h"

namespace projectdb {
namespace {

std::string TextOf(const std::string& path, const FileProblem& problem) {
  const std::string place =
      problem.line > 0 ? fmt::format("{}:{}:{}", path, problem.line, problem.column) : path;
  return fmt::format("{}: error: {}\n", place, problem.message);
}

FileReading ReadWithoutErrors(const std::string& path, const UpdateOptions& options) {
  FileReading reading = ReadWholeFile(path, options.schema_file);
  const ProjectFile& file = reading.file;
  if (options.on_reading) options.on_reading(file);
  if (file.contents && options.despite_errors) return reading;
  const auto error = std::find_if(
      file.problems.begin(), file.problems.end(),
      [](const FileProblem& problem) { return problem.severity == ProblemSeverity::kError; });
  if (error != file.problems.end()) throw std::runtime_error(TextOf(path, *error));
  return reading;
}

ProjectFileLock Lock(const std::string& path, const UpdateOptions& options) {
  return options.longest_wait ? ProjectFileLock(path, *options.longest_wait)
                              : ProjectFileLock(path);
}

// Whether the file was written; nothing if somebody without the lock was faster.
std::optional<bool> TryToWrite(const std::string& path, const FileReading& former,
                               const ProjectContents& contents, const UpdateOptions& options) {
  WriteOptions write;
  write.keep_stamps = options.keep_stamps;
  write.expected = former.file.version;
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
    const FileReading reading = ReadWithoutErrors(path, options);
    ProjectContents contents = *reading.file.contents;
    change(contents);
    const std::optional<bool> written = TryToWrite(path, reading, contents, options);
    if (written) return *written;
  }
}

}  // namespace projectdb
