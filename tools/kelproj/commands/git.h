#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console.h"

/// The commands that bring project files together, in git and without it: what each is given, and
/// the function that runs it. File names are native paths. What cannot be done throws Trouble or an
/// exception of the library; nothing is changed then.
namespace kelproj {

/// One of the two projects that a merge brings together.
enum class MergeSide { kOurs, kTheirs };

struct MergeArguments {
  std::string base;  ///< A file with nothing in it is a project with nothing.
  std::string ours;
  std::string theirs;
  std::optional<std::string> output;   ///< The file to write; none for standard output.
  std::optional<MergeSide> preferred;  ///< Whose value a conflict is resolved with.
  std::optional<std::string> name;     ///< Of the project file in messages.
  bool json = false;
};
ExitStatus Run(const MergeArguments& arguments, const Console& console);

struct GitSetupArguments {
  std::vector<std::string> files;  ///< Or patterns of files, from where the user stands.
  bool for_user = false;           ///< Whether the drivers are for all repositories of the user.
  bool undo = false;
};
ExitStatus Run(const GitSetupArguments& arguments, const Console& console);

}  // namespace kelproj
