#include <filesystem>

#include <kel/exception.h>
#include <projectdb/project_db.h>

#include "testing/flow_processes.h"
#include "testing/message_recorder.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

enum class Origin { kNew, kDiscarded };

/// An object that never held a project, or whose project was discarded.
class NoProject : public testing::TestWithParam<Origin> {
 protected:
  void SetUp() override {
    if (GetParam() == Origin::kNew) return;
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    ASSERT_TRUE(database_.AddSynthesisParameter("a", "1", e_string));
    ASSERT_TRUE(database_.AddProjectInfoAttribute("owner", "lab 3"));
    database_.CleanProjectDatabase();
  }
  void TearDown() override {
    EXPECT_FALSE(database_.IsProjectDatabaseExist());
    EXPECT_THAT(recorder_.messages(), IsEmpty());
  }

  KelProjectDatabase database_;
  const MessageRecorder recorder_;
};

INSTANTIATE_TEST_SUITE_P(Objects, NoProject, testing::Values(Origin::kNew, Origin::kDiscarded));

TEST_P(NoProject, LifecycleAndFiles_DoNothing) {
  database_.CleanProjectDatabase();
  EXPECT_FALSE(database_.LoadProjectData("", "wdp_proj.xsd"));
  const TemporaryDirectory directory;
  database_.ExportProjectData(directory / "out.xml");
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
  EXPECT_NO_THROW(database_.ExportProjectData("/missing/out.xml"));
}

TEST_P(NoProject, Setters_DoNothingAndGettersGiveEmptyText) {
  database_.SetProjectName("text");
  database_.SetProjectCurrentPath("text");
  database_.SetProjectSoftwareVersion("text");
  database_.SetDeviceFamily("text");
  database_.SetDeviceModel("text");
  database_.SetDeviceTimingModel("text");
  database_.SetDesignTopModuleName("text");
  database_.SetDesignTopVHDLArchitecture("text");
  EXPECT_FALSE(database_.SetInterfaceConstraint("a.interface.csv"));
  EXPECT_EQ(database_.GetProjectName(), "");
  EXPECT_EQ(database_.GetProjectCurrentPath(), "");
  EXPECT_EQ(database_.GetProjectSoftwareVersion(), "");
  EXPECT_EQ(database_.GetProjectLastModifyTime(), "");
  EXPECT_EQ(database_.GetDeviceFamily(), "");
  EXPECT_EQ(database_.GetDeviceModel(), "");
  EXPECT_EQ(database_.GetDeviceTimingModel(), "");
  EXPECT_EQ(database_.GetDesignTopModuleName(), "");
  EXPECT_EQ(database_.GetDesignTopVHDLArchitecture(), "");
  EXPECT_EQ(database_.GetInterfaceConstraint(), "");
}

TEST_P(NoProject, InfoAttributes_AreRefusedAndMissing) {
  // Even a name that would be dropped.
  for (const std::string name : {"owner", "name", "sw_version", "last_change_date", "xmlns:kel"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(database_.InsertOrAssignProjectAttribute(name, "value"));
    EXPECT_FALSE(database_.AddProjectInfoAttribute(name, "value"));
    std::string value = "former";
    EXPECT_FALSE(database_.GetProjectInfoAttribute(name, value));
    EXPECT_EQ(value, "former");
  }
}

TEST_P(NoProject, FileLists_RefuseOrDoNothingAndLeaveTheirVectors) {
  std::vector<DesignFile> files = {{"a.v", "v2001", "work"}};
  std::vector<std::string> names = {"a.txt"};
  std::vector<IP> instances = {{"former", "", {}}};
  database_.AddDesignRTLFile("a.v", "v2001", "work");
  database_.AddDesignRTLFile(files);
  database_.AddSimulationTestBenchFile("a.v", "v2001");
  database_.AddSimulationTestBenchFile(files);
  database_.AddMiscellaneousFile("a.txt");
  database_.AddMiscellaneousFile(names);
  EXPECT_FALSE(database_.AddTimingConstraintFile("a.sdc"));
  EXPECT_FALSE(database_.AddTimingConstraintFile(std::vector<std::string>{"a.sdc"}));
  database_.GetDesignFileList(files);
  database_.GetSimulationTestBenchFileList(names);
  database_.GetMiscellaneousFileList(names);
  database_.GetTimingConstraintFileList(names);
  database_.GetIpSrcFileList(names);
  database_.GetIpInstanceList(instances);
  EXPECT_THAT(files, SizeIs(1));
  EXPECT_THAT(names, ElementsAre("a.txt"));
  EXPECT_THAT(instances, SizeIs(1));
}

TEST_P(NoProject, FlowProcesses_AreMissing) {
  for (const int value : {0, 1, 2, 3, 4}) ExpectNoFlowProcess(database_, ProcType(value));
}

/// The shorthands for one tool come down to the operations above.
TEST_P(NoProject, ThreadCounts_AreTheDefaultWhichMustNotBeZero) {
  EXPECT_EQ(database_.GetSynthesisMaxThreads(3), 3u);
  EXPECT_EQ(database_.GetPnRMaxThreads(3), 3u);
  EXPECT_THROW(database_.GetSynthesisMaxThreads(0), kel_exception);
  EXPECT_THROW(database_.GetPnRMaxThreads(0), kel_exception);
}

}  // namespace
