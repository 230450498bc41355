#include <algorithm>
#include <iterator>
#include <sstream>

#include "testing/project_loading.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

using Lines = std::vector<std::string>;

Lines LinesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A project whose names need quotes in a shell.
class Completion : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("my rtl"));
    std::filesystem::create_directories(PathOf("out"));
    Write("lamp.xml", ProjectXml(R"(
  <design_info>
    <design_file name="my rtl/it's $new.v" version="verilog_2001" library="default"/>
    <design_file name="my rtl/lamp.v" version="sv_2017" library="light"/>
  </design_info>
  <constraint_info><sdc_file name="my clocks.sdc"/>
    <inter_file name="pins.interface.csv"/></constraint_info>
  <ip_info>
    <ip instance_name="pll" path="ip/pll.ip"><ip_src_file name="pll.v"/></ip>
  </ip_info>
  <synthesis>
    <param name="effort" value="high" value_type="e_string"/>
    <param name="retiming" value="off" value_type="e_bool"/>
    <defmacro name="STEP" value="3"/>
  </synthesis>
)",
                                 R"(owner="Ines" review:round="4"
    xmlns:review="http://schema.kel.example/wdp_proj/prefix/review")"));
  }

  // It may tell something, such as that a file is not there.
  void Change(const std::vector<std::string>& arguments) const {
    const Outcome outcome = Run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }

  // What the program offers behind these words, of which the last is not finished.
  Lines Completions(std::vector<std::string> words, const std::string& directory = "") const {
    words.insert(words.begin(), {"complete", "--"});
    const Outcome outcome = Run(words, {PathOf(directory), {{"HOME", Directory()}}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    return LinesOf(outcome.out);
  }
};

TEST_F(Completion, UnfinishedWord_IsOfferedWhatMayStandThere) {
  using Words = std::vector<std::string>;
  const std::pair<Words, Lines> cases[] = {
      // A command, also behind an option of the program.
      {{"sh"}, {"show"}},
      {{"--verbose", "ch"}, {"check"}},
      // An option of the program, or of the command before it.
      {{"--ver"}, {"--version", "--verbose"}},
      {{"list", "lamp.xml", "--hdl"}, {"--hdl-version"}},
      {{"list", "--hdl"}, {"--hdl-version"}},
      {{"list", "--", "--hdl"}, {}},
      // A key, of any project and of this one.
      {{"get", "lamp.xml", "device."}, {"device.family", "device.device", "device.timing_model"}},
      {{"get", "no.xml", "device.f"}, {"device.family"}},
      {{"get", "no.xml", "synthesis."}, {"synthesis.tool"}},
      {{"get", "lamp.xml", "synthesis."},
       {"synthesis.tool", "synthesis.defmacro.STEP", "synthesis.param.effort",
        "synthesis.param.retiming"}},
      {{"get", "~/lamp.xml", "info."}, {"info.owner", "info.review:round"}},
      {{"get", "--", "lamp.xml", "info.o"}, {"info.owner"}},
      // The stamps can be read alone.
      {{"get", "lamp.xml", "sw"}, {"sw_version"}},
      {{"set", "lamp.xml", "sw"}, {}},
      {{"unset", "lamp.xml", "last"}, {}},
      {{"set", "lamp.xml", "synthesis.param.e"}, {"synthesis.param.effort"}},
      {{"set", "--type", "e_bool", "lamp.xml", "synthesis.param.e"}, {"synthesis.param.effort"}},
      // The value is free, but for a parameter with a type that says otherwise.
      {{"set", "lamp.xml", "synthesis.param.effort", "syn"}, {}},
      {{"set", "lamp.xml", "synthesis.param.retiming", "o"}, {"on", "off"}},
      {{"set", "lamp.xml", "name", "x", "synthesis.param.retiming", "t"}, {"true"}},
      {{"set", "lamp.xml", "synthesis.param.retiming", "--type", "e_bool", "f"}, {"false"}},
      // The value of an option.
      {{"set", "lamp.xml", "name", "x", "--type", "e_b"}, {"e_bool"}},
      {{"list", "lamp.xml", "--format", ""}, {"f", "iverilog", "make"}},
      {{"list", "lamp.xml", "--library", ""}, {"default", "light"}},
      {{"list", "lamp.xml", "--hdl-version", "v"}, {"verilog_2001"}},
      {{"set", "lamp.xml", "name", "x", "--type=e_b"}, {"--type=e_bool"}},
      {{"list", "lamp.xml", "--library="}, {"--library=default", "--library=light"}},
      {{"list", "lamp.xml", "--library=light", "--format="},
       {"--format=f", "--format=iverilog", "--format=make"}},
      {{"list", "lamp.xml", "--rtl="}, {}},
      {{"completion", ""}, {"bash", "zsh", "fish"}},
      {{"help", "s"}, {"set", "set-interface", "show"}},
      // A file, which is left to the shell.
      {{"show", ""}, {}},
      // A command that there is not.
      {{"paint", ""}, {}},
      {{}, {}}};
  for (const auto& [words, offered] : cases) {
    EXPECT_EQ(Completions(words), offered) << testing::PrintToString(words);
  }
}

TEST_F(Completion, NamesOfAProjectsFiles_AreOfferedAsTheUserSeesThem) {
  const Lines rtl = {"my rtl/it's $new.v", "my rtl/lamp.v"};
  EXPECT_EQ(Completions({"remove", "lamp.xml", "my rtl/"}), rtl);
  EXPECT_EQ(Completions({"remove", "lamp.xml", "my clocks.sdc", "my rtl/"}), rtl);
  EXPECT_EQ(Completions({"remove", "lamp.xml", "--rtl", ""}), rtl);
  EXPECT_EQ(Completions({"rename", "lamp.xml", "ip/"}), Lines({"ip/pll.ip", "ip/pll.v"}));
  EXPECT_EQ(Completions({"move", "lamp.xml", "--sdc", ""}), Lines({"my clocks.sdc"}));
  // An IP instance has a name of its own.
  EXPECT_EQ(Completions({"rename", "lamp.xml", "--ip", "p"}), Lines({"pll"}));
  EXPECT_EQ(Completions({"remove", "lamp.xml", "--ip", "p"}), Lines({"pll"}));
  EXPECT_EQ(Completions({"remove", "lamp.xml", "--ip", ""}), Lines({"pll"}));
  EXPECT_EQ(Completions({"move", "lamp.xml", "--ip", ""}), Lines({"pll"}));
  EXPECT_EQ(Completions({"move", "lamp.xml", "--ip", "ip/pll.ip", "--after", "p"}), Lines({"pll"}));
  EXPECT_EQ(Completions({"remove", "lamp.xml", "--sdc", "p"}), Lines());
  EXPECT_EQ(Completions({"move", "lamp.xml", "--rtl", "a.v", "--before", "my rtl/l"}),
            Lines({"my rtl/lamp.v"}));
  EXPECT_EQ(Completions({"remove", "../lamp.xml", "../my"}, "out"),
            Lines({"../my rtl/it's $new.v", "../my rtl/lamp.v", "../my clocks.sdc"}));
}

TEST_F(Completion, InterfaceConstraint_IsOfferedOnlyToBeRenamed) {
  EXPECT_EQ(Completions({"rename", "lamp.xml", "pins"}), Lines({"pins.interface.csv"}));
  EXPECT_EQ(Completions({"remove", "lamp.xml", "pins"}), Lines());
}

TEST_F(Completion, OtherFileOfAMove_IsNotTheOneThatIsMoved) {
  EXPECT_EQ(Completions({"move", "lamp.xml", "--rtl", "my rtl/lamp.v", "--before", ""}),
            Lines({"my rtl/it's $new.v"}));
}

TEST_F(Completion, NeighbourOfAnAddedSource_IsASourceOfItsInstance) {
  Change({"add", "lamp.xml", "--ip", "fifo", "--path", "ip/fifo.ip", "ip/fifo.v"});
  EXPECT_EQ(Completions({"add", "lamp.xml", "--ip", "pll", "x.v", "--before", ""}),
            Lines({"ip/pll.v"}));
  EXPECT_EQ(Completions({"add", "lamp.xml", "--ip=fifo", "x.v", "--before="}),
            Lines({"--before=ip/fifo.v"}));
}

TEST_F(Completion, NeighbourOfAnAddedInstance_IsAnInstance) {
  EXPECT_EQ(Completions({"add", "lamp.xml", "--ip", "rom", "--path", "rom.ip", "--before", ""}),
            Lines({"pll"}));
}

TEST_F(Completion, NameForStandardInput_IsAnyFile) {
  EXPECT_EQ(Completions({"format", "lamp.xml", "-", "--path", ""}), Lines());
}

TEST_F(Completion, FurtherPairsOfSet_HaveTheirKeysInTurns) {
  EXPECT_EQ(Completions({"set", "lamp.xml", "name", "x", "design.top_m"}),
            Lines({"design.top_module"}));
  EXPECT_EQ(Completions({"set", "lamp.xml", "name", "x", "info.owner", "design.top_m"}), Lines());
  EXPECT_EQ(Completions({"unset", "lamp.xml", "name", "info.o"}), Lines({"info.owner"}));
}

TEST_F(Completion, FileThatDoesNotLoad_HasTheKeysOfAnyProject) {
  Write("lamp.xml", "<project>");
  EXPECT_EQ(Completions({"get", "lamp.xml", "synthesis."}), Lines({"synthesis.tool"}));
  std::filesystem::create_directory(PathOf("directory.xml"));
  EXPECT_EQ(Completions({"get", "directory.xml", "synthesis."}), Lines({"synthesis.tool"}));
}

TEST_F(Completion, Complete_IsNotACommandForPeople) {
  EXPECT_EQ(Completions({"comple"}), Lines({"completion"}));
  EXPECT_THAT(Run({"--help"}).out, Not(HasSubstr("\n  complete ")));
}

/// Completes in a shell, which finds the program by its name.
class ShellCompletion : public Completion {
 protected:
  static bool IsThere(const std::string& shell) {
    return RunProcess({shell, "--version"}).status == 0;
  }

  void WriteScript(const std::string& shell) const {
    Write("completion", Run({"completion", shell}).out);
  }

  Lines Offered(std::vector<std::string> command, const std::string& script) const {
    command.push_back(script);
    const std::string programs = std::filesystem::path(KelprojProgram()).parent_path().string();
    const Outcome outcome = RunProcess(
        command, {Directory(), {{"PATH", programs + ":/usr/bin:/bin"}, {"HOME", Directory()}}});
    EXPECT_EQ(outcome.err, "");
    return LinesOf(outcome.out);
  }
};

/// Bash calls the function with the words as they are typed.
class BashCompletion : public ShellCompletion {
 protected:
  void SetUp() override {
    ShellCompletion::SetUp();
    WriteScript("bash");
  }

  Lines InBash(const std::string& script) const {
    return Offered({"bash", "--norc", "--noprofile", "-uc"}, "source completion; " + script);
  }

  // At the end of a line of these words, with a blank between any two. A word may be in the pieces
  // in which bash gives it, with a line break between any two.
  Lines CompletionsInBash(const std::vector<std::string>& typed) const {
    std::string line;
    std::string words;
    for (const std::string& word : typed) {
      words += word + "\n";
      line += line.empty() ? "" : " ";
      std::remove_copy(word.begin(), word.end(), std::back_inserter(line), '\n');
    }
    Write("typed", words);
    Write("line", line);
    return InBash(
        "mapfile -t COMP_WORDS < typed; COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
        "COMP_LINE=$(<line); COMP_POINT=${#COMP_LINE}; "
        "_kelproj kelproj; [[ ${#COMPREPLY[@]} == 0 ]] || printf '%s\\n' \"${COMPREPLY[@]}\"");
  }
};

TEST_F(BashCompletion, Sourced_CompletesTheProgramAndOtherwiseFiles) {
  EXPECT_EQ(InBash("complete -p kelproj"),
            Lines({"complete -o bashdefault -o default -F _kelproj kelproj"}));
}

TEST_F(BashCompletion, UnfinishedWord_IsOfferedWhatMayStandThere) {
  EXPECT_EQ(CompletionsInBash({"kelproj", "lis"}), Lines({"list"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "synthesis.param.e"}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "'la'mp\\.xml", "synthesis.param.e"}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "remove", "lamp.xml", "my\\ rtl/"}),
            Lines({"my\\ rtl/it\\'s\\ \\$new.v", "my\\ rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "remove", "lamp.xml", "\"my rtl/la"}),
            Lines({"my rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "show", ""}), Lines());
}

TEST_F(BashCompletion, WordThatBashGivesInPieces_IsOfferedWhatStandsBehindTheLastOne) {
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "info.rev"}),
            Lines({"info.review:round"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "info.review\n:"}), Lines({"round"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "info.review\n:\nr"}),
            Lines({"round"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "'info.review:r"}),
            Lines({"info.review:round"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "list", "lamp.xml", "--library\n=\nl"}),
            Lines({"light"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "list", "lamp.xml", "--library\n=\nlight", "--sd"}),
            Lines({"--sdc"}));
}

class ZshCompletion : public ShellCompletion {
 protected:
  void SetUp() override {
    ShellCompletion::SetUp();
    if (!IsThere("zsh")) GTEST_SKIP() << "there is no zsh";
    WriteScript("zsh");
  }

  // With functions of ours in place of those that only a terminal has.
  Lines CompletionsInZsh(const std::vector<std::string>& typed) const {
    std::string lines;
    for (const std::string& word : typed) lines += word + "\n";
    Write("typed", lines);
    return Offered({"zsh", "-f", "-c"},
                   "compadd() { shift; printf '%s\\n' \"$@\" }; _files() { echo FILES }; "
                   "compdef() { [[ $* == '_kelproj kelproj' ]] || echo \"compdef $*\" }; "
                   "source ./completion; words=(\"${(@f)$(<typed)}\"); "
                   "[[ $(tail -c 2 typed | wc -l) == 2 ]] && words+=(''); "
                   "CURRENT=${#words}; PREFIX=$words[-1]; _kelproj");
  }
};

TEST_F(ZshCompletion, UnfinishedWord_IsOfferedWhatMayStandThere) {
  EXPECT_EQ(CompletionsInZsh({"kelproj", "lis"}), Lines({"list"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "get", "lamp.xml", "synthesis.param.e"}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "get", "'la'mp\\.xml", "synthesis.param.e"}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "list", "lamp.xml", "--library", ""}),
            Lines({"default", "light"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "remove", "lamp.xml", "my\\ rtl/"}),
            Lines({"my rtl/it's $new.v", "my rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "get", "lamp.xml", "info.review:r"}),
            Lines({"info.review:round"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "list", "lamp.xml", "--library=l"}),
            Lines({"--library=light"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "show", ""}), Lines({"FILES"}));
}

class FishCompletion : public ShellCompletion {
 protected:
  void SetUp() override {
    ShellCompletion::SetUp();
    if (!IsThere("fish")) GTEST_SKIP() << "there is no fish";
    WriteScript("fish");
  }

  Lines CompletionsInFish(const std::string& line) const {
    Write("line", line);
    return Offered({"fish", "--no-config", "-c"},
                   "source completion; complete --do-complete=(cat line | string collect)");
  }
};

TEST_F(FishCompletion, UnfinishedWord_IsOfferedWhatMayStandThere) {
  EXPECT_EQ(CompletionsInFish("kelproj lis"), Lines({"list"}));
  EXPECT_EQ(CompletionsInFish("kelproj get lamp.xml synthesis.param.e"),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInFish("kelproj get 'la'mp\\.xml synthesis.param.e"),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInFish("kelproj list lamp.xml --library "), Lines({"default", "light"}));
  EXPECT_EQ(CompletionsInFish("kelproj remove lamp.xml my\\ rtl/"),
            Lines({"my rtl/it's $new.v", "my rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInFish("kelproj get lamp.xml info.review:r"), Lines({"info.review:round"}));
  EXPECT_EQ(CompletionsInFish("kelproj list lamp.xml --library=l"), Lines({"--library=light"}));
  EXPECT_EQ(CompletionsInFish("kelproj show lam"), Lines({"lamp.xml"}));
}

}  // namespace
