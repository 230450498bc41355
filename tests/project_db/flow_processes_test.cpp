#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/flow_processes.h"
#include "testing/message_recorder.h"

namespace {

using namespace projectdb;
using test_support::kProcesses;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

using Db = KelProjectDatabase;

static_assert(
    std::is_same_v<decltype(std::declval<const Db&>().GetFlowProcess(e_synthesis)), FlowProcess*>);
static_assert(std::is_same_v<decltype(std::declval<const Db&>().FindFlowProcessParameterMap(
                                 e_synthesis, std::string())),
                             ParameterMap*>);

const std::vector<ProcType>& InvalidProcesses() {
  static const std::vector<ProcType> types = {
      static_cast<ProcType>(4),
      static_cast<ProcType>(5),
      static_cast<ProcType>(256),
      static_cast<ProcType>(std::numeric_limits<int>::max()),
      static_cast<ProcType>(-1),
      static_cast<ProcType>(-4),
      static_cast<ProcType>(std::numeric_limits<int>::min()),
  };
  return types;
}

/// A parameter in a form that compares.
using ParameterRow = std::tuple<std::string, std::string, int>;

ParameterRow ParameterRowOf(const Parameter& parameter) {
  return {parameter.name, parameter.value, parameter.type};
}

std::vector<ParameterRow> RowsOf(const std::vector<Parameter>& parameters) {
  std::vector<ParameterRow> rows;
  rows.reserve(parameters.size());
  for (const Parameter& parameter : parameters) rows.push_back(ParameterRowOf(parameter));
  return rows;
}

/// A parameter with the place where it is stored.
struct StoredParameter {
  ProcType process;
  std::string map;
  std::string key;
  ParameterRow row;

  bool operator==(const StoredParameter& other) const {
    return std::tie(process, map, key, row) ==
           std::tie(other.process, other.map, other.key, other.row);
  }
};

void PrintTo(const StoredParameter& stored, std::ostream* out) {
  *out << "process " << stored.process << " map " << stored.map << " key " << stored.key << " "
       << testing::PrintToString(stored.row);
}

std::vector<StoredParameter> AllParameters(const Db& database) {
  std::vector<StoredParameter> all;
  for (const ProcType type : kProcesses) {
    const FlowProcess* process = database.GetFlowProcess(type);
    for (const auto& [map_name, position] : process->parameter_map_index) {
      for (const auto& [key, parameter] :
           process->parameter_maps.at(static_cast<std::size_t>(position))) {
        all.push_back({type, map_name, key, ParameterRowOf(parameter)});
      }
    }
  }
  return all;
}

class FlowProcesses : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  std::size_t MapCount(ProcType type) const {
    return database_.GetFlowProcess(type)->parameter_maps.size();
  }

  Db database_;
};

TEST_F(FlowProcesses, GetFlowProcess_EachType_GivesItsOwnProcess) {
  std::vector<std::string> names;
  for (const ProcType type : kProcesses) names.push_back(database_.GetFlowProcess(type)->name);
  EXPECT_THAT(names,
              ElementsAre("synthesis", "place_and_route", "bitstream_generation", "debugger"));
}

TEST_F(FlowProcesses, GetFlowProcess_CalledTwice_GivesTheSameRecord) {
  for (const ProcType type : kProcesses) {
    EXPECT_EQ(database_.GetFlowProcess(type), database_.GetFlowProcess(type));
  }
}

TEST_F(FlowProcesses, SetFlowProcessName_AnyName_RenamesThatProcessOnly) {
  database_.SetFlowProcessName(e_place_and_route, "pnr");
  std::vector<std::string> names;
  for (const ProcType type : kProcesses) names.push_back(database_.GetFlowProcess(type)->name);
  EXPECT_THAT(names, ElementsAre("synthesis", "pnr", "bitstream_generation", "debugger"));
}

TEST_F(FlowProcesses, SetFlowProcessName_EmptyName_IsStored) {
  database_.SetFlowProcessName(e_debugger, "");
  EXPECT_EQ(database_.GetFlowProcess(e_debugger)->name, "");
}

TEST_F(FlowProcesses, SetFlowProcessName_ProcessHasTool_LeavesTheTool) {
  database_.SetFlowProcessExecutableName(e_debugger, "probe");
  database_.SetFlowProcessName(e_debugger, "dbg");
  EXPECT_EQ(database_.GetFlowProcessExecutableName(e_debugger), "probe");
}

TEST_F(FlowProcesses, SetFlowProcessExecutableName_EachType_SetsThatProcessOnly) {
  for (const ProcType type : kProcesses) {
    SCOPED_TRACE(type);
    Db database;
    ASSERT_TRUE(database.CreateNewProjectDatabase(""));
    database.SetFlowProcessExecutableName(type, "tool");
    for (const ProcType other : kProcesses) {
      EXPECT_EQ(database.GetFlowProcessExecutableName(other), other == type ? "tool" : "");
    }
  }
}

TEST_F(FlowProcesses, SetFlowProcessExecutableName_AnyText_IsStoredInTheRecord) {
  for (const std::string& name : {std::string("syn"), std::string(), std::string("my tool"),
                                  std::string("größe"), std::string("\xFF")}) {
    database_.SetFlowProcessExecutableName(e_synthesis, name);
    EXPECT_EQ(database_.GetFlowProcess(e_synthesis)->tool_name, name);
  }
}

TEST_F(FlowProcesses, GetFlowProcessExecutableName_ResultChanged_LeavesTheProject) {
  database_.SetFlowProcessExecutableName(e_synthesis, "syn");
  std::string name = database_.GetFlowProcessExecutableName(e_synthesis);
  name[0] = 'X';
  EXPECT_EQ(database_.GetFlowProcessExecutableName(e_synthesis), "syn");
}

// --- values that are no process ---

class InvalidProcess : public testing::TestWithParam<ProcType> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    ASSERT_TRUE(database_.AddSynthesisParameter("effort", "high", e_option));
  }

  Db database_;
};

TEST_P(InvalidProcess, GetFlowProcess_GivesNull) {
  EXPECT_EQ(database_.GetFlowProcess(GetParam()), nullptr);
}

TEST_P(InvalidProcess, FindFlowProcessParameterMap_GivesNull) {
  EXPECT_EQ(database_.FindFlowProcessParameterMap(GetParam(), "param"), nullptr);
}

TEST_P(InvalidProcess, AddFlowProcessParameterMap_GivesNull) {
  EXPECT_EQ(database_.AddFlowProcessParameterMap(GetParam(), "param"), nullptr);
}

TEST_P(InvalidProcess, SetFlowProcessName_ChangesNoProcess) {
  database_.SetFlowProcessName(GetParam(), "changed");
  for (const ProcType type : kProcesses) {
    EXPECT_NE(database_.GetFlowProcess(type)->name, "changed") << type;
  }
}

TEST_P(InvalidProcess, SetFlowProcessExecutableName_ChangesNoProcess) {
  database_.SetFlowProcessExecutableName(GetParam(), "changed");
  for (const ProcType type : kProcesses) {
    EXPECT_EQ(database_.GetFlowProcessExecutableName(type), "") << type;
  }
}

TEST_P(InvalidProcess, GetFlowProcessExecutableName_GivesEmptyText) {
  database_.SetSynthesisExecutableName("syn");
  EXPECT_EQ(database_.GetFlowProcessExecutableName(GetParam()), "");
}

TEST_P(InvalidProcess, AddFlowProcessParameter_ReturnsFalseAndStoresNothing) {
  const auto before = AllParameters(database_);
  EXPECT_FALSE(
      database_.AddFlowProcessParameter(GetParam(), "param", Parameter("a", "1", e_string)));
  EXPECT_FALSE(database_.AddFlowProcessParameter(GetParam(), "param", "a", "1", e_string));
  EXPECT_EQ(AllParameters(database_), before);
}

TEST_P(InvalidProcess, AddFlowProcessParameterList_ReturnsFalseAndStoresNothing) {
  const auto before = AllParameters(database_);
  EXPECT_FALSE(database_.AddFlowProcessParameterList(GetParam(), "param", {{"a", "1", e_string}}));
  EXPECT_FALSE(database_.AddFlowProcessParameterList(GetParam(), "param", {}));
  EXPECT_EQ(AllParameters(database_), before);
}

TEST_P(InvalidProcess, GetFlowProcessParameterList_LeavesTheVector) {
  std::vector<Parameter> parameters = {{"former", "1", e_string}};
  database_.GetFlowProcessParameterList(GetParam(), "param", parameters);
  EXPECT_THAT(RowsOf(parameters), ElementsAre(ParameterRow("former", "1", e_string)));
}

TEST_P(InvalidProcess, GetFlowProcessParameter_GivesEmptyOptional) {
  EXPECT_FALSE(database_.GetFlowProcessParameter(GetParam(), "param", "effort"));
}

TEST_P(InvalidProcess, GetFlowProcessParameterValue_GivesEmptyText) {
  EXPECT_EQ(database_.GetFlowProcessParameterValue(GetParam(), "param", "effort"), "");
}

TEST_P(InvalidProcess, Refusals_PostNothing) {
  const test_support::MessageRecorder recorder;
  database_.AddFlowProcessParameter(GetParam(), "param", "a", "1", e_string);
  database_.AddFlowProcessParameterList(GetParam(), "param", {});
  database_.SetFlowProcessExecutableName(GetParam(), "changed");
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Values, InvalidProcess, testing::ValuesIn(InvalidProcesses()),
                         [](const auto& param_info) {
                           const std::int64_t value = param_info.param;
                           return value < 0 ? "Minus" + std::to_string(-value)
                                            : std::to_string(value);
                         });

// --- parameter maps ---

TEST_F(FlowProcesses, AddFlowProcessParameterMap_ThreeNames_GetPositionsInOrder) {
  for (const char* name : {"param", "dynparam", "defmacro"}) {
    database_.AddFlowProcessParameterMap(e_synthesis, name);
  }
  EXPECT_THAT(database_.GetFlowProcess(e_synthesis)->parameter_map_index,
              UnorderedElementsAre(Pair("param", 0), Pair("dynparam", 1), Pair("defmacro", 2)));
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NewName_GivesTheMapAtItsPosition) {
  for (std::size_t position = 0; position < 3; ++position) {
    ParameterMap* const map =
        database_.AddFlowProcessParameterMap(e_debugger, "map" + std::to_string(position));
    EXPECT_EQ(map, &database_.GetFlowProcess(e_debugger)->parameter_maps.at(position));
  }
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NewName_IsEmptyWithOneBucketAndLoadFactorOne) {
  const ParameterMap* const map = database_.AddFlowProcessParameterMap(e_debugger, "param");
  ASSERT_NE(map, nullptr);
  EXPECT_THAT(*map, IsEmpty());
  EXPECT_EQ(map->bucket_count(), 1u);
  EXPECT_EQ(map->max_load_factor(), 1.0F);
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NameExists_GivesTheMapAndAddsNothing) {
  for (const char* name : {"param", "dynparam", "defmacro"}) {
    database_.AddFlowProcessParameterMap(e_synthesis, name);
  }
  ParameterMap* const again = database_.AddFlowProcessParameterMap(e_synthesis, "param");
  EXPECT_EQ(again, &database_.GetFlowProcess(e_synthesis)->parameter_maps.at(0));
  EXPECT_EQ(MapCount(e_synthesis), 3u);
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NameExists_KeepsItsParameters) {
  database_.AddSynthesisParameter("effort", "high", e_option);
  EXPECT_THAT(*database_.AddFlowProcessParameterMap(e_synthesis, "param"), SizeIs(1));
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_OneProcess_AddsToNoOther) {
  database_.AddFlowProcessParameterMap(e_bitstream_generation, "param");
  std::vector<std::size_t> counts;
  for (const ProcType type : kProcesses) counts.push_back(MapCount(type));
  EXPECT_THAT(counts, ElementsAre(0u, 0u, 1u, 0u));
}

TEST_F(FlowProcesses, AddFlowProcessParameterMap_NamesThatDifferSlightly_AreDifferentMaps) {
  for (const char* name : {"param", "Param", "param ", "", "größe"}) {
    EXPECT_NE(database_.AddFlowProcessParameterMap(e_synthesis, name), nullptr) << name;
  }
  EXPECT_EQ(MapCount(e_synthesis), 5u);
}

TEST_F(FlowProcesses, FindFlowProcessParameterMap_NameExists_GivesTheMap) {
  database_.AddFlowProcessParameterMap(e_synthesis, "param");
  database_.AddFlowProcessParameterMap(e_synthesis, "own");
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "own"),
            &database_.GetFlowProcess(e_synthesis)->parameter_maps.at(1));
}

TEST_F(FlowProcesses, FindFlowProcessParameterMap_NameMissing_GivesNullAndCreatesNothing) {
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "param"), nullptr);
  EXPECT_EQ(MapCount(e_synthesis), 0u);
}

TEST_F(FlowProcesses, FindFlowProcessParameterMap_NameOfAnotherProcess_GivesNull) {
  database_.AddFlowProcessParameterMap(e_synthesis, "param");
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_debugger, "param"), nullptr);
}

/// A process with as many maps as it can have, each with one parameter.
class FullProcess : public testing::Test {
 protected:
  static constexpr int kMostMaps = 32768;
  static std::string NameOf(int map) { return "map" + std::to_string(map); }

  void SetUp() override {
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    for (int map = 0; map < kMostMaps; ++map) {
      ASSERT_TRUE(database_.AddFlowProcessParameter(e_synthesis, NameOf(map), "position",
                                                    std::to_string(map), e_string));
    }
  }

  void ExpectUnchanged() const {
    const FlowProcess& process = *database_.GetFlowProcess(e_synthesis);
    EXPECT_EQ(process.parameter_maps.size(), static_cast<std::size_t>(kMostMaps));
    EXPECT_EQ(process.parameter_map_index.size(), static_cast<std::size_t>(kMostMaps));
    EXPECT_EQ(process.parameter_map_index.count("one_more"), 0u);
  }

  Db database_;
};

TEST_F(FullProcess, AddFlowProcessParameterMap_LastPosition_IsStored) {
  EXPECT_EQ(database_.GetFlowProcess(e_synthesis)->parameter_map_index.at(NameOf(32767)), 32767);
}

TEST_F(FullProcess, EveryMap_Found_HoldsItsOwnParameter) {
  for (int map = 0; map < kMostMaps; ++map) {
    ASSERT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, NameOf(map), "position"),
              std::to_string(map));
  }
}

TEST_F(FullProcess, AddFlowProcessParameterMap_OneMoreName_GivesNullAndChangesNothing) {
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, "one_more"), nullptr);
  ExpectUnchanged();
}

TEST_F(FullProcess, FindFlowProcessParameterMap_RefusedName_GivesNull) {
  database_.AddFlowProcessParameterMap(e_synthesis, "one_more");
  EXPECT_EQ(database_.FindFlowProcessParameterMap(e_synthesis, "one_more"), nullptr);
}

TEST_F(FullProcess, AddFlowProcessParameterMap_NameExists_GivesTheMap) {
  FlowProcess& process = *database_.GetFlowProcess(e_synthesis);
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, NameOf(0)),
            &process.parameter_maps.front());
  EXPECT_EQ(database_.AddFlowProcessParameterMap(e_synthesis, NameOf(32767)),
            &process.parameter_maps.back());
}

TEST_F(FullProcess, AddFlowProcessParameter_OneMoreMap_ReturnsFalseAndChangesNothing) {
  EXPECT_FALSE(
      database_.AddFlowProcessParameter(e_synthesis, "one_more", Parameter("a", "1", e_string)));
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "one_more", "a", "1", e_string));
  ExpectUnchanged();
}

TEST_F(FullProcess, AddFlowProcessParameterList_OneMoreMap_ReturnsFalseAndChangesNothing) {
  EXPECT_FALSE(
      database_.AddFlowProcessParameterList(e_synthesis, "one_more", {{"a", "1", e_string}}));
  ExpectUnchanged();
}

TEST_F(FullProcess, AddFlowProcessParameter_LastMap_StillWorks) {
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, NameOf(32767), "a", "1", e_string));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, NameOf(32767), "a"), "1");
}

TEST_F(FullProcess, AddFlowProcessParameterMap_AnotherProcess_StillWorks) {
  EXPECT_NE(database_.AddFlowProcessParameterMap(e_debugger, "one_more"), nullptr);
}

// --- inserting and assigning ---

std::vector<std::pair<std::string, ParameterRow>> Entries(const ParameterMap& map) {
  std::vector<std::pair<std::string, ParameterRow>> entries;
  for (const auto& [key, parameter] : map) entries.emplace_back(key, ParameterRowOf(parameter));
  return entries;
}

TEST(InsertOrAssignParameter, ValueFitsItsType_IsStored) {
  const Parameter cases[] = {
      {"a", "text", e_string},
      {"a", "true", e_bool},
      {"a", "high", e_option},
      {"a", "", e_noarg},
      {"a", "1", kNoParameterType},
      {"a", "1", static_cast<ParameterType>(7)},
      {"a", "1", static_cast<ParameterType>(-1)},
      {"a", " ", e_string},
      {"a", "no truth value", e_bool},
  };
  for (const Parameter& parameter : cases) {
    SCOPED_TRACE(testing::PrintToString(ParameterRowOf(parameter)));
    ParameterMap map;
    EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "a", parameter));
    EXPECT_THAT(Entries(map), ElementsAre(Pair("a", ParameterRowOf(parameter))));
  }
}

TEST(InsertOrAssignParameter, ValueDoesNotFitItsType_IsRefusedAndTheMapUnchanged) {
  const Parameter cases[] = {
      {"a", "", e_string},
      {"a", "", e_bool},
      {"a", "", e_option},
      {"a", "1", e_noarg},
      {"a", " ", e_noarg},
      {"a", "", kNoParameterType},
      {"a", "", static_cast<ParameterType>(7)},
      {"a", "", static_cast<ParameterType>(-1)},
  };
  for (const Parameter& parameter : cases) {
    SCOPED_TRACE(testing::PrintToString(ParameterRowOf(parameter)));
    ParameterMap empty;
    EXPECT_FALSE(Db::InsertOrAssignParameterToMap(empty, "a", parameter));
    EXPECT_THAT(empty, IsEmpty());
  }
}

TEST(InsertOrAssignParameter, ValueDoesNotFitButTypeIsTheStoredOne_LeavesTheStored) {
  ParameterMap map = {{"a", {"a", "1", e_string}}};
  EXPECT_FALSE(Db::InsertOrAssignParameterToMap(map, "a", {"a", "", e_string}));
  EXPECT_THAT(Entries(map), ElementsAre(Pair("a", ParameterRow("a", "1", e_string))));
}

TEST(InsertOrAssignParameter, TypeDiffersFromStored_IsRefusedAndTheEntryUnchanged) {
  const int types[] = {e_string, e_bool, e_option, e_noarg, kNoParameterType, 7};
  for (const int stored_type : types) {
    for (const int type : types) {
      if (type == stored_type) continue;
      SCOPED_TRACE(testing::Message() << stored_type << " then " << type);
      const Parameter stored("a", stored_type == e_noarg ? "" : "old",
                             static_cast<ParameterType>(stored_type));
      ParameterMap map = {{"a", stored}};
      EXPECT_FALSE(Db::InsertOrAssignParameterToMap(
          map, "a", {"b", type == e_noarg ? "" : "new", static_cast<ParameterType>(type)}));
      EXPECT_THAT(Entries(map), ElementsAre(Pair("a", ParameterRowOf(stored))));
    }
  }
}

TEST(InsertOrAssignParameter, TypeOfStored_NameAndValueAreReplaced) {
  for (const int type : {static_cast<int>(e_string), static_cast<int>(e_bool),
                         static_cast<int>(e_option), static_cast<int>(kNoParameterType), 7}) {
    SCOPED_TRACE(type);
    const auto parameter_type = static_cast<ParameterType>(type);
    ParameterMap map = {{"key", {"a", "old", parameter_type}}};
    EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "key", {"b", "new", parameter_type}));
    EXPECT_THAT(Entries(map), ElementsAre(Pair("key", ParameterRow("b", "new", type))));
  }
}

TEST(InsertOrAssignParameter, SwitchStoredAgain_IsAccepted) {
  ParameterMap map = {{"a", {"a", "", e_noarg}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "a", {"a", "", e_noarg}));
  EXPECT_THAT(Entries(map), ElementsAre(Pair("a", ParameterRow("a", "", e_noarg))));
}

TEST(InsertOrAssignParameter, KeyDiffersFromName_IsStoredUnderTheKey) {
  ParameterMap map;
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "key", {"name", "1", e_string}));
  EXPECT_THAT(Entries(map), ElementsAre(Pair("key", ParameterRow("name", "1", e_string))));
}

TEST(InsertOrAssignParameter, EmptyKeyAndName_AreStored) {
  ParameterMap map;
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "", {"", "1", e_string}));
  EXPECT_THAT(Entries(map), ElementsAre(Pair("", ParameterRow("", "1", e_string))));
}

TEST(InsertOrAssignParameter, AnotherKey_LeavesTheOtherEntries) {
  ParameterMap map = {{"a", {"a", "1", e_string}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "b", {"b", "true", e_bool}));
  EXPECT_THAT(Entries(map), UnorderedElementsAre(Pair("a", ParameterRow("a", "1", e_string)),
                                                 Pair("b", ParameterRow("b", "true", e_bool))));
}

TEST(InsertOrAssignParameter, ParameterOfTheMapItself_IsAssignedToItself) {
  ParameterMap map = {{"a", {"a", "a value too long for the string object", e_string}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "a", map.at("a")));
  EXPECT_THAT(Entries(map),
              ElementsAre(Pair(
                  "a", ParameterRow("a", "a value too long for the string object", e_string))));
}

TEST(InsertOrAssignParameter, ParameterOfTheMapItselfUnderNewKey_IsCopied) {
  ParameterMap map = {{"a", {"a", "1", e_string}}};
  EXPECT_TRUE(Db::InsertOrAssignParameterToMap(map, "b", map.at("a")));
  EXPECT_THAT(Entries(map), UnorderedElementsAre(Pair("a", ParameterRow("a", "1", e_string)),
                                                 Pair("b", ParameterRow("a", "1", e_string))));
}

// --- adding and getting parameters ---

TEST_F(FlowProcesses, AddFlowProcessParameter_BothForms_StoreInTheGivenProcessAndMap) {
  for (const ProcType type : kProcesses) {
    SCOPED_TRACE(type);
    Db database;
    ASSERT_TRUE(database.CreateNewProjectDatabase(""));
    EXPECT_TRUE(database.AddFlowProcessParameter(type, "own", Parameter("a", "1", e_string)));
    EXPECT_TRUE(database.AddFlowProcessParameter(type, "own", "b", "true", e_bool));
    EXPECT_THAT(
        AllParameters(database),
        UnorderedElementsAre(StoredParameter{type, "own", "a", ParameterRow("a", "1", e_string)},
                             StoredParameter{type, "own", "b", ParameterRow("b", "true", e_bool)}));
  }
}

TEST_F(FlowProcesses, AddFlowProcessParameter_BothForms_RefuseAnotherType) {
  ASSERT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "param", "a", "1", e_string));
  EXPECT_FALSE(
      database_.AddFlowProcessParameter(e_synthesis, "param", Parameter("a", "true", e_bool)));
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "param", "a", "true", e_bool));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "param", "a"), "1");
}

TEST_F(FlowProcesses, AddFlowProcessParameter_SameTypeAfterRefusal_ReplacesTheValue) {
  ASSERT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "param", "a", "1", e_string));
  ASSERT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "param", "a", "true", e_bool));
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "param", "a", "2", e_string));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "param", "a"), "2");
}

TEST_F(FlowProcesses, AddFlowProcessParameter_Refused_MapExistsAfterwardsAndIsEmpty) {
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "own", "a", "", e_bool));
  const ParameterMap* const map = database_.FindFlowProcessParameterMap(e_synthesis, "own");
  ASSERT_NE(map, nullptr);
  EXPECT_THAT(*map, IsEmpty());
}

TEST_F(FlowProcesses, AddFlowProcessParameter_SwitchWithValue_IsRefusedAndWithoutIsStored) {
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "param", "quiet", "on", e_noarg));
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "param", "quiet", "", e_noarg));
}

TEST_F(FlowProcesses, AddFlowProcessParameter_SameNameInTwoMaps_AreTwoParameters) {
  database_.AddFlowProcessParameter(e_synthesis, "param", "a", "1", e_string);
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "own", "a", "true", e_bool));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "param", "a"), "1");
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "own", "a"), "true");
}

TEST_F(FlowProcesses, AddFlowProcessParameter_StoredParameterOfItsOwnMap_IsKept) {
  database_.AddFlowProcessParameter(e_synthesis, "param", "a", "1", e_string);
  const Parameter& stored = database_.FindFlowProcessParameterMap(e_synthesis, "param")->at("a");
  EXPECT_TRUE(database_.AddFlowProcessParameter(e_synthesis, "param", stored));
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_synthesis, "param", "a"), "1");
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_AllAccepted_StoresEach) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "own",
                                                    {{"a", "1", e_string}, {"b", "", e_noarg}}));
  EXPECT_THAT(AllParameters(database_),
              UnorderedElementsAre(
                  StoredParameter{e_debugger, "own", "a", ParameterRow("a", "1", e_string)},
                  StoredParameter{e_debugger, "own", "b", ParameterRow("b", "", e_noarg)}));
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_SomeRefused_ReturnsTrueAndStoresTheOthers) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(
      e_debugger, "own", {{"a", "", e_string}, {"b", "2", e_string}, {"c", "on", e_noarg}}));
  EXPECT_THAT(
      AllParameters(database_),
      ElementsAre(StoredParameter{e_debugger, "own", "b", ParameterRow("b", "2", e_string)}));
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_AllRefused_ReturnsTrueAndTheMapExists) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "own", {{"a", "", e_string}}));
  EXPECT_NE(database_.FindFlowProcessParameterMap(e_debugger, "own"), nullptr);
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_EmptyList_ReturnsTrueAndTheMapExists) {
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_debugger, "own", {}));
  EXPECT_NE(database_.FindFlowProcessParameterMap(e_debugger, "own"), nullptr);
}

TEST_F(FlowProcesses, AddFlowProcessParameterList_NameTwice_LastOfTheFirstTypeWins) {
  database_.AddFlowProcessParameterList(
      e_debugger, "own",
      {{"a", "1", e_string}, {"a", "true", e_bool}, {"a", "2", e_string}, {"a", "", e_noarg}});
  EXPECT_THAT(
      AllParameters(database_),
      ElementsAre(StoredParameter{e_debugger, "own", "a", ParameterRow("a", "2", e_string)}));
}

TEST_F(FlowProcesses, GetFlowProcessParameterList_MapExists_AppendsEachParameterOnce) {
  database_.AddFlowProcessParameterList(
      e_debugger, "own", {{"a", "1", e_string}, {"b", "", e_noarg}, {"c", "true", e_bool}});
  std::vector<Parameter> parameters;
  database_.GetFlowProcessParameterList(e_debugger, "own", parameters);
  EXPECT_THAT(RowsOf(parameters),
              UnorderedElementsAre(ParameterRow("a", "1", e_string), ParameterRow("b", "", e_noarg),
                                   ParameterRow("c", "true", e_bool)));
}

TEST_F(FlowProcesses, GetFlowProcessParameterList_MapExists_FollowsTheMapsOwnOrder) {
  for (int i = 0; i < 50; ++i) {
    database_.AddDebuggerParameter("p" + std::to_string(i), std::to_string(i), e_string);
  }
  std::vector<ParameterRow> in_map_order;
  for (const auto& [key, row] :
       Entries(*database_.FindFlowProcessParameterMap(e_debugger, "param"))) {
    in_map_order.push_back(row);
  }
  std::vector<Parameter> parameters;
  database_.GetFlowProcessParameterList(e_debugger, "param", parameters);
  EXPECT_EQ(RowsOf(parameters), in_map_order);
}

TEST_F(FlowProcesses, GetFlowProcessParameterList_VectorHasEntries_AppendsBehindThem) {
  database_.AddDebuggerParameter("a", "1", e_string);
  std::vector<Parameter> parameters = {{"x", "former", e_string}, {"y", "former", e_string}};
  database_.GetFlowProcessParameterList(e_debugger, "param", parameters);
  EXPECT_THAT(RowsOf(parameters),
              ElementsAre(ParameterRow("x", "former", e_string),
                          ParameterRow("y", "former", e_string), ParameterRow("a", "1", e_string)));
}

TEST_F(FlowProcesses, GetFlowProcessParameterList_MapMissing_LeavesTheVectorAndCreatesNothing) {
  std::vector<Parameter> parameters = {{"x", "former", e_string}};
  database_.GetFlowProcessParameterList(e_debugger, "param", parameters);
  EXPECT_THAT(RowsOf(parameters), ElementsAre(ParameterRow("x", "former", e_string)));
  EXPECT_EQ(MapCount(e_debugger), 0u);
}

TEST_F(FlowProcesses, GetFlowProcessParameter_Stored_GivesACopy) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  std::optional<Parameter> parameter = database_.GetFlowProcessParameter(e_debugger, "own", "a");
  ASSERT_TRUE(parameter);
  EXPECT_EQ(ParameterRowOf(*parameter), ParameterRow("a", "1", e_option));
  parameter->value = "changed";
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_debugger, "own", "a"), "1");
}

TEST_F(FlowProcesses, GetFlowProcessParameter_SwitchStored_IsEngagedWithEmptyValue) {
  database_.AddFlowProcessParameter(e_debugger, "own", "quiet", "", e_noarg);
  const auto parameter = database_.GetFlowProcessParameter(e_debugger, "own", "quiet");
  ASSERT_TRUE(parameter);
  EXPECT_EQ(ParameterRowOf(*parameter), ParameterRow("quiet", "", e_noarg));
}

struct Miss {
  const char* why;
  ProcType process;
  const char* map;
  const char* name;
};

constexpr Miss kMisses[] = {
    {"other process", e_synthesis, "own", "a"}, {"other map", e_debugger, "param", "a"},
    {"other name", e_debugger, "own", "A"},     {"empty name", e_debugger, "own", ""},
    {"empty map", e_debugger, "", "a"},
};

TEST_F(FlowProcesses, GetFlowProcessParameter_Missing_GivesEmptyOptional) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  for (const auto& [why, process, map, name] : kMisses) {
    EXPECT_FALSE(database_.GetFlowProcessParameter(process, map, name)) << why;
  }
}

TEST_F(FlowProcesses, GetFlowProcessParameterValue_Missing_GivesEmptyText) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  for (const auto& [why, process, map, name] : kMisses) {
    EXPECT_EQ(database_.GetFlowProcessParameterValue(process, map, name), "") << why;
  }
}

TEST_F(FlowProcesses, Lookups_MapMissing_CreateNothing) {
  database_.GetFlowProcessParameter(e_debugger, "own", "a");
  database_.GetFlowProcessParameterValue(e_debugger, "own", "a");
  EXPECT_EQ(MapCount(e_debugger), 0u);
}

TEST_F(FlowProcesses, GetFlowProcessParameterValue_Stored_GivesTheValue) {
  database_.AddFlowProcessParameter(e_debugger, "own", "a", "1", e_option);
  EXPECT_EQ(database_.GetFlowProcessParameterValue(e_debugger, "own", "a"), "1");
}

TEST_F(FlowProcesses, AddFlowProcessParameter_Refused_PostsNothing) {
  const test_support::MessageRecorder recorder;
  database_.AddFlowProcessParameter(e_synthesis, "param", "a", "", e_bool);
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(FlowProcesses, PlainParameterList_AllOperations_LeaveItEmpty) {
  database_.AddFlowProcessParameter(e_synthesis, "param", "a", "1", e_string);
  database_.AddSynthesisParameterList({{"b", "1", e_string}});
  EXPECT_THAT(database_.GetFlowProcess(e_synthesis)->parameters, IsEmpty());
}

// --- shorthands for one tool ---

struct ToolName {
  const char* name;
  ProcType process;
  std::string (Db::*get)() const;
  void (Db::*set)(const std::string&);
};

void PrintTo(const ToolName& row, std::ostream* out) { *out << row.name; }

class ToolNameTest : public testing::TestWithParam<ToolName> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  Db database_;
};

TEST_P(ToolNameTest, Set_AnyName_SetsItsProcessOnly) {
  (database_.*GetParam().set)("tool");
  for (const ProcType type : kProcesses) {
    EXPECT_EQ(database_.GetFlowProcessExecutableName(type),
              type == GetParam().process ? "tool" : "")
        << type;
  }
}

TEST_P(ToolNameTest, Get_EachProcessHasItsTool_GivesThatOfItsProcess) {
  for (const ProcType type : kProcesses) {
    database_.SetFlowProcessExecutableName(type, "tool" + std::to_string(type));
  }
  EXPECT_EQ((database_.*GetParam().get)(), "tool" + std::to_string(GetParam().process));
}

TEST_P(ToolNameTest, Set_EmptyName_EmptiesIt) {
  (database_.*GetParam().set)("tool");
  (database_.*GetParam().set)("");
  EXPECT_EQ((database_.*GetParam().get)(), "");
}

INSTANTIATE_TEST_SUITE_P(Tools, ToolNameTest,
                         testing::Values(ToolName{"Synthesis", e_synthesis,
                                                  &Db::GetSynthesisExecutableName,
                                                  &Db::SetSynthesisExecutableName},
                                         ToolName{"PlaceAndRoute", e_place_and_route,
                                                  &Db::GetPlaceAndRouteExecutableName,
                                                  &Db::SetPlaceAndRouteExecutableName},
                                         ToolName{"BitstreamGenerate", e_bitstream_generation,
                                                  &Db::GetBitstreamGenerateExecutableName,
                                                  &Db::SetBitstreamGenerateExecutableName}),
                         [](const auto& param_info) { return param_info.param.name; });

using AddTyped = bool (Db::*)(const std::string&, const std::string&, ParameterType);
using AddUntyped = bool (Db::*)(const std::string&, const std::string&);

struct ToolParameters {
  const char* name;
  ProcType process;
  const char* map;
  bool (Db::*add)(const Parameter&);
  AddTyped add_typed;  ///< Either this form or the next one exists.
  AddUntyped add_untyped;
  bool (Db::*add_list)(const std::vector<Parameter>&);
  void (Db::*get_list)(std::vector<Parameter>&) const;
  std::string (Db::*get_value)(const std::string&) const;
  std::optional<Parameter> (Db::*get)(const std::string&) const;  ///< Of two tools only.
};

void PrintTo(const ToolParameters& row, std::ostream* out) { *out << row.name; }

const std::vector<ToolParameters>& AllToolParameters() {
  static const std::vector<ToolParameters> all = {
      {"Synthesis", e_synthesis, "param", &Db::AddSynthesisParameter, &Db::AddSynthesisParameter,
       nullptr, &Db::AddSynthesisParameterList, &Db::GetSynthesisParameterList,
       &Db::GetSynthesisParameterValue, nullptr},
      {"SynthesisVerilogDefine", e_synthesis, "dynparam", &Db::AddSynthesisVerilogDefineParameter,
       nullptr, &Db::AddSynthesisVerilogDefineParameter,
       &Db::AddSynthesisVerilogDefineParameterList, &Db::GetSynthesisVerilogDefineParameterList,
       &Db::GetSynthesisVerilogDefineParameterValue, nullptr},
      {"SynthesisVerilogMacro", e_synthesis, "defmacro", &Db::AddSynthesisVerilogMacro, nullptr,
       &Db::AddSynthesisVerilogMacro, &Db::AddSynthesisVerilogMacroList,
       &Db::GetSynthesisVerilogMacroList, &Db::GetSynthesisVerilogMacroValue, nullptr},
      {"PlaceAndRoute", e_place_and_route, "param", &Db::AddPlaceAndRouteParameter,
       &Db::AddPlaceAndRouteParameter, nullptr, &Db::AddPlaceAndRouteParameterList,
       &Db::GetPlaceAndRouteParameterList, &Db::GetPlaceAndRouteParameterValue,
       &Db::GetPlaceAndRouteParameter},
      {"BitstreamGenerate", e_bitstream_generation, "param", &Db::AddBitstreamGenerateParameter,
       &Db::AddBitstreamGenerateParameter, nullptr, &Db::AddBitstreamGenerateParameterList,
       &Db::GetBitstreamGenerateParameterList, &Db::GetBitstreamGenerateParameterValue, nullptr},
      {"Debugger", e_debugger, "param", &Db::AddDebuggerParameter, &Db::AddDebuggerParameter,
       nullptr, &Db::AddDebuggerParameterList, &Db::GetDebuggerParameterList,
       &Db::GetDebuggerParameterValue, &Db::GetDebuggerParameter},
  };
  return all;
}

class ToolParametersTest : public testing::TestWithParam<ToolParameters> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  /// Stores a parameter "a" in every map of every process, each with a value of its own.
  void FillEveryMap() {
    for (const ProcType type : kProcesses) {
      for (const char* map : {"param", "dynparam", "defmacro"}) {
        ASSERT_TRUE(
            database_.AddFlowProcessParameter(type, map, "a", ValueIn(type, map), e_string));
      }
    }
  }
  static std::string ValueIn(ProcType type, const std::string& map) {
    return map + " of " + std::to_string(type);
  }
  static std::string OwnValue() { return ValueIn(GetParam().process, GetParam().map); }
  static StoredParameter InOwnMap(const ParameterRow& row) {
    return {GetParam().process, GetParam().map, std::get<0>(row), row};
  }

  Db database_;
};

TEST_P(ToolParametersTest, Add_Parameter_StoresItInItsProcessAndMapOnly) {
  EXPECT_TRUE((database_.*GetParam().add)({"a", "true", e_bool}));
  EXPECT_THAT(AllParameters(database_), ElementsAre(InOwnMap(ParameterRow("a", "true", e_bool))));
}

TEST_P(ToolParametersTest, Add_NameAndValue_StoresThemInItsProcessAndMapOnly) {
  int type = e_option;
  if (GetParam().add_typed) {
    EXPECT_TRUE((database_.*GetParam().add_typed)("a", "high", e_option));
  } else {
    EXPECT_TRUE((database_.*GetParam().add_untyped)("a", "high"));
    type = kNoParameterType;
  }
  EXPECT_THAT(AllParameters(database_), ElementsAre(InOwnMap(ParameterRow("a", "high", type))));
}

TEST_P(ToolParametersTest, Add_NameAndEmptyValue_IsRefused) {
  if (GetParam().add_typed) {
    EXPECT_FALSE((database_.*GetParam().add_typed)("a", "", e_option));
  } else {
    EXPECT_FALSE((database_.*GetParam().add_untyped)("a", ""));
  }
  EXPECT_THAT(AllParameters(database_), IsEmpty());
}

TEST_P(ToolParametersTest, Add_ParameterWithWrongValue_IsRefused) {
  EXPECT_FALSE((database_.*GetParam().add)({"a", "", e_bool}));
  EXPECT_THAT(AllParameters(database_), IsEmpty());
}

TEST_P(ToolParametersTest, AddList_Parameters_StoresThemInItsProcessAndMapOnly) {
  EXPECT_TRUE((database_.*GetParam().add_list)({{"a", "1", e_string}, {"b", "", e_noarg}}));
  EXPECT_THAT(AllParameters(database_),
              UnorderedElementsAre(InOwnMap(ParameterRow("a", "1", e_string)),
                                   InOwnMap(ParameterRow("b", "", e_noarg))));
}

TEST_P(ToolParametersTest, AddList_SomeRefused_ReturnsTrue) {
  EXPECT_TRUE((database_.*GetParam().add_list)({{"a", "", e_string}}));
}

TEST_P(ToolParametersTest, GetList_EveryMapFilled_AppendsThatOfItsMap) {
  FillEveryMap();
  std::vector<Parameter> parameters = {{"x", "former", e_string}};
  (database_.*GetParam().get_list)(parameters);
  EXPECT_THAT(RowsOf(parameters), ElementsAre(ParameterRow("x", "former", e_string),
                                              ParameterRow("a", OwnValue(), e_string)));
}

TEST_P(ToolParametersTest, GetList_NoMap_LeavesTheVector) {
  std::vector<Parameter> parameters = {{"x", "former", e_string}};
  (database_.*GetParam().get_list)(parameters);
  EXPECT_THAT(RowsOf(parameters), ElementsAre(ParameterRow("x", "former", e_string)));
}

TEST_P(ToolParametersTest, GetValue_EveryMapFilled_GivesThatOfItsMap) {
  FillEveryMap();
  EXPECT_EQ((database_.*GetParam().get_value)("a"), OwnValue());
}

TEST_P(ToolParametersTest, GetValue_NeverAdded_GivesEmptyText) {
  FillEveryMap();
  EXPECT_EQ((database_.*GetParam().get_value)("never_added"), "");
}

INSTANTIATE_TEST_SUITE_P(Tools, ToolParametersTest, testing::ValuesIn(AllToolParameters()),
                         [](const auto& param_info) { return param_info.param.name; });

/// The tools whose parameters can be had as a whole.
class ToolParameterTest : public ToolParametersTest {};

TEST_P(ToolParameterTest, Get_EveryMapFilled_GivesThatOfItsMap) {
  FillEveryMap();
  const std::optional<Parameter> parameter = (database_.*GetParam().get)("a");
  ASSERT_TRUE(parameter);
  EXPECT_EQ(ParameterRowOf(*parameter), ParameterRow("a", OwnValue(), e_string));
}

TEST_P(ToolParameterTest, Get_NeverAdded_GivesEmptyOptional) {
  FillEveryMap();
  EXPECT_FALSE((database_.*GetParam().get)("never_added"));
}

std::vector<ToolParameters> ToolsWithGetter() {
  std::vector<ToolParameters> tools;
  for (const ToolParameters& tool : AllToolParameters()) {
    if (tool.get) tools.push_back(tool);
  }
  return tools;
}

INSTANTIATE_TEST_SUITE_P(Tools, ToolParameterTest, testing::ValuesIn(ToolsWithGetter()),
                         [](const auto& param_info) { return param_info.param.name; });

/// The tools whose parameters may be added without a type.
class UntypedParameterTest : public ToolParametersTest {
 protected:
  bool Add(const std::string& name, const std::string& value) {
    return (database_.*GetParam().add_untyped)(name, value);
  }
};

TEST_P(UntypedParameterTest, Add_AgainWithoutType_ReplacesTheValue) {
  ASSERT_TRUE(Add("WIDTH", "8"));
  EXPECT_TRUE(Add("WIDTH", "16"));
  EXPECT_EQ((database_.*GetParam().get_value)("WIDTH"), "16");
}

TEST_P(UntypedParameterTest, Add_AgainWithNoTypeAsType_ReplacesTheValue) {
  ASSERT_TRUE(Add("WIDTH", "8"));
  EXPECT_TRUE((database_.*GetParam().add)({"WIDTH", "16", kNoParameterType}));
  EXPECT_EQ((database_.*GetParam().get_value)("WIDTH"), "16");
}

TEST_P(UntypedParameterTest, Add_AgainWithType_IsRefused) {
  ASSERT_TRUE(Add("WIDTH", "8"));
  EXPECT_FALSE((database_.*GetParam().add)({"WIDTH", "16", e_string}));
  EXPECT_EQ((database_.*GetParam().get_value)("WIDTH"), "8");
}

TEST_P(UntypedParameterTest, Add_StoredWithType_IsRefused) {
  ASSERT_TRUE((database_.*GetParam().add)({"WIDTH", "8", e_string}));
  EXPECT_FALSE(Add("WIDTH", "16"));
  EXPECT_EQ((database_.*GetParam().get_value)("WIDTH"), "8");
}

std::vector<ToolParameters> ToolsWithoutType() {
  std::vector<ToolParameters> tools;
  for (const ToolParameters& tool : AllToolParameters()) {
    if (tool.add_untyped) tools.push_back(tool);
  }
  return tools;
}

INSTANTIATE_TEST_SUITE_P(Tools, UntypedParameterTest, testing::ValuesIn(ToolsWithoutType()),
                         [](const auto& param_info) { return param_info.param.name; });

}  // namespace
