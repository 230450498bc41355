#include <algorithm>
#include <cstdlib>
#include <memory>

#include "testing/flow_processes.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/long_text.h"

namespace {

using namespace projectdb;
using namespace test_support;

using Db = KelProjectDatabase;

void Nothing(Db&) {}

bool HasProcesses(const Db& database) { return database.GetFlowProcess(e_synthesis) != nullptr; }

TEST(OutOfMemory, SetupProjectDatabase_AnyAllocationFails_LeavesNoProjectOrABlockWithoutProcesses) {
  int blocks_without_processes = 0;
  WalkAllocations(
      Nothing, [](Db& database) { database.SetupProjectDatabase(); },
      [&](Db& database, Outcome outcome) {
        if (outcome == Outcome::kCompleted) {
          EXPECT_TRUE(HasProcesses(database));
          return;
        }
        EXPECT_FALSE(HasProcesses(database));
        if (database.IsProjectDatabaseExist()) ++blocks_without_processes;
      });
  EXPECT_GT(blocks_without_processes, 0);
}

TEST(OutOfMemory, CreateNewProjectDatabase_AnyAllocationFails_ThrowsAndLeavesTheObjectUsable) {
  const std::string name = "a project with a name of some length";
  WalkAllocations(
      Nothing, [&name](Db& database) { database.CreateNewProjectDatabase(name); },
      [](Db& database, Outcome) {
        // Each of these would wait for ever if the lock were still held.
        database.CleanProjectDatabase();
        EXPECT_FALSE(database.IsProjectDatabaseExist());
        EXPECT_TRUE(database.CreateNewProjectDatabase("next"));
        EXPECT_EQ(database.GetProjectName(), "next");
        EXPECT_TRUE(HasProcesses(database));
      });
}

TEST(OutOfMemory, CreateNewProjectDatabase_RefusalRunsOutOfMemory_LeavesTheProject) {
  const MessageRecorder recorder;
  const auto create = [](Db& database) { database.CreateNewProjectDatabase("first"); };
  WalkAllocations(
      create, [](Db& database) { database.CreateNewProjectDatabase("second"); },
      [](Db& database, Outcome) { EXPECT_EQ(database.GetProjectName(), "first"); });
}

TEST(OutOfMemory, CleanProjectDatabase_NoMemoryLeft_StillDiscardsTheProject) {
  Db database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  EXPECT_EQ(
      RunWithFailure(
          0, Shortage::kEveryFromThereOn, [](Db& db) { db.CleanProjectDatabase(); }, database),
      Outcome::kCompleted);
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

/// An operation, with the smaller steps that it may stop between; an operation without steps is
/// done wholly or not at all.
struct Change {
  const char* name;
  Operation operation;
  std::vector<Operation> steps = {};
};

void FillProject(Db& database) {
  database.CreateNewProjectDatabase(Long("blinker"));
  database.SetProjectCurrentPath("/work/proj");
  database.SetInterfaceConstraint("former.interface.csv");
  database.AddDesignRTLFile(Long("former"), Long("v2001"), Long("work"));
  database.AddSimulationTestBenchFile(Long("former"), Long("v2001"));
  database.AddMiscellaneousFile(Long("former"));
  database.AddTimingConstraintFile(Long("former") + ".sdc");
  database.AddProjectInfoAttribute("owner", "lab 3");
  database.AddSynthesisParameter("effort", "high", e_option);
  database.AddSynthesisParameter("quiet", "", e_noarg);
  database.AddSynthesisParameter(Long("former"), Long("value"), e_string);
}

bool IsSame(const ProjectContents& a, const ProjectContents& b) {
  return DifferencesButStamps(a, b).empty();
}

/// The texts are made before memory gets scarce, not by the operation that they are handed to.
struct Samples {
  std::string name = Long(Long("name"));
  std::string version = Long("version");
  std::string library = Long("library");
  std::string map = Long("map");
  std::string owner = Long("new owner");
  std::string first_sdc = Long("first") + ".sdc";
  std::string second_sdc = Long("second") + ".sdc";
  std::vector<std::string> sdc_files = {first_sdc, "b.txt", second_sdc};
  std::string interface_file = Long("pins") + ".interface.csv";
  std::vector<DesignFile> files = {{Long("a"), Long("b"), Long("c")},
                                   {Long("d"), Long("e"), Long("f")},
                                   {Long("g"), Long("h"), Long("i")}};
  std::vector<std::string> names = {Long("a"), Long("b"), Long("c")};
  Parameter parameter{Long("parameter"), Long("value"), e_string};
  Parameter effort{"effort", Long("value"), e_option};
  Parameter renamed{Long("renamed"), Long("value"), e_option};
  std::string effort_key = "effort";
  std::string param = "param";
};

/// The texts and records that the operations are handed.
const Samples kSamples;

std::vector<Change> Changes() {
  const auto& s = kSamples;
  std::vector<Change> changes = {
      {"SetInterfaceConstraint", [&](Db& db) { db.SetInterfaceConstraint(s.interface_file); }},
      {"SetFlowProcessName", [&](Db& db) { db.SetFlowProcessName(e_debugger, s.name.c_str()); }},
      {"AddDesignRTLFile", [&](Db& db) { db.AddDesignRTLFile(s.name, s.version, s.library); }},
      {"AddDesignRTLFileVector", [files = s.files](Db& db) mutable { db.AddDesignRTLFile(files); }},
      {"AddSimulationTestBenchFile",
       [&](Db& db) { db.AddSimulationTestBenchFile(s.name, s.version); }},
      {"AddSimulationTestBenchFileVector",
       [files = s.files](Db& db) mutable { db.AddSimulationTestBenchFile(files); }},
      {"AddMiscellaneousFile", [&](Db& db) { db.AddMiscellaneousFile(s.name); }},
      {"AddMiscellaneousFileVector",
       [names = s.names](Db& db) mutable { db.AddMiscellaneousFile(names); }},
      {"AddTimingConstraintFile", [&](Db& db) { db.AddTimingConstraintFile(s.first_sdc); }},
      {"AddTimingConstraintFileVector",
       [&](Db& db) { db.AddTimingConstraintFile(s.sdc_files); },
       {[&](Db& db) { db.AddTimingConstraintFile(s.first_sdc); },
        [&](Db& db) { db.AddTimingConstraintFile(s.second_sdc); }}},
      {"AddFlowProcessParameter",
       [&](Db& db) { db.AddFlowProcessParameter(e_synthesis, s.param, s.parameter); }},
      {"AddFlowProcessParameterInNewMap",
       [&](Db& db) { db.AddFlowProcessParameter(e_debugger, s.map, s.parameter); }},
      {"AddFlowProcessParameterAgain",
       [&](Db& db) { db.AddFlowProcessParameter(e_synthesis, s.param, s.effort); }},
      {"AddFlowProcessParameterByParts",
       [&](Db& db) { db.AddFlowProcessParameter(e_debugger, s.map, s.name, s.version, e_string); }},
      {"AddFlowProcessParameterList",
       [&](Db& db) {
         db.AddFlowProcessParameterList(e_synthesis, s.param, {s.parameter, s.effort});
       },
       {[&](Db& db) { db.AddFlowProcessParameter(e_synthesis, s.param, s.parameter); },
        [&](Db& db) { db.AddFlowProcessParameter(e_synthesis, s.param, s.effort); }}},
      {"AddProjectInfoAttribute", [&](Db& db) { db.AddProjectInfoAttribute(s.owner, s.name); }},
      {"AddProjectInfoAttributeAgain",
       [&](Db& db) { db.AddProjectInfoAttribute("owner", s.name); }},
      {"AddProjectInfoAttributeNamedName",
       [&](Db& db) { db.AddProjectInfoAttribute("name", s.name); }}};
  const std::pair<const char*, void (Db::*)(const std::string&)> setters[] = {
      {"SetProjectName", &Db::SetProjectName},
      {"SetProjectCurrentPath", &Db::SetProjectCurrentPath},
      {"SetDeviceFamily", &Db::SetDeviceFamily},
      {"SetDeviceModel", &Db::SetDeviceModel},
      {"SetDeviceTimingModel", &Db::SetDeviceTimingModel},
      {"SetDesignTopModuleName", &Db::SetDesignTopModuleName},
      {"SetDesignTopVHDLArchitecture", &Db::SetDesignTopVHDLArchitecture},
      {"SetSynthesisExecutableName", &Db::SetSynthesisExecutableName}};
  for (const auto& [name, setter] : setters) {
    changes.push_back({name, [set = setter](Db& db) { (db.*set)(s.name); }});
  }
  return changes;
}

class ChangeTest : public testing::TestWithParam<Change> {
 protected:
  /// The project before the change and after each of its steps.
  static std::vector<ProjectContents> States() {
    Db database;
    FillProject(database);
    std::vector<ProjectContents> states = {GetProjectContents(database)};
    std::vector<Operation> steps = GetParam().steps;
    if (steps.empty()) steps = {GetParam().operation};
    for (const Operation& step : steps) {
      step(database);
      states.push_back(GetProjectContents(database));
    }
    return states;
  }
};

TEST_P(ChangeTest, AnyAllocationFails_LeavesAStateAroundAStepAndSucceedsWhenTriedAgain) {
  const std::vector<ProjectContents> states = States();
  const ProjectContents& last = states.back();
  ASSERT_FALSE(IsSame(states.front(), last)) << "the change changes nothing";
  WalkAllocations(FillProject, GetParam().operation, [&](Db& database, Outcome outcome) {
    // Waits for ever if the lock is still held.
    const ProjectContents found = GetProjectContents(database);
    if (outcome != Outcome::kCompleted) {
      EXPECT_TRUE(std::any_of(states.begin(), states.end(),
                              [&](const auto& state) { return IsSame(state, found); }));
      if (!IsSame(found, states.front())) return;
      GetParam().operation(database);
    }
    EXPECT_EQ(DifferencesButStamps(last, GetProjectContents(database)), Lines());
  });
}

INSTANTIATE_TEST_SUITE_P(Operations, ChangeTest, testing::ValuesIn(Changes()), ByName());

TEST(OutOfMemory, AddFlowProcessParameterMap_AnyAllocationFails_AddsTheMapWhollyOrNotAtAll) {
  WalkAllocations(
      FillProject,
      [](Db& database) {
        database.AddFlowProcessParameterMap(e_synthesis, "a map with a name of some length");
      },
      [](Db& database, Outcome outcome) {
        const FlowProcess& process = *database.GetFlowProcess(e_synthesis);
        const std::size_t count = outcome == Outcome::kCompleted ? 2 : 1;
        EXPECT_EQ(process.parameter_maps.size(), count);
        EXPECT_EQ(process.parameter_map_index.size(), count);
        // The next map is still found at its own position.
        database.AddFlowProcessParameter(e_synthesis, "next", "a", "1", e_string);
        EXPECT_EQ(database.GetFlowProcessParameterValue(e_synthesis, "next", "a"), "1");
        EXPECT_EQ(database.GetSynthesisParameterValue("effort"), "high");
      });
}

TEST(OutOfMemory, InsertOrAssignParameterToMap_AssignmentFails_NameAndValueStayTogether) {
  WalkAllocations(
      FillProject,
      [](Db& database) {
        ParameterMap* map = database.GetFlowProcess(e_synthesis)->parameter_maps.data();
        Db::InsertOrAssignParameterToMap(*map, kSamples.effort_key, kSamples.renamed);
      },
      [](Db& database, Outcome outcome) {
        const auto stored = database.GetFlowProcessParameter(e_synthesis, "param", "effort");
        ASSERT_TRUE(stored);
        const bool is_new = outcome == Outcome::kCompleted;
        EXPECT_EQ(stored->name, is_new ? kSamples.renamed.name : "effort");
        EXPECT_EQ(stored->value, is_new ? kSamples.renamed.value : "high");
      });
}

/// Getters that give a text or fill a vector.
TEST(OutOfMemory, Getters_AnyAllocationFails_LeaveTheProjectAndTheLock) {
  const std::string former = Long("former");
  const std::pair<const char*, Operation> getters[] = {
      {"GetProjectName", [](Db& database) { database.GetProjectName(); }},
      {"GetDesignFileList",
       [](Db& database) {
         std::vector<DesignFile> files;
         database.GetDesignFileList(files);
       }},
      {"GetMiscellaneousFileList",
       [](Db& database) {
         std::vector<std::string> names;
         database.GetMiscellaneousFileList(names);
       }},
      {"GetSynthesisParameterList",
       [](Db& database) {
         std::vector<Parameter> parameters;
         database.GetSynthesisParameterList(parameters);
       }},
      {"GetFlowProcessParameter",
       [&former](Db& database) { database.GetFlowProcessParameter(e_synthesis, "param", former); }},
  };
  Db untouched;
  FillProject(untouched);
  const ProjectContents expected = GetProjectContents(untouched);
  for (const auto& [name, getter] : getters) {
    SCOPED_TRACE(name);
    WalkAllocations(FillProject, getter, [&](Db& database, Outcome) {
      EXPECT_EQ(DifferencesButStamps(expected, GetProjectContents(database)), Lines());
    });
  }
}

/// An object whose project has no flow processes, for memory ran out when they were made.
class BlockWithoutProcesses : public testing::Test {
 protected:
  void SetUp() override {
    const Operation set_up = [](Db& database) { database.SetupProjectDatabase(); };
    for (long number = 0; database_ == nullptr; ++number) {
      auto database = std::make_unique<Db>();
      ASSERT_EQ(RunWithFailure(number, Shortage::kOneAllocation, set_up, *database),
                Outcome::kOutOfMemory);
      if (database->IsProjectDatabaseExist()) database_ = std::move(database);
    }
    ASSERT_FALSE(HasProcesses(*database_));
  }

  std::unique_ptr<Db> database_;
};

TEST_F(BlockWithoutProcesses, SetupAndCreate_AreRefusedAndAddNoProcesses) {
  const MessageRecorder recorder;
  EXPECT_FALSE(database_->SetupProjectDatabase());
  EXPECT_TRUE(recorder.messages().empty());
  EXPECT_FALSE(database_->CreateNewProjectDatabase("other"));
  EXPECT_EQ(recorder.messages(), (std::vector<MessageRecorder::Message>{ProjectExistsMessage()}));
  EXPECT_FALSE(HasProcesses(*database_));
}

TEST_F(BlockWithoutProcesses, CleanThenCreate_GivesAWholeProject) {
  database_->CleanProjectDatabase();
  EXPECT_TRUE(database_->CreateNewProjectDatabase("blinker"));
  for (const ProcType type : kProcesses) EXPECT_NE(database_->GetFlowProcess(type), nullptr);
}

TEST_F(BlockWithoutProcesses, FlowProcessOperations_EachType_FindNothingAndPostNothing) {
  const MessageRecorder recorder;
  for (const ProcType type : kProcesses) ExpectNoFlowProcess(*database_, type);
  EXPECT_EQ(database_->GetSynthesisMaxThreads(3), 3u);
  EXPECT_EQ(database_->GetPnRMaxThreads(3), 3u);
  EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(BlockWithoutProcesses, OtherParts_SetAndRead_WorkAsInAnyProject) {
  database_->SetProjectName("blinker");
  database_->SetDeviceModel("Q8R40");
  database_->AddDesignRTLFile("top.v", "v2001", "work");
  EXPECT_TRUE(database_->AddTimingConstraintFile("clk.sdc"));
  EXPECT_TRUE(database_->SetInterfaceConstraint("pins.interface.csv"));
  EXPECT_TRUE(database_->AddProjectInfoAttribute("owner", "lab 3"));
  ProjectContents expected;
  expected.project_name = "blinker";
  expected.device_info.device = "Q8R40";
  expected.design_info.design_files = {{"top.v", "v2001", "work"}};
  expected.design_constraint.sdc_files = {"clk.sdc"};
  expected.design_constraint.inter_file = "pins.interface.csv";
  expected.info_attributes = {{"owner", "lab 3"}};
  EXPECT_EQ(AllDifferences(expected, *database_), Lines());
}

TEST_F(BlockWithoutProcesses, ExportProjectData_BlockExists_WritesAFileThatLoads) {
  const TemporaryDirectory directory;
  database_->SetProjectName("blinker");
  database_->ExportProjectData(directory / "out.xml");
  const MessageRecorder recorder;
  Db loaded;
  EXPECT_TRUE(loaded.LoadProjectData(directory / "out.xml", ""));
  EXPECT_EQ(loaded.GetProjectName(), "blinker");
}

TEST_F(BlockWithoutProcesses, LoadProjectData_FileWithProcess_ReturnsFalseAndLoadsTheRest) {
  const TemporaryDirectory directory;
  WriteFile(directory / "in.xml",
            ProjectXml("<synthesis tool_name=\"syn\"><param name=\"a\" value=\"1\"/></synthesis>"
                       "<device_info><device name=\"Q8R40\"/></device_info>"));
  const MessageRecorder recorder;
  EXPECT_FALSE(database_->LoadProjectData(directory / "in.xml", ""));
  EXPECT_EQ(database_->GetDeviceModel(), "Q8R40");
  EXPECT_FALSE(HasProcesses(*database_));
}

}  // namespace
