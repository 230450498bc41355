#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "file_kinds.h"

/// The commands that ask project files: what each is given, and the function that runs it. File
/// names are native paths. What cannot be done throws Trouble or an exception of the library.
namespace kelproj {

struct ShowArguments {
  std::string file;
  bool json = false;
};
ExitStatus Run(const ShowArguments& arguments, const Console& console);

struct CheckArguments {
  std::vector<std::string> files;
  std::optional<std::string> schema;
  bool list_missing_files = false;
  bool list_unlisted_files = false;
  bool strict = false;  ///< Whether a warning makes the answer no.
  bool json = false;
};
ExitStatus Run(const CheckArguments& arguments, const Console& console);

enum class NameForm { kFromHere, kStored, kAbsolute };

enum class ListFormat { kLines, kZeroTerminated, kJson, kCommandFile, kIverilog, kMake };

/// A format for another program.
struct ListFormatName {
  const char* name;
  ListFormat format;
};
inline constexpr std::array<ListFormatName, 3> kListFormatNames = {{
    {"f", ListFormat::kCommandFile},
    {"iverilog", ListFormat::kIverilog},
    {"make", ListFormat::kMake},
}};

struct ListArguments {
  std::string file;
  std::vector<const FileKind*> kinds;  ///< Empty for those that the format has by itself.
  std::vector<std::string> libraries;
  std::vector<std::string> hdl_versions;
  NameForm form = NameForm::kFromHere;
  ListFormat format = ListFormat::kLines;
  std::optional<std::string> target;  ///< For make.
};
ExitStatus Run(const ListArguments& arguments, const Console& console);

struct GetArguments {
  std::string file;
  std::string key;
};
ExitStatus Run(const GetArguments& arguments, const Console& console);

struct DiffArguments {
  std::vector<std::string> operands;  ///< Two files, or what git gives an external diff.
  bool json = false;
};
ExitStatus Run(const DiffArguments& arguments, const Console& console);

}  // namespace kelproj
