#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "file_kinds.h"
#include "list_place.h"
#include "standard_input.h"
#include "stored_project.h"

/// The commands that change project files: what each is given, and the function that runs it. File
/// names are native paths. What cannot be done throws Trouble or an exception of the library;
/// nothing is changed then.
namespace kelproj {

struct NewArguments {
  std::string name;
  std::string file;
  std::optional<std::string> family;
  std::optional<std::string> device;
  std::optional<std::string> timing_model;
  std::optional<std::string> top_module;
};
ExitStatus Run(const NewArguments& arguments, const Console& console);

struct SetArguments {
  ChangedFile file;
  std::string key;
  std::optional<std::string> value;  ///< Required.
  std::vector<std::string> more;     ///< Further keys, each with its value behind it.
  std::optional<std::string> type;
};
ExitStatus Run(const SetArguments& arguments, const Console& console);

struct UnsetArguments {
  ChangedFile file;
  std::vector<std::string> keys;
};
ExitStatus Run(const UnsetArguments& arguments, const Console& console);

struct AddArguments {
  ChangedFile file;
  std::vector<std::string> paths;  ///< Of an IP instance, its sources.
  std::optional<std::string> list_of_paths;
  bool ends_with_zero = false;  ///< Whether each name in the list of paths does.
  const FileKind* kind = nullptr;
  std::optional<std::string> instance;       ///< Given if the kind is that of IP instances.
  std::optional<std::string> instance_path;  ///< None for an instance that is there.
  std::optional<std::string> hdl_version;
  std::optional<std::string> library;
  ListPlace place;
  bool again = false;
  bool strict = false;
};
ExitStatus Run(const AddArguments& arguments, const Console& console);

struct RemoveArguments {
  ChangedFile file;
  std::vector<std::string> names;
  const FileKind* kind = nullptr;  ///< None for all lists.
};
ExitStatus Run(const RemoveArguments& arguments, const Console& console);

struct RenameArguments {
  ChangedFile file;
  std::string former_name;
  std::string new_name;
  bool of_instance = false;  ///< Whether they are names of an IP instance and not of a file.
};
ExitStatus Run(const RenameArguments& arguments, const Console& console);

struct MoveArguments {
  ChangedFile file;
  const FileKind* kind = nullptr;
  std::string name;
  ListPlace place;
};
ExitStatus Run(const MoveArguments& arguments, const Console& console);

struct SetInterfaceArguments {
  ChangedFile file;
  std::string path;
};
ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console);

struct ApplyArguments {
  ChangedFile file;
  std::string document = kStandardInput;
};
ExitStatus Run(const ApplyArguments& arguments, const Console& console);

struct FormatArguments {
  std::vector<std::string> files;
  bool despite_errors = false;
  bool check = false;      ///< Whether files are looked at only,
  bool to_output = false;  ///< or written to the standard output.
  bool no_stamps = false;
  std::optional<std::string> name;  ///< What messages call the standard input.
};
ExitStatus Run(const FormatArguments& arguments, const Console& console);

}  // namespace kelproj
