#include <projectdb/vocabulary.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <type_traits>
#include <utility>

#include "contents/info_attribute_names.h"

namespace projectdb {
namespace {

template <typename Member>
struct MemberOf;

template <typename Field, typename Record>
struct MemberOf<Field Record::*> {
  using Owner = Record;
};

// The members lead from the record to the field.
// clang-format off
template <auto First, auto... Rest>
struct Path {
  using Record = typename MemberOf<decltype(First)>::Owner;
  using Field = std::decay_t<decltype(((std::declval<Record&>() .* First) .* ... .* Rest))>;

  static const Field& Read(const Record& record) { return ((record .* First) .* ... .* Rest); }
  static Field& Write(Record& record) { return ((record .* First) .* ... .* Rest); }
};
// clang-format on

template <auto... Members>
constexpr Access<typename Path<Members...>::Record, typename Path<Members...>::Field> kAt = {
    Path<Members...>::Read, Path<Members...>::Write};

constexpr auto kValue = TermKind::kValue;
constexpr auto kStamp = TermKind::kStamp;
constexpr auto kDirectory = TermKind::kDirectory;
constexpr auto kFormat = TermKind::kFormat;
constexpr auto kMemory = TermKind::kMemory;

constexpr std::optional<std::string_view> kNoFile;
constexpr std::optional<std::string_view> kAnyFile = "";

using Project = ProjectContents;
using Process = FlowProcessContents;

// The tables are to be read as such: one line for each value or list.
constexpr ProjectTerm kProjectTerms[] = {
    // key, title, group, kind, files, place
    {kProjectNameKey, "name", "Project", kValue, kNoFile, kAt<&Project::project_name>},
    {"directory", "directory", "Project", kDirectory, kNoFile, kAt<&Project::current_path>},
    {kSoftwareVersionKey, "software version", "Project", kStamp, kNoFile,
     kAt<&Project::software_version>},
    {kLastModifyTimeKey, "last change", "Project", kStamp, kNoFile,
     kAt<&Project::last_modify_time>},
    {kInfoAttributesKey, "Info attributes", "", kValue, kNoFile, kAt<&Project::info_attributes>},
    {"device.family", "family", "Device", kValue, kNoFile,
     kAt<&Project::device_info, &DeviceInfo::family>},
    {"device.device", "device", "Device", kValue, kNoFile,
     kAt<&Project::device_info, &DeviceInfo::device>},
    {"device.timing_model", "timing model", "Device", kValue, kNoFile,
     kAt<&Project::device_info, &DeviceInfo::timing_model>},
    {"design.top_module", "top module", "Design", kValue, kNoFile,
     kAt<&Project::design_info, &DesignInfo::top_module>},
    {"design.top_vhdl_arch", "top VHDL architecture", "Design", kValue, kNoFile,
     kAt<&Project::design_info, &DesignInfo::top_vhdl_arch>},
    {"design.def_veri_version", "default Verilog version", "Design", kValue, kNoFile,
     kAt<&Project::design_info, &DesignInfo::def_veri_version>},
    {"design.def_vhdl_version", "default VHDL version", "Design", kValue, kNoFile,
     kAt<&Project::design_info, &DesignInfo::def_vhdl_version>},
    {kDesignFilesKey, "Design files", "", kValue, kAnyFile,
     kAt<&Project::design_info, &DesignInfo::design_files>},
    {kTimingConstraintFilesKey, "Timing constraint files", "", kValue, kTimingConstraintFileEnding,
     kAt<&Project::design_constraint, &DesignConstraint::sdc_files>},
    {kInterfaceConstraintFileKey, "Interface constraint", "", kValue,
     kInterfaceConstraintFileEnding,
     kAt<&Project::design_constraint, &DesignConstraint::inter_file>},
    {kIsfFilesKey, "ISF files", "", kValue, kAnyFile,
     kAt<&Project::design_isf, &DesignISF::isf_files>},
    {kSimulationFilesKey, "Simulation files", "", kValue, kAnyFile, kAt<&Project::sim_files>},
    {kMiscellaneousFilesKey, "Miscellaneous files", "", kValue, kAnyFile,
     kAt<&Project::misc_files>},
    {kIPInstancesKey, "IP instances", "", kValue, kAnyFile, kAt<&Project::ip_info, &IPInfo::ips>},
};

constexpr FlowProcessTerm kFlowProcessTerms[] = {
    {"name", "name", "", kFormat, kNoFile, kAt<&Process::name>},
    {kToolNameKey, "tool", "", kValue, kNoFile, kAt<&Process::tool_name>},
    {"", "Parameters", "", kValue, kNoFile, kAt<&Process::parameter_maps>},
    {"parameters", "Plain parameters", "", kMemory, kNoFile, kAt<&Process::parameters>},
};

constexpr DesignFileTerm kDesignFileTerms[] = {
    {"name", "name", "", kValue, kAnyFile, kAt<&DesignFile::name>},
    {"version", "version", "", kValue, kNoFile, kAt<&DesignFile::version>},
    {"library", "library", "", kValue, kNoFile, kAt<&DesignFile::library>},
};

constexpr IPTerm kIPTerms[] = {
    {"instance_name", "instance name", "", kValue, kNoFile, kAt<&IP::instance_name>},
    {"path", "path", "", kValue, kAnyFile, kAt<&IP::path>},
    {kIPSourceFilesKey, "source files", "", kValue, kAnyFile, kAt<&IP::src_files>},
};

template <typename Entry, std::size_t kSize>
constexpr Table<Entry> TableOf(const Entry (&entries)[kSize]) {
  return {entries, kSize};
}

}  // namespace

bool HasEnding(std::string_view path, std::string_view ending) {
  if (ending.empty()) return true;
  constexpr auto kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
  constexpr char kSeparators[] = {'/', kSeparator, '\0'};
  const std::string_view name = path.substr(path.find_last_of(kSeparators) + 1);
  return name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending;
}

Table<ProjectTerm> ProjectTerms() { return TableOf(kProjectTerms); }
Table<FlowProcessTerm> FlowProcessTerms() { return TableOf(kFlowProcessTerms); }
Table<DesignFileTerm> DesignFileTerms() { return TableOf(kDesignFileTerms); }
Table<IPTerm> IPTerms() { return TableOf(kIPTerms); }

bool IsInfoAttributeName(std::string_view name) {
  return !IsForXmlItself(name) && name != kProjectNameKey && name != kSoftwareVersionKey &&
         name != kLastModifyTimeKey;
}

std::string TextOf(ParameterType type) {
  const auto position = static_cast<std::size_t>(type);
  return position < kParameterTypeTexts.size() ? kParameterTypeTexts[position] : "";
}

ParameterType ParameterTypeOf(std::string_view text) {
  const auto* const entry = std::find(kParameterTypeTexts.begin(), kParameterTypeTexts.end(), text);
  // The end of the table stands for "no type".
  static_assert(kNoParameterType == kParameterTypeTexts.size());
  return static_cast<ParameterType>(entry - kParameterTypeTexts.begin());
}

}  // namespace projectdb
