#include <algorithm>
#include <exception>
#include <ostream>

#include <projectdb/project_contents.h>
#include <projectdb/project_file.h>

#include "commands/changing.h"
#include "named_files.h"
#include "standard_input.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::ProjectContents;

void RemoveStamps(ProjectContents& project) {
  project.software_version.clear();
  project.last_modify_time.clear();
}

// In the canonical form. The stamps stay, since the form alone changes.
std::string Formatted(const std::string& bytes, const std::string& file,
                      const FormatArguments& arguments, const Console& console) {
  const std::string name =
      file == kStandardInput ? arguments.name.value_or("standard input") : file;
  ProjectContents project = ParseToChange(bytes, name, arguments.despite_errors, console);
  if (arguments.no_stamps) RemoveStamps(project);
  return projectdb::FormatProjectFile(project, {true});
}

void FormatInPlace(const std::string& file, const FormatArguments& arguments,
                   const Console& console) {
  const auto change = [&](ProjectContents& project) {
    if (arguments.no_stamps) RemoveStamps(project);
  };
  ChangeProject({file, arguments.despite_errors}, console, change, {true, true});
}

// Whether the file was in the form if it is only looked at.
ExitStatus Format(const std::string& file, const FormatArguments& arguments,
                  const Console& console) {
  const bool is_to_output = arguments.to_output || file == kStandardInput;
  if (!arguments.check && !is_to_output) {
    FormatInPlace(file, arguments, console);
    return ExitStatus::kYes;
  }
  const std::string bytes = ReadInput(file);
  const std::string formatted = Formatted(bytes, file, arguments, console);
  if (!arguments.check) {
    console.out << formatted;
    return ExitStatus::kYes;
  }
  if (bytes == formatted) return ExitStatus::kYes;
  console.out << file << '\n';
  return ExitStatus::kNo;
}

ExitStatus FormatOrSayWhyNot(const std::string& file, const FormatArguments& arguments,
                             const Console& console) {
  try {
    return Format(file, arguments, console);
  } catch (const std::exception& exception) {
    WriteMessage(console.err, Diag::MessageType::kError, exception.what());
    return ExitStatus::kTrouble;
  }
}

}  // namespace

ExitStatus Run(const FormatArguments& arguments, const Console& console) {
  if (arguments.name) RequireName(*arguments.name);
  ExitStatus status = ExitStatus::kYes;
  for (const std::string& file : arguments.files) {
    // The worst of all; one file does not keep the others from their form.
    status = std::max(status, FormatOrSayWhyNot(file, arguments, console));
  }
  return status;
}

}  // namespace kelproj
