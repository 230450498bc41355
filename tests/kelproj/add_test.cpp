#include "tests/kelproj/add_test.h"

namespace {

using namespace test_support;

TEST_F(Add, Files_StandInTheListOfTheirKindWithWhatIsGiven) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"blinker.xml", "--rtl", "a.v", "b.v", "--hdl-version", "verilog_2001", "--library", "work"},
       "Design files (2)\n  a.v  verilog_2001  work\n  b.v  verilog_2001  work\n"},
      {{"blinker.xml", "--rtl", "a.v"}, "Design files (1)\n  a.v    default\n"},
      {{"blinker.xml", "--sim", "a.v", "--hdl-version", "sv_2017", "--library", "bench"},
       "Simulation files (1)\n  a.v  sv_2017  bench\n"},
      {{"blinker.xml", "--misc", "notes.md"}, "Miscellaneous files (1)\n  notes.md    default\n"},
      {{"blinker.xml", "--sdc", "a.sdc"}, "Timing constraint files (1)\n  a.sdc\n"},
      {{"blinker.xml", "--isf", "a.isf"}, "ISF files (1)\n  a.isf\n"},
      {{"--sdc", "blinker.xml", "a.sdc"}, "Timing constraint files (1)\n  a.sdc\n"}};
  for (auto [arguments, shown] : cases) {
    std::filesystem::remove(PathOf("blinker.xml"));
    MakeProject();
    arguments.insert(arguments.begin(), "add");
    EXPECT_EQ(Run(arguments), Done());
    EXPECT_THAT(Table(), HasSubstr(shown));
  }
}

TEST_F(Add, FilesBehindOthers_KeepTheirOrder) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", "b.v"}), Done());
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", "a.v", "notes.md"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("b.v", "a.v", "notes.md"));
}

TEST_F(Add, FileThatDoesNotExist_IsAddedWithAWarning) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "rtl/c.v"}),
            DoneWithWarning("\"rtl/c.v\" does not exist in " + Directory()));
  EXPECT_EQ(Run({"add", "rtl/../blinker.xml", "--rtl", "rtl/x.v"}),
            DoneWithWarning("\"rtl/x.v\" does not exist in " + Directory()));
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/c.v", "rtl/x.v"));
}

TEST_F(Add, Directory_IsAddedWithAWarningThatItIsOne) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--misc", "rtl"}),
            DoneWithWarning("\"rtl\" is a directory"));
  EXPECT_THAT(Listed("misc.files"), ElementsAre("rtl"));
}

TEST_F(Add, StrictlyWhatIsNoFile_IsRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", "c.v", "--strict"},
                    Refused("\"c.v\" does not exist in " + Directory()));
  ExpectUnchangedBy({"add", "blinker.xml", "--misc", "rtl", "--strict"},
                    Refused("\"rtl\" is a directory"));
  EXPECT_EQ(Run({"add", "../blinker.xml", "--rtl", "c.v", "--strict"}, {PathOf("rtl")}),
            Refused("\"rtl/c.v\" does not exist in " + Directory()));
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "--strict"}), Done());
}

TEST_F(Add, FromAnotherDirectory_NamesAreTakenFromThereAndStoredRelativeToTheProject) {
  EXPECT_EQ(Run({"add", "../blinker.xml", "--rtl", "../a.v", "d.v", "./e.v"}, {PathOf("rtl")}),
            Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/d.v", "rtl/e.v"));
  EXPECT_EQ(Run({"add", PathOf("blinker.xml"), "--rtl", "nowhere.v"}, {Root()}).status, 0);
  EXPECT_THAT(Listed("design.files").back(), EndsWith("../nowhere.v"));
}

TEST_F(Add, AbsoluteName_StaysAbsolute) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", PathOf("a.v")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre(PathOf("a.v")));
}

TEST_F(Add, FileThatTheListHas_IsAddedAgainIfAsked) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v"}), Done());
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "./a.v", "--again"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "a.v"));
}

TEST_F(Add, FileOfAnotherList_IsAddedToThisOneToo) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v"}), Done());
  EXPECT_EQ(Run({"add", "blinker.xml", "--sim", "a.v"}), Done());
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("a.v"));
}

TEST_F(Add, First_StandsBeforeAllOthers) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v"}), Done());
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "b.v", "rtl/d.v", "--first"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("b.v", "rtl/d.v", "a.v"));
}

TEST_F(Add, Before_StandsBeforeThatOne) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "b.v"}), Done());
  EXPECT_EQ(Run({"add", "../blinker.xml", "--rtl", "d.v", "--before", "../b.v"}, {PathOf("rtl")}),
            Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/d.v", "b.v"));
}

TEST_F(Add, BeforeOneThatIsNotInTheList_IsRefused) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--sim", "b.v"}), Done());
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", "--before", "b.v"},
                    Refused("\"b.v\" is not among the design files"));
}

TEST_F(Add, NamesInAList_AreOneOnEachLine) {
  Write("list.txt", "a.v\n\nein Name.v\nb.v");
  Write("ein Name.v", "");
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "--from", "list.txt"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "ein Name.v", "b.v"));
}

TEST_F(Add, BlankLinesAndCarriageReturnsOfAList_AreOfNoName) {
  Write("list.txt", "a.v\r\n\r\n \t\r\n\t\nb.v\r\n");
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "--from", "list.txt", "--strict"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "b.v"));
}

TEST_F(Add, NamesInAListFromStandardInput_StandBehindTheOthers) {
  ProcessSettings settings;
  settings.input = "b.v\nrtl/d.v\n";
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "--from", "-"}, settings), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "b.v", "rtl/d.v"));
}

TEST_F(Add, ListThatIsNotThere_Fails) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "--from", "list.txt"},
                    Failed("list.txt does not exist"));
}

TEST_F(Add, IpInstance_HasSourcesRelativeToTheDirectoryOfItsPath) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "ip/pll/pll.v",
                 "rtl/d.v", PathOf("a.v")}),
            Done());
  EXPECT_EQ(Shown("ip"), nlohmann::json({{{"instance_name", "u_pll"},
                                          {"path", "ip/pll/pll.ip"},
                                          {"files", {"pll.v", "../../rtl/d.v", PathOf("a.v")}}}}));
}

TEST_F(Add, SourcesOfAnIpInstanceThatIsThere_StandBehindItsOwn) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "rtl/d.v"}),
            Done());
  EXPECT_EQ(Run({"add", "../blinker.xml", "--ip", "u_pll", "pll/pll.v"}, {PathOf("ip")}), Done());
  EXPECT_EQ(Shown("ip").at(0).at("files"), nlohmann::json({"../../rtl/d.v", "pll.v"}));
}

TEST_F(Add, IpInstancesOfOnePath_AreKnownByTheirNames) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip"}), Done());
  EXPECT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll_2", "--path", "ip/pll/pll.ip"}), Done());
  EXPECT_THAT(Listed("ip"), ElementsAre("ip/pll/pll.ip", "ip/pll/pll.ip"));
}

TEST_F(Add, IpInstanceOrSourceTwice_IsRefused) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "rtl/d.v"}),
            Done());
  ExpectUnchangedBy({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/other.ip"},
                    Refused("there is an IP instance \"u_pll\" already"));
  ExpectUnchangedBy({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "--again"},
                    Refused("there is an IP instance \"u_pll\" already"));
  ExpectUnchangedBy({"add", "blinker.xml", "--ip", "u_pll", "./rtl/d.v"},
                    Refused("\"../../rtl/d.v\" is among the source files of IP instance "
                            "\"u_pll\" already"));
  ExpectUnchangedBy({"add", "blinker.xml", "--ip", "u_fifo", "a.v"},
                    Refused("there is no IP instance \"u_fifo\"; --path adds one"));
}

TEST_F(Add, RefusedFile_FailsAndLeavesTheProject) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"add", "blinker.xml", "a.v"},
       "one of --rtl, --sim, --misc, --sdc, --isf and --ip is needed"},
      {{"add", "blinker.xml", "--rtl", "a.v", ""}, "the empty text names no file"},
      {{"add", "blinker.xml", "--ip", "", "--path", "ip/pll/pll.ip"},
       "the empty text names no IP instance"},
      {{"add", "blinker.xml", "--misc", "a.v", "--library", "work"},
       "only --rtl and --sim files have an HDL version and a library"},
      {{"add", "blinker.xml", "--sdc", "a.sdc", "notes.md"},
       "constraint.sdc: \"notes.md\" must be named NAME.sdc"},
      {{"add", "blinker.xml", "--sdc", "rtl"}, "\"rtl\" is a directory"},
      {{"set-interface", "blinker.xml", "pins.csv"},
       "constraint.interface: \"pins.csv\" must be named NAME.interface.csv"}};
  for (const auto& [arguments, reason] : cases) ExpectUnchangedBy(arguments, Failed(reason));
}

TEST_F(Add, TwoKindsOrNoPath_IsWrongUse) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "--misc", "a.v"},
                    IsWrongUse("kelproj add", {"--rtl", "--misc"}));
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl"}, IsWrongUse("kelproj add", {"PATH"}));
}

TEST_F(Add, InterfaceConstraint_IsSet) {
  EXPECT_EQ(Run({"set-interface", "blinker.xml", "pins.interface.csv"}), Done());
  EXPECT_EQ(Get("blinker.xml", "constraint.interface"), "pins.interface.csv\n");
}

TEST_F(Add, FileThatTheListHas_IsRefusedByWhateverName) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "rtl/d.v"}), Done());
  for (const std::string& name :
       {std::string("rtl/d.v"), std::string("./rtl/../rtl//d.v"), PathOf("rtl/d.v")}) {
    const Outcome outcome = Run({"add", "blinker.xml", "--rtl", "a.v", name});
    EXPECT_EQ(outcome.status, 1) << name;
    EXPECT_THAT(outcome.err, EndsWith("d.v\" is among the design files already\n"));
  }
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/d.v"));
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", "./a.v"},
                    Refused("\"a.v\" is among the design files already"));
}

}  // namespace
