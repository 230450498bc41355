#include <variant>

#include <projectdb/vocabulary.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace projectdb;
using namespace test_support;

class Set : public KelprojTest {
 protected:
  void SetUp() override { MakeProject(); }

  Outcome SetValue(const std::string& key, const std::string& value,
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
};

TEST_F(Set, SettableKey_IsReadBackAsItWasSet) {
  const std::string value = "Wert \"ä\" <1> & 'b'";
  for (const char* key : {"name",
                          "device.family",
                          "device.device",
                          "device.timing_model",
                          "design.top_module",
                          "design.top_vhdl_arch",
                          "design.def_veri_version",
                          "design.def_vhdl_version",
                          "info.owner",
                          "info.review:state",
                          "synthesis.tool",
                          "place_and_route.tool",
                          "bitstream_generation.tool",
                          "debugger.tool",
                          "synthesis.param.goal",
                          "synthesis.param.with.dots in it",
                          "synthesis.dynparam.WIDTH",
                          "synthesis.defmacro.LABEL",
                          "place_and_route.param.seed",
                          "bitstream_generation.param.mode",
                          "debugger.param.cable"}) {
    EXPECT_EQ(SetValue(key, value), Done()) << key;
    EXPECT_EQ(Value(key), value + "\n") << key;
  }
}

TEST_F(Set, SettableKeys_AreAllButTheStamps) {
  for (const ProjectTerm& term : ProjectTerms()) {
    const bool is_text = std::holds_alternative<Access<ProjectContents, std::string>>(term.access);
    if (!is_text || term.kind == TermKind::kDirectory) continue;
    const std::string key(term.key);
    const std::string value = "x" + std::string(term.file_ending.value_or(""));
    if (key == "sw_version" || key == "last_change_date") {
      ExpectUnchangedBy({"set", "blinker.xml", key, value}, Failed(key + " cannot be set"));
    } else {
      EXPECT_EQ(SetValue(key, value), Done()) << key;
      EXPECT_EQ(Value(key), value + "\n") << key;
    }
  }
}

TEST_F(Set, SeveralPairs_AreAllSet) {
  EXPECT_EQ(Run({"set", "blinker.xml", "device.device", "R40", "info.owner", "M. Ferreira",
                 "synthesis.param.goal", "speed"}),
            Done());
  EXPECT_EQ(Value("device.device"), "R40\n");
  EXPECT_EQ(Value("info.owner"), "M. Ferreira\n");
  EXPECT_EQ(Value("synthesis.param.goal"), "speed\n");
}

TEST_F(Set, OneBadPairOfSeveral_ChangesNothing) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"device.device", "R40", "device.speed", "3"}, "\"device.speed\" is no key of a project"},
      {{"device.device", "R40", "sw_version", "3"}, "sw_version cannot be set"},
      {{"device.device", "R40", "synthesis.param.goal", ""},
       "synthesis.param.goal: a parameter of type e_string needs a value; --type e_noarg stores it "
       "without one"},
      {{"device.device", "R40", "info.name", "x"}, "a project does not keep info.name"}};
  for (auto [arguments, reason] : cases) {
    arguments.insert(arguments.begin(), {"set", "blinker.xml"});
    ExpectUnchangedBy(arguments, Failed(reason));
  }
}

TEST_F(Set, KeyWithoutValue_IsWrongUse) {
  ExpectUnchangedBy({"set", "blinker.xml", "device.device", "R40", "info.owner"},
                    IsWrongUse("kelproj set", {"VALUE of info.owner is required\n"}));
  ExpectUnchangedBy({"set", "blinker.xml", "info.owner"},
                    IsWrongUse("kelproj set", {"VALUE of info.owner is required\n"}));
}

TEST_F(Set, SameValue_LeavesTheFile) {
  ExpectUnchangedBy({"set", "blinker.xml", "name", "blinker", "design.top_module", ""}, Done());
}

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

TEST_F(Set, TypeOfParameter_IsTheGivenOneTheStoredOneOrThatOfItsMap) {
  struct {
    const char *key, *value, *type, *shown;
  } const cases[] = {{"synthesis.param.goal", "speed", "", "goal  speed  e_string"},
                     {"synthesis.defmacro.WIDTH", "8", "", "WIDTH  8"},
                     {"bitstream_generation.param.fast", "true", "e_bool", "fast  true  e_bool"},
                     {"bitstream_generation.param.fast", "false", "", "fast  false  e_bool"},
                     {"debugger.param.untyped", "true", "none", "untyped  true"},
                     {"place_and_route.param.flat", "", "e_noarg", "flat    e_noarg"}};
  for (const auto& [key, value, type, shown] : cases) {
    EXPECT_EQ(SetValue(key, value, type), Done()) << key;
    const std::string name = key;
    EXPECT_EQ(ShownParameter(name.substr(name.rfind('.') + 1)), shown);
  }
}

TEST_F(Set, OtherTypeThanTheStoredOne_TakesItsPlace) {
  ASSERT_EQ(SetValue("synthesis.param.retiming", "true", "e_string"), Done());
  EXPECT_EQ(SetValue("synthesis.param.retiming", "true", "e_bool"), Done());
  EXPECT_EQ(ShownParameter("retiming"), "retiming  true  e_bool");
}

TEST_F(Set, TypeWithSeveralPairs_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "synthesis.param.a", "1", "synthesis.param.b", "2",
                     "--type", "e_option"},
                    Failed("--type goes with one key alone"));
}

TEST_F(Set, NameOfAFile_IsTakenFromWhereTheUserStands) {
  std::filesystem::create_directory(PathOf("pins"));
  EXPECT_EQ(Run({"set", "../blinker.xml", "constraint.interface", "board.interface.csv"},
                {PathOf("pins")}),
            Done());
  EXPECT_EQ(Value("constraint.interface"), "pins/board.interface.csv\n");
  EXPECT_EQ(Run({"set", "../blinker.xml", "constraint.interface", "board.csv"}, {PathOf("pins")}),
            Failed("constraint.interface: \"pins/board.csv\" must be named NAME.interface.csv"));
}

TEST_F(Set, RefusedValue_FailsAndLeavesTheFile) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"synthesis.param.goal", ""},
       "synthesis.param.goal: a parameter of type e_string needs a value; --type e_noarg stores it "
       "without one"},
      {{"synthesis.defmacro.FAST", ""},
       "synthesis.defmacro.FAST: a parameter of type none needs a value; --type e_noarg stores it "
       "without one"},
      {{"synthesis.param.keep_hierarchy", "yes", "--type", "e_noarg"},
       "synthesis.param.keep_hierarchy: a parameter of type e_noarg takes no value"},
      {{"device.device", "R40", "--type", "e_string"},
       "device.device has no type: only parameters have one"},
      {{"info.xmlns:board", "x"}, "a project does not keep info.xmlns:board"},
      {{"info.name", "x"}, "a project does not keep info.name"},
      {{"info.two words", "x"},
       "Failed writing XML file blinker.xml: info.two words: \"two words\" cannot be the name of "
       "an attribute"}};
  for (auto [arguments, reason] : cases) {
    arguments.insert(arguments.begin(), {"set", "blinker.xml"});
    ExpectUnchangedBy(arguments, Failed(reason));
  }
}

TEST_F(Set, ValueThatDeservesALook_IsSetWithAWarning) {
  EXPECT_EQ(SetValue("synthesis.param.retiming", "perhaps", "e_bool"),
            DoneWithContentWarning("synthesis.param.retiming: \"perhaps\" is no value of type "
                                   "e_bool; expected true, false, on, off, yes, no, 0 or 1"));
  EXPECT_EQ(Value("synthesis.param.retiming"), "perhaps\n");
  EXPECT_EQ(SetValue("place_and_route.param.max_threads", "four"),
            DoneWithContentWarning("place_and_route.param.max_threads: \"four\" is no number of "
                                   "threads; the tool takes its own default"));
  EXPECT_EQ(SetValue("place_and_route.param.max_threads", "4"), Done());
}

TEST_F(Set, KeyWithAnEqualsSign_IsRefused) {
  ExpectUnchangedBy(
      {"set", "blinker.xml", "synthesis.param.effort=high", "synthesis.param.goal=speed"},
      Failed("\"synthesis.param.effort=high\" is no key of this project; expected KEY "
             "VALUE, without ="));
  ExpectUnchangedBy(
      {"set", "blinker.xml", "name", "mixer", "info.owner=", "Zoe"},
      Failed("\"info.owner=\" is no key of this project; expected KEY VALUE, without ="));
  for (const std::string slip : {"name=abc", "device.family=", "synthesis.tool=syn"}) {
    ExpectUnchangedBy(
        {"set", "blinker.xml", slip, "name=mixer"},
        Failed("\"" + slip + "\" is no key of a project; expected KEY VALUE, without ="));
  }
}

TEST_F(Set, KeyAndValueInOneArgument_AreToldToBeTwo) {
  for (const std::string slip : {"info.owner=Zoe", "name=abc", "synthesis.param.effort=high"}) {
    const testing::Matcher<const Outcome&> refused = IsWrongUse(
        "kelproj set",
        {"VALUE of " + slip + " is required; KEY and VALUE are two arguments, without =\n"});
    ExpectUnchangedBy({"set", "blinker.xml", slip}, refused);
    ExpectUnchangedBy({"set", "blinker.xml", "name", "mixer", slip}, refused);
  }
}

TEST_F(Set, StoredParameterWithAnEqualsSign_IsChanged) {
  Write("parameters.json",
        R"({"synthesis": {"param": {"a=b": {"value": "1", "type": "e_string"}}}})");
  ASSERT_EQ(Run({"apply", "blinker.xml", "parameters.json"}), Done());
  EXPECT_EQ(SetValue("synthesis.param.a=b", "2"), Done());
  EXPECT_EQ(Value("synthesis.param.a=b"), "2\n");
}

TEST_F(Set, UnknownType_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "synthesis.param.goal", "speed", "--type", "text"},
                    IsWrongUse("kelproj set", {"--type", "text", "e_option"}));
}

TEST_F(Set, TextThatXmlCannotHold_IsRefused) {
  ExpectUnchangedBy(
      {"set", "blinker.xml", "info.note", "\x1b[31m"},
      testing::Field(&Outcome::err, AllOf(HasSubstr("info.note: the text "), HasSubstr("U+001B"))));
}

TEST_F(Set, Success_LeavesNoOtherFile) {
  ASSERT_EQ(SetValue("name", "blinker2"), Done());
  EXPECT_THAT(Names(), ElementsAre("blinker.xml"));
}

TEST_F(Set, TextThatIsNotUtf8_IsRefused) {
  ExpectUnchangedBy({"set", "blinker.xml", "info.note", "caf\xE9"},
                    testing::Field(&Outcome::status, 2));
}

}  // namespace
