#include <projectdb/merge.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <projectdb/project_contents.h>

#include "testing/complete_project.h"
#include "testing/project_differences.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/long_text.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// A project in which a side has changed something in every section, some of it in conflict with
/// what another side makes of it.
ProjectContents Changed(const std::string& side) {
  ProjectContents project = CompleteProject();
  project.device_info.device = Long(side);
  project.info_attributes[Long(side)] = Long("1");
  auto& files = project.design_info.design_files;
  files.insert(files.begin(), {Long(side), "", ""});
  files.back().version = Long(side);
  project.misc_files.clear();
  project.ip_info.ips[0].path = Long(side);
  project.ip_info.ips[0].src_files.push_back({Long(side)});
  auto& parameters = project.flow_processes[e_synthesis].parameter_maps["param"];
  parameters.at("mode").value = Long(side);
  parameters.emplace(Long(side), Parameter(Long(side), Long("1"), e_string));
  return project;
}

TEST(OutOfMemoryInMerge, MergeProjects_AnyAllocationFails_LeavesTheThreeProjects) {
  const ProjectContents base = CompleteProject();
  const ProjectContents ours = Changed("ours");
  const ProjectContents theirs = Changed("theirs");
  const MergedProjects expected = MergeProjects(base, ours, theirs);
  ASSERT_EQ(expected.conflicts.size(), 4U);
  WalkAllocations([](KelProjectDatabase&) {},
                  [&](KelProjectDatabase&) { MergeProjects(base, ours, theirs); },
                  [&](KelProjectDatabase&, Outcome outcome) {
                    EXPECT_TRUE(outcome == Outcome::kOutOfMemory || outcome == Outcome::kCompleted);
                    EXPECT_EQ(AllDifferences(CompleteProject(), base), Lines());
                    EXPECT_EQ(AllDifferences(Changed("ours"), ours), Lines());
                    EXPECT_EQ(AllDifferences(Changed("theirs"), theirs), Lines());
                  },
                  kStrideOfSlowRuns);
  const MergedProjects merged = MergeProjects(base, ours, theirs);
  EXPECT_EQ(AllDifferences(expected.contents, merged.contents), Lines());
  EXPECT_EQ(merged.conflicts.size(), expected.conflicts.size());
}

}  // namespace
