#include "tests/kelproj/completion_test.h"

namespace {

using namespace test_support;

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

}  // namespace
