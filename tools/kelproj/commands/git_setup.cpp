#include <algorithm>
#include <filesystem>
#include <list>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include <projectdb/project_file.h>

#include "commands/git.h"
#include "git_attributes.h"
#include "git_program.h"
#include "named_files.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "platform/running_program.h"
#include "shell_words.h"
#include "stored_project.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

/// A value of git's configuration.
struct GitSetting {
  std::string key;
  std::string value;
};

// Git expands placeholders in some of its commands.
std::string PercentsDoubled(const std::string& text) {
  std::string doubled;
  for (const char c : text) doubled += c == '%' ? "%%" : std::string(1, c);
  return doubled;
}

// The program is called by its place, since git may know other directories of programs than the
// user's shell, in a graphical program for instance.
std::vector<GitSetting> Settings() {
  const fs::path path = RunningProgram();
  if (path.empty()) throw Trouble("the place of this program is unknown");
  const std::string program = ShellQuoted(NameFrom(path));
  const std::string expanded = PercentsDoubled(program);
  return {{"diff.kelproj.command", program + " diff --"},
          {"merge.kelproj.name", "merge of projects"},
          {"merge.kelproj.driver", expanded + " merge %O %A %B -o %A --path=%P"},
          {"filter.kelproj.clean", expanded + " format --no-stamps - --path=%f"}};
}

/// The configuration of a repository or of the user.
class Configuration {
 public:
  Configuration(const fs::path& top, bool is_of_user)
      : git_(top), scope_(is_of_user ? "--global" : "--local") {}

  void Write(const GitSetting& setting) const {
    if (ValueOf(setting) == setting.value) return;
    git_.Tell({"config", scope_, "--replace-all", setting.key, setting.value});
  }

  void Remove(const GitSetting& setting) const {
    if (ValueOf(setting)) git_.Tell({"config", scope_, "--unset-all", setting.key});
  }

 private:
  std::optional<std::string> ValueOf(const GitSetting& setting) const {
    return git_.Ask({"config", scope_, "--get-all", setting.key});
  }

  Git git_;
  std::string scope_;
};

/// Files as .gitattributes at the top of a working tree names them.
struct Pattern {
  fs::path top;
  std::string text;
};

bool IsPattern(const std::string& file) {
  std::error_code error;
  return file.find_first_of("*?[") != std::string::npos && !fs::exists(PathFrom(file), error);
}

bool IsDirectory(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

/// Of a file that need not be there, or of a pattern.
Pattern PatternOf(const std::string& file) {
  const fs::path path = LexicallyNormal(PathIn(CurrentDirectory(), file));
  fs::path directory = path.parent_path();
  // A drive may be missing.
  while (!IsDirectory(directory) && directory.has_relative_path()) {
    directory = directory.parent_path();
  }
  const auto top = Git(directory).Ask({"rev-parse", "--show-toplevel"});
  const fs::path place = LexicallyRelative(WithoutLinks(directory), PathFrom(top.value_or("")));
  if (place.empty() || *place.begin() == "..") {
    throw Trouble(file + " is in no working tree of git");
  }
  const std::string prefix = place == "." ? "/" : "/" + LiteralPattern(NameFrom(place)) + "/";
  const std::string name = NameFrom(LexicallyRelative(path, directory));
  return {PathFrom(*top), prefix + (IsPattern(file) ? name : LiteralPattern(name))};
}

bool FitsAFile(const Pattern& pattern) {
  const auto files =
      Git(pattern.top)
          .Ask({"ls-files", "--cached", "--others", "--", ":(top,glob)" + pattern.text.substr(1)});
  return files && !files->empty();
}

// All of the repository, since they share its configuration.
std::vector<fs::path> WorkingTrees(const fs::path& top) {
  constexpr std::string_view kTitle = "worktree ";
  std::istringstream lines(Git(top).Ask({"worktree", "list", "--porcelain"}).value_or(""));
  std::vector<fs::path> trees;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(kTitle, 0) == 0) trees.push_back(PathFrom(line.substr(kTitle.size())));
  }
  return trees;
}

constexpr char kLineWithDriver[] =
    "^[[:space:]]*[^#[:space:]].*[[:space:]](diff|merge|filter)=kelproj([[:space:]]|$)";

// In the attributes of any directory.
bool NamesDrivers(const fs::path& tree) {
  return Git(tree)
      .Ask({"grep", "--quiet", "--untracked", "--no-exclude-standard", "--extended-regexp",
            kLineWithDriver, "--", ":(top,glob)**/.gitattributes"})
      .has_value();
}

void RequireFile(const std::string& file, const Pattern& pattern, const Console& console) {
  if (!IsPattern(file)) {
    RequireReadable(file);
    // Git would ask this program about any other file too.
    RequireProjectFileName(file);
  } else if (!FitsAFile(pattern)) {
    WriteMessage(console.err, Diag::MessageType::kWarning, file + " fits no file yet");
  }
}

std::vector<Pattern> PatternsOf(const GitSetupArguments& arguments, const Console& console) {
  std::vector<Pattern> patterns;
  patterns.reserve(arguments.files.size());
  for (const std::string& file : arguments.files) {
    RequireName(file);
    patterns.push_back(PatternOf(file));
    if (!arguments.undo) RequireFile(file, patterns.back(), console);
  }
  return patterns;
}

/// Keeps others who set up the same repositories away, since git refuses to change a configuration
/// that somebody else is changing.
class RepositoryLocks {
 public:
  explicit RepositoryLocks(const std::vector<Pattern>& patterns) {
    // Working trees may share a repository. All take the locks in one order, lest they wait for
    // each other.
    std::set<fs::path> repositories;
    for (const Pattern& pattern : patterns) repositories.insert(RepositoryOf(pattern.top));
    // Every repository has this file, and a checkout alone replaces it.
    for (const fs::path& repository : repositories) {
      locks_.emplace_back(NameFrom(repository / "HEAD"));
    }
  }

 private:
  static fs::path RepositoryOf(const fs::path& top) {
    const auto path = Git(top).Ask({"rev-parse", "--path-format=absolute", "--git-common-dir"});
    return WithoutLinks(PathFrom(path.value_or("")));
  }

  std::list<projectdb::ProjectFileLock> locks_;
};

std::map<fs::path, GitAttributes> ChangedAttributes(const std::vector<Pattern>& patterns,
                                                    bool undo) {
  std::map<fs::path, GitAttributes> attributes;
  for (const Pattern& pattern : patterns) {
    GitAttributes& changed = attributes.try_emplace(pattern.top, pattern.top).first->second;
    if (undo) {
      changed.Remove(pattern.text);
    } else {
      changed.Add(pattern.text);
    }
  }
  return attributes;
}

void WarnOfLink(const fs::path& attributes, const Console& console) {
  WriteMessage(console.err, Diag::MessageType::kWarning,
               NameFrom(attributes) + " is a symbolic link, which git does not follow since 2.32");
}

}  // namespace

ExitStatus Run(const GitSetupArguments& arguments, const Console& console) {
  const std::vector<Pattern> patterns = PatternsOf(arguments, console);
  const RepositoryLocks locks(patterns);
  for (const auto& [top, attributes] : ChangedAttributes(patterns, arguments.undo)) {
    const Configuration configuration(top, arguments.for_user);
    if (!arguments.undo) {
      if (attributes.is_link()) WarnOfLink(attributes.path(), console);
      for (const GitSetting& setting : Settings()) configuration.Write(setting);
      attributes.Save();
      continue;
    }
    attributes.Save();
    const std::vector<fs::path> trees = WorkingTrees(top);
    if (std::any_of(trees.begin(), trees.end(), NamesDrivers)) continue;
    for (const GitSetting& setting : Settings()) configuration.Remove(setting);
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
