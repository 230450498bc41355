#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Move : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    std::filesystem::create_directory(PathOf("rtl"));
    for (const char* name : {"a.v", "b.v", "c.v", "rtl/d.v"}) Write(name, "");
    ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "b.v", "c.v", "rtl/d.v"}), Done());
  }
};

TEST_F(Move, File_StandsAtTheGivenPlace) {
  using Words = std::vector<std::string>;
  const std::pair<Words, Words> cases[] = {
      {{"c.v", "--first"}, {"c.v", "a.v", "b.v", "rtl/d.v"}},
      {{"a.v", "--last"}, {"b.v", "c.v", "rtl/d.v", "a.v"}},
      {{"rtl/d.v", "--before", "b.v"}, {"a.v", "rtl/d.v", "b.v", "c.v"}},
      {{"a.v", "--after", "./c.v"}, {"b.v", "c.v", "a.v", "rtl/d.v"}},
      {{"a.v", "--before", "c.v"}, {"b.v", "a.v", "c.v", "rtl/d.v"}},
      {{"rtl/d.v", "--after", "a.v"}, {"a.v", "rtl/d.v", "b.v", "c.v"}}};
  const std::string before = Read("blinker.xml");
  for (auto [arguments, files] : cases) {
    Write("blinker.xml", before);
    arguments.insert(arguments.begin(), {"move", "blinker.xml", "--rtl"});
    EXPECT_EQ(Run(arguments), Done());
    EXPECT_EQ(Listed("design.files"), files);
  }
}

TEST_F(Move, FilesOfEachKind_AreMoved) {
  struct {
    const char *kind, *key;
    std::vector<std::string> files;
  } const cases[] = {{"--sim", "simulation.files", {"a.v", "b.v"}},
                     {"--misc", "misc.files", {"a.v", "b.v"}},
                     {"--sdc", "constraint.sdc", {"a.sdc", "b.sdc"}},
                     {"--isf", "isf.files", {"a.isf", "b.isf"}}};
  for (const auto& [kind, key, files] : cases) {
    ASSERT_EQ(Run({"add", "blinker.xml", kind, files[0], files[1]}).status, 0);
    EXPECT_EQ(Run({"move", "blinker.xml", kind, files[1], "--first"}), Done()) << kind;
    EXPECT_THAT(Listed(key), ElementsAre(files[1], files[0]));
  }
}

TEST_F(Move, IpInstance_IsMovedByItsNameOrPath) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll.ip"}).status, 0);
  ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_fifo", "--path", "ip/fifo.ip"}).status, 0);
  EXPECT_EQ(Run({"move", "blinker.xml", "--ip", "u_fifo", "--before", "u_pll"}), Done());
  EXPECT_THAT(Listed("ip"), ElementsAre("ip/fifo.ip", "ip/pll.ip"));
  EXPECT_EQ(Run({"move", "blinker.xml", "--ip", "ip/fifo.ip", "--after", "ip/pll.ip"}), Done());
  EXPECT_THAT(Listed("ip"), ElementsAre("ip/pll.ip", "ip/fifo.ip"));
}

TEST_F(Move, NamesFromAnotherDirectory_AreThoseOfTheFilesThere) {
  EXPECT_EQ(Run({"move", "../blinker.xml", "--rtl", "d.v", "--before", "../b.v"}, {PathOf("rtl")}),
            Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/d.v", "b.v", "c.v"));
}

TEST_F(Move, NameThatEndsInASlash_MeansAllFilesBelow) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "rtl/e.v", "--first"}).status, 0);
  EXPECT_EQ(Run({"move", "blinker.xml", "--rtl", "rtl/", "--before", "c.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "b.v", "rtl/e.v", "rtl/d.v", "c.v"));
  EXPECT_EQ(Run({"move", "blinker.xml", "--rtl", "a.v", "--after", "rtl/"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("b.v", "rtl/e.v", "rtl/d.v", "a.v", "c.v"));
}

TEST_F(Move, FileThatTheListHasNot_ChangesNothingAndTheAnswerIsNo) {
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "e.v", "--first"},
                    Refused("\"e.v\" is not among the design files"));
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "a.v", "--after", "e.v"},
                    Refused("\"e.v\" is not among the design files"));
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "rtl/f.v"}).status, 0);
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "rtl", "--first"},
                    Refused("\"rtl\" is not among the design files; \"rtl/\" means all files "
                            "below it"));
  ExpectUnchangedBy({"move", "blinker.xml", "--sim", "a.v", "--first"},
                    Refused("\"a.v\" is not among the simulation files"));
}

TEST_F(Move, FileNextToItself_Fails) {
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "a.v", "--before", "./a.v"},
                    Failed("\"a.v\" cannot stand next to itself"));
  EXPECT_EQ(Run({"move", "../blinker.xml", "--rtl", "d.v", "--after", "d.v"}, {PathOf("rtl")}),
            Failed("\"rtl/d.v\" cannot stand next to itself"));
}

TEST_F(Move, WithoutKindOrPlace_Fails) {
  ExpectUnchangedBy({"move", "blinker.xml", "a.v", "--first"},
                    Failed("one of --rtl, --sim, --misc, --sdc, --isf and --ip is needed"));
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "a.v"},
                    Failed("one of --before, --after, --first and --last is needed"));
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "a.v", "--first", "--last"},
                    IsWrongUse("kelproj move", {"--first", "--last"}));
}

TEST_F(Move, FileAtItsPlaceAlready_LeavesTheFile) {
  ExpectUnchangedBy({"move", "blinker.xml", "--rtl", "a.v", "--first"}, Done());
}

}  // namespace
