#include <memory>

#include "arguments/definition.h"
#include "completion.h"
#include "help.h"

namespace kelproj {
namespace {

constexpr char kCompletionHelp[] =
    R"(The script goes where the shell looks for completions, or into the shell as it
is. It asks this program for what may stand where the cursor is, so that it
knows the keys of the project at hand, the names of its files and its libraries.

Example:
  source <(kelproj completion bash)
  source <(kelproj completion zsh)
  kelproj completion fish | source)";

constexpr char kHelpHelp[] =
    R"(The same as "kelproj COMMAND --help", or without COMMAND as "kelproj --help".

Example:
  kelproj help set)";

// What is given to it is put in other words before it is parsed. What cannot be is answered with
// help of its own.
void DefineHelp(CLI::App& program) {
  CLI::App& command = AddCommand(program, "help", "Print the help of a command", kHelpHelp);
  command.add_option("COMMAND", "The command");
  command.callback([] { throw CLI::CallForHelp(); });
}

void DefineCompletion(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "completion", "Print a script for a shell's completion", kCompletionHelp);
  const auto shell = std::make_shared<std::string>();
  command.add_option("SHELL", *shell, "The shell: " + CLI::detail::join(ShellNames(), ", "))
      ->required()
      ->check(OneOf(ShellNames()));
  command.callback([shell, &request] {
    request = [shell](const Console& console) {
      console.out << CompletionScript(*shell);
      return ExitStatus::kYes;
    };
  });
}

// A command for the programs of this project, of which help does not speak.
CLI::App& AddHiddenCommand(CLI::App& program, const char* name, const char* summary) {
  CLI::App& command = AddCommand(program, name, summary, "");
  command.group("");
  return command;
}

void DefineComplete(CLI::App& program, Request& request) {
  CLI::App& command = AddHiddenCommand(program, "complete", "Print what may stand at the cursor");
  const auto words = std::make_shared<std::vector<std::string>>();
  command.add_option("WORD", *words, "The words up to the cursor");
  command.callback([words, &command, &request] {
    request = [words, &command](const Console& console) {
      for (const std::string& word : Completions(*command.get_parent(), *words)) {
        console.out << word << '\n';
      }
      return ExitStatus::kYes;
    };
  });
}

void DefineManual(CLI::App& program, Request& request) {
  CLI::App& command = AddHiddenCommand(program, "man", "Print the manual page");
  command.callback([&command, &request] {
    request = [&command](const Console& console) {
      console.out << ManualPage(*command.get_parent());
      return ExitStatus::kYes;
    };
  });
}

}  // namespace

void DefineTextCommands(CLI::App& program, Request& request) {
  DefineHelp(program);
  DefineCompletion(program, request);
  DefineComplete(program, request);
  DefineManual(program, request);
}

}  // namespace kelproj
