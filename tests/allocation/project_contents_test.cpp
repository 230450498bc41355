#include <projectdb/project_contents.h>

#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/complete_project.h"
#include "testing/project_differences.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/long_text.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// Contents with a text in every part that needs memory of its own.
ProjectContents LongContents() {
  ProjectContents contents = CompleteProject(Long("/work"));
  contents.project_name = Long("next");
  contents.info_attributes[Long("owner")] = Long("lab 3");
  contents.device_info.family = Long("Varel");
  contents.design_info.design_files.emplace_back(Long("top.v"), Long("v2001"), Long("work"));
  contents.ip_info.ips.push_back({Long("u_pll"), Long("pll.cfg"), {{Long("pll.v")}}});
  FlowProcessContents& process = contents.flow_processes.at(e_debugger);
  process.parameter_maps[Long("probes")].emplace(Long("depth"),
                                                 Parameter(Long("depth"), Long("1"), e_string));
  process.parameters.emplace_back(Long("plain"), Long("1"), e_string);
  return contents;
}

TEST(OutOfMemoryInSetProjectContents, ObjectWithAProject_KeepsItWhateverAllocationFails) {
  const ProjectContents former = CompleteProject();
  const ProjectContents next = LongContents();
  WalkAllocations([&](KelProjectDatabase& database) { SetProjectContents(database, former); },
                  [&](KelProjectDatabase& database) { SetProjectContents(database, next); },
                  [&](KelProjectDatabase& database, Outcome outcome) {
                    const auto& expected = outcome == Outcome::kCompleted ? next : former;
                    EXPECT_EQ(AllDifferences(expected, database), Lines());
                    EXPECT_EQ(AllDifferences(LongContents(), next), Lines());
                  });
}

TEST(OutOfMemoryInSetProjectContents, ObjectWithoutProject_StaysSoWhateverAllocationFails) {
  const ProjectContents next = LongContents();
  WalkAllocations([](KelProjectDatabase&) {},
                  [&](KelProjectDatabase& database) { SetProjectContents(database, next); },
                  [&](KelProjectDatabase& database, Outcome outcome) {
                    EXPECT_EQ(database.IsProjectDatabaseExist(), outcome == Outcome::kCompleted);
                  });
}

}  // namespace
