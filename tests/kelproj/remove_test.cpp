#include "tests/kelproj/remove_test.h"

namespace {

using namespace test_support;

TEST_F(Remove, File_IsInNoListAnyMore) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "rtl/b.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("a.v"));
  EXPECT_EQ(Shown("ip").at(0).at("files"), nlohmann::json({"pll.v"}));
}

TEST_F(Remove, NameOfNoFile_MeansNoEntryWithoutAFile) {
  Write("instances.json", R"({"ip": [{"instance_name": "u_soft", "path": "", "files": [""]}]})");
  ASSERT_EQ(Run({"apply", "blinker.xml", "instances.json"}).status, 0);
  EXPECT_EQ(Run({"remove", "blinker.xml", ""}), Failed("the empty text names no file"));
  EXPECT_EQ(Run({"remove", "blinker.xml", "."}).status, 1);
  EXPECT_EQ(Shown("ip").size(), 1U);
}

TEST_F(Remove, FileOfOneKind_StaysInTheOtherLists) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "--sim", "rtl/b.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v", "rtl/b.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("a.v"));
  EXPECT_EQ(Shown("ip").at(0).at("files"), nlohmann::json({"pll.v", "../../rtl/b.v"}));
}

TEST_F(Remove, FileOfEachKind_LeavesItsList) {
  const std::array<std::string, 3> cases[] = {
      {"--rtl", "a.v", "design.files"},     {"--sim", "a.v", "simulation.files"},
      {"--misc", "notes.md", "misc.files"}, {"--sdc", "clocks.sdc", "constraint.sdc"},
      {"--isf", "floor.isf", "isf.files"},  {"--ip", "ip/pll/pll.ip", "ip"}};
  for (const auto& [kind, name, list] : cases) {
    ASSERT_THAT(Listed(list), Contains(name));
    EXPECT_EQ(Run({"remove", "blinker.xml", kind, name}), Done());
    EXPECT_THAT(Listed(list), Not(Contains(name)));
  }
}

TEST_F(Remove, AbsoluteStoredName_IsMeantByTheRelativeOne) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", PathOf("a.v")}), Done());
  EXPECT_EQ(Run({"remove", "blinker.xml", "--misc", "a.v"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("notes.md"));
}

TEST_F(Remove, NameFromAnotherDirectory_IsThatOfTheFileThere) {
  EXPECT_EQ(Run({"remove", "../blinker.xml", "a.v"}, {PathOf("rtl")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/b.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("rtl/b.v", "a.v"));
}

TEST_F(Remove, StoredNameFromAnotherDirectory_IsKnown) {
  EXPECT_EQ(Run({"remove", "../blinker.xml", "rtl/b.v"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
  EXPECT_EQ(Run({"remove", "../blinker.xml", "rtl/"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v"));
}

TEST_F(Remove, NameThatEndsInASlash_MeansAllFilesBelow) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "rtl/"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("a.v"));
  EXPECT_EQ(Shown("ip").at(0).at("files"), nlohmann::json({"pll.v"}));
  EXPECT_EQ(Run({"remove", "../blinker.xml", "pll/"}, {PathOf("ip")}), Done());
  EXPECT_THAT(Listed("ip"), IsEmpty());
  EXPECT_EQ(Run({"remove", "blinker.xml", "--sim", PathOf("")}), Done());
  EXPECT_THAT(Listed("simulation.files"), IsEmpty());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v"));
}

TEST_F(Remove, DirectoryWithNoFileBelow_ChangesNothingAndTheAnswerIsNo) {
  std::filesystem::create_directory(PathOf("rt"));
  ExpectUnchangedBy({"remove", "blinker.xml", "a.v", "rt/"},
                    Refused("\"rt/\" is in no list of the project"));
  ExpectUnchangedBy({"remove", "blinker.xml", "--misc", "rtl/"},
                    Refused("\"rtl/\" is not among the miscellaneous files"));
  ExpectUnchangedBy({"remove", "blinker.xml", "a.v/"},
                    Refused("\"a.v/\" is in no list of the project"));
  ExpectUnchangedBy({"remove", "blinker.xml", "rtl"},
                    Refused("\"rtl\" is in no list of the project; \"rtl/\" means all files "
                            "below it"));
  ExpectUnchangedBy({"remove", "blinker.xml", "--misc", "rtl"},
                    Refused("\"rtl\" is not among the miscellaneous files"));
}

TEST_F(Remove, IpInstance_IsMeantByItsNameToo) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "u_pll"}), Done());
  EXPECT_EQ(Shown("ip"), nlohmann::json::array());
}

TEST_F(Remove, Several_AreAllRemoved) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "rtl/a.v", "notes.md"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/b.v"));
  EXPECT_THAT(Listed("misc.files"), IsEmpty());
}

TEST_F(Remove, OneThatIsInNoList_ChangesNothingAndTheAnswerIsNo) {
  ExpectUnchangedBy({"remove", "blinker.xml", "a.v", "rtl/c.v"},
                    Refused("\"rtl/c.v\" is in no list of the project"));
  ExpectUnchangedBy({"remove", "blinker.xml", "--rtl", "a.v", "notes.md"},
                    Refused("\"notes.md\" is not among the design files"));
  ExpectUnchangedBy({"remove", "blinker.xml", "--ip", "u_fifo"},
                    Refused("\"u_fifo\" is not among the IP instances"));
}

TEST_F(Remove, FileThatIsGoneFromDisk_IsRemoved) {
  std::filesystem::remove_all(PathOf("rtl"));
  EXPECT_EQ(Run({"remove", "blinker.xml", "rtl/b.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
}

TEST_F(Remove, OtherSpellingOfAName_MeansTheSameFile) {
  for (const std::string& name : {std::string("./rtl//../rtl/b.v"), PathOf("rtl/b.v")}) {
    const std::string before = Read("blinker.xml");
    EXPECT_EQ(Run({"remove", "blinker.xml", name}), Done()) << name;
    EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
    Write("blinker.xml", before);
  }
}

}  // namespace
