#pragma once

#include "testing/project_loading.h"
#include "tests/kelproj/kelproj_test.h"

namespace test_support {

// The design elaborates only if every macro, define parameter and file arrives as it is stored.
inline constexpr char kTop[] = R"(module top #(parameter WIDTH = 4, parameter RESET = 0,
      parameter ROM = "", parameter SPEED = "slow")
    (input wire clk, output wire [WIDTH-1:0] count);
  counter #(.WIDTH(WIDTH), .STEP(`STEP)) counter_i (.clk(clk), .count(count));
  generate
    if (WIDTH != 8 || RESET != 32'h0001_0000) begin : g_parameters
      a_parameter_is_missing missing_i ();
    end
    if (ROM != "fw/boot_rom.hex" || SPEED != "fast") begin : g_texts
      a_text_is_missing missing_text_i ();
    end
  endgenerate
`ifndef QUIET
  a_macro_without_value_is_missing missing_macro_i ();
`endif
endmodule
)";

inline constexpr char kCounter[] = R"(module counter #(parameter WIDTH = 1, parameter STEP = 1)
    (input wire clk, output reg [WIDTH-1:0] count);
  wire enable;
  gate gate_i (.enable(enable));
  always @(posedge clk) if (enable) count <= count + STEP[WIDTH-1:0];
endmodule
)";

inline constexpr char kGate[] =
    "module gate (output wire enable);\n  assign enable = 1'b1;\nendmodule\n";

inline constexpr char kDesign[] = R"(
  <design_info>
    <top_module name="top"/>
    <design_file name="rtl/top.v"/>
    <design_file name="rtl/my core/up counter.v"/>
  </design_info>
  <constraint_info><sdc_file name="clocks.sdc"/></constraint_info>
  <sim_info><sim_file name="no test bench.v"/></sim_info>
  <ip_info>
    <ip instance_name="gate" path="ip/gate.ip"><ip_src_file name="gate.v"/></ip>
  </ip_info>
  <synthesis>
    <dynparam name="WIDTH" value="8" value_type="e_string"/>
    <dynparam name="RESET" value="32'h0001_0000"/>
    <dynparam name="ROM" value="fw/boot_rom.hex" value_type="e_string"/>
    <dynparam name="SPEED" value="fast" value_type="e_option"/>
    <defmacro name="STEP" value="3"/>
    <defmacro name="QUIET" value="" value_type="e_noarg"/>
  </synthesis>
)";

/// A small design that other programs read by way of what the program prints for them.
class ListedDesign : public KelprojTest {
 protected:
  void SetUp() override {
    for (const char* directory : {"rtl/my core", "ip", "build/lint"}) {
      std::filesystem::create_directories(PathOf(directory));
    }
    Write("lamp.xml", ProjectXml(kDesign, "name=\"lamp\""));
    Write("rtl/top.v", kTop);
    Write("rtl/my core/up counter.v", kCounter);
    Write("ip/gate.v", kGate);
  }

  // A project with one file of this name, be it there or not, and nothing else.
  void MakeProjectOfName(const std::string& name) const {
    std::filesystem::remove(PathOf("one.xml"));
    ASSERT_EQ(Run({"new", "one", "-o", "one.xml", "--top", "one"}).status, 0);
    ASSERT_EQ(Run({"add", "one.xml", "--rtl", "--", name}).status, 0);
  }
};

}  // namespace test_support
