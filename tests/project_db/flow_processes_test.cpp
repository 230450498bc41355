#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <tuple>
#include <type_traits>

#include "contents/record_text.h"
#include "testing/flow_processes.h"
#include "testing/message_recorder.h"
#include "testing/project_differences.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

using Db = KelProjectDatabase;

static_assert(
    std::is_same_v<decltype(std::declval<const Db&>().GetFlowProcess(e_synthesis)), FlowProcess*>);
static_assert(std::is_same_v<decltype(std::declval<const Db&>().FindFlowProcessParameterMap(
                                 e_synthesis, std::string())),
                             ParameterMap*>);

/// "a value=1 type=e_string" for each.
Lines ParameterTexts(const std::vector<Parameter>& parameters) {
  Lines texts;
  for (const Parameter& parameter : parameters) texts.push_back(TextOf(parameter));
  return texts;
}

/// "a: 1 type=e_string" for each, by key.
Lines ParameterTexts(const ParameterMap& map) {
  Lines texts;
  for (const auto& [key, parameter] : map) {
    texts.push_back(key + ": " + TextUnderKey(key, parameter));
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

/// An empty project, of which ProjectLines shows what a test puts into it.
class FlowProcesses : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.SetupProjectDatabase()); }

  std::size_t MapCount(ProcType type) const {
    return database_.GetFlowProcess(type)->parameter_maps.size();
  }

  Db database_;
};

TEST_F(FlowProcesses, NameAndTool_EachType_AreThoseOfTheirProcess) {
  database_.SetFlowProcessName(e_debugger, "\xFF my name");
  database_.SetFlowProcessExecutableName(e_debugger, "\xFF my tool");
  EXPECT_THAT(ProjectLines(database_),
              ElementsAre("debugger.name: \xFF my name", "debugger.tool: \xFF my tool"));
  for (const ProcType type : kProcesses) {
    database_.SetFlowProcessName(type, ("name" + std::to_string(type)).c_str());
    database_.SetFlowProcessExecutableName(type, "tool" + std::to_string(type));
  }
  for (const ProcType type : kProcesses) {
    EXPECT_EQ(database_.GetFlowProcess(type)->name, "name" + std::to_string(type));
    EXPECT_EQ(database_.GetFlowProcess(type)->tool_name, "tool" + std::to_string(type));
    EXPECT_EQ(database_.GetFlowProcessExecutableName(type), "tool" + std::to_string(type));
  }
}

TEST_F(FlowProcesses, ValueThatIsNoProcess_EveryOperation_FindsNothingAndChangesNothing) {
  ASSERT_TRUE(database_.AddSynthesisParameter("effort", "high", e_option));
  const MessageRecorder recorder;
  for (const int value :
       {4, 5, 256, std::numeric_limits<int>::max(), -1, -4, std::numeric_limits<int>::min()}) {
    ExpectNoFlowProcess(database_, static_cast<ProcType>(value));
  }
  EXPECT_THAT(ProjectLines(database_), ElementsAre("synthesis.param.effort: high type=e_option"));
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NewNames_GetEmptyMapsAtTheNextPositions) {
  std::int16_t position = 0;
  // Names that differ slightly are different names.
  for (const std::string name : {"param", "Param", "param ", "", "größe"}) {
    ParameterMap* const map = database_.AddFlowProcessParameterMap(e_debugger, name);
    const FlowProcess& process = *database_.GetFlowProcess(e_debugger);
    ASSERT_EQ(map, &process.parameter_maps.back());
    EXPECT_EQ(process.parameter_map_index.at(name), position++);
    EXPECT_THAT(*map, IsEmpty());
    EXPECT_EQ(map->bucket_count(), 1u);
    EXPECT_EQ(map->max_load_factor(), 1.0F);
  }
  EXPECT_EQ(MapCount(e_debugger), 5u);
  for (const ProcType other : {e_synthesis, e_place_and_route, e_bitstream_generation}) {
    EXPECT_EQ(MapCount(other), 0u);
    EXPECT_EQ(database_.FindFlowProcessParameterMap(other, "param"), nullptr);
  }
}

TEST_F(FlowProcesses, AddAndFindFlowProcessParameterMap_NameExists_GiveTheMapWithItsParameters) {
  database_.AddSynthesisParameter("effort", "high", e_option);
  database_.AddFlowProcessParameterMap(e_synthesis, "own");
  ParameterMap* const again = database_.AddFlowProcessParameterMap(e_synthesis, "param");
  EXPECT_EQ(again, &database_.GetFlowProcess(e_synthesis)->parameter_maps.at(0));
  EXPECT_THAT(*again, SizeIs(1));
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "own"), again + 1);
  EXPECT_EQ(MapCount(e_synthesis), 2u);
}

TEST_F(FlowProcesses, Lookups_MapMissing_GiveNothingAndCreateNothing) {
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "param"), nullptr);
  EXPECT_FALSE(database_.GetFlowProcessParameter(e_synthesis, "param", "a"));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "param", "a"), "");
  std::vector<Parameter> parameters = {{"x", "former", e_string}};
  database_.GetFlowProcessParameterList(e_synthesis, "param", parameters);
  EXPECT_THAT(ParameterTexts(parameters), ElementsAre("x value=former type=e_string"));
  EXPECT_EQ(MapCount(e_synthesis), 0u);
}

/// A process with as many maps as it can have, each with one parameter.
class FullProcess : public FlowProcesses {
 protected:
  static constexpr int kMostMaps = 32768;
  static std::string NameOf(int map) { return "map" + std::to_string(map); }

  void SetUp() override {
    FlowProcesses::SetUp();
    for (int map = 0; map < kMostMaps; ++map) {
      ASSERT_TRUE(database_.AddFlowProcessParameter(e_synthesis, NameOf(map), "position",
                                                    std::to_string(map), e_string));
    }
  }
};

TEST_F(FullProcess, EveryMap_Found_HoldsItsOwnParameter) {
  for (int map = 0; map < kMostMaps; ++map) {
    ASSERT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, NameOf(map), "position"),
              std::to_string(map));
  }
  FlowProcess& process = *database_.GetFlowProcess(e_synthesis);
  EXPECT_EQ(process.parameter_map_index.at(NameOf(32767)), 32767);
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, NameOf(0)),
            &process.parameter_maps.front());
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, NameOf(32767)),
            &process.parameter_maps.back());
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, NameOf(32767), "a", "1", e_string));
}

TEST_F(FullProcess, OneMoreMap_IsRefusedByEveryAdderAndChangesNothing) {
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, "more"), nullptr);
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "more", Parameter("a", "1", e_bool)));
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "more", "a", "1", e_string));
  EXPECT_FALSE(database_.AddFlowProcessParameterList(e_synthesis, "more", {{"a", "1", e_string}}));
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "more"), nullptr);
  const FlowProcess& process = *database_.GetFlowProcess(e_synthesis);
  EXPECT_THAT(process.parameter_maps, SizeIs(kMostMaps));
  EXPECT_THAT(process.parameter_map_index, SizeIs(kMostMaps));
  EXPECT_NE(database_.AddFlowProcessParameterMap(e_debugger, "more"), nullptr);
}

constexpr int kTypes[] = {e_string, e_bool, e_option, e_noarg, kNoParameterType, 7, -1};

/// With a value that the type accepts.
Parameter Accepted(int type, const std::string& name, const std::string& value) {
  return {name, type == e_noarg ? "" : value, static_cast<ParameterType>(type)};
}

TEST(InsertOrAssignParameter, Value_IsStoredOnlyIfItFitsItsType) {
  for (const int type : kTypes) {
    for (const std::string value : {"text", " ", ""}) {
      const Parameter parameter("a", value, static_cast<ParameterType>(type));
      SCOPED_TRACE(TextOf(parameter));
      ParameterMap map = {{"b", {"b", "1", e_string}}};
      const bool fits = value.empty() == (type == e_noarg);
      EXPECT_EQ(Db::InsertOrAssignParameterToMap(map, "a", parameter), fits);
      EXPECT_EQ(map.count("a"), fits ? 1u : 0u);
      if (fits) {
        EXPECT_EQ(TextOf(map.at("a")), TextOf(parameter));
      }
    }
  }
  ParameterMap map = {{"a", {"a", "1", e_string}}};
  EXPECT_FALSE(Db::InsertOrAssignParameterToMap(map, "a", {"a", "", e_string}));
  EXPECT_THAT(ParameterTexts(map), ElementsAre("a: 1 type=e_string"));
}

TEST(InsertOrAssignParameter, KeyStored_TakesNameAndValueOfTheSameTypeOnly) {
  for (const int stored_type : kTypes) {
    for (const int type : kTypes) {
      SCOPED_TRACE(testing::Message() << stored_type << " then " << type);
      const Parameter stored = Accepted(stored_type, "a", "old");
      const Parameter next = Accepted(type, "b", "new");
      ParameterMap map = {{"key", stored}};
      EXPECT_EQ(Db::InsertOrAssignParameterToMap(map, "key", next), type == stored_type);
      const Parameter& expected = type == stored_type ? next : stored;
      EXPECT_THAT(ParameterTexts(map), ElementsAre("key: " + TextUnderKey("key", expected)));
    }
  }
}

TEST(InsertOrAssignParameter, AnotherKey_IsAddedWhateverTheName) {
  ParameterMap map = {{"a", {"a", "1", e_string}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "key", {"name", "true", e_bool}));
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "", {"", "1", e_string}));
  EXPECT_THAT(ParameterTexts(map), ElementsAre(": 1 type=e_string", "a: 1 type=e_string",
                                               "key: true type=e_bool name=name"));
}

TEST(InsertOrAssignParameter, ParameterOfTheMapItself_IsCopied) {
  ParameterMap map = {{"a", {"a", "a value too long for the string object", e_string}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "a", map.at("a")));
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "b", map.at("a")));
  EXPECT_THAT(ParameterTexts(map),
              ElementsAre(R"(a: "a value too long for the string object" type=e_string)",
                          R"(b: "a value too long for the string object" type=e_string name=a)"));
}

TEST_F(FlowProcesses, AddFlowProcessParameter_BothForms_StoreInTheGivenProcessAndMap) {
  for (const ProcType type : kProcesses) {
    const std::string map = "own" + std::to_string(type);
    EXPECT_TRUE(database_.AddFlowProcessParameter(type, map, Parameter("a", "1", e_string)));
    EXPECT_TRUE(database_.AddFlowProcessParameter(type, map, "b", "true", e_bool));
  }
  EXPECT_THAT(ProjectLines(database_),
              ElementsAre("synthesis.own0.a: 1 type=e_string", "synthesis.own0.b: true type=e_bool",
                          "place_and_route.own1.a: 1 type=e_string",
                          "place_and_route.own1.b: true type=e_bool",
                          "bitstream_generation.own2.a: 1 type=e_string",
                          "bitstream_generation.own2.b: true type=e_bool",
                          "debugger.own3.a: 1 type=e_string", "debugger.own3.b: true type=e_bool"));
}

TEST_F(FlowProcesses, AddFlowProcessParameter_BothForms_RefuseAnotherType) {
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_string));
  EXPECT_FALSE(
      database_.AddFlowProcessParameter(e_debugger, "own", Parameter("a", "true", e_bool)));
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_debugger, "own", "a", "true", e_bool));
  EXPECT_THAT(ProjectLines(database_), ElementsAre("debugger.own.a: 1 type=e_string"));
}

TEST_F(FlowProcesses, AddFlowProcessParameter_Refused_PostsNothingAndMakesTheEmptyMap) {
  const MessageRecorder recorder;
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "own", "a", "", e_bool));
  EXPECT_THAT(recorder.messages(), IsEmpty());
  const ParameterMap* const map = database_.FindFlowProcessParameterMap(e_synthesis, "own");
  ASSERT_NE(map, nullptr);
  EXPECT_THAT(*map, IsEmpty());
}

TEST_F(FlowProcesses, AddFlowProcessParameter_StoredParameterOfItsOwnMap_IsKept) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_string);
  const Parameter& stored = database_.FindFlowProcessParameterMap(e_debugger, "own")->at("a");
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_debugger, "own", stored));
  EXPECT_THAT(ProjectLines(database_), ElementsAre("debugger.own.a: 1 type=e_string"));
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_SomeRefused_ReturnsTrueAndStoresTheOthers) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "own",
                                                    {{"a", "", e_string},
                                                     {"b", "2", e_string},
                                                     {"c", "on", e_noarg},
                                                     {"d", "", e_noarg},
                                                     // The last of the first type wins.
                                                     {"b", "true", e_bool},
                                                     {"b", "3", e_string},
                                                     {"b", "", e_noarg}}));
  EXPECT_THAT(ProjectLines(database_),
              ElementsAre("debugger.own.b: 3 type=e_string", "debugger.own.d: \"\" type=e_noarg"));
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_NothingToStore_ReturnsTrueAndTheMapExists) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "refused", {{"a", "", e_string}}));
  EXPECT_NE(database_.FindFlowProcessParameterMap(e_debugger, "refused"), nullptr);
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "none", {}));
  EXPECT_NE(database_.FindFlowProcessParameterMap(e_debugger, "none"), nullptr);
}

TEST_F(FlowProcesses, GetFlowProcessParameterList_MapExists_AppendsItInTheMapsOwnOrder) {
  for (int i = 0; i < 50; ++i) {
    database_.AddDebuggerParameter("p" + std::to_string(i), std::to_string(i), e_string);
  }
  std::vector<Parameter> expected = {{"x", "former", e_string}, {"y", "former", e_string}};
  std::vector<Parameter> parameters = expected;
  for (const auto& [key, parameter] : *database_.FindFlowProcessParameterMap(e_debugger, "param")) {
    expected.push_back(parameter);
  }
  database_.GetFlowProcessParameterList(e_debugger, "param", parameters);
  EXPECT_EQ(ParameterTexts(parameters), ParameterTexts(expected));
}

TEST_F(FlowProcesses, GetFlowProcessParameter_Stored_GivesACopy) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  database_.AddFlowProcessParameter(e_debugger, "own", "quiet", "", e_noarg);
  std::optional<Parameter> parameter = database_.GetFlowProcessParameter(e_debugger, "own", "a");
  const auto quiet = database_.GetFlowProcessParameter(e_debugger, "own", "quiet");
  ASSERT_TRUE(parameter && quiet);
  EXPECT_EQ(TextOf(*quiet), "quiet type=e_noarg");
  EXPECT_EQ(TextOf(*parameter), "a value=1 type=e_option");
  parameter->value = "changed";
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_debugger, "own", "a"), "1");
}

TEST_F(FlowProcesses, GetFlowProcessParameterAndValue_Missing_GiveNothing) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  for (const auto& [process, map, name] :
       {std::tuple(e_synthesis, "own", "a"), std::tuple(e_debugger, "param", "a"),
        std::tuple(e_debugger, "own", "A"), std::tuple(e_debugger, "own", ""),
        std::tuple(e_debugger, "", "a")}) {
    EXPECT_FALSE(database_.GetFlowProcessParameter(process, map, name)) << process << map << name;
    EXPECT_EQ(database_.GetFlowProcessParameterValue(process, map, name), "");
  }
}

TEST_F(FlowProcesses, ExecutableNamesOfTools_AreThoseOfTheirProcesses) {
  database_.SetSynthesisExecutableName("syn");
  database_.SetPlaceAndRouteExecutableName("pnr");
  database_.SetBitstreamGenerateExecutableName("bits");
  EXPECT_THAT(ProjectLines(database_),
              ElementsAre("synthesis.tool: syn", "place_and_route.tool: pnr",
                          "bitstream_generation.tool: bits"));
  EXPECT_EQ(database_.GetSynthesisExecutableName(), "syn");
  EXPECT_EQ(database_.GetPlaceAndRouteExecutableName(), "pnr");
  EXPECT_EQ(database_.GetBitstreamGenerateExecutableName(), "bits");
}

struct ToolParameters {
  using AddTyped = bool (Db::*)(const std::string&, const std::string&, ParameterType);
  using AddUntyped = bool (Db::*)(const std::string&, const std::string&);

  const char* name;
  std::string place;  ///< Its process and map, as ProjectLines shows them.
  bool (Db::*add)(const Parameter&);
  AddTyped add_typed;  ///< Either this form or the next one exists.
  AddUntyped add_untyped;
  bool (Db::*add_list)(const std::vector<Parameter>&);
  void (Db::*get_list)(std::vector<Parameter>&) const;
  std::string (Db::*get_value)(const std::string&) const;
  std::optional<Parameter> (Db::*get)(const std::string&) const;  ///< Of two tools only.
};

const ToolParameters kTools[] = {
    {"Synthesis", "synthesis.param", &Db::AddSynthesisParameter, &Db::AddSynthesisParameter,
     nullptr, &Db::AddSynthesisParameterList, &Db::GetSynthesisParameterList,
     &Db::GetSynthesisParameterValue, nullptr},
    {"SynthesisVerilogDefine", "synthesis.dynparam", &Db::AddSynthesisVerilogDefineParameter,
     nullptr, &Db::AddSynthesisVerilogDefineParameter, &Db::AddSynthesisVerilogDefineParameterList,
     &Db::GetSynthesisVerilogDefineParameterList, &Db::GetSynthesisVerilogDefineParameterValue,
     nullptr},
    {"SynthesisVerilogMacro", "synthesis.defmacro", &Db::AddSynthesisVerilogMacro, nullptr,
     &Db::AddSynthesisVerilogMacro, &Db::AddSynthesisVerilogMacroList,
     &Db::GetSynthesisVerilogMacroList, &Db::GetSynthesisVerilogMacroValue, nullptr},
    {"PlaceAndRoute", "place_and_route.param", &Db::AddPlaceAndRouteParameter,
     &Db::AddPlaceAndRouteParameter, nullptr, &Db::AddPlaceAndRouteParameterList,
     &Db::GetPlaceAndRouteParameterList, &Db::GetPlaceAndRouteParameterValue,
     &Db::GetPlaceAndRouteParameter},
    {"BitstreamGenerate", "bitstream_generation.param", &Db::AddBitstreamGenerateParameter,
     &Db::AddBitstreamGenerateParameter, nullptr, &Db::AddBitstreamGenerateParameterList,
     &Db::GetBitstreamGenerateParameterList, &Db::GetBitstreamGenerateParameterValue, nullptr},
    {"Debugger", "debugger.param", &Db::AddDebuggerParameter, &Db::AddDebuggerParameter, nullptr,
     &Db::AddDebuggerParameterList, &Db::GetDebuggerParameterList, &Db::GetDebuggerParameterValue,
     &Db::GetDebuggerParameter}};

class ToolParametersTest : public testing::TestWithParam<ToolParameters> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.SetupProjectDatabase()); }

  bool Add(const Parameter& parameter) { return (database_.*GetParam().add)(parameter); }
  /// With no type if the tool's parameters have none.
  bool AddParts(const std::string& name, const std::string& value) {
    return GetParam().add_typed ? (database_.*GetParam().add_typed)(name, value, e_option)
                                : (database_.*GetParam().add_untyped)(name, value);
  }
  bool AddList(const std::vector<Parameter>& list) {
    return (database_.*GetParam().add_list)(list);
  }

  Lines GetListBehindAnother() const {
    std::vector<Parameter> parameters = {{"x", "former", e_string}};
    (database_.*GetParam().get_list)(parameters);
    return ParameterTexts(parameters);
  }
  std::string GetValue(const std::string& name) const {
    return (database_.*GetParam().get_value)(name);
  }

  Db database_;
};

TEST_P(ToolParametersTest, Adders_StoreInTheToolsProcessAndMapOnly) {
  EXPECT_TRUE(Add({"a", "true", e_bool}));
  EXPECT_TRUE(AddParts("b", "high"));
  EXPECT_TRUE(AddList({{"c", "1", e_string}, {"refused", "", e_string}, {"d", "", e_noarg}}));
  const std::string place = GetParam().place + ".";
  EXPECT_THAT(ProjectLines(database_),
              ElementsAre(place + "a: true type=e_bool",
                          place + "b: high" + (GetParam().add_typed ? " type=e_option" : ""),
                          place + "c: 1 type=e_string", place + "d: \"\" type=e_noarg"));
}

TEST_P(ToolParametersTest, Adders_RefuseAnEmptyValue) {
  EXPECT_FALSE(Add({"a", "", e_bool}));
  EXPECT_FALSE(AddParts("a", ""));
  EXPECT_THAT(ProjectLines(database_), IsEmpty());
}

TEST_P(ToolParametersTest, Getters_EveryMapFilled_GiveThatOfTheToolsMap) {
  const std::pair<ProcType, std::string> processes[] = {
      {e_synthesis, "synthesis"},
      {e_place_and_route, "place_and_route"},
      {e_bitstream_generation, "bitstream_generation"},
      {e_debugger, "debugger"}};
  for (const auto& [type, name] : processes) {
    for (const std::string map : {"param", "dynparam", "defmacro"}) {
      ASSERT_TRUE(database_.AddFlowProcessParameter(type, map, "a", name + "." + map, e_string));
    }
  }
  EXPECT_THAT(GetListBehindAnother(),
              ElementsAre("x value=former type=e_string",
                          "a value=" + GetParam().place + " type=e_string"));
  EXPECT_EQ(GetValue("a"), GetParam().place);
  EXPECT_EQ(GetValue("never_added"), "");
  if (GetParam().get) {
    const std::optional<Parameter> parameter = (database_.*GetParam().get)("a");
    ASSERT_TRUE(parameter);
    EXPECT_EQ(TextOf(*parameter), "a value=" + GetParam().place + " type=e_string");
    EXPECT_FALSE((database_.*GetParam().get)("never_added"));
  }
}

TEST_P(ToolParametersTest, Getters_NoMap_GiveNothing) {
  EXPECT_THAT(GetListBehindAnother(), ElementsAre("x value=former type=e_string"));
  EXPECT_EQ(GetValue("a"), "");
}

TEST_P(ToolParametersTest, AddByParts_AfterTheOtherForm_TakesTheToolsTypeOnly) {
  const ParameterType own = GetParam().add_typed ? e_option : kNoParameterType;
  EXPECT_TRUE(Add({"a", "1", own}));
  EXPECT_TRUE(AddParts("a", "2"));
  EXPECT_EQ(GetValue("a"), "2");
  EXPECT_TRUE(Add({"a", "3", own}));
  EXPECT_FALSE(Add({"a", "4", e_string}));
  EXPECT_EQ(GetValue("a"), "3");
  EXPECT_TRUE(Add({"b", "1", e_string}));
  EXPECT_FALSE(AddParts("b", "2"));
  EXPECT_EQ(GetValue("b"), "1");
}

INSTANTIATE_TEST_SUITE_P(Tools, ToolParametersTest, testing::ValuesIn(kTools), ByName());

}  // namespace
