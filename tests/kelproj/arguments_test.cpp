#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::IsWrongUse;
using test_support::KelprojTest;

struct Wrong {
  std::vector<std::string> arguments;
  std::string command;             ///< Whose help is named.
  std::vector<std::string> words;  ///< In the reason, which is the argument parser's.
};

void PrintTo(const Wrong& wrong, std::ostream* out) {
  *out << ::testing::PrintToString(wrong.arguments);
}

class Arguments : public KelprojTest, public ::testing::WithParamInterface<Wrong> {};

TEST_P(Arguments, Wrong_AreTroubleAndNameTheHelp) {
  EXPECT_THAT(Run(GetParam().arguments), IsWrongUse(GetParam().command, GetParam().words));
}

INSTANTIATE_TEST_SUITE_P(
    , Arguments,
    ::testing::Values(
        Wrong{{}, "kelproj", {}},
        Wrong{{"paint"}, "kelproj", {"there is no command or option \"paint\"\n"}},
        Wrong{{""}, "kelproj", {"there is no command or option \"\"\n"}},
        Wrong{{"--paint"}, "kelproj", {"there is no command or option \"--paint\"\n"}},
        Wrong{{"--", "show"}, "kelproj", {"there is no command or option \"show\"\n"}},
        Wrong{{"new"}, "kelproj new", {"NAME"}},
        Wrong{{"new", "blinker"}, "kelproj new", {"--output"}},
        Wrong{{"new", "blinker", "-o"}, "kelproj new", {"--output", "FILE"}},
        Wrong{{"show"}, "kelproj show", {"FILE"}},
        Wrong{{"show", "a.xml", "b.xml"}, "kelproj show", {"b.xml"}},
        Wrong{{"show", "a.xml", "--", "--json"}, "kelproj show", {"--json"}},
        Wrong{{"show", "a.xml", "--yaml"}, "kelproj show", {"--yaml"}},
        Wrong{{"check"}, "kelproj check", {"FILE"}},
        Wrong{{"get", "a.xml"}, "kelproj get", {"KEY"}},
        Wrong{{"set", "a.xml", "name"}, "kelproj set", {"VALUE"}},
        Wrong{{"set-interface", "a.xml"}, "kelproj set-interface", {"PATH"}},
        Wrong{{"diff"}, "kelproj diff", {"FILE"}},
        Wrong{{"completion", "csh"}, "kelproj completion", {"SHELL", "csh", "bash"}}));

}  // namespace
