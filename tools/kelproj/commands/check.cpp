#include <algorithm>
#include <ostream>
#include <utility>

#include <projectdb/project_file.h>
#include <unistd.h>

#include "commands/asking.h"
#include "installed_schema.h"
#include "json.h"
#include "named_files.h"
#include "problems.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::FileProblem;
using projectdb::ProblemSeverity;
using projectdb::ProjectContents;
using projectdb::ProjectFile;

struct CheckedFile {
  std::string name;
  std::vector<FileProblem> problems;
};

std::vector<FileProblem> MissingFiles(const ProjectContents& project) {
  std::vector<FileProblem> problems;
  for (const NamedFile& named : FilesOf(project)) {
    if (IsFile(named.path)) continue;
    problems.push_back(
        {ProblemSeverity::kError, 0, 0, named.place + ": \"" + named.name + "\" does not exist"});
  }
  return problems;
}

CheckedFile Check(const std::string& name, const std::string& schema, bool list_missing_files) {
  ProjectFile read = projectdb::ReadProjectFile(name, schema);
  CheckedFile file{name, std::move(read.problems)};
  if (list_missing_files && read.contents && !HasError(file.problems)) {
    const std::vector<FileProblem> missing = MissingFiles(*read.contents);
    file.problems.insert(file.problems.end(), missing.begin(), missing.end());
  }
  return file;
}

std::string SchemaOf(const CheckArguments& arguments) {
  if (!arguments.schema) return InstalledSchema();
  if (!IsFile(*arguments.schema)) throw Trouble("there is no schema " + *arguments.schema);
  return *arguments.schema;
}

bool IsReadable(const std::string& file) {
  return IsFile(file) && ::access(file.c_str(), R_OK) == 0;
}

void Write(const Console& console, const std::vector<CheckedFile>& files, bool json) {
  if (!json) {
    for (const CheckedFile& file : files) WriteProblems(console.out, file.name, file.problems);
    return;
  }
  Json list = Json::array();
  for (const CheckedFile& file : files) {
    list.push_back({{"file", file.name}, {"problems", ToJson(file.problems)}});
  }
  WriteJson(console.out, list);
}

}  // namespace

ExitStatus Run(const CheckArguments& arguments, const Console& console) {
  const std::string schema = SchemaOf(arguments);
  std::vector<CheckedFile> files;
  bool has_trouble = false;
  for (const std::string& name : arguments.files) {
    if (IsReadable(name)) {
      files.push_back(Check(name, schema, arguments.list_missing_files));
    } else {
      WriteMessage(console.err, Diag::MessageType::kError, name + " is no file that can be read");
      has_trouble = true;
    }
  }
  Write(console, files, arguments.json);
  if (has_trouble) return ExitStatus::kTrouble;
  return std::any_of(files.begin(), files.end(),
                     [](const CheckedFile& file) { return HasError(file.problems); })
             ? ExitStatus::kNo
             : ExitStatus::kYes;
}

}  // namespace kelproj
