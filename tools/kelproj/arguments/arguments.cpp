#include "arguments/arguments.h"

#include <algorithm>
#include <utility>

#include <kel/version.h>
#include <CLI/CLI.hpp>

#include "arguments/definition.h"
#include "arguments/definition_parts.h"
#include "help.h"
#include "suggestions.h"

namespace kelproj {
namespace {

constexpr char kProgramHelp[] =
    R"(Exit status:
  0  done; the answer is yes
  1  done; the answer is no: there is no such value or file, a list has the file
     already, the file has errors or another form, the projects differ, the
     merge has conflicts
  2  trouble: not done, and the file not changed

Data goes to standard output, messages go to standard error. What is written
for people is coloured on a terminal unless the environment variable NO_COLOR
is set. An argument that begins with a hyphen stands behind a lone "--".

Names of files are relative to where you stand, and are stored relative to the
directory of the project file; an absolute name stays. A file that a project
has is also meant by its name as it is stored, unless the project has the file
of that name from where you stand.

A change is saved so that the project file is the former one or the new one,
whole, at every moment. A file with errors is written with --force alone. The
file is written anew from the project alone: comments, a security section and
what "kelproj check" warns of are not kept.

Example:
  kelproj new blinker -o blinker.xml --top blinker_top
  kelproj add blinker.xml --rtl rtl/blinker.v --hdl-version verilog_2001
  kelproj set blinker.xml synthesis.param.max_threads 4
  kelproj check blinker.xml --files
  kelproj show blinker.xml)";

// The parser takes a text in brackets for a list, and a lone "--" for the end of a command that has
// all that it needs. A mark before a word, which is taken off the parsed text, has it stand for
// itself.
constexpr char kMark = '\x01';

std::vector<std::string> Marked(const std::vector<std::string>& words) {
  std::vector<std::string> marked;
  bool is_behind_hyphens = false;
  for (const std::string& word : words) {
    if (word == "--" && !is_behind_hyphens) {
      is_behind_hyphens = true;
    } else if (is_behind_hyphens || (!word.empty() && (word[0] == '[' || word[0] == kMark))) {
      marked.push_back(kMark + word);
    } else {
      marked.push_back(word);
    }
  }
  return marked;
}

std::string Unmarked(const std::string& text) {
  return !text.empty() && text.front() == kMark ? text.substr(1) : text;
}

// The parser gives a flag this value itself.
std::string RefuseValueOfFlag(const std::string& value) {
  return value == "true" ? "" : "this option takes no value";
}

void FinishOptions(CLI::App& app) {
  for (CLI::Option* option : app.get_options()) {
    if (IsFlag(*option)) {
      option->check(RefuseValueOfFlag, "");
    } else {
      option->transform(Unmarked, "");
    }
  }
}

// What stands behind a lone "--" is meant as it is.
std::string Suggestion(const std::string& word, const std::vector<std::string>& known) {
  return Unmarked(word) == word ? DidYouMean(word, known) : "";
}

bool BeginsAsOption(const std::string& word) { return !word.empty() && word.front() == '-'; }

std::string ThereIsNoCommand(const CLI::App& program, const std::string& word) {
  std::vector<std::string> known = CommandNames(program);
  for (std::string& option : OptionNames(program)) known.push_back(std::move(option));
  return "there is no command or option \"" + word + "\"" + Suggestion(word, known);
}

void RequireCommand(const CLI::App& program, const std::vector<std::string>& words) {
  const auto word = std::find_if_not(words.begin(), words.end(), BeginsAsOption);
  if (word == words.end()) return;
  const auto is_named = [&word](const CLI::App* command) { return command->get_name() == *word; };
  if (!program.get_subcommands(is_named).empty()) return;
  throw CLI::ParseError(ThereIsNoCommand(program, *word), CLI::ExitCodes::ExtrasError);
}

constexpr char kVerbose[] = "--verbose";
constexpr char kShortVerbose[] = "-v";

CLI::Option* AddVerbose(CLI::App& app, bool& verbose) {
  return app.add_flag(std::string(kShortVerbose) + "," + kVerbose, verbose,
                      "Report what is being done");
}

bool IsOptionOfOneCommand(const std::string& word) {
  return BeginsAsOption(word) && word != kVerbose && word != kShortVerbose;
}

// The words "help COMMAND" ask for the same as "COMMAND --help".
void ReplaceHelpCommand(std::vector<std::string>& words) {
  const auto command = std::find_if_not(words.begin(), words.end(), BeginsAsOption);
  if (command == words.end() || *command != "help") return;
  if (std::any_of(command, words.end(), IsOptionOfOneCommand)) return;
  words.erase(command);
  words.emplace_back("--help");
}

// Of the command that is given, or of the program if the word stands before that.
std::string ThereIsNoOption(const CLI::App& program, const std::string& word) {
  const std::vector<std::string> before = program.remaining();
  const bool is_before_command = std::find(before.begin(), before.end(), word) != before.end();
  std::vector<std::string> known = {kVerbose};
  for (const CLI::App* command : program.get_subcommands()) {
    for (std::string& option : OptionNames(is_before_command ? program : *command)) {
      known.push_back(std::move(option));
    }
  }
  return "there is no option \"" + word + "\"" + Suggestion(word, known);
}

}  // namespace

Arguments::Arguments()
    : program_(std::make_unique<CLI::App>("Inspect, check and change project files", "kelproj")) {
  program_->formatter(HelpFormatter());
  // A name that begins with a slash is one of a file on every system.
  program_->allow_windows_style_options(false);
  program_->footer(kProgramHelp);
  program_->set_help_flag("-h,--help", "Print this help");
  program_->set_version_flag("--version", KEL_VERSION_NO, "Print the version");
  AddVerbose(*program_, verbose_);
  program_->require_subcommand(1);
  DefineChangingCommands(*program_, request_);
  DefineAskingCommands(*program_, request_);
  DefineGitCommands(*program_, request_);
  DefineTextCommands(*program_, request_);
  FinishOptions(*program_);
  for (CLI::App* command : program_->get_subcommands({})) {
    // Of the program's options, this one also goes behind a command, without a line in its help.
    AddVerbose(*command, verbose_)->group("");
    FinishOptions(*command);
  }
}

Arguments::~Arguments() = default;

void Arguments::Parse(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = Marked(arguments);
  ReplaceHelpCommand(words);
  RequireCommand(*program_, words);
  // The parser takes them from the end.
  std::reverse(words.begin(), words.end());
  program_->parse(std::move(words));
}

std::string Arguments::Reason(const CLI::ParseError& error) const {
  const std::vector<std::string> unknown = program_->remaining(true);
  std::string reason = error.what();
  if (program_->get_subcommands().empty()) {
    if (!unknown.empty()) reason = ThereIsNoCommand(*program_, unknown.front());
  } else if (const auto option = std::find_if(unknown.begin(), unknown.end(), BeginsAsOption);
             option != unknown.end()) {
    reason = ThereIsNoOption(*program_, *option);
  }
  reason.erase(std::remove(reason.begin(), reason.end(), kMark), reason.end());
  return reason;
}

}  // namespace kelproj
