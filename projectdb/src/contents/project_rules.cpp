#include "contents/project_rules.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <fmt/format.h>
#include <projectdb/vocabulary.h>

#include "contents/parameter_rules.h"
#include "contents/record_text.h"

namespace projectdb {
namespace {

void RequireInfoAttributes(const ProjectContents& contents) {
  for (const auto& [name, value] : contents.info_attributes) {
    if (!IsInfoAttributeName(name)) {
      throw std::invalid_argument(
          fmt::format("{}.{}: no info attribute has that name", kInfoAttributesKey, name));
    }
  }
}

void RequireFlowProcesses(const ProjectContents& contents) {
  if (contents.flow_processes.size() == kFlowProcesses.size()) return;
  throw std::invalid_argument(fmt::format("flow_processes: a project has {}, not {}",
                                          kFlowProcesses.size(), contents.flow_processes.size()));
}

void RequireParameter(const std::string& map_key, const std::string& key,
                      const Parameter& parameter) {
  if (key != parameter.name) {
    throw std::invalid_argument(
        fmt::format("{}.{}: the parameter's name is {:?}", map_key, key, parameter.name));
  }
  if (!HasValueForItsType(parameter)) {
    throw std::invalid_argument(
        fmt::format("{}.{}: the value does not go with the parameter's type", map_key, key));
  }
}

void RequireParameters(const FlowProcessContents& process, std::string_view process_key) {
  if (process.parameter_maps.size() > kMaximumMaps) {
    throw std::invalid_argument(
        fmt::format("{}: a flow process has at most {} maps", process_key, kMaximumMaps));
  }
  for (const auto& [name, parameters] : process.parameter_maps) {
    const std::string map_key = fmt::format("{}.{}", process_key, MapKey(name));
    for (const auto& [key, parameter] : parameters) RequireParameter(map_key, key, parameter);
  }
}

void RequireOwnName(const FlowProcessContents& process, std::string_view own_name) {
  if (process.name.empty() || process.name == own_name) return;
  throw std::invalid_argument(
      fmt::format("{}.name: a file would have {:?} for it", own_name, process.name));
}

bool IsMapOf(ProcType type, const std::string& name) {
  const auto maps = MapsOf(type);
  return std::any_of(maps.begin(), maps.end(),
                     [&name](const ParameterMapName& map) { return name == map.name; });
}

// A load passes over an entry without a name in the lists that have nothing else.
void RequireFileNames(const ProjectContents& contents, const ProjectTerm& term) {
  const auto* access = std::get_if<Access<ProjectContents, std::vector<std::string>>>(&term.access);
  if (!access) return;
  const std::vector<std::string>& names = (*access)(contents);
  const auto nameless = std::find(names.begin(), names.end(), "");
  if (nameless == names.end()) return;
  throw std::invalid_argument(fmt::format("{}[{}]: no project file keeps a file without a name",
                                          term.key, nameless - names.begin()));
}

void RequireMapsOfTheFormat(const FlowProcessContents& process, ProcType type) {
  for (const auto& [name, parameters] : process.parameter_maps) {
    if (parameters.empty() || IsMapOf(type, name)) continue;
    throw std::invalid_argument(fmt::format("{}.{}: no project file keeps a map of this name",
                                            kFlowProcesses.at(static_cast<std::size_t>(type)).name,
                                            MapKey(name)));
  }
}

}  // namespace

void RequireProject(const ProjectContents& contents) {
  RequireInfoAttributes(contents);
  RequireFlowProcesses(contents);
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    RequireParameters(contents.flow_processes[type], kFlowProcesses[type].name);
  }
}

void RequireProjectOfTheFormat(const ProjectContents& contents) {
  RequireProject(contents);
  for (const ProjectTerm& term : ProjectTerms()) RequireFileNames(contents, term);
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    RequireOwnName(contents.flow_processes[type], kFlowProcesses[type].name);
    RequireMapsOfTheFormat(contents.flow_processes[type], static_cast<ProcType>(type));
  }
}

}  // namespace projectdb
