#include <gmock/gmock.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::Done;
using test_support::Failed;
using test_support::IsWrongUse;
using test_support::KelprojTest;
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

TEST_F(Set, ValuesThatLookLikeSomethingElse_AreTexts) {
  for (const std::string value : {"[7,0]", "-5", "one\n\ttwo"}) {
    EXPECT_EQ(SetValue("info.text", value), Done());
    EXPECT_EQ(Value("info.text"), value + "\n");
  }
  EXPECT_EQ(Run({"set", "blinker.xml", "synthesis.param.flags", "--", "--type"}), Done());
  EXPECT_EQ(Value("synthesis.param.flags"), "--type\n");
}

struct TypeCase {
  std::vector<std::vector<std::string>> sets;  ///< Key, value and perhaps a type of each.
  const char* shown;                           ///< The parameter then.
};

void PrintTo(const TypeCase& c, std::ostream* out) { *out << c.shown; }

class TypeOfParameter : public Set, public ::testing::WithParamInterface<TypeCase> {};

TEST_P(TypeOfParameter, IsTheStoredOneTheGivenOneOrThatOfItsMap) {
  for (const auto& set : GetParam().sets) {
    EXPECT_EQ(SetValue(set[0], set[1], set.size() > 2 ? set[2] : ""), Done());
  }
  const std::string shown = GetParam().shown;
  EXPECT_EQ(ShownParameter(shown.substr(0, shown.find(' '))), shown);
}

INSTANTIATE_TEST_SUITE_P(
    Set, TypeOfParameter,
    ::testing::Values(TypeCase{{{"synthesis.param.goal", "speed"}}, "goal  speed  e_string"},
                      TypeCase{{{"synthesis.defmacro.WIDTH", "8"}}, "WIDTH  8"},
                      TypeCase{{{"synthesis.param.retiming", "true", "e_bool"}},
                               "retiming  true  e_bool"},
                      TypeCase{{{"synthesis.param.retiming", "true", "none"}}, "retiming  true"},
                      TypeCase{{{"synthesis.param.retiming", "true", "e_bool"},
                                {"synthesis.param.retiming", "false"}},
                               "retiming  false  e_bool"},
                      TypeCase{{{"synthesis.param.keep_hierarchy", "", "e_noarg"}},
                               "keep_hierarchy    e_noarg"}));

TEST_F(Set, OtherTypeThanTheStoredOne_IsRefused) {
  ASSERT_EQ(SetValue("synthesis.param.retiming", "true", "e_bool"), Done());
  ExpectUnchangedBy(
      {"set", "blinker.xml", "synthesis.param.retiming", "on", "--type", "e_option"},
      Failed("retiming: a parameter of type e_bool cannot become one of type e_option"));
}

struct RefusedValue {
  std::vector<std::string> arguments;  ///< Behind the project file.
  const char* reason;
};

void PrintTo(const RefusedValue& refusal, std::ostream* out) { *out << refusal.reason; }

class RefusedSet : public Set, public ::testing::WithParamInterface<RefusedValue> {};

TEST_P(RefusedSet, FailsAndLeavesTheFile) {
  std::vector<std::string> arguments = GetParam().arguments;
  arguments.insert(arguments.begin(), {"set", "blinker.xml"});
  ExpectUnchangedBy(arguments, Failed(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Set, RefusedSet,
    ::testing::Values(
        RefusedValue{{"synthesis.param.goal", ""},
                     "goal: a parameter of type e_string needs a value"},
        RefusedValue{{"synthesis.param.keep_hierarchy", "yes", "--type", "e_noarg"},
                     "keep_hierarchy: a parameter of type e_noarg takes no value"},
        RefusedValue{{"device.device", "R40", "--type", "e_string"},
                     "device.device has no type: only parameters have one"},
        RefusedValue{{"info.xmlns:board", "x"}, "a project does not keep info.xmlns:board"},
        RefusedValue{{"info.name", "x"}, "a project does not keep info.name"},
        RefusedValue{{"info.two words", "x"},
                     "Failed writing XML file blinker.xml: \"two words\" cannot be the name of an "
                     "attribute"}));

TEST_F(Set, UnknownType_IsRefused) {
  const std::string before = Read("blinker.xml");
  EXPECT_THAT(SetValue("synthesis.param.goal", "speed", "text"),
              IsWrongUse("kelproj set", {"--type", "text", "e_option"}));
  EXPECT_EQ(Read("blinker.xml"), before);
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
