#pragma once

#include <map>
#include <string>
#include <vector>

#include <kel/export.h>
#include <projectdb/records.h>

namespace projectdb {

class KelProjectDatabase;

/// Parameters by the key under which their map keeps them, which is their name unless a caller
/// chose another.
using SortedParameters = std::map<std::string, Parameter>;

/// What a project holds of one flow process.
struct FlowProcessContents {
  std::string name;
  std::string tool_name;
  std::map<std::string, SortedParameters> parameter_maps;  ///< By the map's name; may be empty.
  /// Plain parameters, which no project file keeps.
  std::vector<Parameter> parameters = {};
};

/// Everything that a project holds, as it is stored: file names are not resolved. Nothing in it
/// depends on the order of a hash table, so that two equal projects give equal contents.
struct ProjectContents {
  std::string project_name;
  std::string current_path;  ///< The project's directory.
  std::string software_version;
  std::string last_modify_time;
  std::map<std::string, std::string> info_attributes;
  DeviceInfo device_info;
  DesignInfo design_info;
  DesignConstraint design_constraint;
  DesignISF design_isf;
  IPInfo ip_info;
  std::vector<DesignFile> sim_files;
  std::vector<DesignFile> misc_files;
  /// By the value of their ProcType; none without a project.
  std::vector<FlowProcessContents> flow_processes;
};

/// A copy of all that the project holds, taken under the object's lock at one moment.
/// @return empty contents if there is no project
/// @exception std::system_error if the lock fails
/// @exception std::bad_alloc
KEL_EXPORT ProjectContents GetProjectContents(const KelProjectDatabase& database);

}  // namespace projectdb
