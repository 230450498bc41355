#include "contents/project_rules.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <projectdb/vocabulary.h>

#include "contents/parameter_rules.h"
#include "contents/record_text.h"

namespace projectdb {
namespace {

void RequireInfoAttributes(const ProjectContents& contents) {
  for (const auto& [name, value] : contents.info_attributes) {
    if (!IsInfoAttributeName(name)) {
      throw std::invalid_argument(fmt::format("info.{}: no info attribute has that name", name));
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

}  // namespace

void RequireProject(const ProjectContents& contents) {
  RequireInfoAttributes(contents);
  RequireFlowProcesses(contents);
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    RequireParameters(contents.flow_processes[type], kFlowProcesses[type].name);
  }
}

}  // namespace projectdb
