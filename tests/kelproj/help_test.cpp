#include <regex>
#include <sstream>
#include <variant>

#include <projectdb/vocabulary.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr const char* kCommands[] = {"new",   "show",          "check", "get",       "list",
                                     "set",   "unset",         "add",   "remove",    "rename",
                                     "move",  "set-interface", "apply", "format",    "diff",
                                     "merge", "git-setup",     "help",  "completion"};

class Help : public KelprojTest {};

TEST_F(Help, Program_ListsEveryCommandWithAnExample) {
  const Outcome outcome = Run({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const std::string command : kCommands) {
    EXPECT_THAT(outcome.out, HasSubstr("\n  " + command + " ")) << command;
  }
  EXPECT_THAT(Run({"-h"}).out, HasSubstr("\nExample:\n  kelproj new "));
}

TEST_F(Help, AsACommand_IsThatOfTheOption) {
  EXPECT_EQ(Run({"help"}), Printed(Run({"--help"}).out));
  for (const std::string command : kCommands) {
    EXPECT_EQ(Run({"help", command}), Printed(Run({command, "--help"}).out));
  }
}

TEST_F(Help, AsACommandWithVerbose_IsTheSame) {
  for (const std::string verbose : {"-v", "--verbose"}) {
    EXPECT_EQ(Run({"help", verbose}), Printed(Run({"--help"}).out));
    EXPECT_EQ(Run({"help", "set", verbose}), Printed(Run({"set", "--help"}).out));
    EXPECT_EQ(Run({"help", verbose, "set"}), Printed(Run({"set", "--help"}).out));
  }
}

TEST_F(Help, AsACommandWithOtherOptions_IsItsOwn) {
  const Outcome own = Printed(Run({"help", "--help"}).out);
  EXPECT_THAT(own.out, StartsWith("Print the help of a command\n"));
  EXPECT_EQ(Run({"help", "-vv", "set"}), own);
  EXPECT_EQ(Run({"help", "--verbose=true"}), own);
}

TEST_F(Help, Version_IsThatOfTheSoftware) {
  EXPECT_EQ(Run({"--version"}), Printed(KELPROJ_VERSION "\n"));
}

TEST_F(Help, EveryCommand_HasItsUsageAndAnExampleAndFitsATerminal) {
  for (const std::string command : kCommands) {
    const Outcome outcome = Run({command, "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("\nUsage: kelproj " + command + " "));
    EXPECT_THAT(outcome.out, HasSubstr("\nExample:\n  "));
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100u) << line;
  }
}

TEST_F(Help, OfGet_NamesEveryValueThatAProjectHasOnce) {
  const std::string help = Run({"get", "--help"}).out;
  for (const ProjectTerm& term : ProjectTerms()) {
    const bool is_text = std::holds_alternative<Access<ProjectContents, std::string>>(term.access);
    if (!is_text || term.kind == TermKind::kDirectory) continue;
    const std::regex word("[ \n]" + std::string(term.key) + "[,\n]");
    EXPECT_TRUE(std::regex_search(help, word)) << term.key;
  }
}

TEST_F(Help, OfGet_NamesEveryProcessAndMap) {
  const std::string help = Run({"get", "--help"}).out;
  for (const auto& process : kFlowProcesses) EXPECT_THAT(help, HasSubstr(process.name));
  for (const auto& map : kParameterMaps) {
    EXPECT_THAT(help, HasSubstr("." + std::string(map.name) + ".NAME "));
  }
}

class ManualPage : public KelprojTest {
 protected:
  void SetUp() override {
    if (RunProcess({"man", "--version"}).status != 0) GTEST_SKIP() << "there is no man";
    Write("kelproj.1", Run({"man"}).out);
  }

  Outcome Rendered() const {
    return RunProcess({"man", "--warnings", "--local-file", PathOf("kelproj.1")},
                      {".", {{"MANWIDTH", "100"}, {"LC_ALL", "C.UTF-8"}}});
  }
};

TEST_F(ManualPage, Rendered_DrawsNoWarning) {
  const Outcome page = Rendered();
  EXPECT_EQ(page.err, "");
  EXPECT_EQ(page.status, 0);
}

TEST_F(ManualPage, Rendered_HasEveryCommand) {
  const std::string page = Rendered().out;
  for (const char* command : kCommands) {
    EXPECT_THAT(page, HasSubstr("\n       kelproj " + std::string(command) + " "));
  }
}

TEST_F(ManualPage, Rendered_KeepsTheExamplesAsTheyAre) {
  EXPECT_THAT(Rendered().out,
              HasSubstr("  kelproj set blinker.xml synthesis.param.keep_hierarchy \"\" --type "
                        "e_noarg\n"));
}

}  // namespace
