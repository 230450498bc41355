#include <algorithm>
#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"
#include "tests/allocation/failing_allocation.h"

namespace {

using namespace projectdb;
using namespace test_support;

class ProjectFileOutOfMemory : public testing::TestWithParam<Shortage> {
 protected:
  ProjectFileOutOfMemory() { WriteFile(path_, CompleteProjectXml()); }

  /// Runs an operation with a later and later failure until it completes.
  /// @param judge is told how each run ended
  /// @return the number of failing runs
  template <typename Judge>
  long FailEach(const Operation& operation, const Judge& judge) const {
    // A sanitizer makes every run slow.
    constexpr long kStride = kSanitized ? 41 : 3;
    KelProjectDatabase unused;
    Outcome outcome = Outcome::kOutOfMemory;
    long failures = 0;
    for (; outcome != Outcome::kCompleted; failures += kStride) {
      SCOPED_TRACE(failures);
      outcome = RunWithFailure(failures, GetParam(), operation, unused);
      EXPECT_NE(outcome, Outcome::kOtherException);
      judge(outcome);
    }
    return failures / kStride;
  }

  ProjectContents Contents() const { return ReadProjectFile(path_, "").contents.value(); }

  /// A failed start of the XML library would be for the whole process.
  const XmlPlatform platform_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
};

bool HasThrown(Outcome outcome) {
  return outcome == Outcome::kOutOfMemory || outcome == Outcome::kRuntimeError;
}

/// Memory that runs short in the parser may be an error of the file.
void ExpectAllOrAnError(const ProjectContents& expected, const ProjectFile& file) {
  const bool has_error = std::any_of(file.problems.begin(), file.problems.end(), IsError);
  EXPECT_EQ(has_error, !file.contents);
  if (file.contents) {
    EXPECT_TRUE(AllDifferences(expected, *file.contents).empty());
  }
}

TEST_P(ProjectFileOutOfMemory, ReadProjectFile_AnyAllocationFails_ThrowsOrGivesAllOrAnError) {
  const ProjectContents expected = Contents();
  const FileState before(path_);
  ProjectFile file;
  const auto read = [&](auto&) { file = ReadProjectFile(path_, ""); };
  const long failures = FailEach(read, [&](Outcome outcome) {
    if (!HasThrown(outcome)) ExpectAllOrAnError(expected, file);
    EXPECT_EQ(FileState(path_), before);
  });
  EXPECT_GT(failures, kSanitized ? 5 : 50);
}

TEST_P(ProjectFileOutOfMemory, ParseProjectFile_AnyAllocationFails_ThrowsOrGivesAllOrAnError) {
  const std::string bytes = CompleteProjectXml();
  const ProjectContents expected = CompleteProject("");
  ProjectFile file;
  const auto parse = [&](auto&) { file = ParseProjectFile(bytes, ""); };
  const long failures = FailEach(parse, [&](Outcome outcome) {
    if (!HasThrown(outcome)) ExpectAllOrAnError(expected, file);
    EXPECT_EQ(bytes, CompleteProjectXml());
  });
  EXPECT_GT(failures, kSanitized ? 5 : 50);
}

TEST_P(ProjectFileOutOfMemory, FormatProjectFile_AnyAllocationFails_ThrowsAndLeavesTheContents) {
  const ProjectContents contents = CompleteProject();
  const std::string expected = FormatProjectFile(contents, {true});
  std::string bytes;
  const auto format = [&](auto&) { bytes = FormatProjectFile(contents, {true}); };
  const long failures = FailEach(format, [&](Outcome outcome) {
    EXPECT_EQ(bytes, HasThrown(outcome) ? "" : expected);
    EXPECT_TRUE(AllDifferences(CompleteProject(), contents).empty());
    bytes.clear();
  });
  EXPECT_GT(failures, kSanitized ? 2 : 20);
}

TEST_P(ProjectFileOutOfMemory, WriteProjectFile_AnyAllocationFails_LeavesTheFormerFile) {
  const ProjectContents former = Contents();
  ProjectContents next = former;
  next.project_name = "next";
  const auto write = [&](auto&) { WriteProjectFile(path_, next); };
  const long failures = FailEach(write, [&](Outcome outcome) {
    const ProjectContents& expected = HasThrown(outcome) ? former : next;
    EXPECT_TRUE(DifferencesButStamps(expected, Contents()).empty());
    EXPECT_EQ(next.project_name, "next");
    EXPECT_EQ(NamesIn(directory_.path()), Lines{"p.xml"});
    WriteFile(path_, CompleteProjectXml());
  });
  EXPECT_GT(failures, kSanitized ? 10 : 100);
}

TEST_P(ProjectFileOutOfMemory, UpdateProjectFile_AnyAllocationFails_LeavesTheFormerFileUnlocked) {
  const ProjectContents former = Contents();
  ProjectContents next = former;
  next.project_name = "next";
  const auto update = [&](auto&) {
    UpdateProjectFile(path_, [](ProjectContents& project) { project.project_name = "next"; });
  };
  const long failures = FailEach(update, [&](Outcome outcome) {
    const ProjectContents& expected = HasThrown(outcome) ? former : next;
    EXPECT_TRUE(DifferencesButStamps(expected, Contents()).empty());
    EXPECT_NO_THROW(ProjectFileLock(path_, std::chrono::milliseconds::zero()));
    EXPECT_EQ(NamesIn(directory_.path()), Lines{"p.xml"});
    WriteFile(path_, CompleteProjectXml());
  });
  EXPECT_GT(failures, kSanitized ? 10 : 100);
}

INSTANTIATE_TEST_SUITE_P(Shortages, ProjectFileOutOfMemory,
                         testing::Values(Shortage::kOneAllocation, Shortage::kEveryFromThereOn),
                         [](const auto& test_info) {
                           return test_info.param == Shortage::kOneAllocation ? "One" : "All";
                         });

}  // namespace
