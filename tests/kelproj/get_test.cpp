#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Get : public KelprojTest {};

TEST_F(Get, Sample_PrintsTheValueOrAnswersNo) {
  const std::pair<const char*, Outcome> cases[] = {
      {"design.top_module", Printed("soc_top\n")},
      {"design.def_veri_version", Printed("verilog_2001\n")},
      {"design.def_vhdl_version", Printed("vhdl_2008\n")},
      {"sw_version", Printed("0.1.0\n")},
      {"last_change_date", Printed("Sat Nov 21 2026 08:36:55\n")},
      {"info.owner", Printed("Søren Þórsson\n")},
      {"info.review:round", Printed("4\n")},
      {"info.budget", AnsweredNo()},
      {"debugger.tool", Printed("kel_debug\n")},
      {"synthesis.param.max_threads", Printed("4\n")},
      {"place_and_route.param.max_threads", Printed("8\n")},
      {"bitstream_generation.param.mode", Printed("spi_x4\n")},
      {"debugger.param.cable", Printed("usb_jtag\n")},
      {"synthesis.dynparam.RESET_VECTOR", Printed("32'h0001_0000\n")},
      {"synthesis.defmacro.BUILD_LABEL", Printed("\"soc demo\"\n")},
      {"synthesis.param.keep_hierarchy", Printed("\n")},
      {"synthesis.param.speed", AnsweredNo()}};
  for (const auto& [key, outcome] : cases) {
    EXPECT_EQ(Run({"get", SampleProject(), key}), outcome) << key;
  }
}

TEST_F(Get, ControlCharactersInAMessage_DoNotReachATerminal) {
  EXPECT_EQ(Run({"get", "\x1b[31m\xC2\x9B.xml", "name"}),
            Failed("\\x1b[31m\\x9b.xml does not exist"));
}

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
  EXPECT_EQ(Run({"get", "blinker.xml", "name"}), Failed("blinker.xml does not exist"));
  EXPECT_EQ(Run({"get", "", "name"}), Failed("the empty text names no file"));
}

TEST_F(Get, UnknownKey_FailsBeforeTheFileIsRead) {
  for (const std::string key : {"", "device", "info", "synthesis", "synthesis.options.effort",
                                "design.files", "routing.param.effort", "synthesis.param"}) {
    EXPECT_EQ(Run({"get", "no_such_file.xml", key}),
              Failed("\"" + key + "\" is no key of a project"));
  }
}

TEST_F(Get, KeyWithoutTheNameAtItsEnd_IsAnsweredWithWhatIsMissing) {
  const std::pair<std::string, std::string> cases[] = {
      {"info.", "info attribute"},
      {"synthesis.param.", "parameter"},
      {"debugger.param.", "parameter"},
      {"synthesis.dynparam.", "Verilog define parameter"},
      {"synthesis.defmacro.", "Verilog macro"}};
  for (const auto& [key, what] : cases) {
    EXPECT_EQ(
        Run({"get", "no_such_file.xml", key}),
        Failed("\"" + key + "\" is no key of a project; the name of the " + what + " is missing"));
  }
}

TEST_F(Get, UnknownKeyWithoutAName_IsAnsweredWithNoKeyThatHasNone) {
  for (const std::string key : {"synthesis.params.", "debugger.dynparam.", "infos."}) {
    EXPECT_EQ(Run({"get", "no_such_file.xml", key}),
              Failed("\"" + key + "\" is no key of a project"));
  }
}

TEST_F(Get, UnknownKeyThatIsNearToAKey_IsToldWithThatOne) {
  const std::pair<std::string, std::string> cases[] = {
      {"devcie.family", "device.family"},
      {"Device.family", "device.family"},
      {"name.", "name"},
      {"infos.owner", "info.owner"},
      {"syntesis.param.effort", "synthesis.param.effort"},
      {"synthesis.params.effort", "synthesis.param.effort"},
      {"debugger.dynparam.WIDTH", "debugger.param.WIDTH"},
      {"place_and_rout.tool", "place_and_route.tool"}};
  for (const auto& [key, meant] : cases) {
    EXPECT_EQ(Run({"get", "no_such_file.xml", key}),
              Failed("\"" + key + "\" is no key of a project; did you mean \"" + meant + "\"?"));
  }
}

}  // namespace
