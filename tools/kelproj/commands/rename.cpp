#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_set>
#include <variant>
#include <vector>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/changing.h"
#include "file_identities.h"
#include "file_kinds.h"
#include "list_entries.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;

namespace fs = std::filesystem;

// One without a drive is on that of where the user stands.
bool HasRoot(const std::string& name) { return PathFrom(name).has_root_directory(); }

/// Gives a file, or all files below a directory, other names wherever a project has them.
class Renaming {
 public:
  /// @param former_base against which the former name is resolved
  Renaming(const RenameArguments& arguments, const fs::path& former_base,
           const ProjectContents& project)
      : new_path_(NormalPath(PathIn(CurrentDirectory(), arguments.new_name))),
        makes_absolute_(HasRoot(arguments.new_name)),
        makes_relative_(HasRoot(arguments.former_name) && !makes_absolute_),
        only_below_(!PathFrom(arguments.former_name).has_filename()),
        former_file_(identities_.Of(PathIn(former_base, arguments.former_name))),
        former_directory_(identities_.OfDirectory(PathIn(former_base, arguments.former_name))),
        project_directory_(WithoutLinks(PathFrom(project.current_path))) {}

  /// Whether anything was renamed.
  bool Rename(ProjectContents& project) {
    for (const ProjectTerm& term : projectdb::ProjectTerms()) {
      if (!term.file_ending) continue;
      std::visit([&](const auto& access) { Rename(term, access(project)); }, term.access);
    }
    return is_used_;
  }

 private:
  using Identities = std::vector<std::string>;

  // The attributes are free text.
  void Rename(const ProjectTerm& /*term*/, projectdb::InfoAttributes& /*attributes*/) {}

  void Rename(const ProjectTerm& term, std::string& name) {
    if (name.empty()) return;
    const std::optional<fs::path> path = NewPath(PathIn(project_directory_, name));
    if (!path) return;
    const std::string stored = StoredFor(*path, project_directory_, IsAbsoluteThen(name));
    if (!KeepsWrongEnding(term, name, stored)) RequireEnding(term, stored);
    name = stored;
  }

  void Rename(const ProjectTerm& term, std::vector<std::string>& names) {
    const Identities former = IdentitiesOf(names, project_directory_);
    for (std::string& name : names) Rename(term, name);
    RequireNew(former, IdentitiesOf(names, project_directory_), TitleInSentence(term));
  }

  void Rename(const ProjectTerm& term, std::vector<DesignFile>& files) {
    const Identities former = IdentitiesOf(files, project_directory_);
    for (DesignFile& file : files) Rename(term, file.name);
    RequireNew(former, IdentitiesOf(files, project_directory_), TitleInSentence(term));
  }

  // The sources stay the files that they are when the directory of the instance changes.
  void Rename(const ProjectTerm& term, std::vector<IP>& ips) {
    for (IP& ip : ips) {
      const fs::path former_directory = PathIn(project_directory_, ip.path).parent_path();
      Rename(term, ip.path);
      const fs::path directory = PathIn(project_directory_, ip.path).parent_path();
      const Identities former = IdentitiesOf(ip.src_files, former_directory);
      for (IPSrcFile& source : ip.src_files) RenameSource(source, former_directory, directory);
      RequireNew(former, IdentitiesOf(ip.src_files, directory), TitleOfSources(ip));
    }
  }

  void RenameSource(IPSrcFile& source, const fs::path& former_directory,
                    const fs::path& directory) {
    if (source.name.empty()) return;
    const fs::path former = PathIn(former_directory, source.name);
    const std::optional<fs::path> path = NewPath(former);
    if (path) {
      source.name = StoredFor(*path, directory, IsAbsoluteThen(source.name));
    } else if (directory != former_directory && !IsAbsolute(source.name)) {
      source.name = StoredFor(former, directory, false);
    }
  }

  template <typename Entry>
  Identities IdentitiesOf(const std::vector<Entry>& entries, const fs::path& directory) {
    Identities identities;
    identities.reserve(entries.size());
    for (const Entry& entry : entries) {
      identities.push_back(identities_.Of(PathIn(directory, projectdb::FileNameOf(entry))));
    }
    return identities;
  }

  // Two files of a list that became one could not be told apart again.
  void RequireNew(const Identities& former, const Identities& present,
                  const std::string& title) const {
    std::unordered_set<std::string> kept;
    for (std::size_t i = 0; i < former.size(); ++i) {
      if (former[i] == present[i]) kept.insert(present[i]);
    }
    for (std::size_t i = 0; i < former.size(); ++i) {
      if (former[i] == present[i] || kept.count(present[i]) == 0) continue;
      RefuseRepeated(NameIn(project_directory_, PathFrom(present[i])), title);
    }
  }

  // Nothing for a file that keeps its name.
  std::optional<fs::path> NewPath(const fs::path& path) {
    const std::string file = identities_.Of(path);
    if (!only_below_ && file == former_file_) return Used(NewPathOfFile(path));
    const std::optional<std::string> part = PartBelow(former_directory_, file);
    if (!part) return std::nullopt;
    // With a slash behind it, a file could not be asked for.
    const fs::path directory = new_path_.has_filename() ? new_path_ : new_path_.parent_path();
    if (IsFile(directory)) {
      throw Trouble("\"" + NameIn(project_directory_, directory) + "\" is a file, not a directory");
    }
    return Used(new_path_ / PathFrom(*part));
  }

  fs::path NewPathOfFile(const fs::path& path) const {
    std::error_code error;
    if (new_path_.has_filename() && !fs::is_directory(new_path_, error)) return new_path_;
    throw Trouble("\"" + NameIn(project_directory_, path) + "\" is a file, but \"" +
                  NameIn(project_directory_, new_path_) + "\" is a directory");
  }

  fs::path Used(fs::path path) {
    is_used_ = true;
    return path;
  }

  // A name stays of its form unless the two in the arguments tell to change it.
  bool IsAbsoluteThen(const std::string& name) const {
    return makes_absolute_ || (IsAbsolute(name) && !makes_relative_);
  }

  // What a load accepted may stay, wherever the file goes.
  static bool KeepsWrongEnding(const ProjectTerm& term, const std::string& former,
                               const std::string& present) {
    return !projectdb::HasEnding(former, *term.file_ending) &&
           PathFrom(former).extension() == PathFrom(present).extension();
  }

  static std::string StoredFor(const fs::path& path, const fs::path& directory, bool is_absolute) {
    return is_absolute ? NameFrom(LexicallyNormal(path)) : NameIn(directory, path);
  }

  FileIdentities identities_;
  fs::path new_path_;
  bool makes_absolute_;
  bool makes_relative_;
  bool only_below_;
  std::string former_file_;
  std::string former_directory_;
  fs::path project_directory_;
  bool is_used_ = false;
};

std::string HintFor(const std::string& name, const std::vector<IP>& ips) {
  const bool is_instance = std::any_of(ips.begin(), ips.end(),
                                       [&name](const IP& ip) { return ip.instance_name == name; });
  return is_instance ? "; --ip renames the IP instance of that name" : "";
}

// The former name is as seen from where the user stands; else, as with every name of a file that
// is there, as it is stored.
void RenameFiles(const RenameArguments& arguments, ProjectContents& project) {
  const bool is_renamed =
      Renaming(arguments, CurrentDirectory(), project).Rename(project) ||
      Renaming(arguments, WithoutLinks(PathFrom(project.current_path)), project).Rename(project);
  if (is_renamed) return;
  RefuseMissing(StoredName(arguments.former_name, PathFrom(project.current_path)), "",
                HintFor(arguments.former_name, project.ip_info.ips));
}

void RenameInstances(const RenameArguments& arguments, std::vector<IP>& ips) {
  bool is_renamed = false;
  for (IP& ip : ips) {
    if (ip.instance_name == arguments.former_name) {
      ip.instance_name = arguments.new_name;
      is_renamed = true;
    } else if (ip.instance_name == arguments.new_name) {
      RefuseRepeatedInstance(arguments.new_name);
    }
  }
  if (!is_renamed) RefuseMissing(arguments.former_name, TitleInSentence(TermOf(InstanceKind())));
}

}  // namespace

ExitStatus Run(const RenameArguments& arguments, const Console& console) {
  const auto require = arguments.of_instance ? RequireInstanceName : RequireName;
  require(arguments.former_name);
  require(arguments.new_name);
  ChangeProject(arguments.file, console, [&](ProjectContents& project) {
    if (arguments.of_instance) return RenameInstances(arguments, project.ip_info.ips);
    RenameFiles(arguments, project);
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
