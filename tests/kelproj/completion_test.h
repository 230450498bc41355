#pragma once

#include <sstream>

#include "testing/project_loading.h"
#include "tests/kelproj/kelproj_test.h"

namespace test_support {

using Lines = std::vector<std::string>;

inline Lines LinesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A project whose names need quotes in a shell.
class Completion : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("my rtl"));
    std::filesystem::create_directories(PathOf("out"));
    Write("lamp.xml", ProjectXml(R"(
  <design_info>
    <design_file name="my rtl/it's $new.v" version="verilog_2001" library="default"/>
    <design_file name="my rtl/lamp.v" version="sv_2017" library="light"/>
  </design_info>
  <constraint_info><sdc_file name="my clocks.sdc"/>
    <inter_file name="pins.interface.csv"/></constraint_info>
  <ip_info>
    <ip instance_name="pll" path="ip/pll.ip"><ip_src_file name="pll.v"/></ip>
  </ip_info>
  <synthesis>
    <param name="effort" value="high" value_type="e_string"/>
    <param name="retiming" value="off" value_type="e_bool"/>
    <defmacro name="STEP" value="3"/>
  </synthesis>
)",
                                 R"(owner="Ines" review:round="4"
    xmlns:review="http://schema.kel.example/wdp_proj/prefix/review")"));
  }

  // It may tell something, such as that a file is not there.
  void Change(const std::vector<std::string>& arguments) const {
    const Outcome outcome = Run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }

  // What the program offers behind these words, of which the last is not finished.
  Lines Completions(std::vector<std::string> words, const std::string& directory = "") const {
    words.insert(words.begin(), {"complete", "--"});
    const Outcome outcome = Run(words, {PathOf(directory), {{"HOME", Directory()}}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    return LinesOf(outcome.out);
  }
};

}  // namespace test_support
