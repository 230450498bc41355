#include "testing/project_differences.h"
#include "testing/test.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/long_text.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// A project with something in every part that a contents or a comparison copies.
void FillEveryPart(KelProjectDatabase& database) {
  database.CreateNewProjectDatabase(Long("blinker"));
  database.AddProjectInfoAttribute(Long("owner"), Long("lab 3"));
  database.AddDesignRTLFile(Long("top.v"), Long("v2001"), Long("work"));
  database.AddDesignRTLFile(Long("core.v"), Long("v2001"), Long("work"));
  database.AddSimulationTestBenchFile(Long("bench.v"), Long("v2001"));
  database.AddMiscellaneousFile(Long("notes"));
  database.AddSynthesisParameter(Long("effort"), Long("high"), e_option);
  database.GetFlowProcess(e_debugger)->parameters.emplace_back("plain", Long("1"), e_string);
}

void FillChangedProject(KelProjectDatabase& database) {
  database.CreateNewProjectDatabase(Long("blinker"));
  database.AddProjectInfoAttribute(Long("owner"), Long("lab 4"));
  database.AddDesignRTLFile(Long("pkg.v"), Long("v2001"), Long("work"));
  database.AddDesignRTLFile(Long("core.v"), Long("v2005"), Long("work"));
  database.AddDesignRTLFile(Long("top.v"), Long("v2001"), Long("work"));
  database.AddSynthesisParameter(Long("effort"), Long("low"), e_option);
}

/// A lock that was not released shows as a test that does not end.
class OutOfMemoryInComparison : public testing::Test {
 protected:
  OutOfMemoryInComparison() {
    FillEveryPart(untouched_);
    FillChangedProject(changed_);
  }

  KelProjectDatabase untouched_;
  KelProjectDatabase changed_;
};

TEST_F(OutOfMemoryInComparison, GetProjectContents_AnyAllocationFails_LeavesTheProjectAndTheLock) {
  const ProjectContents expected = GetProjectContents(untouched_);
  WalkAllocations(
      FillEveryPart, [](KelProjectDatabase& database) { GetProjectContents(database); },
      [&](KelProjectDatabase& database, Outcome) {
        EXPECT_EQ(DifferencesButStamps(expected, GetProjectContents(database)), Lines());
      });
}

TEST_F(OutOfMemoryInComparison,
       CompareProjects_AnyAllocationFails_LeavesBothProjectsAndTheirLocks) {
  const ProjectContents expected = GetProjectContents(untouched_);
  const ProjectContents expected_changed = GetProjectContents(changed_);
  WalkAllocations(
      FillEveryPart, [&](KelProjectDatabase& database) { CompareProjects(database, changed_); },
      [&](KelProjectDatabase& database, Outcome) {
        EXPECT_EQ(DifferencesButStamps(expected, GetProjectContents(database)), Lines());
        EXPECT_EQ(AllDifferences(expected_changed, changed_), Lines());
      },
      kStrideOfSlowRuns);
}

TEST_F(OutOfMemoryInComparison, CompareProjects_AnyAllocationFails_LeavesTheContents) {
  ProjectContents before = GetProjectContents(untouched_);
  before.ip_info.ips = {{Long("u"), Long("u.cfg"), {{Long("u.v")}}}};
  ProjectContents after = GetProjectContents(changed_);
  after.ip_info.ips = {{"new", "", {}}, {Long("u"), Long("v.cfg"), {{Long("v.v")}}}};
  const Lines expected = Show(CompareProjects(before, after));
  ASSERT_FALSE(expected.empty());
  WalkAllocations([](KelProjectDatabase&) {},
                  [&](KelProjectDatabase&) { CompareProjects(before, after); },
                  [&](KelProjectDatabase&, Outcome) {
                    EXPECT_EQ(Show(CompareProjects(before, after)), expected);
                  },
                  kStrideOfSlowRuns);
}

}  // namespace
