#include "tests/kelproj/merge_test.h"

namespace {

using namespace test_support;

TEST_F(MergeTrouble, SideWithNothingInIt_IsNoProject) {
  ExpectTrouble({"base.xml", "/dev/null", "theirs.xml"},
                "/dev/null does not load; nothing is merged");
}

TEST_F(Merge, OutputThatCannotBeWritten_IsTrouble) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  const Permissions read_only(Directory(), 0555);
  EXPECT_EQ(RunUnprivileged({"merge", "base.xml", "ours.xml", "theirs.xml", "-o", "out.xml"}),
            Failed("the directory " + Directory() + " may not be written"));
}

}  // namespace
