#include <filesystem>
#include <functional>
#include <future>

#include "testing/file_state.h"
#include "testing/project_loading.h"
#include "testing/saves.h"
#include "testing/test.h"
#include "tests/save/saved_project.h"

namespace {

using namespace projectdb;
using namespace test_support;

TEST_F(DurableExport, NewPath_HoldsTheWholeProject) {
  Loading loading;
  ASSERT_TRUE(loading.LoadBytes(CompleteProjectXml()));
  ExportProjectDataDurably(loading.database, path_);
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  EXPECT_THAT(DifferencesButStamps(CompleteProject(directory_.path()), GetProjectContents(loaded)),
              IsEmpty());
}

TEST_F(DurableExport, LeavesNoOtherFileNoMessageAndTheProjectAsItWas) {
  WriteFormer(path_);
  const ProjectContents before = GetProjectContents(database_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  EXPECT_THAT(recorder_.messages(), IsEmpty());
  EXPECT_THAT(AllDifferences(before, database_), IsEmpty());
}

TEST_F(DurableExport, RelativeOrEmptyPath_IsInTheWorkingDirectoryOrNowhere) {
  const WorkingDirectory working_directory(directory_.path());
  ExportProjectDataDurably(database_, "");
  EXPECT_THAT(NamesIn(directory_.path()), IsEmpty());
  ExportProjectDataDurably(database_, "p.xml");
  EXPECT_EQ(NameInFile(path_), "next");
}

TEST_F(DurableExport, NoProject_CreatesNoFileAndLeavesTheOneThatIsThere) {
  EXPECT_EQ(SaveError(KelProjectDatabase(), path_), "");
  EXPECT_EQ(SaveError(KelProjectDatabase(), directory_ / "missing/p.xml"), "");
  EXPECT_THAT(NamesIn(directory_.path()), IsEmpty());
  WriteFormer(path_);
  const FileState former(path_);
  ExportProjectDataDurably(KelProjectDatabase(), path_);
  EXPECT_EQ(FileState(path_), former);
}

TEST_F(DurableExport, SeveralThreadsToOnePath_LeaveOneWholeProjectAndNothingElse) {
  KelProjectDatabase other;
  other.CreateNewProjectDatabase("other");
  for (int i = 0; i < 2000; ++i) other.AddMiscellaneousFile("notes_" + std::to_string(i));
  const auto save = [this](const KelProjectDatabase& database) {
    for (int round = 0; round < 20; ++round) ExportProjectDataDurably(database, path_);
  };
  WriteFormer(path_);
  auto first = std::async(std::launch::async, save, std::cref(database_));
  auto second = std::async(std::launch::async, save, std::cref(other));
  first.get();
  second.get();
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  const KelProjectDatabase& last = loaded.GetProjectName() == "other" ? other : database_;
  loaded.SetProjectCurrentPath(last.GetProjectCurrentPath());
  EXPECT_THAT(DifferencesButStamps(GetProjectContents(last), GetProjectContents(loaded)),
              IsEmpty());
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(DurableExport, TextThatNoFileCanHold_IsAnErrorAndLeavesTheFileUntilItIsCorrected) {
  WriteFormer(path_);
  const FileState former(path_);
  database_.SetProjectName("broken\xFF");
  EXPECT_EQ(SaveError(database_, path_),
            WritingError(path_, "the text \"broken\\xff\" is not UTF-8"));
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  database_.SetProjectName("corrected");
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(NameInFile(path_), "corrected");
}

// Projects that a load would read as another.

/// Something that no adding operation brings into a project.
struct ForeignChange {
  std::string name;
  std::string reason;  ///< What the save says of it.
  std::function<void(KelProjectDatabase&)> apply;
};

ParameterMap& DebuggerParameters(KelProjectDatabase& database) {
  return *database.AddFlowProcessParameterMap(e_debugger, "param");
}

std::vector<ForeignChange> ForeignChanges() {
  std::vector<ForeignChange> changes = {
      {"parameter inserted under another key",
       "debugger.param.key: the parameter's name is \"name\"",
       [](auto& db) {
         KelProjectDatabase::InsertOrAssignParameterToMap(DebuggerParameters(db), "key",
                                                          Parameter("name", "v", e_string));
       }},
      {"parameter renamed under its key", "debugger.param.p: the parameter's name is \"q\"",
       [](auto& db) {
         db.AddDebuggerParameter("p", "v", e_string);
         DebuggerParameters(db).at("p").name = "q";
       }}};
  for (const int type : {0, 1, 2, 3, 4, 7}) {
    changes.push_back(
        {"unfit value of type " + std::to_string(type),
         "debugger.param.p: the value does not go with the parameter's type", [type](auto& db) {
           const char* const value = type == e_noarg ? "on" : "";
           DebuggerParameters(db).emplace("p", Parameter("p", value, ParameterType(type)));
         }});
  }
  for (const char* name : {"floorplan", "debugger", "device_info", "design_info", "constraint_info",
                           "isf_info", "sim_info", "misc_info", "ip_info"}) {
    changes.push_back({std::string("synthesis named ") + name,
                       "synthesis.name: a file would have \"" + std::string(name) + "\" for it",
                       [name](auto& db) { db.SetFlowProcessName(e_synthesis, name); }});
  }
  changes.push_back({"map that no process has",
                     "debugger.corner: no project file keeps a map of this name", [](auto& db) {
                       db.AddFlowProcessParameter(e_debugger, "corner",
                                                  Parameter("p", "v", e_string));
                     }});
  changes.push_back({"map of another process",
                     "debugger.defmacro: no project file keeps a map of this name", [](auto& db) {
                       db.AddFlowProcessParameter(e_debugger, "defmacro",
                                                  Parameter("p", "v", e_string));
                     }});
  changes.push_back({"constraint file without a name",
                     "constraint.sdc[0]: no project file keeps a file without a name",
                     [](auto& db) {
                       ProjectContents contents = GetProjectContents(db);
                       contents.design_constraint.sdc_files = {""};
                       SetProjectContents(db, contents);
                     }});
  return changes;
}

class DurableExportOfForeign : public DurableExport,
                               public testing::WithParamInterface<ForeignChange> {};

TEST_P(DurableExportOfForeign, IsAnErrorThatTellsItAndLeavesTheFileThatIsThere) {
  WriteFormer(path_);
  const FileState former(path_);
  GetParam().apply(database_);
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, GetParam().reason));
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  EXPECT_NO_THROW(database_.ExportProjectData(path_));
  EXPECT_EQ(NameInFile(path_), "next");
}

INSTANTIATE_TEST_SUITE_P(Changes, DurableExportOfForeign, testing::ValuesIn(ForeignChanges()),
                         ByName());

TEST_F(DurableExport, ProcessesWithoutNames_AreWrittenUnderTheirOwn) {
  KelProjectDatabase unnamed;
  unnamed.SetupProjectDatabase();
  unnamed.AddDebuggerParameter("p", "v", e_string);
  ExportProjectDataDurably(unnamed, path_);
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  EXPECT_EQ(loaded.GetDebuggerParameterValue("p"), "v");
}

}  // namespace
