#include <atomic>
#include <thread>

#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::Field;

auto IsParameter(const char* name, const char* value, ParameterType type) {
  return AllOf(Field(&Parameter::name, name), Field(&Parameter::value, value),
               Field(&Parameter::type, type));
}

TEST(ProjectContents, GetProjectContents_NoOrEmptyProject_HasNoOrFourUnnamedProcesses) {
  KelProjectDatabase database;
  EXPECT_THAT(GetProjectContents(database).flow_processes, IsEmpty());
  database.SetupProjectDatabase();
  EXPECT_THAT(GetProjectContents(database).flow_processes,
              AllOf(SizeIs(4), Each(Field(&FlowProcessContents::name, ""))));
}

/// What only a caller with a pointer to the process can do.
class ChangedByPointer : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  FlowProcess& process() { return *database_.GetFlowProcess(e_debugger); }
  FlowProcessContents Contents() const {
    return GetProjectContents(database_).flow_processes.at(e_debugger);
  }

  KelProjectDatabase database_;
};

TEST_F(ChangedByPointer, GetProjectContents_PlainParameters_GivesThemInOrder) {
  process().parameters = {{"b", "1", e_string}, {"a", "2", e_bool}};
  EXPECT_THAT(Contents().parameters,
              ElementsAre(IsParameter("b", "1", e_string), IsParameter("a", "2", e_bool)));
}

TEST_F(ChangedByPointer, GetProjectContents_KeyThatIsNotTheName_GivesBoth) {
  ParameterMap& map = *database_.AddFlowProcessParameterMap(e_debugger, "param");
  KelProjectDatabase::InsertOrAssignParameterToMap(map, "key", {"name", "1", e_string});
  EXPECT_THAT(Contents().parameter_maps.at("param"),
              ElementsAre(Pair("key", IsParameter("name", "1", e_string))));
}

TEST_F(ChangedByPointer, GetProjectContents_EmptyMap_GivesItButNoneThatIsNotThere) {
  database_.AddFlowProcessParameterMap(e_debugger, "param");
  process().parameter_map_index["before"] = -1;
  process().parameter_map_index["behind"] = 1;
  EXPECT_THAT(Contents().parameter_maps, ElementsAre(Pair("param", IsEmpty())));
}

TEST(ProjectContents, GetProjectContents_ChangedByAnotherThread_GivesNoHalfOfAChange) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  std::atomic<bool> has_ended{false};
  std::thread writer([&] {
    std::vector<DesignFile> pair = {{"a.v", "v2k", "work"}, {"b.v", "v2k", "work"}};
    for (int round = 0; round < 500; ++round) database.AddDesignRTLFile(pair);
    has_ended = true;
  });
  int halves = 0;
  while (!has_ended) {
    if (GetProjectContents(database).design_info.design_files.size() % 2 != 0) ++halves;
  }
  writer.join();
  EXPECT_EQ(halves, 0);
}

}  // namespace
