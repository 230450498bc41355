#include <gmock/gmock.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::Done;
using test_support::Failed;
using test_support::KelprojTest;
using test_support::WrongArguments;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Set : public KelprojTest {
 protected:
  void SetUp() override { MakeProject(); }

  test_support::Outcome SetValue(const std::string& key, const std::string& value,
                                 const std::string& type = "") const {
    std::vector<std::string> arguments = {"set", "blinker.xml", key, value};
    if (!type.empty()) arguments.insert(arguments.end(), {"--type", type});
    return Run(arguments);
  }

  std::string Value(const std::string& key) const { return Get("blinker.xml", key); }

  // The line of "show" that tells a parameter.
  std::string ShownParameter(const std::string& name) const {
    const std::string shown = Run({"show", "blinker.xml"}).out;
    const std::size_t begin = shown.find("\n  " + name + " ");
    if (begin == std::string::npos) return "";
    return shown.substr(begin + 3, shown.find('\n', begin + 1) - begin - 3);
  }

  void ExpectUnchangedBy(const std::vector<std::string>& arguments,
                         const test_support::Outcome& outcome) const {
    const std::string before = Read("blinker.xml");
    EXPECT_EQ(Run(arguments), outcome);
    EXPECT_EQ(Read("blinker.xml"), before);
  }
};

class SettableKey : public Set, public ::testing::WithParamInterface<const char*> {};

TEST_P(SettableKey, IsReadBackAsItWasSet) {
  EXPECT_EQ(SetValue(GetParam(), "Wert \"ä\" <1> & 'b'"), Done());
  EXPECT_EQ(Value(GetParam()), "Wert \"ä\" <1> & 'b'\n");
}

INSTANTIATE_TEST_SUITE_P(
    Set, SettableKey,
    ::testing::Values("name", "device.family", "device.device", "device.timing_model",
                      "design.top_module", "design.top_vhdl_arch", "info.owner",
                      "info.review:state", "synthesis.tool", "place_and_route.tool",
                      "bitstream_generation.tool", "debugger.tool", "synthesis.param.goal",
                      "synthesis.param.with.dots in it", "synthesis.dynparam.WIDTH",
                      "synthesis.defmacro.LABEL", "place_and_route.param.seed",
                      "bitstream_generation.param.mode", "debugger.param.cable"));

class FixedValue : public Set, public ::testing::WithParamInterface<const char*> {};

TEST_P(FixedValue, CannotBeSet) {
  ExpectUnchangedBy({"set", "blinker.xml", GetParam(), "2"},
                    Failed(std::string(GetParam()) + " cannot be set"));
}

INSTANTIATE_TEST_SUITE_P(Set, FixedValue,
                         ::testing::Values("sw_version", "last_change_date",
                                           "design.def_veri_version", "design.def_vhdl_version"));

TEST_F(Set, EmptyValueOfAProperty_IsStored) {
  ASSERT_EQ(SetValue("design.top_module", "blinker_top"), Done());
  EXPECT_EQ(SetValue("design.top_module", ""), Done());
  EXPECT_EQ(Value("design.top_module"), "\n");
}

TEST_F(Set, ValueInBrackets_IsOneText) {
  EXPECT_EQ(SetValue("info.bus", "[7,0]"), Done());
  EXPECT_EQ(Value("info.bus"), "[7,0]\n");
}

TEST_F(Set, NegativeNumber_IsAValue) {
  EXPECT_EQ(SetValue("place_and_route.param.slack", "-5"), Done());
  EXPECT_EQ(Value("place_and_route.param.slack"), "-5\n");
}

TEST_F(Set, ValueBehindHyphens_MayLookLikeAnOption) {
  EXPECT_EQ(Run({"set", "blinker.xml", "synthesis.param.flags", "--", "--type"}), Done());
  EXPECT_EQ(Value("synthesis.param.flags"), "--type\n");
}

TEST_F(Set, LineBreaksAndTabs_AreKept) {
  EXPECT_EQ(SetValue("info.note", "one\n\ttwo"), Done());
  EXPECT_EQ(Value("info.note"), "one\n\ttwo\n");
}

TEST_F(Set, OtherValues_StayAsTheyAre) {
  ASSERT_EQ(SetValue("device.family", "Varel II"), Done());
  EXPECT_EQ(Value("device.device"), "Q8R25\n");
}

TEST_F(Set, NewParameter_IsAString) {
  ASSERT_EQ(SetValue("synthesis.param.goal", "speed"), Done());
  EXPECT_EQ(ShownParameter("goal"), "goal  speed  e_string");
}

TEST_F(Set, NewMacro_HasNoType) {
  ASSERT_EQ(SetValue("synthesis.defmacro.WIDTH", "8"), Done());
  EXPECT_EQ(ShownParameter("WIDTH"), "WIDTH  8");
}

TEST_F(Set, Type_IsThatOfTheNewParameter) {
  EXPECT_EQ(SetValue("synthesis.param.retiming", "true", "e_bool"), Done());
  EXPECT_EQ(ShownParameter("retiming"), "retiming  true  e_bool");
}

TEST_F(Set, TypeNone_MakesAParameterWithoutType) {
  EXPECT_EQ(SetValue("synthesis.param.retiming", "true", "none"), Done());
  EXPECT_EQ(ShownParameter("retiming"), "retiming  true");
}

TEST_F(Set, StoredParameter_KeepsItsType) {
  ASSERT_EQ(SetValue("synthesis.param.retiming", "true", "e_bool"), Done());
  EXPECT_EQ(SetValue("synthesis.param.retiming", "false"), Done());
  EXPECT_EQ(ShownParameter("retiming"), "retiming  false  e_bool");
}

TEST_F(Set, OtherTypeThanTheStoredOne_IsRefused) {
  ASSERT_EQ(SetValue("synthesis.param.retiming", "true", "e_bool"), Done());
  ExpectUnchangedBy(
      {"set", "blinker.xml", "synthesis.param.retiming", "on", "--type", "e_option"},
      Failed("retiming: a parameter of type e_bool cannot become one of type e_option"));
}

TEST_F(Set, EmptyStringParameter_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "synthesis.param.goal", ""},
                    Failed("goal: a parameter of type e_string needs a value"));
}

TEST_F(Set, SwitchWithoutValue_IsStored) {
  EXPECT_EQ(SetValue("synthesis.param.keep_hierarchy", "", "e_noarg"), Done());
  EXPECT_EQ(ShownParameter("keep_hierarchy"), "keep_hierarchy    e_noarg");
}

TEST_F(Set, SwitchWithAValue_IsRefused) {
  ExpectUnchangedBy(
      {"set", "blinker.xml", "synthesis.param.keep_hierarchy", "yes", "--type", "e_noarg"},
      Failed("keep_hierarchy: a parameter of type e_noarg takes no value"));
}

TEST_F(Set, UnknownType_IsRefused) {
  ExpectUnchangedBy(
      {"set", "blinker.xml", "synthesis.param.goal", "speed", "--type", "text"},
      WrongArguments("--type: text not in {e_string,e_bool,e_option,e_noarg,none}", "kelproj set"));
}

TEST_F(Set, TypeOfAProperty_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "device.device", "R40", "--type", "e_string"},
                    Failed("device.device has no type: only parameters have one"));
}

TEST_F(Set, InfoAttributeThatXmlUsesItself_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "info.xmlns:board", "x"},
                    Failed("a project does not keep info.xmlns:board"));
}

TEST_F(Set, InfoAttributeThatStandsForAProperty_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "info.name", "x"},
                    Failed("a project does not keep info.name"));
}

TEST_F(Set, InfoAttributeThatXmlCannotName_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "info.two words", "x"},
                    Failed("Failed writing XML file blinker.xml: \"two words\" cannot be the name "
                           "of an attribute"));
}

TEST_F(Set, TextThatXmlCannotHold_IsRefused) {
  const std::string before = Read("blinker.xml");
  EXPECT_THAT(SetValue("info.note", "\x1b[31m").err, HasSubstr("U+001B"));
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Set, TextThatIsNotUtf8_IsRefused) {
  const std::string before = Read("blinker.xml");
  EXPECT_EQ(SetValue("info.note", "caf\xE9").status, 2);
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Set, Success_LeavesNoOtherFile) {
  ASSERT_EQ(SetValue("name", "blinker2"), Done());
  EXPECT_THAT(Names(), ElementsAre("blinker.xml"));
}

}  // namespace
