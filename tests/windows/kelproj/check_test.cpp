#include "tests/kelproj/check_test.h"

namespace {

using namespace test_support;

TEST_F(MovedInstallation, NoSchemaBesideTheProgram_IsLookedForNowhereElse) {
  EXPECT_EQ(RunProcess({Program(), "check", PathOf("mixer.xml")}, {Directory()}),
            Failed("the installed schema is not at " + Schema() + ": --schema names another"));
}

}  // namespace
