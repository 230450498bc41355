#include "git_program.h"

#include <cstdlib>

#include "console.h"
#include "platform/file_names.h"
#include "platform/other_program.h"

namespace kelproj {
namespace {

// The text is without the end of the last line.
ProgramAnswer RunGit(const std::filesystem::path& directory,
                     const std::vector<std::string>& arguments, ProgramMessages messages) {
  std::vector<std::string> command = {"git"};
  // With GIT_DIR, git goes by where the user stands.
  if (!std::getenv("GIT_DIR")) command.insert(command.end(), {"-C", NameFrom(directory)});
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::optional<ProgramAnswer> answer = RunOtherProgram(command, messages);
  if (!answer) throw Trouble("git is not installed");
  if (!answer->text.empty() && answer->text.back() == '\n') answer->text.pop_back();
  return *std::move(answer);
}

}  // namespace

std::optional<std::string> Git::Ask(const std::vector<std::string>& arguments) const {
  ProgramAnswer answer = RunGit(directory_, arguments, ProgramMessages::kDropped);
  return answer.status == 0 ? std::optional(std::move(answer.text)) : std::nullopt;
}

void Git::Tell(const std::vector<std::string>& arguments) const {
  const ProgramAnswer answer = RunGit(directory_, arguments, ProgramMessages::kAmongOutput);
  if (answer.status != 0) throw Trouble("git: " + answer.text);
}

}  // namespace kelproj
