#include <algorithm>

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
    R"(The keys are those of "kelproj get"; sw_version and last_change_date, which
every writing makes anew, cannot be set. All values are set, or none. A value
that names a file, constraint.interface, is relative to where you stand.

A parameter that is there keeps its type unless --type gives it another. A new
one gets the type of --type, else e_string if it is under param and no type if
it is a define parameter or a macro. A parameter of type e_noarg takes the empty
value, any other takes one that is not empty. A value that "kelproj check"
warns of is set with that warning.

Example:
  kelproj set blinker.xml device.timing_model slow_85c info.owner "M. Ferreira"
  kelproj set blinker.xml synthesis.param.retiming true --type e_bool
  kelproj set blinker.xml synthesis.param.keep_hierarchy "" --type e_noarg)";

constexpr char kUnsetHelp[] =
    R"(An info attribute or a parameter is removed, any other value becomes empty. The
status is 1, and nothing is changed, if one of them is not there.

Example:
  kelproj unset blinker.xml info.owner synthesis.param.retiming)";

constexpr char kAddHelp[] =
    R"(The files stand behind those that are there, or where --before or --first says.
One of the options for a kind is needed. The status is 1, and nothing is
changed, if the list has one of the files already, by whatever name. A file that
does not exist, or is a directory, is added with a warning. Blank lines of a
LIST name no file.

An IP instance is added with its PATH and its sources, which are stored relative
to the directory that holds PATH. Without --path, sources are added to an
instance that is there. Several instances may have one PATH, but no two one name.

Example:
  kelproj add blinker.xml --rtl rtl/blinker.v rtl/divider.v --library work
  kelproj add blinker.xml --ip u_pll --path ip/pll/pll.ip ip/pll/pll.v
  git ls-files -z 'rtl/*.sv' | kelproj add blinker.xml --rtl --from - -0)";

constexpr char kRemoveHelp[] =
    R"(A name is that of a file, of a source of an IP instance or of an IP instance.
One that ends in a slash means all files below that directory. The files are
removed from every list that has them, or from that of the kind. The status is
1, and nothing is changed, if one of the names is in none. On disk the files
stay.

Example:
  kelproj remove blinker.xml rtl/divider.v rtl/old/
  kelproj remove blinker.xml --ip u_pll)";

constexpr char kRenameHelp[] =
    R"(The name changes in every list that has it, as a constraint or as a path or
source of an IP instance. If OLD is a directory, the names of all files below it
change. OLD may also be a stored name; NEW is relative to where you stand. A
name that is stored as absolute stays so, unless OLD is absolute and NEW is not.
The status is 1, and nothing is changed, if no list has OLD, or if one has a
file twice then. On disk nothing is renamed.

With --ip, the IP instance OLD is called NEW, which no other one may be.

Example:
  kelproj rename blinker.xml rtl/divider.v rtl/clock_divider.v
  kelproj rename blinker.xml rtl/ src/
  kelproj rename blinker.xml --ip u_pll u_pll_main)";

constexpr char kMoveHelp[] =
    R"(One of the options for a kind is needed, and one for the place. The status is 1,
and nothing is changed, if the list has not both files. A name that ends in a
slash means all files below that directory. On disk nothing is moved.

Example:
  kelproj move blinker.xml --rtl rtl/blinker_pkg.sv --first
  kelproj move blinker.xml --rtl rtl/divider.v --after rtl/blinker_pkg.sv)";

constexpr char kSetInterfaceHelp[] =
    R"(The same as "kelproj set blinker.xml constraint.interface PATH", with a warning
if there is no such file. "kelproj unset" takes it away.

Example:
  kelproj set-interface blinker.xml pins.interface.csv)";

constexpr char kApplyHelp[] =
    R"(The inverse of "kelproj show --json": a value stands where its dotted key says.
What is not in the document stays. A list, the attributes under info and the
parameters of a map such as synthesis.param are replaced as a whole. A parameter
without a type keeps the one that it has.

The stamps sw_version and last_change_date and the directory may be in the
document and are ignored, since every writing and every load makes them anew.
Names of files are taken as they are stored, relative to the project. What no
project file can hold, such as an unknown key, is an error, with its path; what
a file can hold and "kelproj check" warns of is applied with that warning.

Example:
  kelproj show blinker.xml --json | kelproj apply blinker_rev_b.xml -
  echo '{"device": {"timing_model": "slow_85c"}}' | kelproj apply blinker.xml)";

constexpr char kFormatHelp[] =
    R"(The form is the one in which every change is saved: info attributes and
parameters in the order of their names. The contents stay, and so do the stamps
sw_version and last_change_date unless --no-stamps leaves them out, which a load
does not mind. A file that is in the form already is not written. If FILE is -,
standard input is formatted to standard output.

With --check, the names of the files that are not in the form are printed; the
status is 1 if there are any.

Example:
  kelproj format blinker.xml
  kelproj format --check --no-stamps blinker.xml mixer.xml)";

CLI::Option* AddNeighbour(CLI::App& command, const char* name, std::optional<std::string>& value,
                          const char* help) {
  return command.add_option(name, value, help)->type_name("OTHER");
}

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

void RequireValues(const SetArguments& given) {
  if (given.value && given.more.size() % 2 == 0) return;
  const std::string& key = given.value ? given.more.back() : given.key;
  const bool is_both = key.find('=') != std::string::npos;
  throw CLI::ParseError("VALUE of " + key + " is required" +
                            (is_both ? "; KEY and VALUE are two arguments, without =" : ""),
                        CLI::ExitCodes::RequiredError);
}

void DefineSet(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "set", "Set values of a project", kSetHelp);
  auto& arguments = Requested<SetArguments>(command, request, RequireValues);
  AddChangedFile(command, arguments.file);
  command.add_option("KEY", arguments.key, "The dotted key of the value")->required();
  // It is required with a reason of its own.
  command.add_option("VALUE", arguments.value, "The text to set; \"\" is the empty one")
      ->option_text("VALUE");
  command.add_option("MORE", arguments.more, "Further keys and values")
      ->option_text("[KEY VALUE]...");
  command
      .add_option(
          "--type", arguments.type,
          "The type of a single parameter: " + CLI::detail::join(ParameterTypeNames(), ", "))
      ->type_name("TYPE")
      ->check(OneOf(ParameterTypeNames()));
}

void DefineUnset(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "unset", "Remove or empty values of a project", kUnsetHelp);
  auto& arguments = Requested<UnsetArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("KEY", arguments.keys, "The dotted key of a value")->required();
}

void AddInstance(CLI::App& command, AddArguments& arguments,
                 const std::vector<CLI::Option*>& other_kinds) {
  const auto choose = [&arguments](const std::string& instance) {
    arguments.kind = &InstanceKind();
    arguments.instance = instance;
  };
  CLI::Option* const instance =
      command
          .add_option_function<std::string>(InstanceKind().option, choose,
                                            "They are sources of this IP instance")
          ->type_name("INSTANCE");
  std::vector<CLI::Option*> kinds = other_kinds;
  kinds.push_back(instance);
  ExcludeEachOther(kinds);
  command.add_option("--path", arguments.instance_path, "The path of the instance, which is added")
      ->type_name("PATH")
      ->needs(instance);
}

void AddListOfPaths(CLI::App& command, AddArguments& arguments) {
  CLI::Option* const list = command
                                .add_option("--from", arguments.list_of_paths,
                                            "Add the files of a list too, one on each line; - is "
                                            "standard input")
                                ->type_name("LIST");
  command.add_flag("-0,--null", arguments.ends_with_zero, "Each name in the list ends with a zero")
      ->needs(list);
}

void DefineAdd(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "add", "Add files of one kind to a project", kAddHelp);
  auto& arguments = Requested<AddArguments>(command, request, [](const AddArguments& given) {
    const bool has_files = !given.paths.empty() || given.list_of_paths || given.instance_path;
    if (!has_files) throw CLI::RequiredError("PATH");
  });
  AddChangedFile(command, arguments.file);
  command.add_option("PATH", arguments.paths, "A file to add");
  AddInstance(command, arguments,
              AddFileKinds(command, FlatFileKinds(), arguments.kind, "They are "));
  command
      .add_option("--hdl-version", arguments.hdl_version,
                  "The language version of design or simulation files, such as sv_2017")
      ->type_name("VERSION");
  command
      .add_option("--library", arguments.library,
                  "The library that they are compiled into, if not \"default\"")
      ->type_name("LIBRARY");
  AddListOfPaths(command, arguments);
  ExcludeEachOther(
      {AddNeighbour(command, "--before", arguments.place.before, "Put them before this one"),
       command.add_flag("--first", arguments.place.first, "Put them before all others")});
  command.add_flag("--again", arguments.again, "Add also files that are in the list already");
  command.add_flag("--strict", arguments.strict, "Refuse, with status 1, what is no file");
}

void DefineRemove(CLI::App& program, Request& request) {
  CLI::App& command = AddCommand(program, "remove", "Remove files from a project", kRemoveHelp);
  auto& arguments = Requested<RemoveArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("NAME", arguments.names, "A file to remove")->required();
  AddFileKinds(command, ListedFileKinds(), arguments.kind, "Only from the ");
}

void DefineRename(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "rename", "Change the name of a file in a project", kRenameHelp);
  auto& arguments = Requested<RenameArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("OLD", arguments.former_name, "The file or directory")->required();
  command.add_option("NEW", arguments.new_name, "What it is called now")->required();
  command.add_flag(InstanceKind().option, arguments.of_instance,
                   "OLD and NEW are names of an IP instance");
}

void DefineMove(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "move", "Move a file within a list of a project", kMoveHelp);
  auto& arguments = Requested<MoveArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("NAME", arguments.name, "The file or IP instance")->required();
  AddFileKinds(command, ListedFileKinds(), arguments.kind, "Among the ");
  ListPlace& place = arguments.place;
  ExcludeEachOther({AddNeighbour(command, "--before", place.before, "To the place before this one"),
                    AddNeighbour(command, "--after", place.after, "To the place behind this one"),
                    command.add_flag("--first", place.first, "To the begin of the list"),
                    command.add_flag("--last", place.last, "To the end of the list")});
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

void DefineApply(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "apply", "Give a project the values of a JSON document", kApplyHelp);
  auto& arguments = Requested<ApplyArguments>(command, request);
  AddChangedFile(command, arguments.file);
  command.add_option("JSON", arguments.document, "The document; - or nothing is standard input");
}

void DefineFormat(CLI::App& program, Request& request) {
  CLI::App& command =
      AddCommand(program, "format", "Write project files in their canonical form", kFormatHelp);
  auto& arguments = Requested<FormatArguments>(command, request, [](const FormatArguments& given) {
    const auto& files = given.files;
    const bool has_input = std::find(files.begin(), files.end(), kStandardInput) != files.end();
    if (given.name && !has_input) throw CLI::RequiresError("--path", kStandardInput);
  });
  command.add_option("FILE", arguments.files, kFileHelp)->required();
  AddForce(command, arguments.despite_errors);
  ExcludeEachOther(
      {command.add_flag("--check", arguments.check, "Only tell which files are not in the form"),
       command.add_flag("--stdout", arguments.to_output,
                        "Write to standard output and leave the files")});
  command.add_flag("--no-stamps", arguments.no_stamps, "Leave the stamps out");
  command.add_option("--path", arguments.name, "What to call standard input in messages")
      ->type_name("NAME");
}

}  // namespace

void DefineChangingCommands(CLI::App& program, Request& request) {
  DefineNew(program, request);
  DefineSet(program, request);
  DefineUnset(program, request);
  DefineAdd(program, request);
  DefineRemove(program, request);
  DefineRename(program, request);
  DefineMove(program, request);
  DefineSetInterface(program, request);
  DefineApply(program, request);
  DefineFormat(program, request);
}

}  // namespace kelproj
