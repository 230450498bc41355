#include "testing/shipped_files.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

struct GetCase {
  const char* key;
  Outcome outcome;
};

void PrintTo(const GetCase& c, std::ostream* out) { *out << c.key; }

class GetFromSample : public KelprojTest, public ::testing::WithParamInterface<GetCase> {};

TEST_P(GetFromSample, PrintsTheValueOrAnswersNo) {
  EXPECT_EQ(Run({"get", SampleProject(), GetParam().key}), GetParam().outcome);
}

INSTANTIATE_TEST_SUITE_P(
    Get, GetFromSample,
    ::testing::Values(GetCase{"design.top_module", Printed("soc_top\n")},
                      GetCase{"design.def_veri_version", Printed("verilog_2001\n")},
                      GetCase{"design.def_vhdl_version", Printed("vhdl_2008\n")},
                      GetCase{"sw_version", Printed("0.1.0\n")},
                      GetCase{"last_change_date", Printed("Sat Nov 21 2026 08:36:55\n")},
                      GetCase{"info.owner", Printed("Søren Þórsson\n")},
                      GetCase{"info.review:round", Printed("4\n")},
                      GetCase{"info.budget", AnsweredNo()},
                      GetCase{"debugger.tool", Printed("kel_debug\n")},
                      GetCase{"synthesis.param.max_threads", Printed("4\n")},
                      GetCase{"place_and_route.param.max_threads", Printed("8\n")},
                      GetCase{"bitstream_generation.param.mode", Printed("spi_x4\n")},
                      GetCase{"debugger.param.cable", Printed("usb_jtag\n")},
                      GetCase{"synthesis.dynparam.RESET_VECTOR", Printed("32'h0001_0000\n")},
                      GetCase{"synthesis.defmacro.BUILD_LABEL", Printed("\"soc demo\"\n")},
                      GetCase{"synthesis.param.keep_hierarchy", Printed("\n")},
                      GetCase{"synthesis.param.speed", AnsweredNo()}));

class Get : public KelprojTest {};

TEST_F(Get, EmptyPropertyAndMapThatIsNotThere_PrintAnEmptyLineAndAnswerNo) {
  MakeProject();
  EXPECT_EQ(Run({"get", "blinker.xml", "device.timing_model"}), Printed("\n"));
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
  ProcessSettings settings;
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
