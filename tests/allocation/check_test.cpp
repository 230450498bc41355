#include <projectdb/check.h>

#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "tests/allocation/failing_allocation.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// A file with problems of many kinds.
const std::string kProject = ProjectXml(
    "<bogus/><package_info/>"
    "<debugger><param name=\"a\"/><param name=\"b\" value=\"1\" "
    "value_type=\"text\"/><x/></debugger>"
    "<sim_info><y/></sim_info><isf_info><isf_file/></isf_info>");

std::vector<std::string> ShowProblems(const std::vector<FileProblem>& problems) {
  std::vector<std::string> shown;
  for (const FileProblem& problem : problems) {
    shown.push_back(std::to_string(problem.column) + ": " + problem.message);
  }
  return shown;
}

class CheckOutOfMemory : public testing::TestWithParam<Shortage> {
 protected:
  void ExpectThatEachFailureThrowsOrChangesNothing(const std::string& bytes, std::size_t count) {
    WriteFile(path_, bytes);
    const std::vector<std::string> expected = ShowProblems(CheckProjectFile(path_, ""));
    ASSERT_EQ(expected.size(), count);
    KelProjectDatabase unused;
    Outcome outcome = Outcome::kOutOfMemory;
    long failures = 0;
    for (; outcome != Outcome::kCompleted; ++failures) {
      SCOPED_TRACE(failures);
      std::vector<FileProblem> problems;
      outcome = RunWithFailure(
          failures, GetParam(), [&](auto&) { problems = CheckProjectFile(path_, ""); }, unused);
      if (outcome != Outcome::kOutOfMemory) {
        EXPECT_EQ(ShowProblems(problems), expected);
      }
    }
    EXPECT_GT(failures, 100);
  }

 private:
  /// A failed start of the XML library would be for the whole process.
  XmlPlatform platform_;
  TemporaryDirectory directory_;
  std::string path_ = directory_ / "p.xml";
};

TEST_P(CheckOutOfMemory, CheckProjectFile_AnyAllocationFails_ThrowsOrGivesAllProblems) {
  ExpectThatEachFailureThrowsOrChangesNothing(kProject, 7);
}

TEST_P(CheckOutOfMemory, CheckProjectFile_MalformedFile_ThrowsOrGivesItsProblem) {
  ExpectThatEachFailureThrowsOrChangesNothing(ProjectXml("<isf_info>"), 1);
}

INSTANTIATE_TEST_SUITE_P(Shortages, CheckOutOfMemory,
                         testing::Values(Shortage::kOneAllocation, Shortage::kEveryFromThereOn));

}  // namespace
