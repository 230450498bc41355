#include "arguments/definition.h"
#include "commands/changing.h"
#include "keys.h"

namespace kelproj {
namespace {

constexpr char kNewHelp[] =
    R"(A file that is there already is not replaced. What is not given is as the
library makes it for a new project.

Example:
  kelproj new blinker -o blinker.xml --device Q8R25 --top blinker_top)";

constexpr char kSetHelp[] =
    R"(The keys are those of "kelproj get"; sw_version, last_change_date,
design.def_veri_version and design.def_vhdl_version cannot be set.

A parameter that is there keeps its type. A new one gets the type of --type,
else e_string if it is under param and no type if it is a define parameter or
a macro. A parameter of type e_noarg takes the empty value, any other takes one
that is not empty.

Example:
  kelproj set blinker.xml device.timing_model slow_85c
  kelproj set blinker.xml synthesis.param.retiming true --type e_bool
  kelproj set blinker.xml synthesis.param.keep_hierarchy "" --type e_noarg)";

constexpr char kAddHelp[] =
    R"(The files are added behind those that are there, under their names as they are
given; a relative name is relative to the directory of the project file. A file
that does not exist is added with a warning.

Example:
  kelproj add blinker.xml --rtl rtl/blinker.v rtl/divider.v --library work
  kelproj add blinker.xml --sdc blinker.sdc)";

constexpr char kSetInterfaceHelp[] =
    R"(A relative name is relative to the directory of the project file.

Example:
  kelproj set-interface blinker.xml pins.interface.csv)";

void DefineNew(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "new", "Create a project file", kNewHelp);
  auto& arguments = Requested<NewArguments>(command, request);
  const auto add = [&command](const char* name, std::optional<std::string>& value,
                              const char* help) {
    command.add_option(name, value, help)->type_name("NAME");
  };
  command.add_option("NAME", arguments.name, "The name of the project")->required();
  command.add_option("-o,--output", arguments.file, kFileHelp)->type_name("FILE")->required();
  add("--family", arguments.family, "The device family");
  add("--device", arguments.device, "The device");
  add("--timing-model", arguments.timing_model, "The timing model of the device");
  add("--top", arguments.top_module, "The top-level module");
}

void DefineSet(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "set", "Set one value of a project", kSetHelp);
  auto& arguments = Requested<SetArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("KEY", arguments.key, "The dotted key of the value")->required();
  command.add_option("VALUE", arguments.value, "The text to set; \"\" is the empty one")
      ->required();
  command
      .add_option("--type", arguments.type,
                  "The type of a parameter: " + CLI::detail::join(ParameterTypeNames(), ", "))
      ->type_name("TYPE")
      ->check(OneOf(ParameterTypeNames()));
}

void DefineAdd(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "add", "Add files of one kind to a project", kAddHelp);
  auto& arguments = Requested<AddArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("PATH", arguments.paths, "A file to add")->required();
  AddFileKinds(command, FlatFileKinds(), arguments.kind, "They are ");
  command
      .add_option("--hdl-version", arguments.hdl_version,
                  "The language version of design or simulation files")
      ->type_name("VERSION");
  command
      .add_option("--library", arguments.library,
                  "The library that they are compiled into, if not \"default\"")
      ->type_name("NAME");
}

void DefineSetInterface(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "set-interface", "Set the interface constraint file", kSetInterfaceHelp);
  auto& arguments = Requested<SetInterfaceArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command
      .add_option("PATH", arguments.path,
                  "The interface constraint file; its name ends in .interface.csv")
      ->required();
}

}  // namespace

void DefineChangingCommands(CLI::App& program, Request& request) {
  DefineNew(program, request);
  DefineSet(program, request);
  DefineAdd(program, request);
  DefineSetInterface(program, request);
}

}  // namespace kelproj
