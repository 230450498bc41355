#include <cstdlib>
#include <iostream>

#include "testing/test.h"
#include "tests/allocation/failing_allocation.h"
#include "xml/platform.h"

namespace {

using projectdb::xml::InitializeXMLPlatform;
using namespace test_support;

// The first allocation is this library's, for the text of an error.
constexpr long kWithinTheLibrary = 1;

// In a process of its own: what has failed to initialise stays so.
[[noreturn]] void FailAndTryAgain() {
  projectdb::KelProjectDatabase unused;
  const Outcome first = RunWithFailure(
      kWithinTheLibrary, Shortage::kOneAllocation, [](auto&) { InitializeXMLPlatform(); }, unused);
  const std::string second = ErrorOf([] { InitializeXMLPlatform(); });
  std::cerr << (first == Outcome::kOutOfMemory ? "out of memory, then: " : "not as expected: ")
            << second;
  std::exit(0);
}

TEST(OutOfMemory, InitializeXMLPlatform_AfterAFailure_SaysSoInsteadOfCrashing) {
  EXPECT_EXIT(FailAndTryAgain(), testing::ExitedWithCode(0),
              "out of memory, then: Failed to initialize after an earlier failure\n");
}

}  // namespace
