#include <nlohmann/json.hpp>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

using Json = nlohmann::json;

class Show : public KelprojTest {
 protected:
  Json ShownAsJson(const std::string& file) const {
    return Json::parse(Run({"show", file, "--json"}).out);
  }

  // Whatever is written at the time of the writing.
  static std::string WithoutStamps(const std::string& shown) {
    const std::size_t begin = shown.find("  directory");
    return shown.substr(0, begin) + shown.substr(shown.find("\n\n", begin) + 1);
  }
};

constexpr char kSmallProject[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<kel:project xmlns:kel="http://schema.kel.example/wdp_proj" name="mixer" owner="Zoë">
  <kel:device_info><kel:family name="Varel"/><kel:device name="Q8R25"/></kel:device_info>
  <kel:design_info def_veri_version="verilog_2001">
    <kel:top_module name="mixer_top"/>
    <kel:design_file name="rtl/mixer_höhen.v" version="verilog_2001" library="work"/>
    <kel:design_file name="rtl/i2s.v" version="sv_2017" library=""/>
  </kel:design_info>
  <kel:constraint_info>
    <kel:sdc_file name="clocks.sdc"/><kel:inter_file name="pins.interface.csv"/>
  </kel:constraint_info>
  <kel:isf_info><kel:isf_file name="pads.isf"/></kel:isf_info>
  <kel:sim_info><kel:sim_file name="sim/tb.sv" version="sv_2017" library="bench"/></kel:sim_info>
  <kel:misc_info><kel:misc_file name="notes&#10;2.md" version="" library="default"/></kel:misc_info>
  <kel:ip_info>
    <kel:ip instance_name="pll" path="ip/pll.ip"><kel:ip_src_file name="pll.v"/></kel:ip>
    <kel:ip instance_name="delay" path="ip/delay.ip"/>
  </kel:ip_info>
  <kel:synthesis tool_name="kel_synth">
    <kel:param name="max_threads" value="4" value_type="e_string"/>
    <kel:param name="flatten" value="" value_type="e_noarg"/>
    <kel:defmacro name="WIDTH" value="24"/>
  </kel:synthesis>
  <kel:debugger tool_name=""><kel:param name="cable" value="usb" value_type="e_option"/></kel:debugger>
</kel:project>
)";

constexpr char kSmallProjectShown[] = R"(Project
  name              mixer

Info attributes (1)
  owner  Zoë

Device
  family        Varel
  device        Q8R25
  timing model  (none)

Design
  top module               mixer_top
  top VHDL architecture    (none)
  default Verilog version  verilog_2001
  default VHDL version     (none)

Design files (2)
  rtl/mixer_höhen.v  verilog_2001  work
  rtl/i2s.v          sv_2017

Simulation files (1)
  sim/tb.sv  sv_2017  bench

Miscellaneous files (1)
  notes\n2.md    default

Timing constraint files (1)
  clocks.sdc

Interface constraint
  pins.interface.csv

ISF files (1)
  pads.isf

IP instances (2)
  pll    ip/pll.ip
         pll.v
  delay  ip/delay.ip

Synthesis
  tool  kel_synth

Synthesis: defmacro (1)
  WIDTH  24

Synthesis: param (2)
  flatten         e_noarg
  max_threads  4  e_string

Place and route
  tool  (none)

Bitstream generation
  tool  (none)

Debugger
  tool  (none)

Debugger: param (1)
  cable  usb  e_option
)";

TEST_F(Show, Project_IsShownAlignedAndGroupedWithCounts) {
  Write("mixer.xml", kSmallProject);
  const auto outcome = Run({"show", "mixer.xml"});
  EXPECT_EQ(WithoutStamps(outcome.out), kSmallProjectShown);
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(Show, StampsAndDirectory_AreShownWithoutColourWhereNoTerminalIs) {
  const std::string shown = Run({"show", SampleProject()}).out;
  EXPECT_THAT(shown, HasSubstr("  software version  0.1.0\n"));
  EXPECT_THAT(shown, HasSubstr("  last change       Sat Nov 21 2026 08:36:55\n"));
  EXPECT_THAT(shown, HasSubstr("/examples/soc_demo\n"));
  EXPECT_THAT(shown, Not(HasSubstr("\x1b")));
}

TEST_F(Show, ControlCharactersOfAnyKind_DoNotReachATerminal) {
  Write("mixer.xml", R"(<?xml version="1.1"?>
<p name="a&#x1b;[31m b&#x9b;31m c&#x7f; d&#9;e"/>)");
  EXPECT_THAT(Run({"show", "mixer.xml"}).out,
              HasSubstr("  name              a\\x1b[31m b\\x9b31m c\\x7f d\\te\n"));
}

TEST_F(Show, Json_HasEachValueWhereItsKeySays) {
  const Json project = ShownAsJson(SampleProject());
  for (const char* key : {"name", "sw_version", "last_change_date", "device.family",
                          "device.timing_model", "design.top_module", "design.def_vhdl_version",
                          "constraint.interface", "info.owner", "synthesis.tool"}) {
    std::string pointer = std::string("/") + key;
    for (char& c : pointer) {
      if (c == '.') c = '/';
    }
    EXPECT_EQ(project.at(Json::json_pointer(pointer)).get<std::string>() + "\n",
              Get(SampleProject(), key))
        << key;
  }
}

TEST_F(Show, JsonOfLists_KeepsTheirOrder) {
  Write("mixer.xml", kSmallProject);
  const Json project = ShownAsJson("mixer.xml");
  EXPECT_EQ(project.at("design").at("files"),
            Json::parse(R"([{"name": "rtl/mixer_höhen.v", "version": "verilog_2001",
                             "library": "work"},
                            {"name": "rtl/i2s.v", "version": "sv_2017", "library": ""}])"));
  EXPECT_EQ(project.at("simulation").at("files").at(0).at("library"), "bench");
  EXPECT_EQ(project.at("misc").at("files").at(0).at("name"), "notes\n2.md");
  EXPECT_EQ(project.at("constraint").at("sdc"), Json({"clocks.sdc"}));
  EXPECT_EQ(project.at("isf").at("files"), Json({"pads.isf"}));
  EXPECT_EQ(project.at("ip"),
            Json::parse(R"([{"instance_name": "pll", "path": "ip/pll.ip", "files": ["pll.v"]},
                            {"instance_name": "delay", "path": "ip/delay.ip", "files": []}])"));
}

TEST_F(Show, JsonOfProcesses_HasTheirToolsAndParameters) {
  Write("mixer.xml", kSmallProject);
  const Json project = ShownAsJson("mixer.xml");
  EXPECT_EQ(project.at("synthesis"), Json::parse(R"({"name": "synthesis", "tool": "kel_synth",
                            "param": {"max_threads": {"value": "4", "type": "e_string"},
                                      "flatten": {"value": "", "type": "e_noarg"}},
                            "dynparam": {},
                            "defmacro": {"WIDTH": {"value": "24", "type": ""}}})"));
  EXPECT_EQ(project.at("debugger").at("param").at("cable").at("value"), "usb");
}

TEST_F(Show, FileThatDoesNotLoadOrLoadsInPart_ShowsNothing) {
  for (const auto& [bytes, reason] :
       {std::pair("<project>", "kelproj: error: mixer.xml does not load\n"),
        std::pair(R"(<project name="mixer"><floorplan/></project>)",
                  "mixer.xml:1:23: error: <floorplan> is not a section of a project file")}) {
    Write("mixer.xml", bytes);
    const auto outcome = Run({"show", "mixer.xml"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr(reason));
  }
}

TEST_F(Show, DeprecatedElement_IsShownWithAWarning) {
  Write("mixer.xml", R"(<project name="mixer"><package_info/></project>)");
  const auto outcome = Run({"show", "mixer.xml"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, StartsWith("mixer.xml:1:23: warning: <package_info> is deprecated"));
}

}  // namespace
