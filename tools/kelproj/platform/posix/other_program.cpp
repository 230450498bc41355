#include "platform/other_program.h"

#include <cstdio>
#include <memory>

#include <sys/wait.h>

#include "console.h"
#include "shell_words.h"

namespace kelproj {

std::optional<ProgramAnswer> RunOtherProgram(const std::vector<std::string>& command,
                                             ProgramMessages messages) {
  std::string line;
  for (const std::string& word : command) line += ShellQuoted(word) + " ";
  line += messages == ProgramMessages::kDropped ? "2>/dev/null" : "2>&1";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(line.c_str(), "re"), ::pclose);
  if (!pipe) throw Trouble("no shell can be started");
  std::string text;
  for (int byte = 0; (byte = std::fgetc(pipe.get())) != EOF;) text += static_cast<char>(byte);
  const int status = ::pclose(pipe.release());
  constexpr int kNoSuchCommand = 127;
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNoSuchCommand) return std::nullopt;
  return ProgramAnswer{WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

}  // namespace kelproj
