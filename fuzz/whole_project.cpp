#include "whole_project.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <vector>

#include "project_db/project_data.h"

namespace fuzz {
namespace {

using projectdb::DesignFile;
using projectdb::FlowProcess;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterMap;

// Opens the data block to what is below: an explicit instantiation may name private members.
struct DataMember {
  friend auto Pointer(DataMember);
};
template <auto member>
struct Open {
  friend auto Pointer(DataMember) { return member; }
};
template struct Open<&KelProjectDatabase::data_>;

const auto& DataOf(const KelProjectDatabase& database) { return database.*Pointer(DataMember()); }

constexpr std::array<std::string_view, 4> kProcessNames = {"synthesis", "place_and_route",
                                                           "bitstream_generation", "debugger"};

bool IsMapOfTheFormat(std::size_t process, std::string_view name) {
  return name == "param" || (process == 0 && (name == "dynparam" || name == "defmacro"));
}

bool IsProcessOfTheFormat(std::size_t process, std::string_view name) {
  return name.empty() || name == kProcessNames.at(process);
}

// Calls visit(name, map) with each map that the index leads to.
template <typename Visit>
void ForEachMap(const FlowProcess& process, Visit visit) {
  for (const auto& [name, position] : process.parameter_map_index) {
    const auto map = static_cast<std::size_t>(position);
    if (map < process.parameter_maps.size()) visit(name, process.parameter_maps[map]);
  }
}

// The size before each text keeps what is beside it apart from it.
class Writer {
 public:
  template <typename... Texts>
  void Line(std::string_view title, const Texts&... texts) {
    text_ += title;
    (Text(texts), ...);
    text_ += '\n';
  }
  void List(std::string_view title, const std::vector<std::string>& entries) {
    for (const std::string& entry : entries) Line(title, entry);
  }
  void Files(std::string_view title, const std::vector<DesignFile>& files) {
    for (const DesignFile& file : files) Line(title, file.name, file.version, file.library);
  }

  std::string text() const { return text_; }

 private:
  void Text(const std::string& text) {
    text_ += ' ' + std::to_string(text.size()) + ":\"" + text + '"';
  }
  void Text(int number) { text_ += ' ' + std::to_string(number); }

  std::string text_;
};

int TypeInFile(int type) { return type >= 0 && type <= 3 ? type : projectdb::kNoParameterType; }

void DescribeMap(Writer& writer, const ParameterMap& map, int (*type_of)(int)) {
  const std::map<std::string, Parameter> sorted(map.begin(), map.end());
  for (const auto& [key, parameter] : sorted) {
    writer.Line("  parameter", key, parameter.name, parameter.value, type_of(parameter.type));
  }
}

void DescribeProcessForFile(Writer& writer, const FlowProcess& process, std::size_t type) {
  writer.Line("process", std::string(kProcessNames.at(type)), process.tool_name);
  std::map<std::string, const ParameterMap*> maps;
  ForEachMap(process, [&](const std::string& name, const ParameterMap& map) {
    if (!map.empty() && IsMapOfTheFormat(type, name)) maps[name] = &map;
  });
  for (const auto& [name, map] : maps) {
    writer.Line(" map", name);
    DescribeMap(writer, *map, TypeInFile);
  }
}

void DescribeProcess(Writer& writer, const FlowProcess& process) {
  writer.Line("process", process.name, process.tool_name);
  for (const Parameter& parameter : process.parameters) {
    writer.Line(" plain", parameter.name, parameter.value, parameter.type);
  }
  const std::map<std::string, int> index(process.parameter_map_index.begin(),
                                         process.parameter_map_index.end());
  for (const auto& [name, position] : index) writer.Line(" index", name, position);
  for (const ParameterMap& map : process.parameter_maps) {
    writer.Line(" map");
    DescribeMap(writer, map, [](int type) { return type; });
  }
}

template <typename Data>
void DescribeProperties(Writer& writer, const Data& data) {
  const std::map<std::string, std::string> attributes(data.info_attributes.begin(),
                                                      data.info_attributes.end());
  for (const auto& [name, value] : attributes) writer.Line("attribute", name, value);
  writer.Line("name", data.project_name);
  writer.Line("device", data.device_info.family, data.device_info.device,
              data.device_info.timing_model);
  writer.Line("top", data.design_info.top_module, data.design_info.top_vhdl_arch);
  writer.Line("versions", data.design_info.def_veri_version, data.design_info.def_vhdl_version);
}

template <typename Data>
void DescribeFiles(Writer& writer, const Data& data) {
  writer.Files("design", data.design_info.design_files);
  writer.List("sdc", data.design_constraint.sdc_files);
  writer.Line("interface", data.design_constraint.inter_file);
  writer.List("isf", data.design_isf.isf_files);
  writer.Files("sim", data.sim_files);
  writer.Files("misc", data.misc_files);
  for (const auto& ip : data.ip_info.ips) {
    writer.Line("ip", ip.instance_name, ip.path);
    for (const auto& file : ip.src_files) writer.Line(" source", file.name);
  }
}

bool IsPlainText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsPlainName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(),
                                      [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

bool HasOnlyPlainParameters(const FlowProcess& process) {
  const auto is_plain = [](const auto& entry) {
    const auto& [key, parameter] = entry;
    return key == parameter.name && parameter.value.empty() == (parameter.type == 3);
  };
  return std::all_of(
      process.parameter_maps.begin(), process.parameter_maps.end(),
      [&](const ParameterMap& map) { return std::all_of(map.begin(), map.end(), is_plain); });
}

}  // namespace

std::string Describe(const KelProjectDatabase& database) {
  const auto& data = DataOf(database);
  if (!data) return "no project\n";
  Writer writer;
  writer.Line("path", data->current_path);
  writer.Line("stamps", data->software_version, data->last_modify_time);
  DescribeProperties(writer, *data);
  DescribeFiles(writer, *data);
  for (const FlowProcess& process : data->flow_processes) DescribeProcess(writer, process);
  return writer.text();
}

std::string DescribeForFile(const KelProjectDatabase& database, const KelProjectDatabase& written) {
  const auto& data = DataOf(database);
  const auto& written_data = DataOf(written);
  if (!data || !written_data) return "no project\n";
  Writer writer;
  DescribeProperties(writer, *data);
  DescribeFiles(writer, *data);
  for (std::size_t type = 0; type < data->flow_processes.size(); ++type) {
    if (IsProcessOfTheFormat(type, written_data->flow_processes.at(type).name)) {
      DescribeProcessForFile(writer, data->flow_processes[type], type);
    }
  }
  return writer.text();
}

bool HasOnlyNamesOfTheFormat(const KelProjectDatabase& database) {
  const auto& data = DataOf(database);
  if (!data) return true;
  bool result = true;
  for (std::size_t type = 0; type < data->flow_processes.size(); ++type) {
    const FlowProcess& process = data->flow_processes[type];
    result = result && IsProcessOfTheFormat(type, process.name);
    ForEachMap(process, [&](const std::string& name, const ParameterMap& map) {
      result = result && (map.empty() || IsMapOfTheFormat(type, name));
    });
  }
  return result;
}

bool IsPlain(const KelProjectDatabase& database) {
  const auto& data = DataOf(database);
  if (!data || !HasOnlyNamesOfTheFormat(database)) return false;
  // The description holds every text of the project; its own line breaks are no part of them.
  std::string everything = DescribeForFile(database, database);
  everything.erase(std::remove(everything.begin(), everything.end(), '\n'), everything.end());
  const auto has_plain_name = [](const auto& attribute) { return IsPlainName(attribute.first); };
  return IsPlainText(everything) &&
         std::all_of(data->info_attributes.begin(), data->info_attributes.end(), has_plain_name) &&
         std::all_of(data->flow_processes.begin(), data->flow_processes.end(),
                     HasOnlyPlainParameters) &&
         std::all_of(data->flow_processes.begin(), data->flow_processes.end(),
                     [](const FlowProcess& process) {
                       return std::all_of(process.parameter_map_index.begin(),
                                          process.parameter_map_index.end(),
                                          [](const auto& map) { return IsPlainName(map.first); });
                     });
}

}  // namespace fuzz
