#include <algorithm>
#include <filesystem>
#include <type_traits>
#include <unordered_set>
#include <utility>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/changing.h"
#include "file_identities.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "standard_input.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::ProjectContents;

void RequireArgumentsOfKind(const AddArguments& arguments) {
  RequireKind(arguments.kind);
  if (!arguments.kind->is_source && (arguments.hdl_version || arguments.library)) {
    throw Trouble("only --rtl and --sim files have an HDL version and a library");
  }
}

// What a line of a list names; "" if it is blank.
std::string NameInLine(std::string line) {
  // Other systems end a line with two characters.
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line.find_first_not_of(" \t") == std::string::npos ? "" : line;
}

// The names of a list.
void AppendNames(const AddArguments& arguments, std::vector<std::string>& names) {
  const std::string list = ReadInput(*arguments.list_of_paths);
  const char end = arguments.ends_with_zero ? '\0' : '\n';
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t size = std::min(list.find(end, begin), list.size()) - begin;
    const std::string part = list.substr(begin, size);
    const std::string name = arguments.ends_with_zero ? part : NameInLine(part);
    if (!name.empty()) names.push_back(name);
    begin += size + 1;
  }
}

// The names of all files to add, from where the user stands.
std::vector<std::string> NamesIn(const AddArguments& arguments) {
  std::vector<std::string> names = arguments.paths;
  for (const std::string& name : names) RequireName(name);
  if (arguments.instance) RequireInstanceName(*arguments.instance);
  if (arguments.instance_path) RequireName(*arguments.instance_path);
  if (arguments.list_of_paths) AppendNames(arguments, names);
  return names;
}

/// Adds files to the lists of a project.
class Addition {
 public:
  Addition(const AddArguments& arguments, const std::vector<std::string>& names,
           const ProjectContents& project)
      : arguments_(arguments), names_(names), directory_(PathFrom(project.current_path)) {}

  void operator()(std::vector<DesignFile>& files) {
    std::vector<DesignFile> added;
    for (const std::string& name : StoredNames(directory_)) {
      added.emplace_back(name, arguments_.hdl_version.value_or(""),
                         arguments_.library.value_or(projectdb::kDefaultLibrary));
    }
    Insert(files, added, ListOfKind(), arguments_.place);
  }

  void operator()(std::vector<std::string>& files) {
    Insert(files, StoredNames(directory_), ListOfKind(), arguments_.place);
  }

  void operator()(std::vector<IP>& ips) {
    if (!arguments_.instance_path) {
      return AddSources(InstanceIn(ips), arguments_.place);
    }
    IP ip{*arguments_.instance, StoredName(*arguments_.instance_path, directory_), {}};
    AddSources(ip, {});
    RequireNewInstance(ips);
    Insert(ips, {std::move(ip)}, ListOfKind(), arguments_.place);
  }

  /// Why names that were added are not those of files.
  const std::vector<std::string>& doubts() const { return doubts_; }

 private:
  ListOfFiles ListOfKind() const {
    return {directory_, directory_, TitleInSentence(TermOf(*arguments_.kind))};
  }

  std::vector<std::string> StoredNames(const std::filesystem::path& directory) const {
    std::vector<std::string> stored;
    for (const std::string& name : names_) stored.push_back(StoredName(name, directory));
    return stored;
  }

  IP& InstanceIn(std::vector<IP>& ips) const {
    const auto ip = std::find_if(ips.begin(), ips.end(), [&](const IP& each) {
      return each.instance_name == *arguments_.instance;
    });
    if (ip != ips.end()) return *ip;
    throw Refusal("there is no IP instance \"" + *arguments_.instance + "\"; --path adds one");
  }

  void RequireNewInstance(const std::vector<IP>& ips) const {
    for (const IP& ip : ips) {
      if (ip.instance_name == *arguments_.instance) RefuseRepeatedInstance(ip.instance_name);
    }
  }

  void AddSources(IP& ip, const ListPlace& place) {
    const std::filesystem::path directory = PathIn(directory_, ip.path).parent_path();
    std::vector<IPSrcFile> added;
    for (const std::string& name : StoredNames(directory)) added.push_back({name});
    Insert(ip.src_files, added, {directory_, directory, TitleOfSources(ip)}, place);
  }

  template <typename Entry>
  void Insert(std::vector<Entry>& entries, const std::vector<Entry>& added, const ListOfFiles& list,
              const ListPlace& place) {
    // An IP instance is known by its name: several may be made from one description.
    constexpr bool kIsFile = !std::is_same_v<Entry, IP>;
    if (kIsFile && !arguments_.again) RequireNew(entries, added, list);
    for (const Entry& entry : added) Doubt(projectdb::FileNameOf(entry), list.directory);
    const std::size_t position = PositionOf(place, entries, list);
    entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(position), added.begin(),
                   added.end());
  }

  template <typename Entry>
  void RequireNew(const std::vector<Entry>& entries, const std::vector<Entry>& added,
                  const ListOfFiles& list) {
    std::unordered_set<std::string> files;
    const auto insert = [&](const Entry& entry) {
      return files.insert(identities_.Of(PathIn(list.directory, projectdb::FileNameOf(entry))))
          .second;
    };
    for (const Entry& entry : entries) insert(entry);
    for (const Entry& entry : added) {
      if (!insert(entry)) RefuseRepeated(projectdb::FileNameOf(entry), list.title);
    }
  }

  // A timing constraint file must not be a directory in any case.
  void Doubt(const std::string& name, const std::filesystem::path& directory) {
    const projectdb::ProjectTerm& term = TermOf(*arguments_.kind);
    const std::optional<std::string> reason = WhyNoFile(directory, name);
    if (reason && term.file_ending == projectdb::kTimingConstraintFileEnding &&
        std::filesystem::is_directory(PathIn(directory, name))) {
      throw Trouble(*reason);
    }
    RequireEnding(term, name);
    if (!reason) return;
    if (arguments_.strict) throw Refusal(*reason);
    doubts_.push_back(*reason);
  }

  const AddArguments& arguments_;
  const std::vector<std::string>& names_;
  std::filesystem::path directory_;
  FileIdentities identities_;
  std::vector<std::string> doubts_;
};

}  // namespace

ExitStatus Run(const AddArguments& arguments, const Console& console) {
  RequireArgumentsOfKind(arguments);
  const std::vector<std::string> names = NamesIn(arguments);
  std::vector<std::string> doubts;
  ChangeProject(arguments.file, console, [&](ProjectContents& project) {
    Addition addition(arguments, names, project);
    WithList(*arguments.kind, project, [&](auto& list) { addition(list); });
    doubts = addition.doubts();
  });
  for (const std::string& doubt : doubts) {
    WriteMessage(console.err, Diag::MessageType::kWarning, doubt);
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
