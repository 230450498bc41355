#pragma once

#include "testing/project_loading.h"
#include "tests/kelproj/kelproj_test.h"

namespace test_support {

/// What a project has. @param pad the name of a file elsewhere
inline std::string Lamp(const std::string& pad) {
  return R"(
  <design_info>
    <top_module name="lamp"/>
    <design_file name="rtl/my core/up counter.v" version="verilog_2001" library="default"/>
    <design_file name="rtl/lamp.sv" version="sv_2017" library="light"/>
    <design_file name=")" +
         pad + R"(" version="verilog_2001" library="default"/>
  </design_info>
  <constraint_info>
    <sdc_file name="clocks.sdc"/><inter_file name="pins.interface.csv"/>
  </constraint_info>
  <isf_info><isf_file name="pads.isf"/></isf_info>
  <sim_info><sim_file name="../tb höhe.sv" version="sv_2017"/></sim_info>
  <misc_info><misc_file name="notes.md"/></misc_info>
  <ip_info>
    <ip instance_name="pll" path="ip/pll.ip"><ip_src_file name="gen/pll.v"/></ip>
  </ip_info>
)";
}

class List : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("lamp"));
    std::filesystem::create_directories(PathOf("out"));
    Write("lamp/lamp.xml", ProjectXml(Lamp(Pad()), "name=\"lamp\""));
  }

  std::string Pad() const { return Root() + "opt/cells/pad.v"; }

  Outcome RunList(std::vector<std::string> options, const std::string& directory = "lamp",
                  const std::string& file = "lamp.xml") const {
    options.insert(options.begin(), {"list", file});
    return Run(options, {PathOf(directory)});
  }
};

}  // namespace test_support
