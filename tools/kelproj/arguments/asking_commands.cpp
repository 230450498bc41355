#include "arguments/definition.h"
#include "commands/asking.h"
#include "keys.h"

namespace kelproj {
namespace {

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
  DefineGet(program, request);
  DefineDiff(program, request);
}

}  // namespace kelproj
