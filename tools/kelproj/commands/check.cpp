#include <algorithm>
#include <optional>
#include <ostream>
#include <utility>

#include <projectdb/project_file.h>

#include "commands/asking.h"
#include "content_warnings.h"
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
  bool is_readable = true;
};

std::vector<FileProblem> MissingFiles(const ProjectContents& project) {
  std::vector<FileProblem> problems;
  for (const NamedFile& named : FilesOf(project)) {
    const std::optional<std::string> reason = WhyNoFile(named);
    if (reason) problems.push_back({ProblemSeverity::kError, 0, 0, named.place + ": " + *reason});
  }
  return problems;
}

CheckedFile Check(const std::string& name, const std::string& schema,
                  const CheckArguments& arguments) {
  ProjectFile read = projectdb::ReadProjectFile(name, schema);
  CheckedFile file{name, std::move(read.problems)};
  if (!read.contents || HasError(file.problems)) return file;
  const auto add = [&file](const std::vector<FileProblem>& problems) {
    file.problems.insert(file.problems.end(), problems.begin(), problems.end());
  };
  add(ContentWarnings(*read.contents));
  if (arguments.list_missing_files) add(MissingFiles(*read.contents));
  if (arguments.list_unlisted_files) add(UnlistedFiles(*read.contents));
  return file;
}

std::string SchemaOf(const CheckArguments& arguments) {
  if (!arguments.schema) return InstalledSchema("--schema names another");
  RequireReadable(*arguments.schema);
  return *arguments.schema;
}

// Tells on the console why a file is not checked.
CheckedFile CheckIfReadable(const std::string& name, const std::string& schema,
                            const CheckArguments& arguments, const Console& console) {
  try {
    RequireReadable(name);
  } catch (const Trouble& trouble) {
    WriteMessage(console.err, Diag::MessageType::kError, trouble.what());
    return {name, {{ProblemSeverity::kError, 0, 0, trouble.what()}}, false};
  }
  return Check(name, schema, arguments);
}

void Write(const Console& console, const std::vector<CheckedFile>& files, bool json) {
  if (!json) {
    for (const CheckedFile& file : files) {
      if (file.is_readable) WriteProblems(console.out, file.name, file.problems);
    }
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
  for (const std::string& name : arguments.files) {
    files.push_back(CheckIfReadable(name, schema, arguments, console));
  }
  Write(console, files, arguments.json);
  const auto is_any = [&files](auto condition) {
    return std::any_of(files.begin(), files.end(), condition);
  };
  if (is_any([](const CheckedFile& file) { return !file.is_readable; })) {
    return ExitStatus::kTrouble;
  }
  const bool is_wrong = is_any([&arguments](const CheckedFile& file) {
    return HasError(file.problems) || (arguments.strict && !file.problems.empty());
  });
  return is_wrong ? ExitStatus::kNo : ExitStatus::kYes;
}

}  // namespace kelproj
