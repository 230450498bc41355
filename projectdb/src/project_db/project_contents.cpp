#include <projectdb/project_contents.h>

#include <mutex>

#include "contents/parameter_rules.h"
#include "project_db/project_data.h"

namespace projectdb {
namespace {

FlowProcessContents ContentsOf(const FlowProcess& process) {
  FlowProcessContents contents;
  contents.name = process.name;
  contents.tool_name = process.tool_name;
  contents.parameters = process.parameters;
  for (const auto& [name, position] : process.parameter_map_index) {
    const ParameterMap* map = ParameterMapAt(process, position);
    if (map) contents.parameter_maps.try_emplace(name, map->begin(), map->end());
  }
  return contents;
}

}  // namespace

ProjectContents GetProjectContents(const KelProjectDatabase& database) {
  const std::lock_guard<std::mutex> lock(database.mutex_);
  ProjectContents contents;
  if (!database.data_) return contents;
  const auto& data = *database.data_;
  contents.project_name = data.project_name;
  contents.current_path = data.current_path;
  contents.software_version = data.software_version;
  contents.last_modify_time = data.last_modify_time;
  contents.info_attributes.insert(data.info_attributes.begin(), data.info_attributes.end());
  contents.device_info = data.device_info;
  contents.design_info = data.design_info;
  contents.design_constraint = data.design_constraint;
  contents.design_isf = data.design_isf;
  contents.ip_info = data.ip_info;
  contents.sim_files = data.sim_files;
  contents.misc_files = data.misc_files;
  contents.flow_processes.reserve(data.flow_processes.size());
  for (const FlowProcess& process : data.flow_processes) {
    contents.flow_processes.push_back(ContentsOf(process));
  }
  return contents;
}

}  // namespace projectdb
