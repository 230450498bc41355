#include "git_program.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <sys/wait.h>

#include "console.h"

namespace kelproj {
namespace {

struct Answer {
  int status;
  std::string text;  ///< Without the end of the last line.
};

Answer RunShell(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "re"), ::pclose);
  if (!pipe) throw Trouble("no shell can be started");
  std::string text;
  for (int byte = 0; (byte = std::fgetc(pipe.get())) != EOF;) text += static_cast<char>(byte);
  if (!text.empty() && text.back() == '\n') text.pop_back();
  const int status = ::pclose(pipe.release());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

Answer RunGit(const std::filesystem::path& directory, const std::vector<std::string>& arguments,
              const char* redirection) {
  // With GIT_DIR, git goes by where the user stands.
  std::string command =
      std::getenv("GIT_DIR") ? "git" : "git -C " + ShellQuoted(directory.string());
  for (const std::string& argument : arguments) command += " " + ShellQuoted(argument);
  Answer answer = RunShell(command + redirection);
  constexpr int kNoSuchCommand = 127;
  if (answer.status == kNoSuchCommand) throw Trouble("git is not installed");
  return answer;
}

}  // namespace

std::string ShellQuoted(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::optional<std::string> Git::Ask(const std::vector<std::string>& arguments) const {
  Answer answer = RunGit(directory_, arguments, " 2>/dev/null");
  return answer.status == 0 ? std::optional(std::move(answer.text)) : std::nullopt;
}

void Git::Tell(const std::vector<std::string>& arguments) const {
  const Answer answer = RunGit(directory_, arguments, " 2>&1");
  if (answer.status != 0) throw Trouble("git: " + answer.text);
}

}  // namespace kelproj
