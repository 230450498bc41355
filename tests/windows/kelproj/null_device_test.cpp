#include "tests/kelproj/merge_test.h"

namespace {

using namespace test_support;

/// The name that a shell which turns names of files into those of Windows gives the null device.
class NullDevice : public Merge, public testing::WithParamInterface<const char*> {};

TEST_P(NullDevice, IsNoFileToDiff) {
  const Outcome outcome = Run({"diff", GetParam(), "ours.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("+ device.device: Q8R25\n"));
}

TEST_P(NullDevice, GivenByGit_IsShownAsOnEverySystem) {
  const Outcome outcome =
      Run({"diff", "ours.xml", GetParam(), ".", ".", "ours.xml", "0123abc", "100644"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("--- /dev/null\n+++ ours.xml\n+ "));
}

TEST_P(NullDevice, IsNoFileAsBaseOfAMerge) {
  Change({"set", "theirs.xml", "device.device", "Q8R60"});
  EXPECT_EQ(Run({"merge", GetParam(), "ours.xml", "theirs.xml", "-o", "out.xml"}),
            (Outcome{1, "", Conflict("out.xml", "device.device: \"\" / Q8R25 / Q8R60\n")}));
}

INSTANTIATE_TEST_SUITE_P(Names, NullDevice, testing::Values("nul", "NUL"));

}  // namespace
