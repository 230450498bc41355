#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Rename : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    for (const char* directory : {"rtl/old/deep", "rtl/older", "ip/pll"}) {
      std::filesystem::create_directories(PathOf(directory));
    }
    for (const char* name : {"top.v", "rtl/old/a.v", "rtl/old/deep/b.v", "rtl/older/c.v",
                             "clocks.sdc", "pins.interface.csv", "ip/pll/pll.ip", "ip/pll/pll.v"}) {
      Write(name, "");
    }
    ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "top.v", "rtl/old/a.v", "rtl/old/deep/b.v",
                   "rtl/older/c.v"}),
              Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--sim", "rtl/old/a.v"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--sdc", "clocks.sdc"}), Done());
    ASSERT_EQ(Run({"set-interface", "blinker.xml", "pins.interface.csv"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "ip/pll/pll.v",
                   "rtl/old/a.v"}),
              Done());
  }

  nlohmann::json Sources() const { return Shown("ip").at(0).at("files"); }
};

TEST_F(Rename, File_HasTheNewNameInEveryListThatHasIt) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "rtl/old/a.v", "rtl/first.v"}), Done());
  EXPECT_THAT(Listed("design.files"),
              ElementsAre("top.v", "rtl/first.v", "rtl/old/deep/b.v", "rtl/older/c.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("rtl/first.v"));
  EXPECT_EQ(Sources(), nlohmann::json({"pll.v", "../../rtl/first.v"}));
}

TEST_F(Rename, NameThatAListHasAlready_IsRefused) {
  const std::string former = Read("blinker.xml");
  EXPECT_EQ(Run({"rename", "blinker.xml", "rtl/old/a.v", "./top.v"}),
            Refused("\"top.v\" is among the design files already"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "rtl/old/a.v", "ip/pll/pll.v"}),
            Refused("\"ip/pll/pll.v\" is among the source files of IP instance \"u_pll\" already"));
  EXPECT_EQ(Read("blinker.xml"), former);
}

TEST_F(Rename, FileThatAListHasTwice_IsRenamedTwice) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "top.v", "--again"}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", "top.v", "chip.v"}), Done());
  EXPECT_THAT(Listed("design.files"),
              ElementsAre("chip.v", "rtl/old/a.v", "rtl/old/deep/b.v", "rtl/older/c.v", "chip.v"));
}

TEST_F(Rename, Constraints_AreRenamed) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "clocks.sdc", "timing.sdc"}), Done());
  EXPECT_THAT(Listed("constraint.sdc"), ElementsAre("timing.sdc"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "pins.interface.csv", "io/b.interface.csv"}), Done());
  EXPECT_EQ(Get("blinker.xml", "constraint.interface"), "io/b.interface.csv\n");
}

TEST_F(Rename, Directory_IsThatOfAllFilesBelow) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "rtl/old/", "rtl/new/"}), Done());
  EXPECT_THAT(Listed("design.files"),
              ElementsAre("top.v", "rtl/new/a.v", "rtl/new/deep/b.v", "rtl/older/c.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("rtl/new/a.v"));
  EXPECT_EQ(Sources(), nlohmann::json({"pll.v", "../../rtl/new/a.v"}));
}

TEST_F(Rename, DirectoryWithoutSlashOrThatIsGone_IsKnownByItsFiles) {
  std::filesystem::remove_all(PathOf("rtl"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "rtl/old", "src"}), Done());
  EXPECT_THAT(Listed("design.files"),
              ElementsAre("top.v", "src/a.v", "src/deep/b.v", "rtl/older/c.v"));
}

TEST_F(Rename, DirectoryOfAnIpInstance_TakesItsSourcesAlong) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "ip/", "cores/vendor/"}), Done());
  EXPECT_THAT(Listed("ip"), ElementsAre("cores/vendor/pll/pll.ip"));
  EXPECT_EQ(Sources(), nlohmann::json({"pll.v", "../../../rtl/old/a.v"}));
}

TEST_F(Rename, PathOfAnIpInstance_LeavesItsSourcesTheFilesThatTheyAre) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "ip/pll/pll.ip", "pll.ip"}), Done());
  EXPECT_THAT(Listed("ip"), ElementsAre("pll.ip"));
  EXPECT_EQ(Sources(), nlohmann::json({"ip/pll/pll.v", "rtl/old/a.v"}));
}

TEST_F(Rename, NamesFromAnotherDirectory_AreThoseOfTheFilesThere) {
  EXPECT_EQ(Run({"rename", "../../blinker.xml", "a.v", "../z.v"}, {PathOf("rtl/old")}), Done());
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("rtl/z.v"));
}

TEST_F(Rename, StoredNameFromAnotherDirectory_IsKnownAndTheNewOneIsTakenFromThere) {
  EXPECT_EQ(Run({"rename", "../blinker.xml", "rtl/old/a.v", "../rtl/z.v"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("rtl/z.v"));
  EXPECT_EQ(Run({"rename", "../blinker.xml", "rtl/", "src/"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("ip/src/z.v"));
}

TEST_F(Rename, IpInstance_HasTheNewName) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "--ip", "u_pll", "u_main"}), Done());
  EXPECT_EQ(Shown("ip").at(0).at("instance_name"), "u_main");
  EXPECT_THAT(Listed("ip"), ElementsAre("ip/pll/pll.ip"));
}

TEST_F(Rename, IpInstanceThatIsNotThereOrNameOfAnotherOne_IsRefused) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_fifo", "--path", "ip/pll/pll.ip"}), Done());
  ExpectUnchangedBy({"rename", "blinker.xml", "--ip", "u_pll", "u_fifo"},
                    Refused("there is an IP instance \"u_fifo\" already"));
  ExpectUnchangedBy({"rename", "blinker.xml", "--ip", "ip/pll/pll.ip", "u_main"},
                    Refused("\"ip/pll/pll.ip\" is not among the IP instances"));
  ExpectUnchangedBy({"rename", "blinker.xml", "--ip", "u_pll", ""},
                    Failed("the empty text names no IP instance"));
}

TEST_F(Rename, AbsoluteName_StaysAbsoluteAndBecomesSoIfItIsGivenSo) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", PathOf("top.v")}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", "top.v", "main.v"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre(PathOf("main.v")));
  EXPECT_THAT(Listed("design.files"), Contains("main.v"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "main.v", Root() + "cores/main.v"}), Done());
  EXPECT_THAT(Listed("design.files"), Contains(Root() + "cores/main.v"));
}

TEST_F(Rename, AbsoluteNameGivenARelativeOne_BecomesRelative) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", PathOf("top.v"), PathOf("rtl/old/a.v")}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", PathOf("top.v"), "top.v"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("top.v", PathOf("rtl/old/a.v")));
  EXPECT_EQ(Run({"rename", "../blinker.xml", PathOf(""), "../"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("top.v", "rtl/old/a.v"));
  EXPECT_EQ(Sources(), nlohmann::json({"pll.v", "../../rtl/old/a.v"}));
}

TEST_F(Rename, NameThatStays_IsNotJudged) {
  Write("constraints.json", R"({"constraint": {"sdc": ["c.tcl"]}})");
  ASSERT_EQ(Run({"apply", "blinker.xml", "constraints.json"}).status, 0);
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", PathOf("top.v")}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", PathOf(""), "./"}).status, 0);
  EXPECT_THAT(Listed("misc.files"), ElementsAre("top.v"));
  EXPECT_THAT(Listed("constraint.sdc"), ElementsAre("c.tcl"));
}

TEST_F(Rename, WrongEndingThatStays_IsNotJudged) {
  std::filesystem::create_directory(PathOf("hw"));
  Write("constraints.json", R"({"constraint": {"sdc": ["con/c.tcl", "./x.xdc", "pins.sdc"]}})");
  ASSERT_EQ(Run({"apply", "blinker.xml", "constraints.json"}).status, 0);
  EXPECT_EQ(Run({"rename", "blinker.xml", "con/", "tim/"}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", "x.xdc", "y.xdc"}), Done());
  EXPECT_THAT(Listed("constraint.sdc"), ElementsAre("tim/c.tcl", "y.xdc", "pins.sdc"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "./", PathOf("")}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", PathOf(""), "./"}), Done());
  EXPECT_EQ(Run({"rename", "blinker.xml", "./", "hw/"}), Done());
  EXPECT_THAT(Listed("constraint.sdc"), ElementsAre("hw/tim/c.tcl", "hw/y.xdc", "hw/pins.sdc"));
}

TEST_F(Rename, WrongEndingThatIsNew_IsRefused) {
  Write("constraints.json",
        R"({"constraint": {"sdc": ["c.tcl"], "interface": "pins.interface.csv"}})");
  ASSERT_EQ(Run({"apply", "blinker.xml", "constraints.json"}).status, 0);
  ExpectUnchangedBy({"rename", "blinker.xml", "c.tcl", "c.xdc"},
                    Failed("constraint.sdc: \"c.xdc\" must be named NAME.sdc"));
  // What it ends in otherwise is not the ending that counts.
  ExpectUnchangedBy({"rename", "blinker.xml", "pins.interface.csv", "pins.csv"},
                    Failed("constraint.interface: \"pins.csv\" must be named NAME.interface.csv"));
}

TEST_F(Rename, ByAbsoluteNames_KeepsAllFilesOfAProjectFileThatMoves) {
  for (const char* directory : {"proj/hw", "proj/rtl", "shared"}) {
    std::filesystem::create_directories(PathOf(directory));
  }
  const std::vector<std::string> files = {"shared/s.v", "proj/rtl/a.v", "proj/hw/b.v"};
  for (const std::string& file : files) Write(file, "");
  MakeProject("proj/dune.xml");
  std::vector<std::string> addition = {"add", "proj/dune.xml", "--rtl"};
  addition.insert(addition.end(), files.begin(), files.end());
  ASSERT_EQ(Run(addition), Done());
  ASSERT_EQ(Run({"add", "proj/dune.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "top.v"}),
            Done());
  EXPECT_EQ(Run({"rename", "proj/dune.xml", Root(), Root()}), Done());
  std::filesystem::rename(PathOf("proj/dune.xml"), PathOf("proj/hw/dune.xml"));
  EXPECT_EQ(Run({"rename", "proj/hw/dune.xml", PathOf(""), "./"}), Done());
  EXPECT_EQ(Run({"list", "proj/hw/dune.xml"}),
            Printed("shared/s.v\nproj/rtl/a.v\nproj/hw/b.v\nip/pll/pll.ip\ntop.v\n"));
  EXPECT_EQ(Run({"list", "proj/hw/dune.xml", "--rtl", "--stored"}),
            Printed("../../shared/s.v\n../rtl/a.v\nb.v\n"));
}

TEST_F(Rename, RootWithoutADrive_IsThatOfWhereTheUserStands) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "/", "/"}), Done());
  EXPECT_THAT(Listed("constraint.sdc"), ElementsAre(PathOf("clocks.sdc")));
  EXPECT_EQ(Sources(), nlohmann::json({PathOf("ip/pll/pll.v"), PathOf("rtl/old/a.v")}));
  EXPECT_EQ(Run({"rename", "blinker.xml", "/", "/moved/"}), Done());
  EXPECT_THAT(Listed("constraint.sdc"),
              ElementsAre(Root() + "moved" + PathOf("clocks.sdc").substr(Root().size() - 1)));
}

TEST_F(Rename, OneThatIsInNoList_ChangesNothingAndTheAnswerIsNo) {
  ExpectUnchangedBy({"rename", "blinker.xml", "rtl/ol", "rtl/new"},
                    Refused("\"rtl/ol\" is in no list of the project"));
  ExpectUnchangedBy({"rename", "blinker.xml", "u_pll", "u_main"},
                    Refused("\"u_pll\" is in no list of the project; --ip renames the IP instance "
                            "of that name"));
  ExpectUnchangedBy({"rename", "blinker.xml", "top.v/", "main/"},
                    Refused("\"top.v/\" is in no list of the project"));
}

TEST_F(Rename, NameThatTheListCannotHave_Fails) {
  ExpectUnchangedBy({"rename", "blinker.xml", "clocks.sdc", "clocks.txt"},
                    Failed("constraint.sdc: \"clocks.txt\" must be named NAME.sdc"));
  ExpectUnchangedBy({"rename", "blinker.xml", "top.v", "rtl/"},
                    Failed("\"top.v\" is a file, but \"rtl/\" is a directory"));
  ExpectUnchangedBy({"rename", "blinker.xml", "rtl/old/a.v", "rtl"},
                    Failed("\"rtl/old/a.v\" is a file, but \"rtl\" is a directory"));
  for (const char* const file : {"top.v", "top.v/"}) {
    ExpectUnchangedBy({"rename", "blinker.xml", "rtl/", file},
                      Failed("\"top.v\" is a file, not a directory"));
  }
  ExpectUnchangedBy({"rename", "blinker.xml", "top.v", ""}, Failed("the empty text names no file"));
}

}  // namespace
