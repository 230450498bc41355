#include "testing/project_snapshot.h"

#include <ostream>

namespace test_support {
namespace {

using projectdb::KelProjectDatabase;
using projectdb::ProcType;

std::map<std::string, std::string> Properties(const KelProjectDatabase& database) {
  return {
      {"family", database.GetDeviceFamily()},
      {"device", database.GetDeviceModel()},
      {"timing_model", database.GetDeviceTimingModel()},
      {"top_module", database.GetDesignTopModuleName()},
      {"top_vhdl_arch", database.GetDesignTopVHDLArchitecture()},
      {"inter_file", database.GetInterfaceConstraint()},
  };
}

std::vector<std::string> List(const KelProjectDatabase& database,
                              void (KelProjectDatabase::*get)(std::vector<std::string>&) const) {
  std::vector<std::string> list;
  (database.*get)(list);
  return list;
}

std::vector<std::vector<std::string>> DesignFiles(const KelProjectDatabase& database) {
  std::vector<projectdb::DesignFile> files;
  database.GetDesignFileList(files);
  std::vector<std::vector<std::string>> rows;
  for (const auto& file : files) rows.push_back({file.name, file.version, file.library});
  return rows;
}

std::vector<std::vector<std::string>> IpInstances(const KelProjectDatabase& database) {
  std::vector<projectdb::IP> instances;
  database.GetIpInstanceList(instances);
  std::vector<std::vector<std::string>> rows;
  for (const auto& instance : instances) {
    std::vector<std::string> row{instance.instance_name, instance.path};
    for (const auto& file : instance.src_files) row.push_back(file.name);
    rows.push_back(row);
  }
  return rows;
}

ProjectSnapshot::Process Process(const projectdb::FlowProcess& process) {
  ProjectSnapshot::Process result{process.name, process.tool_name, {}};
  for (const auto& [map_name, position] : process.parameter_map_index) {
    for (const auto& [key, parameter] :
         process.parameter_maps.at(static_cast<std::size_t>(position))) {
      result.maps[map_name][key] = {parameter.value, parameter.type};
    }
  }
  return result;
}

template <typename Map>
void PrintTexts(std::ostream& out, const char* title, const Map& texts) {
  out << title << ":";
  for (const auto& [key, text] : texts) out << " " << key << "=\"" << text << "\"";
  out << "\n";
}

void PrintRows(std::ostream& out, const std::string& title,
               const std::vector<std::vector<std::string>>& rows) {
  out << title << ":";
  for (const auto& row : rows) {
    out << " (";
    for (const auto& cell : row) out << " \"" << cell << "\"";
    out << " )";
  }
  out << "\n";
}

}  // namespace

bool ProjectSnapshot::Process::operator==(const Process& other) const {
  return name == other.name && tool_name == other.tool_name && maps == other.maps;
}

bool ProjectSnapshot::operator==(const ProjectSnapshot& other) const {
  return name == other.name && current_path == other.current_path &&
         software_version == other.software_version && last_modify_time == other.last_modify_time &&
         properties == other.properties && attributes == other.attributes &&
         design_files == other.design_files && file_lists == other.file_lists &&
         ip_instances == other.ip_instances && processes == other.processes;
}

ProjectSnapshot ProjectSnapshot::WithoutStamps() const {
  ProjectSnapshot copy = *this;
  copy.software_version.clear();
  copy.last_modify_time.clear();
  return copy;
}

ProjectSnapshot TakeSnapshot(const KelProjectDatabase& database,
                             const std::vector<std::string>& attribute_names) {
  ProjectSnapshot snapshot;
  snapshot.name = database.GetProjectName();
  snapshot.current_path = database.GetProjectCurrentPath();
  snapshot.software_version = database.GetProjectSoftwareVersion();
  snapshot.last_modify_time = database.GetProjectLastModifyTime();
  snapshot.properties = Properties(database);
  for (const auto& name : attribute_names) {
    std::string value;
    if (database.GetProjectInfoAttribute(name, value)) snapshot.attributes[name] = value;
  }
  snapshot.design_files = DesignFiles(database);
  snapshot.file_lists = {
      {"sim", List(database, &KelProjectDatabase::GetSimulationTestBenchFileList)},
      {"misc", List(database, &KelProjectDatabase::GetMiscellaneousFileList)},
      {"sdc", List(database, &KelProjectDatabase::GetTimingConstraintFileList)},
      {"ip_src", List(database, &KelProjectDatabase::GetIpSrcFileList)},
  };
  snapshot.ip_instances = IpInstances(database);
  for (int type = 0; type < 4; ++type) {
    if (const auto* process = database.GetFlowProcess(static_cast<ProcType>(type))) {
      snapshot.processes.push_back(Process(*process));
    }
  }
  return snapshot;
}

std::ostream& operator<<(std::ostream& out, const ProjectSnapshot& snapshot) {
  out << "name: " << snapshot.name << "\npath: " << snapshot.current_path
      << "\nversion: " << snapshot.software_version << "\ntime: " << snapshot.last_modify_time
      << "\n";
  PrintTexts(out, "properties", snapshot.properties);
  PrintTexts(out, "attributes", snapshot.attributes);
  PrintRows(out, "design files", snapshot.design_files);
  for (const auto& [title, list] : snapshot.file_lists) PrintRows(out, title, {list});
  PrintRows(out, "ip", snapshot.ip_instances);
  for (const auto& process : snapshot.processes) {
    out << "process " << process.name << " tool " << process.tool_name << "\n";
    for (const auto& [map_name, parameters] : process.maps) {
      out << "  " << map_name << ":";
      for (const auto& [key, value] : parameters) {
        out << " " << key << "=\"" << std::get<0>(value) << "\"/" << std::get<1>(value);
      }
      out << "\n";
    }
  }
  return out;
}

}  // namespace test_support
