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
#include "keys.h"
#include "named_files.h"
#include "places.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"

namespace kelproj {
namespace {

using projectdb::FileProblem;
using projectdb::Parameter;
using projectdb::ProblemSeverity;
using projectdb::ProjectContents;

constexpr std::array<std::string_view, 4> kHdlEndings = {".v", ".sv", ".vhd", ".vhdl"};

bool IsThreadLimit(const NamedParameter& named) {
  const auto is_of = [&named](projectdb::ProcType type) {
    const projectdb::FlowProcessName& process =
        projectdb::kFlowProcesses.at(static_cast<std::size_t>(type));
    return named.map == MemberPlace(process.name, projectdb::kParameterMap);
  };
  return named.parameter.name == projectdb::kMaxThreadsParameter &&
         (is_of(projectdb::e_synthesis) || is_of(projectdb::e_place_and_route));
}

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

  void AddOfInstances() {
    std::map<std::string, std::string> places;
    const std::vector<projectdb::IP>& ips = project_.ip_info.ips;
    for (std::size_t i = 0; i < ips.size(); ++i) {
      const std::string& name = ips[i].instance_name;
      const std::string place = PlaceText(projectdb::kIPInstancesKey, std::to_string(i));
      const auto [first, is_new] = places.try_emplace(name, place);
      if (!is_new) Add(place, "\"" + name + "\" is the instance name of " + first->second + " too");
    }
  }

  void AddOfParameters() {
    for (const NamedParameter& named : ParametersOf(project_)) {
      if (named.parameter.name.empty()) Add(named.map, "a parameter has no name");
      AddOfValue(named.key, named.parameter);
      if (IsThreadLimit(named)) AddOfThreadLimit(named.key, named.parameter.value);
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
    if (!IsAbsolute(file.name)) return;
    const std::string directory = identities_.OfDirectory(PathFrom(project_.current_path));
    if (!PartBelow(directory, identities_.Of(file.path))) return;
    Add(file.place, "\"" + file.name +
                        "\" is absolute; the project can move along with it only as a relative "
                        "name, since it is below the project's directory");
  }

  void AddOfValue(const std::string& key, const Parameter& parameter) {
    if (parameter.type != projectdb::e_bool) return;
    const auto texts = BoolTexts();
    if (std::find(texts.begin(), texts.end(), parameter.value) != texts.end()) return;
    Add(key, "\"" + parameter.value +
                 "\" is no value of type e_bool; expected true, false, on, off, yes, no, 0 or 1");
  }

  void AddOfThreadLimit(const std::string& key, const std::string& text) {
    // A text that is not taken gives whatever the default is.
    using Database = projectdb::KelProjectDatabase;
    if (Database::ParseMaxThreads(text, 1) == Database::ParseMaxThreads(text, 2)) return;
    Add(key, "\"" + text + "\" is no number of threads; the tool takes its own default");
  }

  const ProjectContents& project_;
  FileIdentities identities_;
  std::map<std::pair<std::string, std::string>, std::string> places_;  ///< By list and file.
  std::vector<FileProblem> problems_;
};

bool IsHdlFile(const std::filesystem::path& path) {
  return std::find(kHdlEndings.begin(), kHdlEndings.end(), NameFrom(path.extension())) !=
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
      if (NameFrom(entry->path().filename()).front() == '.') entry.disable_recursion_pending();
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
  warnings.AddOfInstances();
  warnings.AddOfParameters();
  return warnings.Take();
}

std::vector<FileProblem> UnlistedFiles(const ProjectContents& project) {
  FileIdentities identities;
  std::set<std::string> listed;
  for (const NamedFile& file : FilesOf(project)) listed.insert(identities.Of(file.path));
  std::vector<FileProblem> problems;
  const std::filesystem::path directory = PathFrom(project.current_path);
  for (const std::filesystem::path& path : HdlFilesBelow(directory)) {
    if (listed.count(identities.Of(path)) > 0) continue;
    problems.push_back(
        {ProblemSeverity::kWarning, 0, 0,
         "\"" + NameFrom(LexicallyRelative(path, directory)) + "\" is in no list of the project"});
  }
  return problems;
}

}  // namespace kelproj
