#include <cstdlib>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "tests/allocation/failing_allocation.h"
#include "xml/platform.h"

namespace {

using projectdb::xml::InitializeXMLPlatform;
using test_support::Outcome;
using test_support::Shortage;

// The first allocation is this library's, for the text of an error.
constexpr long kWithinTheLibrary = 1;

// In a process of its own: what has failed to initialise stays so.
[[noreturn]] void FailAndTryAgain() {
  projectdb::KelProjectDatabase unused;
  const Outcome first = test_support::RunWithFailure(
      kWithinTheLibrary, Shortage::kOneAllocation, [](auto&) { InitializeXMLPlatform(); }, unused);
  std::string second = "no error";
  try {
    InitializeXMLPlatform();
  } catch (const std::runtime_error& error) {
    second = error.what();
  }
  std::cerr << (first == Outcome::kOutOfMemory ? "out of memory, then: " : "not as expected: ")
            << second;
  std::exit(0);
}

TEST(OutOfMemory, InitializeXMLPlatform_AfterAFailure_SaysSoInsteadOfCrashing) {
  EXPECT_EXIT(FailAndTryAgain(), testing::ExitedWithCode(0),
              "out of memory, then: Failed to initialize after an earlier failure\n");
}

}  // namespace
