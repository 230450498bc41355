#include "arguments/definition.h"
#include "help.h"

namespace kelproj {
namespace {

constexpr char kCompletionHelp[] =
    R"(The script goes where bash looks for completions, or into the shell as it is.

Example:
  source <(kelproj completion bash))";

// Requests a text that is made from the program's definition.
void RequestText(CLI::App& command, Request& request, std::string (*make)(const CLI::App&)) {
  command.callback([&command, &request, make] {
    request = [&command, make](const Console& console) {
      console.out << make(*command.get_parent());
      return ExitStatus::kYes;
    };
  });
}

}  // namespace

void DefineTextCommands(CLI::App& program, Request& request) {
  CLI::App& completion =
      AddCommand(program, "completion", "Print a script for a shell's completion", kCompletionHelp);
  completion.add_option("SHELL", "The shell: bash")->required()->check(OneOf({"bash"}));
  RequestText(completion, request, BashCompletion);
  CLI::App& manual = AddCommand(program, "man", "Print the manual page", "");
  manual.group("");
  RequestText(manual, request, ManualPage);
}

}  // namespace kelproj
