#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelproj {

/// What another program ended with.
struct ProgramAnswer {
  int status;
  std::string text;  ///< What it printed.
};

/// What becomes of a program's messages.
enum class ProgramMessages { kDropped, kAmongOutput };

/// Runs another program to its end.
/// @param command the program, which is looked for as a shell does, and its arguments
/// @return nothing if there is no such program
/// @exception Trouble if no program can be started
std::optional<ProgramAnswer> RunOtherProgram(const std::vector<std::string>& command,
                                             ProgramMessages messages);

}  // namespace kelproj
