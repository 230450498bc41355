#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <unordered_set>
#include <vector>

#include <projectdb/project_contents.h>

#include "command_files.h"
#include "commands/asking.h"
#include "file_identities.h"
#include "json.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::ProjectContents;

template <typename Value>
bool IsAmong(const std::vector<Value>& values, const Value& value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

bool IsCommandFile(ListFormat format) {
  return format == ListFormat::kCommandFile || format == ListFormat::kIverilog;
}

// If no kind is asked for, a command file has what the design is made of, and a choice by version
// or library leaves out what has neither.
bool IsOfAskedKind(const NamedFile& file, const ListArguments& arguments) {
  if (!arguments.kinds.empty()) return IsAmong(arguments.kinds, file.kind);
  const bool is_choice = !arguments.libraries.empty() || !arguments.hdl_versions.empty();
  if (is_choice && !file.kind->is_source) return false;
  const std::string option = file.kind->option;
  return !IsCommandFile(arguments.format) || option == "--rtl" || option == "--ip";
}

bool IsChosen(const NamedFile& file, const ListArguments& arguments) {
  if (!file.kind->is_source) return true;
  const auto is_asked_for = [](const std::vector<std::string>& asked, const std::string& value) {
    return asked.empty() || IsAmong(asked, value);
  };
  return is_asked_for(arguments.libraries, file.library) &&
         is_asked_for(arguments.hdl_versions, file.version);
}

std::vector<NamedFile> ListedFiles(const ProjectContents& project, const ListArguments& arguments) {
  std::vector<NamedFile> files;
  std::unordered_set<std::string> sources;
  FileIdentities identities;
  for (const NamedFile& file : FilesOf(project)) {
    if (file.name.empty() || !IsOfAskedKind(file, arguments) || !IsChosen(file, arguments)) {
      continue;
    }
    if (IsCommandFile(arguments.format)) {
      // Two instances of a core share its sources, which no program reads twice.
      const bool is_source =
          !file.is_ip_instance() && sources.insert(identities.Of(file.path)).second;
      if (!is_source) continue;
    }
    files.push_back(file);
  }
  return files;
}

std::string ShownName(const NamedFile& file, NameForm form) {
  switch (form) {
    case NameForm::kStored:
      return file.name;
    case NameForm::kAbsolute:
      return NameFrom(NormalPath(file.path));
    case NameForm::kFromHere:
      break;
  }
  return NameFromHere(file);
}

std::vector<std::string> ShownNames(const std::vector<NamedFile>& files, NameForm form) {
  std::vector<std::string> names;
  names.reserve(files.size());
  for (const NamedFile& file : files) names.push_back(ShownName(file, form));
  return names;
}

void WriteLines(std::ostream& out, const std::vector<std::string>& names, char end) {
  for (const std::string& name : names) out << name << end;
}

void WriteAsJson(const Console& console, const std::vector<NamedFile>& files, NameForm form) {
  Json list = Json::array();
  for (const NamedFile& file : files) {
    Json entry = {{"list", file.list}, {"name", file.name}, {"path", ShownName(file, form)}};
    if (file.kind->is_source) {
      entry["version"] = file.version;
      entry["library"] = file.library;
    }
    list.push_back(entry);
  }
  WriteJson(console.out, list);
}

std::string RulesForMake(const ListArguments& arguments, std::vector<std::string> names) {
  const std::filesystem::path file = PathFrom(arguments.file);
  names.insert(names.begin(), arguments.file);
  return MakeRules(arguments.target.value_or(NameFrom(file.stem()) + ".bit"), names);
}

}  // namespace

ExitStatus Run(const ListArguments& arguments, const Console& console) {
  if (arguments.target && arguments.format != ListFormat::kMake) {
    throw Trouble("only --format make has a target");
  }
  if (arguments.target) RequireName(*arguments.target);
  const ProjectContents project = ReadProject(arguments.file, console);
  const std::vector<NamedFile> files = ListedFiles(project, arguments);
  const std::vector<std::string> names = ShownNames(files, arguments.form);
  switch (arguments.format) {
    case ListFormat::kLines:
      WriteLines(console.out, names, '\n');
      break;
    case ListFormat::kZeroTerminated:
      WriteLines(console.out, names, '\0');
      break;
    case ListFormat::kJson:
      WriteAsJson(console, files, arguments.form);
      break;
    case ListFormat::kCommandFile:
      console.out << CommandFile(project, names);
      break;
    case ListFormat::kIverilog:
      console.out << IverilogCommandFile(project, names);
      break;
    case ListFormat::kMake:
      console.out << RulesForMake(arguments, names);
      break;
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
