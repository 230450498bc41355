#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kelproj {

/// What the program was called with, as UTF-8, without its own name.
/// @param argc and argv those of the main function
std::vector<std::string> CallArguments(int argc, char** argv);

/// Has the standard streams pass on every byte as it is.
/// @return at whose end the console is again what it was
[[nodiscard]] std::shared_ptr<void> KeepBytesOfStreams();

/// Whether standard output is a terminal that takes colours.
bool IsColouredTerminal();

}  // namespace kelproj
