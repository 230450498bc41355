#include "platform/program_start.h"

#include <cstdlib>

#include <unistd.h>

namespace kelproj {

std::vector<std::string> CallArguments(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::shared_ptr<void> KeepBytesOfStreams() { return nullptr; }

bool IsColouredTerminal() {
  const char* const terminal = std::getenv("TERM");
  return ::isatty(STDOUT_FILENO) == 1 && terminal && std::string(terminal) != "dumb";
}

}  // namespace kelproj
