#include <algorithm>
#include <iterator>

#include "tests/kelproj/completion_test.h"

namespace {

using namespace test_support;

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
