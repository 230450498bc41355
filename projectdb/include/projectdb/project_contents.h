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

/// Makes the object hold exactly these contents, whatever it held before, at one moment under its
/// lock. GetProjectContents then gives equal contents. If anything is thrown, the object holds what
/// it held.
///
/// @exception std::invalid_argument, with the dotted key in its text, for what no project is:
///            another number of flow processes than four, a parameter under another key than its
///            name or with a value that does not go with its type, more than 32768 maps of a
///            process, an info attribute of a name that stands for a field ("name", "sw_version",
///            "last_change_date") or that belongs to XML ("xmlns", "xsi", or one of these and a
///            colon before the name)
/// @exception std::system_error if the lock fails
/// @exception std::bad_alloc
KEL_EXPORT void SetProjectContents(KelProjectDatabase& database, const ProjectContents& contents);

}  // namespace projectdb
