#include "arguments.h"

#include <algorithm>
#include <utility>

#include <kel/version.h>
#include <CLI/CLI.hpp>

#include "commands.h"
#include "help.h"
#include "keys.h"

namespace kelproj {
namespace {

constexpr char kFileHelp[] = "The project file; its name ends in .xml";

constexpr char kProgramHelp[] =
    R"(Exit status:
  0  done; the answer is yes
  1  done; the answer is no: there is no such value, the file has errors, the
     projects differ
  2  trouble: not done, and no file changed

Data goes to standard output, messages go to standard error. What is written
for people is coloured on a terminal unless the environment variable NO_COLOR
is set. An argument that begins with a hyphen stands behind a lone "--".

A change is saved so that the project file is the former one or the new one,
whole, at every moment. A file that does not load whole is never written. The
file is written anew from the project alone: comments, a security section and
what "kelproj check" warns of are not kept.

Example:
  kelproj new blinker -o blinker.xml --top blinker_top
  kelproj add blinker.xml --rtl rtl/blinker.v --hdl-version verilog_2001
  kelproj set blinker.xml synthesis.param.max_threads 4
  kelproj check blinker.xml --files
  kelproj show blinker.xml)";

constexpr char kNewHelp[] =
    R"(A file that is there already is not replaced. What is not given is as the
library makes it for a new project.

Example:
  kelproj new blinker -o blinker.xml --device Q8R25 --top blinker_top)";

constexpr char kShowHelp[] =
    R"(Names of files are shown as they are stored: relative to the directory of the
project file. With --json, a value stands where its dotted key says:

  kelproj show blinker.xml --json | jq .device.family

Example:
  kelproj show blinker.xml)";

constexpr char kCheckHelp[] =
    R"(Each problem takes one line, FILE:LINE:COLUMN: SEVERITY: MESSAGE, without the
line and column where they are not known. A file with an error does not load.
The status is 1 if there is an error. The files that a project names are looked
for with --files, if the project file itself has no error.

Example:
  kelproj check blinker.xml --files)";

constexpr char kGetHelp[] =
    R"(The status is 1, and nothing is printed, if the project has no such info
attribute or parameter.

Example:
  kelproj get blinker.xml synthesis.param.max_threads)";

constexpr char kSetHelp[] =
    R"(The keys are those of "kelproj get"; sw_version, last_change_date,
design.def_veri_version and design.def_vhdl_version cannot be set.

A parameter that is there keeps its type. A new one gets the type of --type,
else e_string if it is under param and no type if it is a define parameter or
a macro. A parameter of type e_noarg takes the empty value, any other takes one
that is not empty.

Example:
  kelproj set blinker.xml device.timing_model slow_85c
  kelproj set blinker.xml synthesis.param.retiming true --type e_bool
  kelproj set blinker.xml synthesis.param.keep_hierarchy "" --type e_noarg)";

constexpr char kAddHelp[] =
    R"(The files are added behind those that are there, under their names as they are
given; a relative name is relative to the directory of the project file. A file
that does not exist is added with a warning.

Example:
  kelproj add blinker.xml --rtl rtl/blinker.v rtl/divider.v --library work
  kelproj add blinker.xml --sdc blinker.sdc)";

constexpr char kSetInterfaceHelp[] =
    R"(A relative name is relative to the directory of the project file.

Example:
  kelproj set-interface blinker.xml pins.interface.csv)";

constexpr char kDiffHelp[] =
    R"(Each line begins with - for what only A has, or + for what only B has. The
stamps of the last writing are left out, and lists are compared as sequences.
The status is 0 if the projects are equal, 1 if they differ.

As an external diff of git, which calls it with arguments of its own, the status
is 0 in both cases. To see the changes of project files in "git diff":

  git config diff.kelproj.command "kelproj diff"
  echo '*.xml diff=kelproj' >> .gitattributes

Example:
  kelproj diff blinker.xml blinker_rev_b.xml)";

constexpr char kCompletionHelp[] =
    R"(The script goes where bash looks for completions, or into the shell as it is.

Example:
  source <(kelproj completion bash))";

// Arguments that live as long as the command, which is requested once they are parsed.
template <typename CommandArguments>
CommandArguments& Requested(CLI::App& command, Request& request) {
  const auto arguments = std::make_shared<CommandArguments>();
  command.callback([arguments, &request] {
    request = [arguments](const Console& console) { return Run(*arguments, console); };
  });
  return *arguments;
}

// Requests a text that is made from the program's definition.
void RequestText(CLI::App& command, Request& request, std::string (*make)(const CLI::App&)) {
  command.callback([&command, &request, make] {
    request = [&command, make](const Console& console) {
      console.out << make(*command.get_parent());
      return ExitStatus::kYes;
    };
  });
}

CLI::App& AddCommand(CLI::App& program, const char* name, const char* summary,
                     const std::string& help) {
  CLI::App& command = *program.add_subcommand(name, summary);
  command.group("Commands");
  command.footer(help);
  return command;
}

void AddFile(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, kFileHelp)->required();
}

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

void UnmarkTexts(CLI::App& command) {
  for (CLI::Option* option : command.get_options()) {
    if (option->get_items_expected_max() > 0) option->transform(Unmarked, "");
  }
}

// Help tells the texts where they are described.
CLI::Validator OneOf(const std::vector<std::string>& texts) {
  return CLI::IsMember(texts).description("");
}

void ExcludeEachOther(const std::vector<CLI::Option*>& options) {
  for (CLI::Option* option : options) {
    for (CLI::Option* other : options) {
      if (option != other) option->excludes(other);
    }
  }
}

void AddJson(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print JSON, for programs");
}

void DefineNew(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "new", "Create a project file", kNewHelp);
  auto& arguments = Requested<NewArguments>(command, request);
  const auto add = [&command](const char* name, std::optional<std::string>& value,
                              const char* help) {
    command.add_option(name, value, help)->type_name("NAME");
  };
  command.add_option("NAME", arguments.name, "The name of the project")->required();
  command.add_option("-o,--output", arguments.file, kFileHelp)->type_name("FILE")->required();
  add("--family", arguments.family, "The device family");
  add("--device", arguments.device, "The device");
  add("--timing-model", arguments.timing_model, "The timing model of the device");
  add("--top", arguments.top_module, "The top-level module");
}

void DefineShow(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "show", "Print all that a project holds", kShowHelp);
  auto& arguments = Requested<ShowArguments>(command, request);
  AddFile(command, arguments.file);
  AddJson(command, arguments.json);
}

void DefineCheck(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "check", "List what is wrong with project files", kCheckHelp);
  auto& arguments = Requested<CheckArguments>(command, request);
  command.add_option("FILE", arguments.files, kFileHelp)->required();
  command
      .add_option("--schema", arguments.schema,
                  "The XML schema to check against instead of the installed one")
      ->type_name("XSD");
  command.add_flag("--files", arguments.list_missing_files,
                   "List the project's files that do not exist, as errors");
  AddJson(command, arguments.json);
}

void DefineGet(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "get", "Print one value of a project", KeysHelp() + "\n\n" + kGetHelp);
  auto& arguments = Requested<GetArguments>(command, request);
  AddFile(command, arguments.file);
  command.add_option("KEY", arguments.key, "The dotted key of the value")->required();
}

void DefineSet(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "set", "Set one value of a project", kSetHelp);
  auto& arguments = Requested<SetArguments>(command, request);
  AddFile(command, arguments.file);
  command.add_option("KEY", arguments.key, "The dotted key of the value")->required();
  command.add_option("VALUE", arguments.value, "The text to set; \"\" is the empty one")
      ->required();
  command
      .add_option("--type", arguments.type,
                  "The type of a parameter: " + CLI::detail::join(ParameterTypeNames(), ", "))
      ->type_name("TYPE")
      ->check(OneOf(ParameterTypeNames()));
}

void DefineAdd(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "add", "Add files of one kind to a project", kAddHelp);
  auto& arguments = Requested<AddArguments>(command, request);
  AddFile(command, arguments.file);
  command.add_option("PATH", arguments.paths, "A file to add")->required();
  const auto add_kind = [&](const char* name, FileKind kind, const char* help) {
    const auto choose = [&arguments, kind] { arguments.kind = kind; };
    return command.add_flag_callback(name, choose, help);
  };
  ExcludeEachOther({add_kind("--rtl", FileKind::kRtl, "They are design files"),
                    add_kind("--sim", FileKind::kSim, "They are simulation files"),
                    add_kind("--misc", FileKind::kMisc, "They are miscellaneous files"),
                    add_kind("--sdc", FileKind::kSdc, "They are timing constraint files (.sdc)")});
  command
      .add_option("--hdl-version", arguments.hdl_version,
                  "The language version of design or simulation files")
      ->type_name("VERSION");
  command
      .add_option("--library", arguments.library,
                  "The library that they are compiled into, if not \"default\"")
      ->type_name("NAME");
}

void DefineSetInterface(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "set-interface", "Set the interface constraint file", kSetInterfaceHelp);
  auto& arguments = Requested<SetInterfaceArguments>(command, request);
  AddFile(command, arguments.file);
  command
      .add_option("PATH", arguments.path,
                  "The interface constraint file; its name ends in .interface.csv")
      ->required();
}

void DefineDiff(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "diff", "List what differs in two projects", kDiffHelp);
  auto& arguments = Requested<DiffArguments>(command, request);
  command.add_option("FILE", arguments.operands, "The two project files")
      ->option_text("A B")
      ->required();
  AddJson(command, arguments.json);
}

void DefineTexts(CLI::App& program, Request& request) {
  CLI::App& completion =
      AddCommand(program, "completion", "Print a script for a shell's completion", kCompletionHelp);
  completion.add_option("SHELL", "The shell: bash")->required()->check(OneOf({"bash"}));
  RequestText(completion, request, BashCompletion);
  CLI::App& manual = AddCommand(program, "man", "Print the manual page", "");
  manual.group("");
  RequestText(manual, request, ManualPage);
}

}  // namespace

Arguments::Arguments()
    : program_(std::make_unique<CLI::App>("Inspect, check and change project files", "kelproj")) {
  program_->formatter(HelpFormatter());
  program_->footer(kProgramHelp);
  program_->set_help_flag("-h,--help", "Print this help");
  program_->set_version_flag("--version", KEL_VERSION_NO, "Print the version");
  program_->add_flag("-v,--verbose", verbose_, "Report what is being done");
  program_->require_subcommand(1);
  program_->fallthrough();
  DefineNew(*program_, request_);
  DefineShow(*program_, request_);
  DefineCheck(*program_, request_);
  DefineGet(*program_, request_);
  DefineSet(*program_, request_);
  DefineAdd(*program_, request_);
  DefineSetInterface(*program_, request_);
  DefineDiff(*program_, request_);
  DefineTexts(*program_, request_);
  for (CLI::App* command : program_->get_subcommands({})) UnmarkTexts(*command);
}

Arguments::~Arguments() = default;

void Arguments::Parse(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = Marked(arguments);
  // The parser takes them from the end.
  std::reverse(words.begin(), words.end());
  program_->parse(std::move(words));
}

std::string Arguments::Reason(const CLI::ParseError& error) const {
  const std::vector<std::string> unknown = program_->remaining();
  const bool has_command = !program_->get_subcommands().empty();
  std::string reason = has_command || unknown.empty()
                           ? error.what()
                           : "there is no command or option \"" + unknown.front() + "\"";
  reason.erase(std::remove(reason.begin(), reason.end(), kMark), reason.end());
  return reason;
}

}  // namespace kelproj
