#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::KelprojTest;
using test_support::WrongArguments;

struct Wrong {
  std::vector<std::string> arguments;
  std::string reason;
  std::string command;
};

void PrintTo(const Wrong& wrong, std::ostream* out) { *out << wrong.reason; }

class Arguments : public KelprojTest, public ::testing::WithParamInterface<Wrong> {};

TEST_P(Arguments, Wrong_AreTroubleAndNameTheHelp) {
  EXPECT_EQ(Run(GetParam().arguments), WrongArguments(GetParam().reason, GetParam().command));
}

INSTANTIATE_TEST_SUITE_P(
    , Arguments,
    ::testing::Values(
        Wrong{{}, "A subcommand is required", "kelproj"},
        Wrong{{"paint"}, "there is no command or option \"paint\"", "kelproj"},
        Wrong{{""}, "there is no command or option \"\"", "kelproj"},
        Wrong{{"--paint"}, "there is no command or option \"--paint\"", "kelproj"},
        Wrong{{"--", "show"}, "there is no command or option \"show\"", "kelproj"},
        Wrong{{"new"}, "NAME is required", "kelproj new"},
        Wrong{{"new", "blinker"}, "--output is required", "kelproj new"},
        Wrong{{"new", "blinker", "-o"}, "--output: 1 required FILE missing", "kelproj new"},
        Wrong{{"show"}, "FILE is required", "kelproj show"},
        Wrong{{"show", "a.xml", "b.xml"},
              "The following argument was not expected: b.xml",
              "kelproj show"},
        Wrong{{"show", "a.xml", "--", "--json"},
              "The following argument was not expected: --json",
              "kelproj show"},
        Wrong{{"show", "a.xml", "--yaml"},
              "The following argument was not expected: --yaml",
              "kelproj show"},
        Wrong{{"check"}, "FILE is required", "kelproj check"},
        Wrong{{"get", "a.xml"}, "KEY is required", "kelproj get"},
        Wrong{{"set", "a.xml", "name"}, "VALUE is required", "kelproj set"},
        Wrong{{"set-interface", "a.xml"}, "PATH is required", "kelproj set-interface"},
        Wrong{{"diff"}, "FILE is required", "kelproj diff"},
        Wrong{{"completion", "csh"}, "SHELL: csh not in {bash}", "kelproj completion"}));

}  // namespace
