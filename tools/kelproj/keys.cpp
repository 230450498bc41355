#include "keys.h"

#include <array>
#include <string_view>

#include <projectdb/vocabulary.h>

#include "console.h"

namespace kelproj {
namespace {

using projectdb::FlowProcessContents;
using projectdb::FlowProcessName;
using projectdb::KelProjectDatabase;
using projectdb::kFlowProcesses;
using projectdb::Parameter;
using projectdb::ParameterType;
using projectdb::ProcType;
using projectdb::ProjectContents;

constexpr char kNoTypeName[] = "none";
constexpr char kToolKey[] = "tool";  // Of a process's executable.

/// A value that every project has once.
struct Property {
  std::string_view key;
  std::string (*get)(const ProjectContents&);
  void (*set)(KelProjectDatabase&, const std::string&);  ///< Null if it cannot be set.
};

template <void (KelProjectDatabase::*Setter)(const std::string&)>
void Set(KelProjectDatabase& database, const std::string& value) {
  (database.*Setter)(value);
}

void SetInterfaceConstraint(KelProjectDatabase& database, const std::string& name) {
  if (!database.SetInterfaceConstraint(name)) {
    throw Trouble("\"" + name + "\" is no interface constraint file: its name must be NAME" +
                  KelProjectDatabase::INTERFACE_FILE_EXT);
  }
}

constexpr std::array<Property, 11> kProperties = {{
    {"name", [](const ProjectContents& project) { return project.project_name; },
     Set<&KelProjectDatabase::SetProjectName>},
    {"sw_version", [](const ProjectContents& project) { return project.software_version; },
     nullptr},
    {"last_change_date", [](const ProjectContents& project) { return project.last_modify_time; },
     nullptr},
    {"device.family", [](const ProjectContents& project) { return project.device_info.family; },
     Set<&KelProjectDatabase::SetDeviceFamily>},
    {"device.device", [](const ProjectContents& project) { return project.device_info.device; },
     Set<&KelProjectDatabase::SetDeviceModel>},
    {"device.timing_model",
     [](const ProjectContents& project) { return project.device_info.timing_model; },
     Set<&KelProjectDatabase::SetDeviceTimingModel>},
    {"design.top_module",
     [](const ProjectContents& project) { return project.design_info.top_module; },
     Set<&KelProjectDatabase::SetDesignTopModuleName>},
    {"design.top_vhdl_arch",
     [](const ProjectContents& project) { return project.design_info.top_vhdl_arch; },
     Set<&KelProjectDatabase::SetDesignTopVHDLArchitecture>},
    {"design.def_veri_version",
     [](const ProjectContents& project) { return project.design_info.def_veri_version; }, nullptr},
    {"design.def_vhdl_version",
     [](const ProjectContents& project) { return project.design_info.def_vhdl_version; }, nullptr},
    {"constraint.interface",
     [](const ProjectContents& project) { return project.design_constraint.inter_file; },
     SetInterfaceConstraint},
}};

std::string TypeName(ParameterType type) {
  const std::string name = projectdb::TextOf(type);
  return name.empty() ? kNoTypeName : name;
}

// The rest of the text behind a first part and a dot; nothing if it begins otherwise or is empty.
std::optional<std::string> RestBehind(std::string_view part, std::string_view text) {
  if (text.size() < part.size() + 2 || text.substr(0, part.size()) != part ||
      text[part.size()] != '.') {
    return std::nullopt;
  }
  return std::string(text.substr(part.size() + 1));
}

Key PropertyKey(const Property& property) {
  Key key{property.get, {}};
  if (property.set) {
    key.write = [set = property.set](KelProjectDatabase& database, const std::string& value,
                                     std::optional<ParameterType>) { set(database, value); };
  }
  return key;
}

Key InfoKey(const std::string& name) {
  const auto read = [name](const ProjectContents& project) -> std::optional<std::string> {
    const auto attribute = project.info_attributes.find(name);
    if (attribute == project.info_attributes.end()) return std::nullopt;
    return attribute->second;
  };
  const auto write = [name](KelProjectDatabase& database, const std::string& value,
                            std::optional<ParameterType>) {
    database.AddProjectInfoAttribute(name, value);
  };
  return {read, write};
}

const FlowProcessContents& ContentsOf(const ProjectContents& project, ProcType type) {
  return project.flow_processes.at(static_cast<std::size_t>(type));
}

Key ToolKey(ProcType type) {
  const auto read = [type](const ProjectContents& project) {
    return ContentsOf(project, type).tool_name;
  };
  const auto write = [type](KelProjectDatabase& database, const std::string& value,
                            std::optional<ParameterType>) {
    database.SetFlowProcessExecutableName(type, value);
  };
  return {read, write};
}

/// Where a parameter is kept.
struct ParameterPlace {
  ProcType process;
  std::string map;
  std::string name;
};

// Macros and defines have no type unless one is asked for, as in the library's own operations.
ParameterType TypeOfNew(const ParameterPlace& place) {
  return place.map == projectdb::kParameterMap ? projectdb::e_string : projectdb::kNoParameterType;
}

std::string RefusalReason(const std::optional<Parameter>& stored, ParameterType type) {
  if (stored && stored->type != type) {
    return "a parameter of type " + TypeName(stored->type) + " cannot become one of type " +
           TypeName(type);
  }
  return "a parameter of type " + TypeName(type) +
         (type == projectdb::e_noarg ? " takes no value" : " needs a value");
}

void WriteParameter(KelProjectDatabase& database, const ParameterPlace& place,
                    const std::string& value, std::optional<ParameterType> asked_type) {
  const auto stored = database.GetFlowProcessParameter(place.process, place.map, place.name);
  const ParameterType type = asked_type ? *asked_type : (stored ? stored->type : TypeOfNew(place));
  if (!database.AddFlowProcessParameter(place.process, place.map, place.name, value, type)) {
    throw Trouble(place.name + ": " + RefusalReason(stored, type));
  }
}

Key ParameterKey(const ParameterPlace& place) {
  const auto read = [place](const ProjectContents& project) -> std::optional<std::string> {
    const auto& maps = ContentsOf(project, place.process).parameter_maps;
    const auto map = maps.find(place.map);
    if (map == maps.end()) return std::nullopt;
    const auto parameter = map->second.find(place.name);
    if (parameter == map->second.end()) return std::nullopt;
    return parameter->second.value;
  };
  const auto write = [place](KelProjectDatabase& database, const std::string& value,
                             std::optional<ParameterType> type) {
    WriteParameter(database, place, value, type);
  };
  return {read, write, true};
}

std::optional<Key> ProcessKey(ProcType type, const std::string& text) {
  if (text == kToolKey) return ToolKey(type);
  for (const projectdb::ParameterMapName& map : projectdb::MapsOf(type)) {
    if (const auto name = RestBehind(map.name, text)) return ParameterKey({type, map.name, *name});
  }
  return std::nullopt;
}

}  // namespace

Key FindKey(const std::string& text) {
  for (const Property& property : kProperties) {
    if (text == property.key) return PropertyKey(property);
  }
  if (const auto name = RestBehind("info", text)) return InfoKey(*name);
  for (const FlowProcessName& process : kFlowProcesses) {
    const auto rest = RestBehind(process.name, text);
    const auto key = rest ? ProcessKey(process.type, *rest) : std::nullopt;
    if (key) return *key;
  }
  throw Trouble("\"" + text + "\" is no key of a project");
}

std::vector<std::string> FixedKeys() {
  std::vector<std::string> keys;
  keys.reserve(kProperties.size() + kFlowProcesses.size());
  for (const Property& property : kProperties) keys.emplace_back(property.key);
  for (const FlowProcessName& process : kFlowProcesses) {
    keys.push_back(std::string(process.name).append(".").append(kToolKey));
  }
  return keys;
}

std::vector<std::string> ParameterTypeNames() {
  const auto& texts = projectdb::kParameterTypeTexts;
  std::vector<std::string> names(texts.begin(), texts.end());
  names.emplace_back(kNoTypeName);
  return names;
}

ParameterType ParameterTypeFromName(const std::string& name) {
  return projectdb::ParameterTypeOf(name);
}

}  // namespace kelproj
