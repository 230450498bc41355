#include "testing/complete_project.h"

#include "testing/project_loading.h"

namespace test_support {

using namespace projectdb;

std::string CompleteProjectXml() {
  return ProjectXml(R"(
  <device_info><family name="Orrin"/><device name="O40"/><timing_model name="slow"/></device_info>
  <design_info def_veri_version="v2k" def_vhdl_version="vhdl08">
    <top_module name="top"/>
    <design_file name="a.v" version="v2k" library="work"/>
    <design_file name="b.vhd" version="" library="lib"/>
    <top_vhdl_arch name="rtl"/>
  </design_info>
  <constraint_info><sdc_file name="c.sdc"/><inter_file name="c.interface.csv"/></constraint_info>
  <isf_info><isf_file name="d.isf"/></isf_info>
  <sim_info><sim_file name="tb.v" version="sv" library="sim"/></sim_info>
  <misc_info><misc_file name="notes.txt" version="1" library="docs"/></misc_info>
  <ip_info><ip instance_name="u" path="ip/u.cfg"><ip_src_file name="u.v"/></ip></ip_info>
  <synthesis tool_name="syn">
    <param name="mode" value="fast" value_type="e_option"/>
    <param name="flat" value="" value_type="e_noarg"/>
    <dynparam name="W" value="8" value_type="e_string"/>
    <defmacro name="SIM" value="1"/>
  </synthesis>
  <place_and_route tool_name="pnr"><param name="seed" value="1" value_type="e_string"/></place_and_route>
  <bitstream_generation><param name="zip" value="true" value_type="e_bool"/></bitstream_generation>
  <debugger tool_name="dbg"/>
)",
                    R"(name="demo" vendor_id="77" sw_version="0.0.1" last_change_date="long ago")");
}

ProjectContents CompleteProject(const std::filesystem::path& directory) {
  ProjectContents project;
  project.project_name = "demo";
  project.current_path = PathText(directory);
  project.software_version = "0.0.1";
  project.last_modify_time = "long ago";
  project.info_attributes = {{"vendor_id", "77"}};
  project.device_info.family = "Orrin";
  project.device_info.device = "O40";
  project.device_info.timing_model = "slow";
  project.design_info.top_module = "top";
  project.design_info.top_vhdl_arch = "rtl";
  project.design_info.design_files = {{"a.v", "v2k", "work"}, {"b.vhd", "", "lib"}};
  project.design_info.def_veri_version = "v2k";
  project.design_info.def_vhdl_version = "vhdl08";
  project.design_constraint.sdc_files = {"c.sdc"};
  project.design_constraint.inter_file = "c.interface.csv";
  project.design_isf.isf_files = {"d.isf"};
  project.ip_info.ips = {{"u", "ip/u.cfg", {{"u.v"}}}};
  project.sim_files = {{"tb.v", "sv", "sim"}};
  project.misc_files = {{"notes.txt", "1", "docs"}};
  const auto parameters = [](const std::vector<Parameter>& list) {
    SortedParameters sorted;
    for (const Parameter& parameter : list) sorted.emplace(parameter.name, parameter);
    return sorted;
  };
  project.flow_processes = {
      {"synthesis",
       "syn",
       {{"param", parameters({{"mode", "fast", e_option}, {"flat", "", e_noarg}})},
        {"dynparam", parameters({{"W", "8", e_string}})},
        {"defmacro", parameters({{"SIM", "1", kNoParameterType}})}}},
      {"place_and_route", "pnr", {{"param", parameters({{"seed", "1", e_string}})}}},
      {"bitstream_generation", "", {{"param", parameters({{"zip", "true", e_bool}})}}},
      {"debugger", "dbg", {}}};
  return project;
}

}  // namespace test_support
