#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "file_kinds.h"
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
  std::string value;
  std::optional<std::string> type;
};
ExitStatus Run(const SetArguments& arguments, const Console& console);

struct AddArguments {
  ChangedFile file;
  std::vector<std::string> paths;
  const FileKind* kind = nullptr;
  std::optional<std::string> hdl_version;
  std::optional<std::string> library;
};
ExitStatus Run(const AddArguments& arguments, const Console& console);

struct SetInterfaceArguments {
  ChangedFile file;
  std::string path;
};
ExitStatus Run(const SetInterfaceArguments& arguments, const Console& console);

}  // namespace kelproj
