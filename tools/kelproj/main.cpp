#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

#include "program.h"

namespace {

bool IsColourWanted() {
  const char* const no_colour = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return ::isatty(STDOUT_FILENO) == 1 && (!no_colour || !*no_colour) && terminal &&
         std::string(terminal) != "dumb";
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return static_cast<int>(kelproj::RunProgram(arguments, {std::cout, std::cerr, IsColourWanted()}));
}
