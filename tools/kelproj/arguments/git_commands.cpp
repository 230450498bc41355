#include "arguments/definition.h"
#include "commands/git.h"

namespace kelproj {
namespace {

constexpr char kMergeHelp[] =
    R"(Brings together what differs from BASE in OURS and what differs from it in
THEIRS. The files may have any names; a BASE with nothing in it, such as
/dev/null, is a project with nothing. OUT may be one of them.

What both changed, and not alike, is a conflict: there the merged project is as
OURS. Each conflict takes one line on standard error, with (none) for what is
not there:

  what[where]: base / ours / theirs

The stamps of the last writing make no conflict, and are not renewed.

The status is 0 without conflicts, or if they are resolved by --ours or
--theirs; 1 with conflicts; 2 if nothing was written because a file does not
load whole, for instance.

Example:
  kelproj merge before.xml blinker.xml blinker_of_zoe.xml -o blinker.xml)";

constexpr char kGitSetupHelp[] =
    R"(Lets git understand the project files: "git diff" and "git log -p --ext-diff"
show what changed in the projects; merge, rebase, cherry-pick and revert bring
them together by "kelproj merge"; and what is committed is in canonical form and
without the stamps of the last writing, so that a save by any tool that changed
no content leaves nothing to commit.

The files are written into .gitattributes at the top of the working tree, to be
committed; the drivers, by the place where this program lies, are written into
the configuration of the repository, which each clone has its own of, or with
--global into that of the user. Without the drivers git takes the files as text,
and with them a file that has errors is committed as it is, after a message.
A FILE that is not there and has one of *?[ in it is a pattern as .gitattributes
knows them, from where you stand: '**/soc_*.xml'. It may fit no file yet, with a
warning. Done twice it changes nothing; do it again when this program has moved.

With --undo the files are removed from .gitattributes, and the drivers from the
configuration if no .gitattributes, in any directory of any working tree of the
repository, names one of them.

Example:
  kelproj git-setup blinker.xml
  git add .gitattributes blinker.xml
  git add --renormalize blinker.xml
  git commit -m "Let git understand the project file")";

void DefineMerge(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "merge", "Bring together what two made of one project", kMergeHelp);
  auto& arguments = Requested<MergeArguments>(command, request);
  command.add_option("BASE", arguments.base, "The project file that both began with")->required();
  command.add_option("OURS", arguments.ours, "What one made of it")->required();
  command.add_option("THEIRS", arguments.theirs, "What the other made of it")->required();
  command
      .add_option("-o,--output", arguments.output,
                  "The file to write the merged project to, not standard output")
      ->type_name("OUT");
  const auto add_side = [&](const char* name, MergeSide side, const char* help) {
    const auto choose = [&arguments, side] { arguments.preferred = side; };
    return command.add_flag_callback(name, choose, help);
  };
  ExcludeEachOther(
      {add_side("--ours", MergeSide::kOurs, "Resolve conflicts with what OURS has"),
       add_side("--theirs", MergeSide::kTheirs, "Resolve conflicts with what THEIRS has")});
  command.add_option("--path", arguments.name, "What to call the project file in messages")
      ->type_name("NAME");
  command.add_flag("--json", arguments.json,
                   "Print the conflicts as JSON; without -o in place of the project");
}

void DefineGitSetup(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "git-setup", "Let git understand project files", kGitSetupHelp);
  auto& arguments = Requested<GitSetupArguments>(command, request);
  command.add_option("FILE", arguments.files, "A project file in a working tree of git")
      ->required();
  command.add_flag("--global", arguments.for_user,
                   "Configure git for all repositories of the user");
  command.add_flag("--undo", arguments.undo, "Take back what was set up");
}

}  // namespace

void DefineGitCommands(CLI::App& program, Request& request) {
  DefineMerge(program, request);
  DefineGitSetup(program, request);
}

}  // namespace kelproj
