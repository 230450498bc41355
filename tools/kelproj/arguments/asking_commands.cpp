#include <iterator>
#include <string>
#include <vector>

#include "arguments/definition.h"
#include "commands/asking.h"
#include "keys.h"

namespace kelproj {
namespace {

constexpr char kShowHelp[] =
    R"(Names of files are shown as they are stored: relative to the directory of the
project file. With --json, a value stands where its dotted key says, and that of
a parameter as {"value": ..., "type": ...} under PROCESS.MAP.NAME:

  kelproj show blinker.xml --json | jq .device.family
  kelproj show blinker.xml --json | jq .synthesis.param.max_threads.value

Example:
  kelproj show blinker.xml)";

constexpr char kCheckHelp[] =
    R"(Each problem takes one line, FILE:LINE:COLUMN: SEVERITY: MESSAGE, without the
line and column where they are not known. A file with an error breaks the
format: it may not load whole, and is not changed without --force.
The status is 1 if there is an error, with --strict also if there is a warning.
Of a file without errors the contents are looked at too; each warning of them
names its place by a dotted key:

  a file twice in a list, also by another spelling
  a file that does not end as its list wants, such as .sdc
  an absolute name of a file below the project's directory
  two IP instances of one name
  a parameter of type e_bool that is not true, false, on, off, yes, no, 0 or 1
  a max_threads that is no number of threads

The HDL files that --unlisted looks for end in .v, .sv, .vhd or .vhdl; hidden
directories, whose names begin with a dot, are passed over.

Example:
  kelproj check blinker.xml --files --unlisted)";

constexpr char kListHelp[] =
    R"(One name takes one line. Without the option of a kind all files are listed, each
IP instance with its sources, in the order of the project. The names are as
seen from where you stand; one that is stored as absolute stays so. --library
and --hdl-version choose among the design and simulation files, and may be given
more than once; other files are then listed only if their kind is, and all.

What --format writes is for another program:

  f         a command file for -f of simulators and linters: the project's
            macros, its define parameters, the design files and the sources of
            the IP instances; quoted where needed
  iverilog  the same for -c of iverilog, which knows no such quotes; the define
            parameters are those of the top module
  make      the rule that a target, by default STEM.bit, is to be made again if
            the project file or a file of the project is newer

The options of kinds choose for them too. A define parameter of type e_string or
e_option that is no number is written as a text, in quotes. What a program could
not read as it is meant, such as a macro with a blank for iverilog, is trouble.

Example:
  kelproj list blinker.xml --rtl --hdl-version verilog_2001
  kelproj list blinker.xml --format f > blinker.f
  kelproj list blinker.xml --format make --target out/blinker.bit > blinker.d)";

constexpr char kGetHelp[] =
    R"(The status is 1, and nothing is printed, if the project has no such info
attribute or parameter.

Example:
  kelproj get blinker.xml synthesis.param.max_threads)";

constexpr char kDiffHelp[] =
    R"(Each line begins with - for what only A has, or + for what only B has. The
stamps of the last writing are left out, and lists are compared as sequences.
The status is 0 if the projects are equal, 1 if they differ.

As an external diff of git, which calls it with arguments of its own, the status
is 0 in both cases. "kelproj git-setup" lets "git diff" show project files so.

Example:
  kelproj diff blinker.xml blinker_rev_b.xml)";

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
  command.add_flag("--unlisted", arguments.list_unlisted_files,
                   "List the HDL files below the project's directory that it does not name");
  command.add_flag("--strict", arguments.strict, "Count warnings as errors");
  AddJson(command, arguments.json);
}

void AddChosenFiles(CLI::App& command, ListArguments& arguments) {
  for (const FileKind& kind : FileKinds()) {
    command.add_flag_callback(
        kind.option, [&arguments, &kind] { arguments.kinds.push_back(&kind); },
        "List " + TitleInSentence(TermOf(kind)));
  }
  command.add_option("--library", arguments.libraries, "List files that are compiled into it")
      ->type_name("LIBRARY")
      ->allow_extra_args(false);
  command.add_option("--hdl-version", arguments.hdl_versions, "List files of the language version")
      ->type_name("VERSION")
      ->allow_extra_args(false);
}

void AddNameForms(CLI::App& command, ListArguments& arguments) {
  const auto add = [&](const char* name, NameForm form, const char* help) {
    const auto choose = [&arguments, form] { arguments.form = form; };
    return command.add_flag_callback(name, choose, help);
  };
  ExcludeEachOther({add("--stored", NameForm::kStored, "Print the names as they are stored"),
                    add("--absolute", NameForm::kAbsolute, "Print absolute names")});
}

void AddListFormats(CLI::App& command, ListArguments& arguments) {
  const auto add = [&](const char* name, ListFormat format, const char* help) {
    const auto choose = [&arguments, format] { arguments.format = format; };
    return command.add_flag_callback(name, choose, help);
  };
  std::vector<std::string> names;
  names.reserve(std::size(kListFormatNames));
  for (const ListFormatName& format : kListFormatNames) names.emplace_back(format.name);
  const auto choose = [&arguments](const std::string& name) {
    for (const ListFormatName& format : kListFormatNames) {
      if (name == format.name) arguments.format = format.format;
    }
  };
  ExcludeEachOther(
      {add("-0", ListFormat::kZeroTerminated, "End each name by a zero byte"),
       add("--json", ListFormat::kJson, "Print JSON, for programs"),
       command.add_option_function<std::string>("--format", choose, "Write for another program")
           ->type_name("FORMAT")
           ->check(OneOf(names))});
  command.add_option("--target", arguments.target, "What make is to make")->type_name("TARGET");
}

void DefineList(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "list", "Print the names of a project's files", kListHelp);
  auto& arguments = Requested<ListArguments>(command, request);
  AddFile(command, arguments.file);
  AddChosenFiles(command, arguments);
  AddNameForms(command, arguments);
  AddListFormats(command, arguments);
}

void DefineGet(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "get", "Print one value of a project", KeysHelp() + "\n\n" + kGetHelp);
  auto& arguments = Requested<GetArguments>(command, request);
  AddFile(command, arguments.file);
  command.add_option("KEY", arguments.key, "The dotted key of the value")->required();
}

void DefineDiff(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "diff", "List what differs in two projects", kDiffHelp);
  auto& arguments = Requested<DiffArguments>(command, request);
  command.add_option("FILE", arguments.operands, "The two project files")
      ->option_text("A B")
      ->required();
  AddJson(command, arguments.json);
}

}  // namespace

void DefineAskingCommands(CLI::App& program, Request& request) {
  DefineShow(program, request);
  DefineCheck(program, request);
  DefineList(program, request);
  DefineGet(program, request);
  DefineDiff(program, request);
}

}  // namespace kelproj
