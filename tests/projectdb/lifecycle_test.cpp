#include <gtest/gtest.h>
#include <projectdb/project_db.h>

#include "support/message_recorder.h"

namespace {

using projectdb::KelProjectDatabase;
using test_support::MessageRecorder;

TEST(Lifecycle, NewObject_HasNoProject) {
  EXPECT_FALSE(KelProjectDatabase().IsProjectDatabaseExist());
}

TEST(Lifecycle, SetupProjectDatabase_Twice_CreatesOnce) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.SetupProjectDatabase());
  EXPECT_FALSE(database.SetupProjectDatabase());
}

TEST(Lifecycle, CreateNewProjectDatabase_ProjectExists_PostsOneErrorAndReturnsFalse) {
  const MessageRecorder recorder;
  KelProjectDatabase database;
  ASSERT_TRUE(database.CreateNewProjectDatabase(""));
  EXPECT_FALSE(database.CreateNewProjectDatabase(""));
  const std::vector<MessageRecorder::Message> expected = {
      {Diag::MessageType::kError,
       "Project database has already existed. Fail to create new project"}};
  EXPECT_EQ(recorder.messages(), expected);
}

TEST(Lifecycle, CreateNewProjectDatabase_NamesTheFlowProcesses) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("");
  EXPECT_EQ(database.GetFlowProcess(projectdb::e_synthesis)->name, "synthesis");
  EXPECT_EQ(database.GetFlowProcess(projectdb::e_debugger)->name, "debugger");
}

TEST(Lifecycle, CleanProjectDatabase_LeavesNoProject) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("");
  database.CleanProjectDatabase();
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

}  // namespace
