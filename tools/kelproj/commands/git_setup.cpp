#include <algorithm>
#include <filesystem>
#include <map>

#include "commands/git.h"
#include "git_attributes.h"
#include "git_program.h"
#include "running_program.h"
#include "stored_project.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

/// A value of git's configuration.
struct Setting {
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
std::vector<Setting> Settings() {
  const fs::path path = RunningProgram();
  if (path.empty()) throw Trouble("the place of this program is unknown");
  const std::string program = ShellQuoted(path.string());
  const std::string expanded = PercentsDoubled(program);
  return {{"diff.kelproj.command", program + " diff"},
          {"merge.kelproj.name", "merge of projects"},
          {"merge.kelproj.driver", expanded + " merge %O %A %B -o %A --path %P"},
          {"filter.kelproj.clean", expanded + " format --no-stamps -"}};
}

/// The configuration of a repository or of the user.
class Configuration {
 public:
  Configuration(const fs::path& top, bool is_of_user)
      : git_(top), scope_(is_of_user ? "--global" : "--local") {}

  void Write(const Setting& setting) const {
    if (ValueOf(setting) == setting.value) return;
    git_.Tell({"config", scope_, "--replace-all", setting.key, setting.value});
  }

  void Remove(const Setting& setting) const {
    if (ValueOf(setting)) git_.Tell({"config", scope_, "--unset-all", setting.key});
  }

 private:
  std::optional<std::string> ValueOf(const Setting& setting) const {
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
  return file.find_first_of("*?[") != std::string::npos && !fs::exists(file, error);
}

bool IsDirectory(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

/// Of a file that need not be there, or of a pattern.
Pattern PatternOf(const std::string& file) {
  const fs::path path = fs::absolute(file).lexically_normal();
  fs::path directory = path.parent_path();
  while (!IsDirectory(directory)) directory = directory.parent_path();
  const Git git(directory);
  const auto top = git.Ask({"rev-parse", "--show-toplevel"});
  const auto prefix = git.Ask({"rev-parse", "--show-prefix"});
  if (!top || !prefix) throw Trouble(file + " is in no working tree of git");
  const std::string name = path.lexically_relative(directory).string();
  return {*top, "/" + LiteralPattern(*prefix) + (IsPattern(file) ? name : LiteralPattern(name))};
}

std::map<fs::path, GitAttributes> ChangedAttributes(const GitSetupArguments& arguments) {
  std::map<fs::path, GitAttributes> attributes;
  for (const std::string& file : arguments.files) {
    if (!arguments.undo && !IsPattern(file)) {
      RequireReadable(file);
      // Git would ask this program about any other file too.
      RequireProjectFileName(file);
    }
    const Pattern pattern = PatternOf(file);
    GitAttributes& changed = attributes.try_emplace(pattern.top, pattern.top).first->second;
    if (arguments.undo) {
      changed.Remove(pattern.text);
    } else {
      changed.Add(pattern.text);
    }
  }
  return attributes;
}

}  // namespace

ExitStatus Run(const GitSetupArguments& arguments, const Console& /*console*/) {
  for (const auto& [top, attributes] : ChangedAttributes(arguments)) {
    const Configuration configuration(top, arguments.for_user);
    for (const Setting& setting : Settings()) {
      if (!arguments.undo) {
        configuration.Write(setting);
      } else if (!attributes.NamesDrivers()) {
        configuration.Remove(setting);
      }
    }
    attributes.Save();
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
