#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include <projectdb/project_db.h>

namespace projectdb {

/// The project data block: all that a database object holds of its project.
struct KelProjectDatabase::ProjectData {
  std::string project_name;
  std::string current_path;
  std::string software_version;
  std::string last_modify_time;
  std::unordered_map<std::string, std::string> info_attributes;
  DeviceInfo device_info;
  DesignInfo design_info;
  DesignConstraint design_constraint;
  DesignISF design_isf;
  IPInfo ip_info;
  std::vector<DesignFile> sim_files;
  std::vector<DesignFile> misc_files;
  /// One for each ProcType, by its value; empty only if building them ran out of memory.
  std::vector<FlowProcess> flow_processes;
};

}  // namespace projectdb
