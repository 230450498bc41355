#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Unset : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    ASSERT_EQ(Run({"set", "blinker.xml", "info.owner", "M. Ferreira", "info.review", "done",
                   "device.timing_model", "slow", "synthesis.tool", "synth", "synthesis.param.goal",
                   "speed", "synthesis.defmacro.WIDTH", "8", "constraint.interface",
                   "pins.interface.csv"}),
              Done());
  }

  Outcome Value(const std::string& key) const { return Run({"get", "blinker.xml", key}); }
};

TEST_F(Unset, InfoAttributesAndParameters_AreNotThereAnyMore) {
  for (const char* key : {"info.owner", "synthesis.param.goal", "synthesis.defmacro.WIDTH"}) {
    EXPECT_EQ(Run({"unset", "blinker.xml", key}), Done()) << key;
    EXPECT_EQ(Value(key), AnsweredNo()) << key;
  }
  EXPECT_EQ(Value("info.review"), Printed("done\n"));
}

TEST_F(Unset, OtherValues_AreEmpty) {
  for (const char* key : {"name", "device.timing_model", "synthesis.tool", "constraint.interface",
                          "design.def_veri_version"}) {
    EXPECT_EQ(Run({"unset", "blinker.xml", key}), Done()) << key;
    EXPECT_EQ(Value(key), Printed("\n")) << key;
  }
}

TEST_F(Unset, Several_AreAllUnset) {
  EXPECT_EQ(Run({"unset", "blinker.xml", "info.owner", "synthesis.param.goal"}), Done());
  EXPECT_EQ(Value("info.owner"), AnsweredNo());
  EXPECT_EQ(Value("synthesis.param.goal"), AnsweredNo());
}

TEST_F(Unset, OneThatIsNotThere_ChangesNothingAndTheAnswerIsNo) {
  for (const std::string key : {"info.reviewer", "synthesis.param.effort",
                                "synthesis.dynparam.WIDTH", "debugger.param.cable"}) {
    ExpectUnchangedBy({"unset", "blinker.xml", "info.owner", key}, Refused("there is no " + key));
  }
}

TEST_F(Unset, StampOrUnknownKey_FailsAndChangesNothing) {
  ExpectUnchangedBy({"unset", "blinker.xml", "info.owner", "sw_version"},
                    Failed("sw_version cannot be unset"));
  ExpectUnchangedBy({"unset", "blinker.xml", "last_change_date"},
                    Failed("last_change_date cannot be unset"));
  ExpectUnchangedBy({"unset", "blinker.xml", "info.owner", "device.speed"},
                    Failed("\"device.speed\" is no key of a project"));
}

}  // namespace
