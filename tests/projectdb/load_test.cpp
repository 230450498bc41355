#include <gtest/gtest.h>
#include <projectdb/project_db.h>

#include "support/files.h"
#include "support/message_recorder.h"
#include "support/temporary_directory.h"

namespace {

using projectdb::KelProjectDatabase;
using test_support::MessageRecorder;
using test_support::TemporaryDirectory;

constexpr char kProject[] = R"(<kel:project xmlns:kel="http://schema.kel.example/wdp_proj" name="p">
  <kel:device_info><kel:family name="Fam"/></kel:device_info>
  <kel:debugger tool_name="dbg"><kel:param name="a" value="b" value_type="e_string"/></kel:debugger>
</kel:project>)";

TEST(Load, LoadProjectData_WithSchema_ReadsTheProject) {
  const TemporaryDirectory directory;
  const MessageRecorder recorder;
  test_support::WriteFile(directory / "p.xml", kProject);
  KelProjectDatabase database;
  ASSERT_TRUE(
      database.LoadProjectData(directory / "p.xml", PROJECTDB_SOURCE_DIR "/schema/wdp_proj.xsd"));
  EXPECT_EQ(database.GetProjectName(), "p");
  EXPECT_EQ(database.GetDeviceFamily(), "Fam");
  EXPECT_EQ(database.GetDebuggerParameterValue("a"), "b");
}

TEST(Load, LoadProjectData_MalformedFile_LeavesNoProject) {
  const TemporaryDirectory directory;
  const MessageRecorder recorder;
  test_support::WriteFile(directory / "p.xml", "<kel:project>");
  KelProjectDatabase database;
  EXPECT_FALSE(database.LoadProjectData(directory / "p.xml", ""));
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

}  // namespace
