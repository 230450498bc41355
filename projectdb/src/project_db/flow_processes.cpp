#include <utility>

#include <projectdb/vocabulary.h>

#include "contents/parameter_rules.h"
#include "project_db/project_data.h"

namespace projectdb {
namespace {

// The lookups are asked to be inlined: the calls were an eighth of the time that a value takes.

inline ParameterMap* FindMap(FlowProcess& process, const std::string& name) {
  const auto entry = process.parameter_map_index.find(name);
  if (entry == process.parameter_map_index.end()) return nullptr;
  return ParameterMapAt(process, entry->second);
}

// Null if there is no such process, map or parameter.
inline const Parameter* FindParameter(FlowProcess* process, const std::string& map_name,
                                      const std::string& name) {
  const ParameterMap* map = process ? FindMap(*process, map_name) : nullptr;
  if (!map) return nullptr;
  const auto entry = map->find(name);
  return entry == map->end() ? nullptr : &entry->second;
}

ParameterMap* AddMap(FlowProcess& process, std::string name) {
  const std::size_t position = process.parameter_maps.size();
  if (position >= kMaximumMaps) return nullptr;
  process.parameter_maps.emplace_back();
  try {
    process.parameter_map_index.insert_or_assign(std::move(name),
                                                 static_cast<std::int16_t>(position));
  } catch (...) {
    process.parameter_maps.pop_back();
    throw;
  }
  return &process.parameter_maps.back();
}

}  // namespace

FlowProcess* KelProjectDatabase::GetFlowProcess(ProcType type) const {
  const auto position = static_cast<std::size_t>(type);
  if (!data_ || position >= data_->flow_processes.size()) return nullptr;
  return &data_->flow_processes[position];
}

// The map name comes by value like every map name of the interface.
// NOLINTBEGIN(performance-unnecessary-value-param)
ParameterMap* KelProjectDatabase::FindFlowProcessParameterMap(ProcType type,
                                                              std::string map_name) const {
  FlowProcess* process = GetFlowProcess(type);
  return process ? FindMap(*process, map_name) : nullptr;
}
// NOLINTEND(performance-unnecessary-value-param)

ParameterMap* KelProjectDatabase::AddFlowProcessParameterMap(ProcType type, std::string map_name) {
  FlowProcess* process = GetFlowProcess(type);
  if (!process) return nullptr;
  ParameterMap* map = FindMap(*process, map_name);
  return map ? map : AddMap(*process, std::move(map_name));
}

bool KelProjectDatabase::InsertOrAssignParameterToMap(ParameterMap& map, const std::string& key,
                                                      const Parameter& parameter) {
  if (!HasValueForItsType(parameter)) return false;
  const auto [entry, inserted] = map.try_emplace(key, parameter);
  if (inserted) return true;
  Parameter& stored = entry->second;
  if (stored.type != parameter.type) return false;
  // Copied first: running out of memory must not leave the new name with the old value.
  Parameter copy = parameter;
  stored = std::move(copy);
  return true;
}

void KelProjectDatabase::SetFlowProcessName(ProcType type, const char* name) {
  FlowProcess* process = GetFlowProcess(type);
  if (process && name) process->name = name;
}

void KelProjectDatabase::SetFlowProcessExecutableName(ProcType type, const std::string& name) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (FlowProcess* process = GetFlowProcess(type)) process->tool_name = name;
}

std::string KelProjectDatabase::GetFlowProcessExecutableName(ProcType type) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const FlowProcess* process = GetFlowProcess(type);
  return process ? process->tool_name : std::string();
}

bool KelProjectDatabase::AddFlowProcessParameter(ProcType type, std::string map_name,
                                                 const Parameter& parameter) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ParameterMap* map = AddFlowProcessParameterMap(type, std::move(map_name));
  return map && InsertOrAssignParameterToMap(*map, parameter.name, parameter);
}

bool KelProjectDatabase::AddFlowProcessParameter(ProcType type, std::string map_name,
                                                 const std::string& name, const std::string& value,
                                                 ParameterType value_type) {
  return AddFlowProcessParameter(type, std::move(map_name), Parameter(name, value, value_type));
}

bool KelProjectDatabase::AddFlowProcessParameterList(ProcType type, std::string map_name,
                                                     const std::vector<Parameter>& parameters) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ParameterMap* map = AddFlowProcessParameterMap(type, std::move(map_name));
  if (!map) return false;
  for (const Parameter& parameter : parameters) {
    InsertOrAssignParameterToMap(*map, parameter.name, parameter);
  }
  return true;
}

void KelProjectDatabase::GetFlowProcessParameterList(ProcType type, std::string map_name,
                                                     std::vector<Parameter>& parameters) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const ParameterMap* map = FindFlowProcessParameterMap(type, std::move(map_name));
  if (!map) return;
  parameters.reserve(map->size());
  for (const auto& [name, parameter] : *map) parameters.push_back(parameter);
}

// Map names by value, as above.
// NOLINTBEGIN(performance-unnecessary-value-param)
std::optional<Parameter> KelProjectDatabase::GetFlowProcessParameter(
    ProcType type, std::string map_name, const std::string& name) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Parameter* parameter = FindParameter(GetFlowProcess(type), map_name, name);
  return parameter ? std::optional<Parameter>(*parameter) : std::nullopt;
}

std::string KelProjectDatabase::GetFlowProcessParameterValue(ProcType type, std::string map_name,
                                                             const std::string& name) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Parameter* parameter = FindParameter(GetFlowProcess(type), map_name, name);
  return parameter ? parameter->value : std::string();
}
// NOLINTEND(performance-unnecessary-value-param)

}  // namespace projectdb
