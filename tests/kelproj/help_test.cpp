#include <variant>

#include <gmock/gmock.h>

#include <projectdb/vocabulary.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::KelprojTest;
using test_support::Outcome;
using test_support::Printed;
using test_support::RunProcess;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kCommands[] = {"new", "show",          "check", "get",       "set",
                                     "add", "set-interface", "diff",  "completion"};

class Help : public KelprojTest {};

TEST_F(Help, Program_ListsEveryCommand) {
  const Outcome outcome = Run({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* command : kCommands) {
    EXPECT_THAT(outcome.out, HasSubstr("\n  " + std::string(command) + " ")) << command;
  }
}

TEST_F(Help, Program_HasAnExample) {
  EXPECT_THAT(Run({"-h"}).out, HasSubstr("\nExample:\n  kelproj new "));
}

TEST_F(Help, Version_IsThatOfTheSoftware) {
  EXPECT_EQ(Run({"--version"}), Printed(KELPROJ_VERSION "\n"));
}

class HelpOfCommand : public KelprojTest, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(, HelpOfCommand, ::testing::ValuesIn(kCommands));

TEST_P(HelpOfCommand, HasItsUsageAndAnExample) {
  const Outcome outcome = Run({GetParam(), "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("\nUsage: kelproj " + std::string(GetParam()) + " "));
  EXPECT_THAT(outcome.out, HasSubstr("\nExample:\n  "));
}

TEST_P(HelpOfCommand, FitsATerminal) {
  std::istringstream lines(Run({GetParam(), "--help"}).out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100u) << line;
}

class HelpOfGet : public KelprojTest {};

TEST_F(HelpOfGet, NamesEveryValueThatAProjectHasOnce) {
  const std::string help = Run({"get", "--help"}).out;
  for (const projectdb::ProjectTerm& term : projectdb::ProjectTerms()) {
    const bool is_text =
        std::holds_alternative<projectdb::Access<projectdb::ProjectContents, std::string>>(
            term.access);
    if (!is_text || term.kind == projectdb::TermKind::kDirectory) continue;
    EXPECT_THAT(help, ContainsRegex("[ \n]" + std::string(term.key) + "[,\n]"));
  }
}

TEST_F(HelpOfGet, NamesEveryProcessAndMap) {
  const std::string help = Run({"get", "--help"}).out;
  for (const auto& process : projectdb::kFlowProcesses) EXPECT_THAT(help, HasSubstr(process.name));
  for (const auto& map : projectdb::kParameterMaps) {
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

class BashCompletion : public KelprojTest {
 protected:
  // What bash offers behind these words, of which the last is not finished.
  std::vector<std::string> Completions(const std::vector<std::string>& words) const {
    Write("completion.bash", Run({"completion", "bash"}).out);
    std::string script = "source completion.bash; COMP_WORDS=(kelproj";
    for (const std::string& word : words) script += " '" + word + "'";
    script += "); COMP_CWORD=" + std::to_string(words.size()) +
              "; _kelproj; printf '%s\\n' \"${COMPREPLY[@]}\"";
    const Outcome outcome = RunInBash(script);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> completions;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) completions.push_back(line);
    return completions;
  }

  Outcome RunInBash(const std::string& script) const {
    return RunProcess({"bash", "--norc", "--noprofile", "-uc", script}, {Directory()});
  }
};

TEST_F(BashCompletion, FirstWord_IsACommand) {
  EXPECT_THAT(Completions({"s"}), ElementsAre("show", "set", "set-interface"));
}

TEST_F(BashCompletion, HyphenBehindACommand_IsAnOptionOfIt) {
  EXPECT_THAT(Completions({"add", "blinker.xml", "--hdl"}), ElementsAre("--hdl-version"));
}

TEST_F(BashCompletion, HyphenBeforeTheCommand_IsAnOptionOfTheProgram) {
  EXPECT_THAT(Completions({"--ver"}), ElementsAre("--version", "--verbose"));
}

TEST_F(BashCompletion, CommandBehindAnOption_IsFound) {
  EXPECT_THAT(Completions({"--verbose", "ch"}), ElementsAre("check"));
}

TEST_F(BashCompletion, SecondWordOfGet_IsAKey) {
  EXPECT_THAT(Completions({"get", "my project.xml", "device."}),
              ElementsAre("device.family", "device.device", "device.timing_model"));
}

TEST_F(BashCompletion, WordBehindType_IsAType) {
  EXPECT_THAT(Completions({"set", "blinker.xml", "name", "x", "--type", "e_b"}),
              ElementsAre("e_bool"));
}

TEST_F(BashCompletion, ProjectFile_IsLeftToTheShell) {
  EXPECT_THAT(Completions({"show", ""}), ElementsAre(""));
}

TEST_F(BashCompletion, Sourced_CompletesTheProgram) {
  Write("completion.bash", Run({"completion", "bash"}).out);
  EXPECT_EQ(RunInBash("source completion.bash; complete -p kelproj").out,
            "complete -o bashdefault -o default -F _kelproj kelproj\n");
}

}  // namespace
