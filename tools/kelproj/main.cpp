#include <cstdlib>
#include <iostream>

#include "platform/program_start.h"
#include "program.h"

namespace {

bool IsColourWanted() {
  const char* const no_colour = std::getenv("NO_COLOR");
  return (!no_colour || !*no_colour) && kelproj::IsColouredTerminal();
}

}  // namespace

int main(int argc, char** argv) {
  const auto kept = kelproj::KeepBytesOfStreams();
  const kelproj::Console console{std::cout, std::cerr, IsColourWanted()};
  return static_cast<int>(kelproj::RunProgram(kelproj::CallArguments(argc, argv), console));
}
