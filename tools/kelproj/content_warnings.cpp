#include "content_warnings.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

#include "file_identities.h"
#include "named_files.h"
#include "places.h"

namespace kelproj {
namespace {

using projectdb::FileProblem;
using projectdb::Parameter;
using projectdb::ProblemSeverity;
using projectdb::ProjectContents;

constexpr std::array<std::string_view, 8> kBoolTexts = {"true", "false", "on", "off",
                                                        "yes",  "no",    "0",  "1"};
constexpr std::array<std::string_view, 4> kHdlEndings = {".v", ".sv", ".vhd", ".vhdl"};

/// Collects the warnings of a project.
class Warnings {
 public:
  explicit Warnings(const ProjectContents& project) : project_(project) {}

  void AddOfFiles() {
    for (const NamedFile& file : FilesOf(project_)) {
      if (file.name.empty()) {
        Add(file.place, "it names no file");
        continue;
      }
      // Two instances may be made from one description.
      if (!file.is_ip_instance()) AddOfRepeated(file);
      AddOfEnding(file);
      AddOfAbsolute(file);
    }
  }

  void AddOfParameters() {
    for (const projectdb::FlowProcessName& process : projectdb::kFlowProcesses) {
      const auto& contents = project_.flow_processes.at(static_cast<std::size_t>(process.type));
      for (const auto& [map, parameters] : contents.parameter_maps) {
        const std::string key = MemberPlace(process.name, map);
        for (const auto& [name, parameter] : parameters) {
          if (name.empty()) Add(key, "a parameter has no name");
          AddOfValue(MemberPlace(key, name), parameter);
        }
      }
      AddOfMaxThreads(process, contents);
    }
  }

  std::vector<FileProblem> Take() { return std::move(problems_); }

 private:
  void Add(const std::string& place, const std::string& message) {
    problems_.push_back({ProblemSeverity::kWarning, 0, 0, place + ": " + message});
  }

  void AddOfRepeated(const NamedFile& file) {
    const auto [first, is_new] =
        places_.try_emplace({file.list, identities_.Of(file.path)}, file.place);
    if (!is_new) Add(file.place, "\"" + file.name + "\" is the file of " + first->second + " too");
  }

  void AddOfEnding(const NamedFile& file) {
    const std::string_view ending = *TermOf(*file.kind).file_ending;
    if (projectdb::HasEnding(file.name, ending)) return;
    Add(file.place, "\"" + file.name + "\" does not end in " + std::string(ending));
  }

  void AddOfAbsolute(const NamedFile& file) {
    if (!std::filesystem::path(file.name).is_absolute()) return;
    const std::string directory = identities_.OfDirectory(project_.current_path);
    if (!PartBelow(directory, identities_.Of(file.path))) return;
    Add(file.place, "\"" + file.name +
                        "\" is absolute; the project can move along with it only as a relative "
                        "name, since it is below the project's directory");
  }

  void AddOfValue(const std::string& key, const Parameter& parameter) {
    if (parameter.type != projectdb::e_bool) return;
    if (std::find(kBoolTexts.begin(), kBoolTexts.end(), parameter.value) != kBoolTexts.end()) {
      return;
    }
    Add(key, "\"" + parameter.value +
                 "\" is no value of type e_bool; expected true, false, on, off, yes, no, 0 or 1");
  }

  void AddOfMaxThreads(const projectdb::FlowProcessName& process,
                       const projectdb::FlowProcessContents& contents) {
    if (process.type != projectdb::e_synthesis && process.type != projectdb::e_place_and_route) {
      return;
    }
    const auto map = contents.parameter_maps.find(projectdb::kParameterMap);
    if (map == contents.parameter_maps.end()) return;
    const auto parameter = map->second.find("max_threads");
    if (parameter == map->second.end()) return;
    const std::string& text = parameter->second.value;
    // A text that is not taken gives whatever the default is.
    using Database = projectdb::KelProjectDatabase;
    if (Database::ParseMaxThreads(text, 1) == Database::ParseMaxThreads(text, 2)) return;
    Add(std::string(process.name) + ".param.max_threads",
        "\"" + text + "\" is no number of threads; the tool takes its own default");
  }

  const ProjectContents& project_;
  FileIdentities identities_;
  std::map<std::pair<std::string, std::string>, std::string> places_;  ///< By list and file.
  std::vector<FileProblem> problems_;
};

bool IsHdlFile(const std::filesystem::path& path) {
  return std::find(kHdlEndings.begin(), kHdlEndings.end(), path.extension().string()) !=
         kHdlEndings.end();
}

// What is not allowed to be looked into is passed over.
std::vector<std::filesystem::path> HdlFilesBelow(const std::filesystem::path& directory) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  std::error_code error;
  fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied,
                                         error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_directory(unknown)) {
      if (entry->path().filename().string().front() == '.') entry.disable_recursion_pending();
    } else if (IsHdlFile(entry->path())) {
      files.push_back(entry->path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<FileProblem> ContentWarnings(const ProjectContents& project) {
  Warnings warnings(project);
  warnings.AddOfFiles();
  warnings.AddOfParameters();
  return warnings.Take();
}

std::vector<FileProblem> UnlistedFiles(const ProjectContents& project) {
  FileIdentities identities;
  std::set<std::string> listed;
  for (const NamedFile& file : FilesOf(project)) listed.insert(identities.Of(file.path));
  std::vector<FileProblem> problems;
  const std::filesystem::path directory = project.current_path;
  for (const std::filesystem::path& path : HdlFilesBelow(directory)) {
    if (listed.count(identities.Of(path)) > 0) continue;
    problems.push_back(
        {ProblemSeverity::kWarning, 0, 0,
         "\"" + path.lexically_relative(directory).string() + "\" is in no list of the project"});
  }
  return problems;
}

}  // namespace kelproj
