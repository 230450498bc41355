#pragma once

#include <optional>
#include <string>

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

}  // namespace kelproj
