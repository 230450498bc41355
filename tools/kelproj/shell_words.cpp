#include "shell_words.h"

namespace kelproj {

std::string ShellQuoted(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

}  // namespace kelproj
