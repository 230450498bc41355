#include <projectdb/project_contents.h>

#include <memory>
#include <mutex>
#include <utility>

#include "contents/parameter_rules.h"
#include "contents/project_rules.h"
#include "project_db/project_access.h"
#include "project_db/project_data.h"

namespace projectdb {
namespace {

// All but the flow processes, whose maps have an order on one side and an index on the other. From
// an rvalue the fields are moved.
template <typename From, typename To>
void AssignFields(From&& from, To& to) {
  to.project_name = std::forward<From>(from).project_name;
  to.current_path = std::forward<From>(from).current_path;
  to.software_version = std::forward<From>(from).software_version;
  to.last_modify_time = std::forward<From>(from).last_modify_time;
  to.info_attributes.insert(from.info_attributes.begin(), from.info_attributes.end());
  to.device_info = std::forward<From>(from).device_info;
  to.design_info = std::forward<From>(from).design_info;
  to.design_constraint = std::forward<From>(from).design_constraint;
  to.design_isf = std::forward<From>(from).design_isf;
  to.ip_info = std::forward<From>(from).ip_info;
  to.sim_files = std::forward<From>(from).sim_files;
  to.misc_files = std::forward<From>(from).misc_files;
}

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

FlowProcess ProcessOf(const FlowProcessContents& contents) {
  FlowProcess process;
  process.name = contents.name;
  process.tool_name = contents.tool_name;
  process.parameters = contents.parameters;
  for (const auto& [name, parameters] : contents.parameter_maps) {
    process.parameter_map_index.emplace(name,
                                        static_cast<std::int16_t>(process.parameter_maps.size()));
    process.parameter_maps.emplace_back(parameters.begin(), parameters.end());
  }
  return process;
}

// Moves what it can if the data are an rvalue.
template <typename Data>
ProjectContents AllContentsOf(Data&& data) {
  ProjectContents contents;
  contents.flow_processes.reserve(data.flow_processes.size());
  for (const FlowProcess& process : data.flow_processes) {
    contents.flow_processes.push_back(ContentsOf(process));
  }
  AssignFields(std::forward<Data>(data), contents);
  return contents;
}

}  // namespace

ProjectContents KelProjectDatabase::CopyContents() const {
  return data_ ? AllContentsOf(std::as_const(*data_)) : ProjectContents();
}

ProjectContents KelProjectDatabase::TakeContents() {
  return data_ ? AllContentsOf(std::move(*data_)) : ProjectContents();
}

ProjectContents ProjectAccess::Copy(const KelProjectDatabase& database) {
  const std::lock_guard<std::mutex> lock(database.mutex_);
  return database.CopyContents();
}

void ProjectAccess::Set(KelProjectDatabase& database, const ProjectContents& contents) {
  RequireProject(contents);
  auto data = std::make_unique<KelProjectDatabase::ProjectData>();
  AssignFields(contents, *data);
  data->flow_processes.reserve(contents.flow_processes.size());
  for (const FlowProcessContents& process : contents.flow_processes) {
    data->flow_processes.push_back(ProcessOf(process));
  }
  // The former project goes when the lock is given back.
  const std::lock_guard<std::mutex> lock(database.mutex_);
  database.data_.swap(data);
}

ProjectContents GetProjectContents(const KelProjectDatabase& database) {
  return ProjectAccess::Copy(database);
}

void SetProjectContents(KelProjectDatabase& database, const ProjectContents& contents) {
  ProjectAccess::Set(database, contents);
}

}  // namespace projectdb
