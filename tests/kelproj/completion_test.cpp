#include <sstream>

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
    Write("lamp.xml", R"(<kel:project xmlns:kel="http://schema.kel.example/wdp_proj" name="lamp"
    owner="Ines">
  <kel:design_info>
    <kel:design_file name="my rtl/it's $new.v" version="verilog_2001" library="default"/>
    <kel:design_file name="my rtl/lamp.v" version="sv_2017" library="light"/>
  </kel:design_info>
  <kel:constraint_info><kel:sdc_file name="my clocks.sdc"/></kel:constraint_info>
  <kel:ip_info>
    <kel:ip instance_name="pll" path="ip/pll.ip"><kel:ip_src_file name="pll.v"/></kel:ip>
  </kel:ip_info>
  <kel:synthesis>
    <kel:param name="effort" value="high" value_type="e_string"/>
    <kel:defmacro name="STEP" value="3"/>
  </kel:synthesis>
</kel:project>
)");
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
       {"synthesis.tool", "synthesis.defmacro.STEP", "synthesis.param.effort"}},
      {{"get", "~/lamp.xml", "info."}, {"info.owner"}},
      {{"get", "--", "lamp.xml", "info."}, {"info.owner"}},
      {{"set", "lamp.xml", "synthesis.p"}, {"synthesis.param.effort"}},
      {{"set", "--type", "e_bool", "lamp.xml", "synthesis.p"}, {"synthesis.param.effort"}},
      // The value is free.
      {{"set", "lamp.xml", "synthesis.param.effort", "syn"}, {}},
      // The value of an option.
      {{"set", "lamp.xml", "name", "x", "--type", "e_b"}, {"e_bool"}},
      {{"list", "lamp.xml", "--format", ""}, {"f", "iverilog", "make"}},
      {{"list", "lamp.xml", "--library", ""}, {"default", "light"}},
      {{"list", "lamp.xml", "--hdl-version", "v"}, {"verilog_2001"}},
      {{"completion", ""}, {"bash", "zsh", "fish"}},
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
  EXPECT_EQ(Completions({"rename", "lamp.xml", "--ip", "p"}), Lines({"pll"}));
  EXPECT_EQ(Completions({"move", "lamp.xml", "--rtl", "a.v", "--before", "my rtl/l"}),
            Lines({"my rtl/lamp.v"}));
  EXPECT_EQ(Completions({"remove", "../lamp.xml", "../my"}, "out"),
            Lines({"../my rtl/it's $new.v", "../my rtl/lamp.v", "../my clocks.sdc"}));
}

TEST_F(Completion, FurtherPairsOfSet_HaveTheirKeysInTurns) {
  EXPECT_EQ(Completions({"set", "lamp.xml", "name", "x", "design.top_m"}),
            Lines({"design.top_module"}));
  EXPECT_EQ(Completions({"set", "lamp.xml", "name", "x", "info.owner", "design.top_m"}), Lines());
  EXPECT_EQ(Completions({"unset", "lamp.xml", "name", "info."}), Lines({"info.owner"}));
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

  Lines CompletionsInBash(const std::vector<std::string>& typed) const {
    std::string words;
    for (const std::string& word : typed) words += word + "\n";
    Write("typed", words);
    return InBash(
        "mapfile -t COMP_WORDS < typed; COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
        "_kelproj kelproj; [[ ${#COMPREPLY[@]} == 0 ]] || printf '%s\\n' \"${COMPREPLY[@]}\"");
  }
};

TEST_F(BashCompletion, Sourced_CompletesTheProgramAndOtherwiseFiles) {
  EXPECT_EQ(InBash("complete -p kelproj"),
            Lines({"complete -o bashdefault -o default -F _kelproj kelproj"}));
}

TEST_F(BashCompletion, UnfinishedWord_IsOfferedWhatMayStandThere) {
  EXPECT_EQ(CompletionsInBash({"kelproj", "lis"}), Lines({"list"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "lamp.xml", "synthesis.param."}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "get", "'la'mp\\.xml", "synthesis.param."}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "remove", "lamp.xml", "my\\ rtl/"}),
            Lines({"my\\ rtl/it\\'s\\ \\$new.v", "my\\ rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "remove", "lamp.xml", "\"my rtl/la"}),
            Lines({"my rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInBash({"kelproj", "show", ""}), Lines());
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
  EXPECT_EQ(CompletionsInZsh({"kelproj", "get", "lamp.xml", "synthesis.param."}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "get", "'la'mp\\.xml", "synthesis.param."}),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "list", "lamp.xml", "--library", ""}),
            Lines({"default", "light"}));
  EXPECT_EQ(CompletionsInZsh({"kelproj", "remove", "lamp.xml", "my\\ rtl/"}),
            Lines({"my rtl/it's $new.v", "my rtl/lamp.v"}));
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
  EXPECT_EQ(CompletionsInFish("kelproj get lamp.xml synthesis.param."),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInFish("kelproj get 'la'mp\\.xml synthesis.param."),
            Lines({"synthesis.param.effort"}));
  EXPECT_EQ(CompletionsInFish("kelproj list lamp.xml --library "), Lines({"default", "light"}));
  EXPECT_EQ(CompletionsInFish("kelproj remove lamp.xml my\\ rtl/"),
            Lines({"my rtl/it's $new.v", "my rtl/lamp.v"}));
  EXPECT_EQ(CompletionsInFish("kelproj show lam"), Lines({"lamp.xml"}));
}

}  // namespace
