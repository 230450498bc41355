#include <gtest/gtest.h>
#include <projectdb/project_db.h>

#include "support/message_recorder.h"
#include "support/temporary_directory.h"

namespace {

using projectdb::KelProjectDatabase;
using test_support::MessageRecorder;
using test_support::TemporaryDirectory;

TEST(Export, ExportProjectData_WritesWhatLoadProjectDataReads) {
  const TemporaryDirectory directory;
  const MessageRecorder recorder;
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("exported");
  database.SetDeviceTimingModel("fast");
  database.AddProjectInfoAttribute("team:owner", "Ine");
  database.AddSynthesisVerilogMacro("WIDTH", "8");
  database.ExportProjectData(directory / "p.xml");
  KelProjectDatabase loaded;
  ASSERT_TRUE(
      loaded.LoadProjectData(directory / "p.xml", PROJECTDB_SOURCE_DIR "/schema/wdp_proj.xsd"));
  EXPECT_EQ(loaded.GetDeviceTimingModel(), "fast");
  EXPECT_EQ(loaded.GetSynthesisVerilogMacroValue("WIDTH"), "8");
  std::string owner;
  EXPECT_TRUE(loaded.GetProjectInfoAttribute("team:owner", owner));
  EXPECT_EQ(owner, "Ine");
}

TEST(Export, ExportProjectData_NoProject_WritesNoFile) {
  const TemporaryDirectory directory;
  KelProjectDatabase().ExportProjectData(directory / "p.xml");
  EXPECT_FALSE(std::filesystem::exists(directory / "p.xml"));
}

}  // namespace
