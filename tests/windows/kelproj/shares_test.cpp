#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

/// A project with names on a share, which need not be there.
class NamesOnShares : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    Apply(R"({"design": {"files": [{"name": "a.v"}, {"name": "//host/share/b.v"},
                                   {"name": "\\\\host\\share\\c.v"}]},
              "misc": {"files": [{"name": "//host/share/../d.txt"},
                                 {"name": "//host/share/sub/e.txt"}]},
              "ip": [{"instance_name": "u_pll", "path": "//host/share/ip/pll.ip",
                      "files": ["pll.v", "/lib/x.v", "../y.v"]}]})");
  }

  void Apply(const std::string& document) const {
    Write("values.json", document);
    ASSERT_EQ(Run({"apply", "blinker.xml", "values.json"}).status, 0);
  }

  nlohmann::json Sources() const { return Shown("ip").at(0).at("files"); }

  void ExpectNamesOnSharesAsStored() const {
    EXPECT_THAT(Listed("design.files"),
                testing::IsSupersetOf({"//host/share/b.v", "\\\\host\\share\\c.v"}));
    EXPECT_THAT(Listed("misc.files"),
                ElementsAre("//host/share/../d.txt", "//host/share/sub/e.txt"));
    EXPECT_THAT(Listed("ip"), ElementsAre("//host/share/ip/pll.ip"));
    EXPECT_EQ(Sources(), nlohmann::json({"pll.v", "/lib/x.v", "../y.v"}));
  }
};

TEST_F(NamesOnShares, RenameOfAllOnTheDrive_LeavesThem) {
  EXPECT_EQ(Run({"rename", "blinker.xml", Root(), Root()}).status, 0);
  EXPECT_THAT(Listed("design.files"), Contains(PathOf("a.v")));
  ExpectNamesOnSharesAsStored();
  EXPECT_EQ(Run({"rename", "blinker.xml", Root(), Root() + "moved/"}).status, 0);
  ExpectNamesOnSharesAsStored();
}

TEST_F(NamesOnShares, OtherChanges_LeaveThem) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "z.v"}).status, 0);
  EXPECT_EQ(Run({"move", "blinker.xml", "--rtl", "z.v", "--first"}).status, 0);
  EXPECT_EQ(Run({"remove", "blinker.xml", "z.v"}).status, 0);
  EXPECT_EQ(Run({"set", "blinker.xml", "info.owner", "lab"}).status, 0);
  EXPECT_EQ(Run({"format", "blinker.xml"}).status, 0);
  ExpectNamesOnSharesAsStored();
}

TEST_F(NamesOnShares, List_PrintsThemAsStoredAndWhereTheyLead) {
  EXPECT_EQ(Run({"list", "blinker.xml", "--rtl"}),
            Printed("a.v\n//host/share/b.v\n\\\\host\\share\\c.v\n"));
  EXPECT_EQ(Run({"list", "blinker.xml", "--rtl", "--absolute"}),
            Printed(PathOf("a.v") + "\n//host/share/b.v\n//host/share/c.v\n"));
  EXPECT_EQ(Run({"list", "blinker.xml", "--ip", "--absolute"}),
            Printed("//host/share/ip/pll.ip\n//host/share/ip/pll.v\n//host/share/lib/x.v\n"
                    "//host/share/y.v\n"));
}

TEST_F(NamesOnShares, Remove_KnowsThemByTheirNameInEitherSeparators) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "\\\\host\\share\\b.v", "\\\\host\\share\\c.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v"));
  EXPECT_EQ(Run({"remove", "blinker.xml", "//host/share/../d.txt"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("//host/share/sub/e.txt"));
}

TEST_F(NamesOnShares, RemoveOfADirectory_TakesAllBelowAlone) {
  EXPECT_EQ(Run({"remove", "blinker.xml", "//host/share/sub/"}), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("//host/share/../d.txt"));
  EXPECT_EQ(Run({"remove", "blinker.xml", "//host/share/"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v"));
  EXPECT_THAT(Listed("ip"), ElementsAre());
}

TEST_F(NamesOnShares, Rename_TakesThemToADriveAndBack) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "//host/share/", "Q:/share/"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "Q:/share/b.v", "Q:/share/c.v"));
  EXPECT_THAT(Listed("ip"), ElementsAre("Q:/share/ip/pll.ip"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "Q:/share", "\\\\host\\share"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "//host/share/b.v", "//host/share/c.v"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "//host/share/b.v", "b.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "b.v", "//host/share/c.v"));
}

TEST_F(NamesOnShares, RenameOfAnInstance_LeavesItsSourcesTheFilesThatTheyAre) {
  EXPECT_EQ(Run({"rename", "blinker.xml", "//host/share/ip/pll.ip", "//host/share/p/q/pll.ip"}),
            Done());
  EXPECT_EQ(Sources(), nlohmann::json({"../../ip/pll.v", "../../lib/x.v", "../../y.v"}));
  EXPECT_EQ(Run({"rename", "blinker.xml", "//host/share/p/q/pll.ip", "pll.ip"}), Done());
  EXPECT_EQ(Sources(),
            nlohmann::json({"//host/share/ip/pll.v", "//host/share/lib/x.v", "//host/share/y.v"}));
}

TEST_F(NamesOnShares, Add_StoresThemAsGivenAndOnce) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--sim", "\\\\host\\share\\t.v"}),
            DoneWithWarning("\"\\\\host\\share\\t.v\" does not exist"));
  EXPECT_THAT(Listed("simulation.files"), ElementsAre("\\\\host\\share\\t.v"));
  EXPECT_EQ(Run({"add", "blinker.xml", "--sim", "//host/share/x/../t.v"}),
            Refused("\"//host/share/x/../t.v\" is among the simulation files already"));
}

/// A project in a directory that a share leads to.
class ProjectOnAShare : public KelprojTest {
 protected:
  // To the administrators, the system shares each drive.
  std::string OnShare(const std::string& name = "") const {
    std::string path = "//localhost/" + PathOf(name);
    return path.replace(path.find(':'), 1, "$");
  }

  void SetUp() override {
    ASSERT_TRUE(std::filesystem::exists(NativePath(OnShare()))) << OnShare();
    for (const char* directory : {"rtl", "hw"}) {
      std::filesystem::create_directory(NativePath(PathOf(directory)));
    }
    for (const char* name : {"rtl/a.v", "rtl/b.v"}) Write(name, "");
    ASSERT_EQ(Run({"new", "blinker", "-o", OnShare("blinker.xml")}), Done());
  }
};

TEST_F(ProjectOnAShare, Names_AreRelativeToItsDirectory) {
  const std::string file = OnShare("blinker.xml");
  EXPECT_EQ(Run({"add", file, "--rtl", OnShare("rtl/a.v")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre(OnShare("rtl/a.v")));
  EXPECT_EQ(Run({"rename", file, OnShare(), "./"}, {OnShare()}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/a.v"));
  EXPECT_EQ(Run({"rename", file, "rtl/a.v", "rtl/b.v"}, {OnShare()}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/b.v"));
  EXPECT_EQ(Run({"list", file, "--absolute"}), Printed(OnShare("rtl/b.v") + "\n"));
  EXPECT_EQ(Run({"check", file, "--files"}), Done());
}

TEST_F(ProjectOnAShare, NamesFromADirectoryThere_AreThoseOfTheFilesThere) {
  const ProcessSettings here = {OnShare("hw")};
  EXPECT_EQ(Run({"add", "../blinker.xml", "--rtl", "../rtl/a.v"}, here), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/a.v"));
  EXPECT_EQ(Run({"list", "../blinker.xml"}, here), Printed("../rtl/a.v\n"));
  EXPECT_EQ(Run({"check", "../blinker.xml", "--unlisted"}, here).status, 0);
  EXPECT_EQ(Run({"remove", "../blinker.xml", "../rtl/"}, here), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre());
}

TEST_F(ProjectOnAShare, RenameOfAllThere_MakesNamesAbsoluteAndLeavesThoseOnDrives) {
  ASSERT_EQ(Run({"add", OnShare("blinker.xml"), "--rtl", "rtl/a.v"}, {OnShare()}), Done());
  ASSERT_EQ(Run({"add", OnShare("blinker.xml"), "--misc", PathOf("rtl/b.v")}), Done());
  const std::string share = OnShare().substr(0, OnShare().find('$') + 2);
  EXPECT_EQ(Run({"rename", OnShare("blinker.xml"), share, share}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre(OnShare("rtl/a.v")));
  EXPECT_THAT(Listed("misc.files"), ElementsAre(PathOf("rtl/b.v")));
}

TEST_F(ProjectOnAShare, DirectoryThatIsMissing_IsNamed) {
  EXPECT_EQ(Run({"new", "blinker", "-o", OnShare("none/p.xml")}),
            Failed("there is no directory " + OnShare("none")));
}

}  // namespace
