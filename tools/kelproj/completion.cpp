#include "completion.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

#include <projectdb/project_file.h>
#include <projectdb/vocabulary.h>
#include <CLI/CLI.hpp>

#include "arguments/definition_parts.h"
#include "commands/asking.h"
#include "console.h"
#include "file_kinds.h"
#include "keys.h"
#include "named_files.h"
#include "places.h"
#include "platform/file_names.h"

namespace kelproj {
namespace {

using projectdb::ProjectContents;
using Words = std::vector<std::string>;

/// What the unfinished word belongs to.
struct Situation {
  const CLI::App& command;
  std::string placeholder;  ///< By which help names what is to stand there; "" if nothing is.
  Words words;              ///< Of the command, before the unfinished one.
  Words positionals;        ///< Those of the words that are no options and no values of options.
  std::optional<ProjectContents> project;  ///< Nothing without a project file that loads.
};

const ProjectContents& ProjectOf(const Situation& situation) {
  static const ProjectContents nothing;
  return situation.project ? *situation.project : nothing;
}

Words Keys(const Situation& situation) {
  const ProjectContents& project = ProjectOf(situation);
  const bool is_read = situation.command.get_name() == "get";
  Words keys;
  for (const std::string& key : FixedKeys()) {
    if (is_read || FindKey(key).write) keys.push_back(key);
  }
  for (const auto& attribute : project.info_attributes) {
    keys.push_back(MemberPlace(projectdb::kInfoAttributesKey, attribute.first));
  }
  for (const NamedParameter& named : ParametersOf(project)) keys.push_back(named.key);
  return keys;
}

// Of the key that stands before it.
Words Values(const Situation& situation) {
  for (const NamedParameter& named : ParametersOf(ProjectOf(situation))) {
    const bool is_bool = named.parameter.type == projectdb::e_bool;
    if (is_bool && named.key == situation.positionals.back()) return BoolTexts();
  }
  return {};
}

Words InstanceNames(const Situation& situation) {
  Words names;
  for (const projectdb::IP& ip : ProjectOf(situation).ip_info.ips) {
    names.push_back(ip.instance_name);
  }
  return names;
}

// Whether the option of the kind is given.
bool IsGiven(const FileKind& kind, const Situation& situation) {
  return std::find(situation.words.begin(), situation.words.end(), kind.option) !=
         situation.words.end();
}

projectdb::Table<FileKind> OneKind(const FileKind& kind) { return {&kind, 1}; }

// Of these kinds.
Words FileNames(const Situation& situation, projectdb::Table<FileKind> kinds) {
  Words names;
  for (const NamedFile& file : FilesOf(ProjectOf(situation))) {
    const bool is_of_kinds = std::any_of(kinds.begin(), kinds.end(),
                                         [&](const FileKind& kind) { return &kind == file.kind; });
    if (is_of_kinds) names.push_back(NameFromHere(file));
  }
  return names;
}

// Of what is in lists, and there of the kind whose option is given. With that of IP instances they
// are meant and not their files.
Words ListedNames(const Situation& situation) {
  if (IsGiven(InstanceKind(), situation)) return InstanceNames(situation);
  const auto kinds = ListedFileKinds();
  const auto* const kind =
      std::find_if(kinds.begin(), kinds.end(),
                   [&situation](const FileKind& each) { return IsGiven(each, situation); });
  return FileNames(situation, kind == kinds.end() ? kinds : OneKind(*kind));
}

// The value of the option for IP instances; nothing if it is not given with one.
std::optional<std::string> GivenInstance(const Words& words) {
  const std::string option = InstanceKind().option;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i].rfind(option + "=", 0) == 0) return words[i].substr(option.size() + 1);
    if (words[i] == option && i + 1 < words.size()) return words[i + 1];
  }
  return std::nullopt;
}

// What is added to an instance that is there is a source of it, else it is an instance.
Words NeighboursInInstance(const Situation& situation, const std::string& instance) {
  Words instances = InstanceNames(situation);
  if (std::find(instances.begin(), instances.end(), instance) == instances.end()) return instances;
  const std::string list = SourceListKey(InstanceKind().key, instance);
  Words names;
  for (const NamedFile& file : FilesOf(ProjectOf(situation))) {
    if (file.list == list) names.push_back(NameFromHere(file));
  }
  return names;
}

// Nothing stands next to itself.
Words OtherNames(const Situation& situation) {
  const bool is_addition = situation.command.get_name() == "add";
  const auto instance = is_addition ? GivenInstance(situation.words) : std::nullopt;
  Words names = instance ? NeighboursInInstance(situation, *instance) : ListedNames(situation);
  for (const std::string& name : situation.positionals) {
    names.erase(std::remove(names.begin(), names.end(), name), names.end());
  }
  return names;
}

// The interface constraint, which is in no list, can be renamed too.
Words FormerNames(const Situation& situation) {
  return IsGiven(InstanceKind(), situation) ? InstanceNames(situation)
                                            : FileNames(situation, FileKinds());
}

Words Libraries(const Situation& situation) {
  Words libraries;
  for (const NamedFile& file : FilesOf(ProjectOf(situation))) libraries.push_back(file.library);
  return libraries;
}

Words Versions(const Situation& situation) {
  Words versions;
  for (const NamedFile& file : FilesOf(ProjectOf(situation))) versions.push_back(file.version);
  return versions;
}

Words Types(const Situation& /*situation*/) { return ParameterTypeNames(); }

Words Formats(const Situation& /*situation*/) {
  Words names;
  for (const ListFormatName& format : kListFormatNames) names.emplace_back(format.name);
  return names;
}

Words Shells(const Situation& /*situation*/) { return ShellNames(); }

Words Commands(const Situation& situation) { return CommandNames(*situation.command.get_parent()); }

/// What may stand for a placeholder.
struct Source {
  const char* placeholder;
  Words (*candidates)(const Situation&);
};

constexpr std::array<Source, 12> kSources = {{{"KEY", Keys},
                                              {"VALUE", Values},
                                              {"NAME", ListedNames},
                                              {"OLD", FormerNames},
                                              {"OTHER", OtherNames},
                                              {"INSTANCE", InstanceNames},
                                              {"LIBRARY", Libraries},
                                              {"VERSION", Versions},
                                              {"TYPE", Types},
                                              {"FORMAT", Formats},
                                              {"SHELL", Shells},
                                              {"COMMAND", Commands}}};

Words Candidates(const Situation& situation) {
  for (const auto& [placeholder, candidates] : kSources) {
    if (situation.placeholder == placeholder) return candidates(situation);
  }
  return {};
}

// The project file of the command, quietly: who completes wants no messages.
std::optional<ProjectContents> ReadQuietly(std::string file) {
  const char* const home = std::getenv("HOME");
  // A shell replaces the sign only when it runs the command.
  if (home && file.rfind("~/", 0) == 0) file.replace(0, 1, home);
  if (!IsFile(PathFrom(file))) return std::nullopt;
  return projectdb::ReadProjectFile(file, "").contents;
}

bool BeginsOption(const std::string& word) { return !word.empty() && word.front() == '-'; }

/// Goes through the words of a command as its parser does.
class Walk {
 public:
  explicit Walk(const CLI::App& command) : command_(command) {}

  void Take(const std::string& word) {
    if (value_of_) {
      value_of_ = nullptr;
    } else if (word == "--" && !is_behind_hyphens_) {
      is_behind_hyphens_ = true;
    } else if (MayBeOption(word) && word != "-") {
      const CLI::Option* const option = command_.get_option_no_throw(word);
      if (option && !IsFlag(*option)) value_of_ = option;
    } else {
      positionals_.push_back(word);
    }
  }

  /// Whether a word would be an option behind those that were taken.
  bool MayBeOption(const std::string& word) const {
    return !is_behind_hyphens_ && !value_of_ && BeginsOption(word);
  }

  /// Whether a value of an option is to stand next.
  bool IsBehindOption() const { return value_of_ != nullptr; }

  /// The name of what is to stand next; "" if nothing is.
  std::string Placeholder() const {
    if (value_of_) return value_of_->get_type_name();
    std::size_t at = positionals_.size();
    for (const CLI::Option* option : OptionsOf(command_, true)) {
      const Words names = NamesIn(*option);
      if (IsList(*option)) return names[at % names.size()];
      if (at == 0) return names.front();
      --at;
    }
    return "";
  }

  const Words& positionals() const { return positionals_; }

  /// The project file that is given; "" if none is, or if there may be several.
  std::string ProjectFile() const {
    const auto options = OptionsOf(command_, true);
    const bool has_file =
        !options.empty() && options.front()->get_name() == "FILE" && !IsList(*options.front());
    return has_file && !positionals_.empty() ? positionals_.front() : "";
  }

 private:
  // What help calls the values of a positional, which take turns.
  static Words NamesIn(const CLI::Option& option) {
    std::string text = PositionalName(option);
    for (const char c : {'[', ']', '.'}) {
      text.erase(std::remove(text.begin(), text.end(), c), text.end());
    }
    std::istringstream words(text);
    Words names;
    for (std::string name; words >> name;) names.push_back(name);
    return names;
  }

  const CLI::App& command_;
  const CLI::Option* value_of_ = nullptr;
  bool is_behind_hyphens_ = false;
  Words positionals_;
};

Words WithPrefix(const Words& words, const std::string& prefix) {
  Words chosen;
  std::set<std::string> seen;
  for (const std::string& word : words) {
    if (word.empty() || word.compare(0, prefix.size(), prefix) != 0) continue;
    // Shells take a line for a candidate.
    if (word.find('\n') == std::string::npos && seen.insert(word).second) chosen.push_back(word);
  }
  return chosen;
}

Words CommandCompletions(const CLI::App& command, const Words& words) {
  const std::string& unfinished = words.back();
  const Words finished(words.begin(), words.end() - 1);
  Walk walk(command);
  for (const std::string& word : finished) walk.Take(word);
  std::string option;
  if (walk.MayBeOption(unfinished)) {
    const std::size_t equals = unfinished.find('=');
    if (equals == std::string::npos) return WithPrefix(OptionNames(command), unfinished);
    walk.Take(unfinished.substr(0, equals));
    if (!walk.IsBehindOption()) return {};
    option = unfinished.substr(0, equals + 1);
  }
  Words chosen = WithPrefix(Candidates({command, walk.Placeholder(), finished, walk.positionals(),
                                        ReadQuietly(walk.ProjectFile())}),
                            unfinished.substr(option.size()));
  for (std::string& word : chosen) word.insert(0, option);
  return chosen;
}

constexpr char kBashScript[] = R"script(_kelproj() {
  local -a words=()
  local line=${COMP_LINE:0:COMP_POINT} word= piece kept candidate i form=%q
  # A word with colons or equals signs comes in pieces, with no blank between them.
  for ((i = 1; i <= COMP_CWORD; i++)); do
    line=${line#"${COMP_WORDS[i - 1]}"}
    if [[ $line == [[:blank:]]* ]]; then
      ((i > 1)) && words+=("$word")
      word=
      line=${line#"${line%%[![:blank:]]*}"}
    fi
    piece=${COMP_WORDS[i]} kept=$word word+=$piece
  done
  # What stands in quotes is not quoted once more.
  [[ $word == [\"\']* ]] && form=%s
  # The shell keeps what is before the last piece, and a piece of such signs.
  [[ $piece == [:=]* ]] && kept=$word
  # As they are typed, words have quotes.
  words=("${words[@]//[\\\"\']/}" "${word//[\\\"\']/}") kept=${kept//[\\\"\']/}
  COMPREPLY=()
  # Without an answer the shell completes the name of a file.
  while IFS= read -r candidate; do
    COMPREPLY+=("$(printf "$form" "${candidate#"$kept"}")")
  done < <("$1" complete -- "${words[@]}" 2>/dev/null)
}
complete -o bashdefault -o default -F _kelproj kelproj
)script";

constexpr char kZshScript[] = R"script(#compdef kelproj
_kelproj() {
  local -a candidates
  candidates=("${(@f)$(${(Q)words[1]} complete -- "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" \
    2>/dev/null)}")
  if [[ -n ${candidates[1]} ]]; then
    compadd -- "${candidates[@]}"
  else
    _files
  fi
}
if [[ ${funcstack[1]} == _kelproj ]]; then
  _kelproj "$@"
else
  compdef _kelproj kelproj
fi
)script";

constexpr char kFishScript[] = R"script(function __kelproj_complete
  set -l words (commandline --current-process --cut-at-cursor --tokenize)
  set -l unfinished (commandline --current-token --cut-at-cursor)
  set -l plain (string unescape -- "$unfinished"; or echo -- "$unfinished")
  set -l candidates (command $words[1] complete -- $words[2..-1] "$plain" 2>/dev/null)
  if set -q candidates[1]
    string join -- \n $candidates
  else
    __fish_complete_path "$plain"
  end
end
complete --command kelproj --no-files --arguments '(__kelproj_complete)'
)script";

constexpr std::array<std::pair<const char*, const char*>, 3> kScripts = {
    {{"bash", kBashScript}, {"zsh", kZshScript}, {"fish", kFishScript}}};

}  // namespace

Words ShellNames() {
  Words names;
  for (const auto& script : kScripts) names.emplace_back(script.first);
  return names;
}

std::string CompletionScript(const std::string& shell) {
  for (const auto& [name, script] : kScripts) {
    if (shell == name) return script;
  }
  throw Trouble("there is no script for " + shell);
}

Words Completions(const CLI::App& program, const Words& words) {
  if (words.empty()) return {};
  const auto command_word = std::find_if_not(words.begin(), words.end() - 1, BeginsOption);
  if (command_word == words.end() - 1) {
    return WithPrefix(BeginsOption(words.back()) ? OptionNames(program) : CommandNames(program),
                      words.back());
  }
  for (const CLI::App* command : CommandsOf(program)) {
    if (command->get_name() == *command_word) {
      return CommandCompletions(*command, Words(command_word + 1, words.end()));
    }
  }
  return {};
}

}  // namespace kelproj
