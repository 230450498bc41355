#include "written_project.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include <projectdb/vocabulary.h>

#include "checks.h"
#include "testing/project_differences.h"

namespace fuzz {
namespace {

using projectdb::DesignFile;
using projectdb::FlowProcess;
using projectdb::FlowProcessContents;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ProcType;
using projectdb::ProjectContents;

using projectdb::kFlowProcesses;

constexpr std::array<std::string_view, 7> kSections = {
    "device_info", "design_info", "constraint_info", "isf_info",
    "sim_info",    "misc_info",   "ip_info"};

bool IsMapOfTheFormat(std::size_t process, std::string_view name) {
  const auto maps = projectdb::MapsOf(static_cast<ProcType>(process));
  return std::any_of(maps.begin(), maps.end(), [=](const auto& map) { return map.name == name; });
}

bool IsProcessOfTheFormat(std::size_t process, std::string_view name) {
  return name.empty() || name == kFlowProcesses.at(process).name;
}

template <typename Visit>
void ForEachProcess(const KelProjectDatabase& database, Visit visit) {
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    if (const FlowProcess* process = database.GetFlowProcess(static_cast<ProcType>(type))) {
      visit(type, *process);
    }
  }
}

// Plain parameters are not written, and a type outside the four is written as none.
FlowProcessContents ProcessForFile(FlowProcessContents process, std::size_t type) {
  process.name = kFlowProcesses.at(type).name;
  process.parameters.clear();
  for (auto& [name, parameters] : process.parameter_maps) {
    if (!IsMapOfTheFormat(type, name)) parameters.clear();
    for (auto& [key, parameter] : parameters) {
      const bool has_text = parameter.type >= 0 && parameter.type <= 3;
      if (!has_text) parameter.type = projectdb::kNoParameterType;
    }
  }
  return process;
}

bool IsPlainText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsPlainName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(),
                                      [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

template <typename... Texts>
bool ArePlainTexts(const Texts&... texts) {
  return (IsPlainText(texts) && ...);
}

// Whether all fields of all records are plain.
template <typename Record, typename... Members>
bool HoldPlainTexts(const std::vector<Record>& records, Members... members) {
  return std::all_of(records.begin(), records.end(),
                     [&](const Record& record) { return ArePlainTexts(record.*members...); });
}

bool ArePlainFiles(const std::vector<DesignFile>& files) {
  return HoldPlainTexts(files, &DesignFile::name, &DesignFile::version, &DesignFile::library);
}

bool ArePlainNames(const std::vector<std::string>& names) {
  return std::all_of(names.begin(), names.end(), IsPlainText);
}

bool IsPlainIp(const IP& ip) {
  return ArePlainTexts(ip.instance_name, ip.path) && HoldPlainTexts(ip.src_files, &IPSrcFile::name);
}

bool HasPlainProperties(const ProjectContents& project) {
  const auto& device = project.device_info;
  const auto& design = project.design_info;
  return ArePlainTexts(project.project_name, device.family, device.device, device.timing_model,
                       design.top_module, design.top_vhdl_arch, design.def_veri_version,
                       design.def_vhdl_version, project.design_constraint.inter_file) &&
         std::all_of(project.info_attributes.begin(), project.info_attributes.end(),
                     [](const auto& attribute) {
                       return IsPlainName(attribute.first) && IsPlainText(attribute.second);
                     });
}

bool HasPlainFiles(const ProjectContents& project) {
  const auto& ips = project.ip_info.ips;
  return ArePlainFiles(project.design_info.design_files) && ArePlainFiles(project.sim_files) &&
         ArePlainFiles(project.misc_files) && ArePlainNames(project.design_constraint.sdc_files) &&
         ArePlainNames(project.design_isf.isf_files) &&
         std::all_of(ips.begin(), ips.end(), IsPlainIp);
}

bool HasPlainTexts(const FlowProcessContents& process) {
  const auto is_plain = [](const auto& entry) {
    return ArePlainTexts(entry.second.name, entry.second.value);
  };
  const auto& maps = process.parameter_maps;
  return (process.name.empty() || IsPlainName(process.name)) && IsPlainText(process.tool_name) &&
         std::all_of(maps.begin(), maps.end(), [&](const auto& map) {
           const auto& [name, parameters] = map;
           return parameters.empty() ||
                  (IsPlainName(name) &&
                   std::all_of(parameters.begin(), parameters.end(), is_plain));
         });
}

bool IsReadAsItIs(const std::pair<const std::string, Parameter>& entry) {
  const auto& [key, parameter] = entry;
  return key == parameter.name && parameter.value.empty() == (parameter.type == projectdb::e_noarg);
}

bool IsReadAsItIs(std::size_t type, const FlowProcessContents& process) {
  const bool is_taken_for_another =
      !IsProcessOfTheFormat(type, process.name) &&
      (std::any_of(kFlowProcesses.begin(), kFlowProcesses.end(),
                   [&](const auto& other) { return process.name == other.name; }) ||
       std::find(kSections.begin(), kSections.end(), process.name) != kSections.end());
  const auto& maps = process.parameter_maps;
  return !is_taken_for_another && std::all_of(maps.begin(), maps.end(), [](const auto& map) {
    return std::all_of(map.second.begin(), map.second.end(),
                       [](const auto& entry) { return IsReadAsItIs(entry); });
  });
}

}  // namespace

ProjectContents ContentsForFile(const KelProjectDatabase& database,
                                const KelProjectDatabase& written) {
  ProjectContents project = projectdb::GetProjectContents(database);
  project.current_path.clear();
  project.software_version.clear();
  project.last_modify_time.clear();
  ForEachProcess(written, [&](std::size_t type, const FlowProcess& process) {
    FlowProcessContents& contents = project.flow_processes.at(type);
    const bool comes_back = IsProcessOfTheFormat(type, process.name);
    contents = comes_back ? ProcessForFile(std::move(contents), type) : FlowProcessContents();
  });
  return project;
}

void RequireSame(const ProjectContents& expected, const ProjectContents& actual,
                 const std::string& what) {
  std::string differences;
  for (const std::string& difference : test_support::AllDifferences(expected, actual)) {
    differences += '\n' + difference;
  }
  Require(differences.empty(), what + differences);
}

bool HasOnlyNamesOfTheFormat(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  bool result = true;
  for (std::size_t type = 0; type < project.flow_processes.size(); ++type) {
    const FlowProcessContents& process = project.flow_processes[type];
    result = result && IsProcessOfTheFormat(type, process.name);
    for (const auto& [name, parameters] : process.parameter_maps) {
      result = result && (parameters.empty() || IsMapOfTheFormat(type, name));
    }
  }
  return result;
}

bool IsReadAsItIs(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  bool result = true;
  for (std::size_t type = 0; type < project.flow_processes.size(); ++type) {
    result = result && IsReadAsItIs(type, project.flow_processes[type]);
  }
  return result;
}

bool IsPlain(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  const auto& processes = project.flow_processes;
  return database.IsProjectDatabaseExist() && HasPlainProperties(project) &&
         HasPlainFiles(project) && std::all_of(processes.begin(), processes.end(), HasPlainTexts);
}

}  // namespace fuzz
