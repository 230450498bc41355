#include <ostream>

#include <projectdb/project_contents.h>

#include "commands.h"
#include "json.h"
#include "processes.h"
#include "stored_project.h"
#include "table.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::FlowProcessContents;
using projectdb::KelProjectDatabase;
using projectdb::ProjectContents;

std::string OrNone(const std::string& text) { return text.empty() ? "(none)" : text; }

class Report {
 public:
  explicit Report(const Console& console) : console_(console) {}

  void Values(const std::string& title, Table table) {
    for (auto& row : table) row.back() = OrNone(row.back());
    Section(title, table);
  }

  void List(const std::string& title, const Table& table) { List(title, table.size(), table); }

  void List(const std::string& title, std::size_t count, const Table& table) {
    Section(title + " (" + std::to_string(count) + ")", table);
  }

 private:
  void Section(const std::string& title, const Table& table) {
    if (!is_first_) console_.out << '\n';
    is_first_ = false;
    console_.out << Styled(console_, Style::kHeading, title) << '\n';
    WriteTable(console_, table);
  }

  const Console& console_;
  bool is_first_ = true;
};

Table Rows(const std::vector<std::string>& names) {
  Table table;
  for (const std::string& name : names) table.push_back({name});
  return table;
}

Table Rows(const std::vector<DesignFile>& files) {
  Table table;
  for (const DesignFile& file : files) {
    table.push_back({OrNone(file.name), file.version, file.library});
  }
  return table;
}

Table Rows(const projectdb::IPInfo& ip_info) {
  Table table;
  for (const projectdb::IP& ip : ip_info.ips) {
    table.push_back({ip.instance_name, ip.path});
    for (const projectdb::IPSrcFile& file : ip.src_files) table.push_back({"", file.name});
  }
  return table;
}

Table Rows(const projectdb::SortedParameters& parameters) {
  Table table;
  for (const auto& [name, parameter] : parameters) {
    table.push_back(
        {name, parameter.value, KelProjectDatabase::getParameterTypeStr(parameter.type)});
  }
  return table;
}

void ShowProperties(Report& report, const ProjectContents& project) {
  report.Values("Project", {{"name", project.project_name},
                            {"directory", project.current_path},
                            {"software version", project.software_version},
                            {"last change", project.last_modify_time}});
  Table attributes;
  for (const auto& [name, value] : project.info_attributes) attributes.push_back({name, value});
  report.List("Info attributes", attributes);
  report.Values("Device", {{"family", project.device_info.family},
                           {"device", project.device_info.device},
                           {"timing model", project.device_info.timing_model}});
  report.Values("Design", {{"top module", project.design_info.top_module},
                           {"top VHDL architecture", project.design_info.top_vhdl_arch},
                           {"default Verilog version", project.design_info.def_veri_version},
                           {"default VHDL version", project.design_info.def_vhdl_version}});
}

void ShowFiles(Report& report, const ProjectContents& project) {
  report.List("Design files", Rows(project.design_info.design_files));
  report.List("Simulation files", Rows(project.sim_files));
  report.List("Miscellaneous files", Rows(project.misc_files));
  report.List("Timing constraint files", Rows(project.design_constraint.sdc_files));
  report.Values("Interface constraint", {{project.design_constraint.inter_file}});
  report.List("ISF files", Rows(project.design_isf.isf_files));
  report.List("IP instances", project.ip_info.ips.size(), Rows(project.ip_info));
}

void ShowProcess(Report& report, const std::string& title, const FlowProcessContents& process) {
  report.Values(title, {{"tool", process.tool_name}});
  const std::string prefix = title + ": ";
  for (const auto& [map, parameters] : process.parameter_maps) {
    report.List(prefix + map, Rows(parameters));
  }
}

}  // namespace

ExitStatus Run(const ShowArguments& arguments, const Console& console) {
  const ProjectContents project =
      projectdb::GetProjectContents(*LoadProject(arguments.file, console));
  if (arguments.json) {
    WriteJson(console.out, ToJson(project));
    return ExitStatus::kYes;
  }
  Report report(console);
  ShowProperties(report, project);
  ShowFiles(report, project);
  for (const Process& process : kProcesses) {
    ShowProcess(report, std::string(process.title),
                project.flow_processes.at(static_cast<std::size_t>(process.type)));
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
