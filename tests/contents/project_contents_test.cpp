#include <projectdb/project_contents.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/project_loading.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

auto IsParameter(const char* name, const char* value, ParameterType type) {
  return AllOf(Field(&Parameter::name, name), Field(&Parameter::value, value),
               Field(&Parameter::type, type));
}

TEST(ProjectContents, GetProjectContents_CompleteProject_GivesEveryField) {
  Loading loading;
  ASSERT_TRUE(loading.LoadBytes(CompleteProjectXml()));
  EXPECT_THAT(AllDifferences(CompleteProject(loading.directory.path()),
                             GetProjectContents(loading.database)),
              IsEmpty());
}

TEST(ProjectContents, GetProjectContents_NoProject_IsEmpty) {
  const KelProjectDatabase database;
  const ProjectContents contents = GetProjectContents(database);
  EXPECT_EQ(contents.project_name, "");
  EXPECT_THAT(contents.flow_processes, IsEmpty());
}

TEST(ProjectContents, GetProjectContents_EmptyProject_HasFourUnnamedProcesses) {
  KelProjectDatabase database;
  database.SetupProjectDatabase();
  EXPECT_THAT(GetProjectContents(database).flow_processes,
              AllOf(SizeIs(4), testing::Each(Field(&FlowProcessContents::name, ""))));
}

TEST(ProjectContents, GetProjectContents_ChangedAfterwards_IsACopy) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  database.AddMiscellaneousFile("notes.txt");
  const ProjectContents contents = GetProjectContents(database);
  database.AddMiscellaneousFile("more.txt");
  EXPECT_THAT(contents.misc_files, SizeIs(1));
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

TEST_F(ChangedByPointer, GetProjectContents_EmptyMap_GivesIt) {
  database_.AddFlowProcessParameterMap(e_debugger, "param");
  EXPECT_THAT(Contents().parameter_maps, ElementsAre(Pair("param", IsEmpty())));
}

TEST_F(ChangedByPointer, GetProjectContents_IndexThatLeadsToNoMap_LeavesTheNameOut) {
  process().parameter_map_index["before"] = -1;
  process().parameter_map_index["behind"] = 0;
  EXPECT_THAT(Contents().parameter_maps, IsEmpty());
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
