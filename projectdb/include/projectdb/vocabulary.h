#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <kel/export.h>
#include <projectdb/project_contents.h>
#include <projectdb/records.h>

/// The one vocabulary of a project: what each value and each list of it is called, for programs and
/// for people, and how it is reached. Whatever goes through a whole project, such as a comparison,
/// is a loop over these tables:
///
/// ```cpp
/// for (const projectdb::ProjectTerm& term : projectdb::ProjectTerms()) {
///   std::visit([&](const auto& access) { Compare(term.key, access(before), access(after)); },
///              term.access);
/// }
/// ```
///
/// with one Compare for each type of value: a text, the info attributes, and the lists of files
/// with version and library, of names alone and of IP instances.
///
/// Nothing here locks or keeps a state; all text is UTF-8.
namespace projectdb {

/// Entries that last as long as the program.
template <typename Entry>
class Table {
 public:
  constexpr Table(const Entry* begin, std::size_t size) : begin_(begin), end_(begin + size) {}

  constexpr const Entry* begin() const { return begin_; }
  constexpr const Entry* end() const { return end_; }
  constexpr std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }

 private:
  const Entry* begin_;
  const Entry* end_;
};

/// The names of files of some kinds end so, behind a stem that is not empty.
inline constexpr char kProjectFileEnding[] = ".xml";
inline constexpr char kTimingConstraintFileEnding[] = ".sdc";
inline constexpr char kInterfaceConstraintFileEnding[] = ".interface.csv";

/// Whether a file's name, the last part of its path, has the ending behind a stem. The empty ending
/// is that of any name.
KEL_EXPORT bool HasEnding(std::string_view path, std::string_view ending);

/// The library that source files are compiled into if none is given.
inline constexpr char kDefaultLibrary[] = "default";

/// Who decides what a value is.
enum class TermKind {
  kValue,      ///< The project's user.
  kStamp,      ///< Every writing of a project file, of which it tells.
  kDirectory,  ///< Every load: it is the directory of the project file.
  kFormat,     ///< The format: a load keeps no other.
  kMemory,     ///< The running program: no project file keeps it.
};

/// The way to one field of a record.
template <typename Record, typename Field>
struct Access {
  const Field& (*read)(const Record&);
  Field& (*write)(Record&);

  const Field& operator()(const Record& record) const { return read(record); }
  Field& operator()(Record& record) const { return write(record); }
};

/// One value or list of a record that has fields of these types.
template <typename Record, typename... Fields>
struct Term {
  /// Its dotted name for programs, such as "device.family".
  std::string_view key;
  /// Its name for people, such as "family".
  std::string_view title;
  /// What it belongs to, for people, such as "Device"; empty if the title says enough. Terms of one
  /// group stand together.
  std::string_view group;
  TermKind kind;
  /// What its names end in, empty if in anything; none if it names no files.
  std::optional<std::string_view> file_ending;
  std::variant<Access<Record, Fields>...> access;
};

/// The type of the info attributes, by name.
using InfoAttributes = std::map<std::string, std::string>;

/// The type of the parameters of a flow process, by the name of their map; the key of one is that
/// of the process, the map's name and its own, with dots between them.
using ParameterMaps = std::map<std::string, SortedParameters>;

using DesignFileTerm = Term<DesignFile, std::string>;
using IPTerm = Term<IP, std::string, std::vector<IPSrcFile>>;
using FlowProcessTerm =
    Term<FlowProcessContents, std::string, ParameterMaps, std::vector<Parameter>>;
using ProjectTerm = Term<ProjectContents, std::string, InfoAttributes, std::vector<DesignFile>,
                         std::vector<std::string>, std::vector<IP>>;

/// Everything that a project holds beside its flow processes, in the order of a project file.
KEL_EXPORT Table<ProjectTerm> ProjectTerms();

/// Everything that a flow process holds. Keys follow the name of the process and a dot; that of the
/// parameter maps is empty, as their own names stand there.
KEL_EXPORT Table<FlowProcessTerm> FlowProcessTerms();

/// The fields of an entry in a list of files; the first is its name.
KEL_EXPORT Table<DesignFileTerm> DesignFileTerms();

/// The fields of an IP instance; the first is its name. Keys follow "ip.", that name and a dot.
KEL_EXPORT Table<IPTerm> IPTerms();

/// What an entry of a list is called.
inline const std::string& NameOf(const std::string& name) { return name; }
inline const std::string& NameOf(const DesignFile& file) { return file.name; }
inline const std::string& NameOf(const IPSrcFile& file) { return file.name; }
inline const std::string& NameOf(const IP& ip) { return ip.instance_name; }
inline const std::string& NameOf(const Parameter& parameter) { return parameter.name; }

/// The stored name of the file that an entry of a list stands for.
inline const std::string& FileNameOf(const std::string& name) { return name; }
inline const std::string& FileNameOf(const DesignFile& file) { return file.name; }
inline const std::string& FileNameOf(const IPSrcFile& file) { return file.name; }
inline const std::string& FileNameOf(const IP& ip) { return ip.path; }

/// The keys of the values that a project file has as attributes of its root, under these names.
inline constexpr char kProjectNameKey[] = "name";
inline constexpr char kSoftwareVersionKey[] = "sw_version";
inline constexpr char kLastModifyTimeKey[] = "last_change_date";

/// The key of all info attributes; that of one goes on with a dot and its name.
inline constexpr char kInfoAttributesKey[] = "info";

/// The keys of what names files.
inline constexpr char kDesignFilesKey[] = "design.files";
inline constexpr char kTimingConstraintFilesKey[] = "constraint.sdc";
inline constexpr char kInterfaceConstraintFileKey[] = "constraint.interface";
inline constexpr char kIsfFilesKey[] = "isf.files";
inline constexpr char kSimulationFilesKey[] = "simulation.files";
inline constexpr char kMiscellaneousFilesKey[] = "misc.files";
inline constexpr char kIPInstancesKey[] = "ip";
inline constexpr char kIPSourceFilesKey[] = "files";  ///< Behind that of an instance.

/// The key of a flow process's tool, behind that of the process.
inline constexpr char kToolNameKey[] = "tool";

/// Whether a project keeps an info attribute of this name: it has no field of that name, and the
/// name is none that belongs to XML, "xmlns", "xsi" or one of these and a colon before the rest.
KEL_EXPORT bool IsInfoAttributeName(std::string_view name);

/// A flow process.
struct FlowProcessName {
  ProcType type;
  const char* name;   ///< In keys, and of its element in a project file.
  const char* title;  ///< For people.
};

/// By ProcType.
inline constexpr std::array<FlowProcessName, 4> kFlowProcesses = {{
    {e_synthesis, "synthesis", "Synthesis"},
    {e_place_and_route, "place_and_route", "Place and route"},
    {e_bitstream_generation, "bitstream_generation", "Bitstream generation"},
    {e_debugger, "debugger", "Debugger"},
}};

inline constexpr char kParameterMap[] = "param";  ///< Ordinary parameters of any process.
inline constexpr char kDefineMap[] = "dynparam";  ///< Verilog define parameters of synthesis.
inline constexpr char kMacroMap[] = "defmacro";   ///< Verilog macros of synthesis.

/// The ordinary parameter of synthesis and of place and route that
/// KelProjectDatabase::ParseMaxThreads reads.
inline constexpr char kMaxThreadsParameter[] = "max_threads";

/// A parameter map that a project file can hold.
struct ParameterMapName {
  const char* name;   ///< In keys, and of a parameter's element in a project file.
  const char* title;  ///< Of one parameter in it, for people.
};

inline constexpr std::array<ParameterMapName, 3> kParameterMaps = {{
    {kParameterMap, "parameter"},
    {kDefineMap, "Verilog define parameter"},
    {kMacroMap, "Verilog macro"},
}};

/// The maps that a process has in a project file: those of Verilog are of synthesis alone.
constexpr Table<ParameterMapName> MapsOf(ProcType type) {
  return {kParameterMaps.data(), type == e_synthesis ? kParameterMaps.size() : 1};
}

/// The texts of the parameter types, by ParameterType; kNoParameterType has none.
inline constexpr std::array<const char*, 4> kParameterTypeTexts = {"e_string", "e_bool", "e_option",
                                                                   "e_noarg"};

/// The text of a type, "" of any value that has none.
KEL_EXPORT std::string TextOf(ParameterType type);

/// The type of which this is the text, kNoParameterType for any other text.
KEL_EXPORT ParameterType ParameterTypeOf(std::string_view text);

/// Whether a project keeps a parameter: a switch has no value, every other parameter has one.
inline bool HasValueForItsType(const Parameter& parameter) {
  return parameter.value.empty() == (parameter.type == e_noarg);
}

}  // namespace projectdb
