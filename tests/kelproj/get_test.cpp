#include "testing/shipped_files.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::AnsweredNo;
using test_support::Failed;
using test_support::KelprojTest;
using test_support::Printed;
using test_support::SampleProject;

class Get : public KelprojTest {
 protected:
  test_support::Outcome GetFromSample(const std::string& key) const {
    return Run({"get", SampleProject(), key});
  }
};

TEST_F(Get, Property_PrintsItsValue) {
  EXPECT_EQ(GetFromSample("design.top_module"), Printed("soc_top\n"));
}

TEST_F(Get, EmptyProperty_PrintsAnEmptyLine) {
  MakeProject();
  EXPECT_EQ(Run({"get", "blinker.xml", "device.timing_model"}), Printed("\n"));
}

TEST_F(Get, DefaultLanguageVersions_PrintsThem) {
  EXPECT_EQ(GetFromSample("design.def_veri_version"), Printed("verilog_2001\n"));
  EXPECT_EQ(GetFromSample("design.def_vhdl_version"), Printed("vhdl_2008\n"));
}

TEST_F(Get, StampsOfTheLastWriting_PrintsThem) {
  EXPECT_EQ(GetFromSample("sw_version"), Printed("0.1.0\n"));
  EXPECT_EQ(GetFromSample("last_change_date"), Printed("Sat Nov 21 2026 08:36:55\n"));
}

TEST_F(Get, InfoAttribute_PrintsItInUtf8) {
  EXPECT_EQ(GetFromSample("info.owner"), Printed("Søren Þórsson\n"));
}

TEST_F(Get, InfoAttributeWithAPrefix_PrintsIt) {
  EXPECT_EQ(GetFromSample("info.review:round"), Printed("4\n"));
}

TEST_F(Get, MissingInfoAttribute_PrintsNothingAndAnswersNo) {
  EXPECT_EQ(GetFromSample("info.budget"), AnsweredNo());
}

TEST_F(Get, Tool_PrintsTheExecutable) {
  EXPECT_EQ(GetFromSample("debugger.tool"), Printed("kel_debug\n"));
}

TEST_F(Get, ParameterOfEachProcess_PrintsItsValue) {
  EXPECT_EQ(GetFromSample("synthesis.param.max_threads"), Printed("4\n"));
  EXPECT_EQ(GetFromSample("place_and_route.param.max_threads"), Printed("8\n"));
  EXPECT_EQ(GetFromSample("bitstream_generation.param.mode"), Printed("spi_x4\n"));
  EXPECT_EQ(GetFromSample("debugger.param.cable"), Printed("usb_jtag\n"));
}

TEST_F(Get, DefineParameterAndMacro_PrintTheirValues) {
  EXPECT_EQ(GetFromSample("synthesis.dynparam.RESET_VECTOR"), Printed("32'h0001_0000\n"));
  EXPECT_EQ(GetFromSample("synthesis.defmacro.BUILD_LABEL"), Printed("\"soc demo\"\n"));
}

TEST_F(Get, SwitchWithoutValue_PrintsAnEmptyLine) {
  EXPECT_EQ(GetFromSample("synthesis.param.keep_hierarchy"), Printed("\n"));
}

TEST_F(Get, MissingParameter_PrintsNothingAndAnswersNo) {
  EXPECT_EQ(GetFromSample("synthesis.param.speed"), AnsweredNo());
}

TEST_F(Get, MapThatTheProjectDoesNotHave_AnswersNo) {
  MakeProject();
  EXPECT_EQ(Run({"get", "blinker.xml", "synthesis.defmacro.WIDTH"}), AnsweredNo());
}

TEST_F(Get, Verbose_ReportsTheReadingOnStandardError) {
  MakeProject();
  const auto outcome = Run({"get", "blinker.xml", "name", "--verbose"});
  EXPECT_EQ(outcome.out, "blinker\n");
  EXPECT_EQ(outcome.err, "kelproj: info: Reading project database \"blinker.xml\"\n");
}

TEST_F(Get, MissingFile_FailsWithTheReason) {
  const auto outcome = Run({"get", "blinker.xml", "name"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.err.rfind("kelproj: error: Project XML file \"blinker.xml\" does not exist\n", 0), 0u)
      << outcome.err;
}

TEST_F(Get, FullStandardOutput_Fails) {
  MakeProject();
  test_support::ProcessSettings settings;
  settings.output = "/dev/full";
  EXPECT_EQ(Run({"get", "blinker.xml", "name"}, settings),
            Failed("standard output cannot be written"));
}

class UnknownKey : public KelprojTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(UnknownKey, FailsBeforeTheFileIsRead) {
  EXPECT_EQ(Run({"get", "no_such_file.xml", GetParam()}),
            Failed("\"" + std::string(GetParam()) + "\" is no key of a project"));
}

INSTANTIATE_TEST_SUITE_P(Get, UnknownKey,
                         ::testing::Values("", "device", "devcie.family", "Device.family", "info",
                                           "info.", "infos.owner", "synthesis", "synthesis.param",
                                           "synthesis.param.", "synthesis.options.effort",
                                           "debugger.dynparam.WIDTH", "design.files", "name.",
                                           "routing.param.effort"));

}  // namespace
