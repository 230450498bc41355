#pragma once

#include "testing/project_loading.h"
#include "tests/kelproj/kelproj_test.h"

namespace test_support {

inline std::string MixerXml(const std::string& sections) {
  return ProjectXml(sections, "name=\"mixer\"");
}

// Wrong by the schema alone.
inline std::string UnknownType() {
  return MixerXml(
      "\n  <debugger>\n"
      "    <param name=\"cable\" value=\"usb\" value_type=\"e_float\"/>\n"
      "  </debugger>\n");
}

inline constexpr char kAnySchema[] =
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
    "targetNamespace=\"http://schema.kel.example/wdp_proj\">"
    "<xs:element name=\"project\" type=\"xs:anyType\"/></xs:schema>\n";

class Check : public KelprojTest {};

/// Of a project whose file has no error.
class CheckContents : public KelprojTest {
 protected:
  Outcome CheckProject(const std::string& elements) const {
    Write("mixer.xml", MixerXml(elements));
    return Run({"check", "mixer.xml"});
  }

  static std::string DesignFiles(const std::vector<std::string>& names) {
    std::string files;
    for (const std::string& name : names) files += "<design_file name=\"" + name + "\"/>";
    return "<design_info>" + files + "</design_info>";
  }

  static std::string Parameter(const std::string& name, const std::string& value,
                               const std::string& type) {
    return "<param name=\"" + name + "\" value=\"" + value + "\" value_type=\"" + type + "\"/>";
  }
};

class CheckFiles : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("ip"));
    Write("mixer.xml", MixerXml(R"(
  <design_info><design_file name="top.v"/><design_file name=""/></design_info>
  <constraint_info>
    <sdc_file name="clocks.sdc"/><inter_file name="pins.interface.csv"/>
  </constraint_info>
  <isf_info><isf_file name="pads.isf"/></isf_info>
  <sim_info><sim_file name="tb höhe.sv"/></sim_info>
  <misc_info><misc_file name="/no/such/notes.md"/></misc_info>
  <ip_info>
    <ip instance_name="pll" path="ip/pll.ip"><ip_src_file name="pll.v"/></ip>
  </ip_info>
)"));
  }
};

/// The program and the schema, moved to another place.
class MovedInstallation : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(NativePath(PathOf("moved here/bin")));
    std::filesystem::create_directories(NativePath(PathOf("moved here/share/projectdb")));
    std::filesystem::copy_file(NativePath(KelprojProgram()), NativePath(Program()));
    Write("mixer.xml", UnknownType());
  }

  std::string Program() const {
    return PathOf("moved here/bin/" + PathText(NativePath(KelprojProgram()).filename()));
  }
  std::string Schema() const { return PathOf("moved here/share/projectdb/wdp_proj.xsd"); }
};

}  // namespace test_support
