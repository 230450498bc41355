#include "json.h"

#include <projectdb/project_db.h>

#include "problems.h"
#include "processes.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::FlowProcessContents;
using projectdb::KelProjectDatabase;

Json PartToJson(const std::vector<DesignFile>& files) {
  Json list = Json::array();
  for (const DesignFile& file : files) {
    list.push_back({{"name", file.name}, {"version", file.version}, {"library", file.library}});
  }
  return list;
}

Json PartToJson(const projectdb::IPInfo& ip_info) {
  Json list = Json::array();
  for (const projectdb::IP& ip : ip_info.ips) {
    Json files = Json::array();
    for (const projectdb::IPSrcFile& file : ip.src_files) files.push_back(file.name);
    list.push_back({{"instance_name", ip.instance_name}, {"path", ip.path}, {"files", files}});
  }
  return list;
}

Json PartToJson(const projectdb::SortedParameters& parameters) {
  Json object = Json::object();
  for (const auto& [name, parameter] : parameters) {
    object[name] = {{"value", parameter.value},
                    {"type", KelProjectDatabase::getParameterTypeStr(parameter.type)}};
  }
  return object;
}

Json PartToJson(const FlowProcessContents& process) {
  Json object = {{"name", process.name}, {"tool", process.tool_name}};
  for (const auto& [map, parameters] : process.parameter_maps) object[map] = PartToJson(parameters);
  return object;
}

}  // namespace

Json ToJson(const projectdb::ProjectContents& project) {
  const auto& device = project.device_info;
  const auto& design = project.design_info;
  Json object = {{"name", project.project_name},
                 {"directory", project.current_path},
                 {"sw_version", project.software_version},
                 {"last_change_date", project.last_modify_time},
                 {"info", Json::object()},
                 {"device",
                  {{"family", device.family},
                   {"device", device.device},
                   {"timing_model", device.timing_model}}},
                 {"design",
                  {{"top_module", design.top_module},
                   {"top_vhdl_arch", design.top_vhdl_arch},
                   {"def_veri_version", design.def_veri_version},
                   {"def_vhdl_version", design.def_vhdl_version},
                   {"files", PartToJson(design.design_files)}}},
                 {"simulation", {{"files", PartToJson(project.sim_files)}}},
                 {"misc", {{"files", PartToJson(project.misc_files)}}},
                 {"constraint",
                  {{"sdc", project.design_constraint.sdc_files},
                   {"interface", project.design_constraint.inter_file}}},
                 {"isf", {{"files", project.design_isf.isf_files}}},
                 {"ip", PartToJson(project.ip_info)}};
  for (const auto& [name, value] : project.info_attributes) object["info"][name] = value;
  for (const Process& process : kProcesses) {
    object[std::string(process.name)] =
        PartToJson(project.flow_processes.at(static_cast<std::size_t>(process.type)));
  }
  return object;
}

Json ToJson(const std::vector<projectdb::ProjectDifference>& differences) {
  Json list = Json::array();
  for (const projectdb::ProjectDifference& difference : differences) {
    Json object = {{"what", difference.what}, {"where", difference.where}};
    if (difference.before) object["before"] = *difference.before;
    if (difference.after) object["after"] = *difference.after;
    list.push_back(object);
  }
  return list;
}

Json ToJson(const std::vector<projectdb::FileProblem>& problems) {
  Json list = Json::array();
  for (const projectdb::FileProblem& problem : problems) {
    Json object = Json::object();
    if (problem.line > 0) object["line"] = problem.line;
    if (problem.column > 0) object["column"] = problem.column;
    object["severity"] = SeverityName(problem.severity);
    object["message"] = problem.message;
    list.push_back(object);
  }
  return list;
}

void WriteJson(std::ostream& out, const Json& value) {
  out << value.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace kelproj
