#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Arguments : public KelprojTest {};

TEST_F(Arguments, Wrong_AreTroubleAndNameTheHelp) {
  struct {
    std::vector<std::string> arguments;
    std::string command;             ///< Whose help is named.
    std::vector<std::string> words;  ///< In the reason, which is the argument parser's.
  } const cases[] = {
      {{}, "kelproj", {}},
      {{"paint"}, "kelproj", {"there is no command or option \"paint\"\n"}},
      {{""}, "kelproj", {"there is no command or option \"\"\n"}},
      {{"--paint"}, "kelproj", {"there is no command or option \"--paint\"\n"}},
      {{"--", "show"}, "kelproj", {"there is no command or option \"show\"\n"}},
      {{"paint", "--help"}, "kelproj", {"there is no command or option \"paint\"\n"}},
      {{"paint", "show"}, "kelproj", {"there is no command or option \"paint\"\n"}},
      {{"help", "paint"}, "kelproj", {"there is no command or option \"paint\"\n"}},
      {{"list", "a.xml", "--rtl=x"}, "kelproj list", {"--rtl", "takes no value\n"}},
      {{"check", "--strict=no", "a.xml"}, "kelproj check", {"--strict", "takes no value\n"}},
      {{"merge", "a", "b", "c", "--ours=c"}, "kelproj merge", {"--ours", "takes no value\n"}},
      {{"--verbose=2", "show", "a.xml"}, "kelproj show", {"--verbose", "takes no value\n"}},
      {{"new"}, "kelproj new", {"NAME"}},
      {{"new", "blinker"}, "kelproj new", {"--output"}},
      {{"new", "blinker", "-o"}, "kelproj new", {"--output", "FILE"}},
      {{"show"}, "kelproj show", {"FILE"}},
      {{"show", "a.xml", "b.xml"}, "kelproj show", {"b.xml"}},
      {{"show", "a.xml", "--", "--json"}, "kelproj show", {"--json"}},
      {{"show", "a.xml", "--yaml"}, "kelproj show", {"--yaml"}},
      {{"check"}, "kelproj check", {"FILE"}},
      {{"get", "a.xml"}, "kelproj get", {"KEY"}},
      {{"set", "a.xml", "name"}, "kelproj set", {"VALUE"}},
      {{"set", "a.xml", "name", "a", "design.tool"}, "kelproj set", {"VALUE"}},
      {{"unset", "a.xml"}, "kelproj unset", {"KEY"}},
      {{"remove", "a.xml"}, "kelproj remove", {"NAME"}},
      {{"rename", "a.xml", "b.v"}, "kelproj rename", {"NEW"}},
      {{"move", "a.xml", "--rtl"}, "kelproj move", {"NAME"}},
      {{"apply"}, "kelproj apply", {"FILE"}},
      {{"format"}, "kelproj format", {"FILE"}},
      {{"set-interface", "a.xml"}, "kelproj set-interface", {"PATH"}},
      {{"diff"}, "kelproj diff", {"FILE"}},
      {{"completion", "csh"}, "kelproj completion", {"SHELL", "csh", "bash"}}};
  for (const auto& [arguments, command, words] : cases) {
    EXPECT_THAT(Run(arguments), IsWrongUse(command, words));
  }
}

TEST_F(Arguments, UnknownCommandOrOption_IsToldWithTheOneThatIsNear) {
  const auto expect_reason = [this](const std::vector<std::string>& arguments,
                                    const std::string& reason) {
    EXPECT_THAT(Run(arguments).err, StartsWith("kelproj: error: " + reason + "\nTry: kelproj"));
  };
  expect_reason({"chekc"}, "there is no command or option \"chekc\"; did you mean \"check\"?");
  expect_reason({"Show"}, "there is no command or option \"Show\"; did you mean \"show\"?");
  expect_reason({"shwo", "set"}, "there is no command or option \"shwo\"; did you mean \"show\"?");
  expect_reason({"-v", "chekc", "a.xml"},
                "there is no command or option \"chekc\"; did you mean \"check\"?");
  expect_reason({"help", "shwo"}, "there is no command or option \"shwo\"; did you mean \"show\"?");
  expect_reason({"--verison"},
                "there is no command or option \"--verison\"; did you mean \"--version\"?");
  expect_reason({"paint"}, "there is no command or option \"paint\"");
  expect_reason({"show", "a.xml", "--jsno"},
                "there is no option \"--jsno\"; did you mean \"--json\"?");
  expect_reason({"show", "a.xml", "--verbos"},
                "there is no option \"--verbos\"; did you mean \"--verbose\"?");
  expect_reason({"set", "a.xml", "--tpye", "e_bool", "name", "x"},
                "there is no option \"--tpye\"; did you mean \"--type\"?");
  expect_reason({"--verson", "get", "a.xml", "name"},
                "there is no option \"--verson\"; did you mean \"--version\"?");
  expect_reason({"show", "--yaml"}, "there is no option \"--yaml\"");
  expect_reason({"new", "blinker", "-o", "a.xml", "--model", "slow"},
                "there is no option \"--model\"; did you mean \"--timing-model\"?");
}

TEST_F(Arguments, EmptyNameOfAFile_NamesNone) {
  MakeProject();
  const std::vector<std::string> cases[] = {
      {"new", "blinker", "-o", ""},
      {"merge", "blinker.xml", "blinker.xml", "blinker.xml", "-o", ""},
      {"merge", "blinker.xml", "blinker.xml", "blinker.xml", "--path", ""},
      {"format", "-", "--path", ""},
      {"git-setup", ""},
      {"git-setup", "--undo", ""}};
  for (const auto& arguments : cases) {
    EXPECT_EQ(Run(arguments), Failed("the empty text names no file")) << arguments.front();
  }
}

TEST_F(Arguments, VersionBehindACommand_IsNoOption) {
  MakeProject();
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", "--version", "verilog_2001"},
                    IsWrongUse("kelproj add", {"there is no option \"--version\"; did you mean "
                                               "\"--hdl-version\"?\n"}));
  ExpectUnchangedBy({"set", "blinker.xml", "name", "x", "--version"},
                    IsWrongUse("kelproj set", {"there is no option \"--version\"\n"}));
  ExpectUnchangedBy({"set", "blinker.xml", "--version", "3"},
                    IsWrongUse("kelproj set", {"\"--version\""}));
}

}  // namespace
