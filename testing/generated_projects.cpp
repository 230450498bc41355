#include "testing/generated_projects.h"

#include <iterator>

#include "testing/list_edits.h"

namespace test_support {
namespace {

using namespace projectdb;

/// Small, for a project has many of them.
template <typename Record>
rc::Gen<std::vector<Record>> Few(rc::Gen<Record> record) {
  return rc::gen::resize(5, rc::gen::container<std::vector<Record>>(std::move(record)));
}

IP PickIp() {
  IP ip{*Text(), *Text(), {}};
  for (const std::string& name : *Few(Text())) ip.src_files.push_back({name});
  return ip;
}

SortedParameters PickParameters() {
  SortedParameters parameters;
  for (const std::string& key : *Few(Text())) parameters.emplace(key, *OneParameter());
  return parameters;
}

FlowProcessContents PickProcess() {
  FlowProcessContents process{*Text(), *Text(), {}};
  for (const std::string& name : *Few(Text())) process.parameter_maps[name] = PickParameters();
  process.parameters = *Few(OneParameter());
  return process;
}

template <typename Pick>
auto PickSeveral(std::size_t most, Pick pick) {
  std::vector<decltype(pick())> records;
  for (auto i = *rc::gen::inRange<std::size_t>(0, most + 1); i > 0; --i) records.push_back(pick());
  return records;
}

/// Changes one thing in a project.
using Change = void (*)(ProjectContents&);

template <std::size_t kCount>
void MakeChanges(const Change (&changes)[kCount], ProjectContents& project, std::size_t most) {
  for (auto i = *rc::gen::inRange<std::size_t>(0, most + 1); i > 0; --i) {
    changes[*rc::gen::inRange<std::size_t>(0, kCount)](project);
  }
}

const Change kParts[] = {
    [](auto& p) { p.project_name = *Text(); },
    [](auto& p) { p.current_path = *Text(); },
    [](auto& p) { p.software_version = *Text(); },
    [](auto& p) { p.last_modify_time = *Text(); },
    [](auto& p) { p.info_attributes[*Text()] = *Text(); },
    [](auto& p) { p.info_attributes.erase(*Text()); },
    [](auto& p) { p.device_info.family = *Text(); },
    [](auto& p) { p.device_info.device = *Text(); },
    [](auto& p) { p.device_info.timing_model = *Text(); },
    [](auto& p) { p.design_info.top_module = *Text(); },
    [](auto& p) { p.design_info.top_vhdl_arch = *Text(); },
    [](auto& p) { p.design_info.def_veri_version = *Text(); },
    [](auto& p) { p.design_info.def_vhdl_version = *Text(); },
    [](auto& p) { p.design_info.design_files = *Few(OneFile()); },
    [](auto& p) { p.design_constraint.sdc_files = *Few(Text()); },
    [](auto& p) { p.design_constraint.inter_file = *Text(); },
    [](auto& p) { p.design_isf.isf_files = *Few(Text()); },
    [](auto& p) { p.sim_files = *Few(OneFile()); },
    [](auto& p) { p.misc_files = *Few(OneFile()); },
    [](auto& p) { p.ip_info.ips = PickSeveral(4, PickIp); },
    [](auto& p) { p.flow_processes = PickSeveral(5, PickProcess); },
    [](auto& p) { p.flow_processes.resize(4); },
    [](auto& p) {
      if (!p.flow_processes.empty()) p.flow_processes.back().parameter_maps[*Text()].clear();
    },
    [](auto& p) {
      if (!p.flow_processes.empty()) {
        p.flow_processes.back().parameter_maps[*Text()].emplace(*Text(), *OneParameter());
      }
    },
};

void EditTexts(std::vector<std::string>& texts) {
  EditList(
      texts, [] { return *Text(); }, [](std::string& text) { text = *Text(); });
}

void EditFiles(std::vector<DesignFile>& files) {
  EditList(
      files, [] { return *OneFile(); }, [](DesignFile& file) { file.version = *Text(); });
}

void EditIp(IP& ip) {
  if (*rc::gen::arbitrary<bool>()) {
    ip.path = *Text();
  } else {
    EditList(
        ip.src_files, [] { return IPSrcFile{*Text()}; },
        [](IPSrcFile& file) { file.name = *Text(); });
  }
}

FlowProcessContents* PickOneProcess(ProjectContents& project) {
  const auto process = PickPlace(project.flow_processes);
  return process == project.flow_processes.end() ? nullptr : &*process;
}

void EditMaps(std::map<std::string, SortedParameters>& maps) {
  const std::string name = *Text();
  switch (*rc::gen::inRange(0, 6)) {
    case 0:
      maps.erase(name);
      break;
    case 1:
      maps[name].clear();
      break;
    case 2:
      if (maps.count(name) != 0) maps[name].erase(*Text());
      break;
    default:
      maps[name].insert_or_assign(*Text(), *OneParameter());
  }
}

void EditProcess(FlowProcessContents& process) {
  switch (*rc::gen::inRange(0, 5)) {
    case 0:
      process.name = *Text();
      break;
    case 1:
      process.tool_name = *Text();
      break;
    case 2:
      EditList(
          process.parameters, [] { return *OneParameter(); },
          [](Parameter& parameter) { parameter.value = *Text(); });
      break;
    default:
      EditMaps(process.parameter_maps);
  }
}

const Change kEdits[] = {
    [](auto& p) { p.project_name = *Text(); },
    [](auto& p) { p.current_path = *Text(); },
    [](auto& p) { p.software_version = *Text(); },
    [](auto& p) { p.last_modify_time = *Text(); },
    [](auto& p) { p.info_attributes[*Text()] = *Text(); },
    [](auto& p) { p.info_attributes.erase(*Text()); },
    [](auto& p) { p.device_info.device = *Text(); },
    [](auto& p) { p.design_info.top_module = *Text(); },
    [](auto& p) { p.design_constraint.inter_file = *Text(); },
    [](auto& p) { EditFiles(p.design_info.design_files); },
    [](auto& p) { EditTexts(p.design_constraint.sdc_files); },
    [](auto& p) { EditTexts(p.design_isf.isf_files); },
    [](auto& p) { EditFiles(p.sim_files); },
    [](auto& p) { EditFiles(p.misc_files); },
    [](auto& p) { EditList(p.ip_info.ips, PickIp, EditIp); },
    [](auto& p) { EditList(p.ip_info.ips, PickIp, EditIp); },
    [](auto& p) { p.flow_processes.resize(*rc::gen::inRange<std::size_t>(0, 6)); },
    [](auto& p) {
      if (auto* const process = PickOneProcess(p)) EditProcess(*process);
    },
    [](auto& p) {
      if (auto* const process = PickOneProcess(p)) EditProcess(*process);
    },
};

/// Writes a project down, row by row.
class Writing {
 public:
  explicit Writing(const ProjectContents& project) {
    AddValues(project);
    for (const auto& [name, value] : project.info_attributes) Add({"info", name, value});
    AddFiles("design", project.design_info.design_files);
    AddFiles("sim", project.sim_files);
    AddFiles("misc", project.misc_files);
    for (const auto& name : project.design_constraint.sdc_files) Add({"sdc", name});
    for (const auto& name : project.design_isf.isf_files) Add({"isf", name});
    for (const IP& ip : project.ip_info.ips) AddIp(ip);
    for (std::size_t i = 0; i < project.flow_processes.size(); ++i) {
      AddProcess(std::to_string(i), project.flow_processes[i]);
    }
  }

  const Rows& rows() const { return rows_; }

 private:
  void Add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }

  void AddValues(const ProjectContents& project) {
    Add({"name", project.project_name});
    Add({"family", project.device_info.family});
    Add({"device", project.device_info.device});
    Add({"timing model", project.device_info.timing_model});
    Add({"top module", project.design_info.top_module});
    Add({"architecture", project.design_info.top_vhdl_arch});
    Add({"Verilog", project.design_info.def_veri_version});
    Add({"VHDL", project.design_info.def_vhdl_version});
    Add({"interface", project.design_constraint.inter_file});
  }

  void AddFiles(const char* title, const std::vector<DesignFile>& files) {
    for (const DesignFile& file : files) Add({title, file.name, file.version, file.library});
  }

  void AddIp(const IP& ip) {
    Add({"ip", ip.instance_name});
    Add({"ip path", ip.instance_name, ip.path});
    for (const IPSrcFile& file : ip.src_files) Add({"ip file", ip.instance_name, file.name});
  }

  void AddProcess(const std::string& number, const FlowProcessContents& process) {
    Add({number, "name", process.name});
    Add({number, "tool", process.tool_name});
    for (const auto& [map, parameters] : process.parameter_maps) {
      for (const auto& [key, parameter] : parameters) {
        AddParameter({number, "map", map, key}, parameter);
      }
    }
    for (const Parameter& parameter : process.parameters) {
      AddParameter({number, "plain"}, parameter);
    }
  }

  void AddParameter(std::vector<std::string> row, const Parameter& parameter) {
    row.insert(row.end(), {parameter.name, parameter.value, std::to_string(parameter.type)});
    Add(std::move(row));
  }

  Rows rows_;
};

}  // namespace

rc::Gen<std::string> Text() {
  return rc::gen::element<std::string>("", "a", "b", "c", "a b", "\"a\"", "x.y");
}

rc::Gen<DesignFile> OneFile() { return rc::gen::construct<DesignFile>(Text(), Text(), Text()); }

rc::Gen<Parameter> OneParameter() {
  const auto type =
      rc::gen::map(rc::gen::inRange(0, 6), [](int i) { return static_cast<ParameterType>(i); });
  return rc::gen::construct<Parameter>(Text(), Text(), type);
}

void ChangeParts(ProjectContents& project, std::size_t most) { MakeChanges(kParts, project, most); }

void EditProject(ProjectContents& project, std::size_t most) { MakeChanges(kEdits, project, most); }

std::pair<ProjectContents, ProjectContents> PickTwoProjects() {
  ProjectContents before;
  ChangeParts(before, 40);
  ProjectContents after = before;
  ChangeParts(after, *rc::gen::element<std::size_t>(2, 40));
  return {before, after};
}

Rows RowsOf(const ProjectContents& project) { return Writing(project).rows(); }

Rows AllRowsOf(const ProjectContents& project) {
  Rows rows = RowsOf(project);
  rows.push_back({"directory", project.current_path});
  rows.push_back({"version", project.software_version});
  rows.push_back({"last change", project.last_modify_time});
  for (std::size_t i = 0; i < project.flow_processes.size(); ++i) {
    for (const auto& map : project.flow_processes[i].parameter_maps) {
      rows.push_back({"map", std::to_string(i), map.first});
    }
  }
  return rows;
}

}  // namespace test_support
