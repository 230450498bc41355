#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class GetOnPosix : public KelprojTest {};

TEST_F(GetOnPosix, FullStandardOutput_Fails) {
  MakeProject();
  EXPECT_EQ(Run({"get", "blinker.xml", "name"}, {".", {}, "/dev/full"}),
            Failed("standard output cannot be written"));
}

}  // namespace
