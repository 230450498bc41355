#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

/// The completion of the program's arguments in shells. The scripts of all shells ask the program
/// itself, so that they know the keys and names of the project at hand.
namespace kelproj {

/// The shells that have a script.
std::vector<std::string> ShellNames();

/// The script by which a shell completes the program's arguments.
/// @param shell one of ShellNames
std::string CompletionScript(const std::string& shell);

/// What may stand where the cursor is. It is empty where the name of any file may stand, which is
/// left to the shell.
/// @param words behind the program's name, up to the cursor; the last one is not finished
std::vector<std::string> Completions(const CLI::App& program,
                                     const std::vector<std::string>& words);

}  // namespace kelproj
