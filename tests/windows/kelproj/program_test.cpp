#include "platform/other_program.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

TEST(Program, Console_HasItsCodePageAgainAtTheEnd) {
  // Started so, the program has a console of its own.
  const auto answer = kelproj::RunOtherProgram({CODE_PAGE_PROGRAM, KelprojProgram()},
                                               kelproj::ProgramMessages::kDropped);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 437);
}

}  // namespace
