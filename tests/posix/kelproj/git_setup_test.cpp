#include <numeric>
#include <set>
#include <sstream>

#include "testing/file_state.h"
#include "tests/posix/kelproj/git_test.h"

namespace {

using namespace test_support;

const char kAttributes[] = " diff=kelproj merge=kelproj filter=kelproj\n";

class GitSetup : public GitTest {
 protected:
  void SetUp() override {
    GitTest::SetUp();
    if (!IsSkipped()) MakeProject();
  }

  std::string Configured(const std::string& key, const std::string& scope = "--local") const {
    return RunGit({"config", scope, "--get-all", key}).out;
  }

  // Whether git would merge the file as a project.
  bool IsMergedAsAProject(const std::string& file) const {
    return RunGit({"-c", "core.quotePath=false", "check-attr", "-z", "merge", "--", file}).out ==
           file + std::string("\0merge\0kelproj\0", 15);
  }
};

TEST_F(GitSetup, File_IsGivenTheThreeDriversByThePlaceOfTheProgram) {
  EXPECT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), std::string("/blinker.xml") + kAttributes);
  const std::string program = "'" + KelprojProgram() + "'";
  EXPECT_EQ(Configured("diff.kelproj.command"), program + " diff --\n");
  EXPECT_EQ(Configured("merge.kelproj.driver"), program + " merge %O %A %B -o %A --path=%P\n");
  EXPECT_EQ(Configured("filter.kelproj.clean"), program + " format --no-stamps - --path=%f\n");
}

TEST_F(GitSetup, Twice_ChangesNothing) {
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  const FileState attributes(PathOf(".gitattributes"));
  const FileState configuration(PathOf(".git/config"));
  EXPECT_EQ(RunHere({"git-setup", "blinker.xml", "./blinker.xml"}), Done());
  EXPECT_EQ(FileState(PathOf(".gitattributes")), attributes);
  EXPECT_EQ(FileState(PathOf(".git/config")), configuration);
}

TEST_F(GitSetup, ProgramThatHasMoved_TakesThePlaceOfTheFormerOne) {
  Succeed({"config", "diff.kelproj.command", "'/opt/old place/kelproj' diff"});
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Configured("diff.kelproj.command"), "'" + KelprojProgram() + "' diff --\n");
}

TEST_F(GitSetup, DriverOfAnOlderSetup_IsBroughtUpToDate) {
  const std::string program = "'" + KelprojProgram() + "'";
  Succeed({"config", "filter.kelproj.clean", program + " format --no-stamps -"});
  Succeed({"config", "diff.kelproj.command", program + " diff"});
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Configured("diff.kelproj.command"), program + " diff --\n");
  EXPECT_EQ(Configured("filter.kelproj.clean"), program + " format --no-stamps - --path=%f\n");
}

TEST_F(GitSetup, Undo_TakesItBack) {
  const std::string configuration = Read(".git/config");
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  for (int times = 0; times < 2; ++times) {
    EXPECT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
    EXPECT_EQ(Read(".git/config"), configuration);
    EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml"));
  }
}

TEST_F(GitSetup, OtherAttributes_StayWhenOneIsAddedAndTakenBack) {
  const std::string others = "*.v text\n# blinker.xml is the project\n";
  Write(".gitattributes", others);
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), others + "/blinker.xml" + kAttributes);
  ASSERT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), others);
}

TEST_F(GitSetup, LastLineWithoutAnEnd_GetsOne) {
  Write(".gitattributes", "*.v text");
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), std::string("*.v text\n/blinker.xml") + kAttributes);
}

TEST_F(GitSetup, EndsOfLinesInOtherAttributes_StayAsTheyAre) {
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  Write(".gitattributes",
        "*.v text\r\n/blinker.xml diff=kelproj merge=kelproj filter=kelproj\r\n*.sv text");
  const std::string attributes = Read(".gitattributes");
  EXPECT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), attributes);
  EXPECT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), "*.v text\r\n*.sv text");
}

TEST_F(GitSetup, Attributes_AreReplacedAsAWholeAndKeepTheirPermissions) {
  Write(".gitattributes", "*.v text\n");
  std::filesystem::permissions(PathOf(".gitattributes"), std::filesystem::perms(0664));
  std::filesystem::create_hard_link(PathOf(".gitattributes"), PathOf("former"));
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read("former"), "*.v text\n");
  EXPECT_EQ(std::filesystem::status(PathOf(".gitattributes")).permissions(),
            std::filesystem::perms(0664));
  EXPECT_THAT(Names(), ElementsAre(".git", ".gitattributes", "blinker.xml", "former"));
}

TEST_F(GitSetup, FileBesideTheAttributes_IsNobodysTemporaryOne) {
  Write(".gitattributes.kelproj", "precious");
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes.kelproj"), "precious");
}

TEST_F(GitSetup, AttributesThatAreALink_StayOneWithAWarning) {
  std::filesystem::create_directory(PathOf("shared"));
  std::filesystem::create_symlink("shared/attributes", PathOf(".gitattributes"));
  const std::string link = std::filesystem::canonical(Directory()).string() + "/.gitattributes";
  // What the link leads to need not be there.
  EXPECT_EQ(RunHere({"git-setup", "blinker.xml"}),
            DoneWithWarning(link + " is a symbolic link, which git does not follow since 2.32"));
  EXPECT_EQ(Read("shared/attributes"), std::string("/blinker.xml") + kAttributes);
  EXPECT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(Read("shared/attributes"), "");
  EXPECT_EQ(std::filesystem::read_symlink(PathOf(".gitattributes")), "shared/attributes");
  EXPECT_THAT(NamesIn(PathOf("shared")), ElementsAre("attributes"));
}

TEST_F(GitSetup, SeveralAtOnce_AreAllKept) {
  constexpr int kProcesses = 8;
  constexpr int kRounds = 3;
  std::string expected;
  for (int i = 0; i < kProcesses; ++i) {
    const std::string file = "p" + std::to_string(i) + ".xml";
    MakeProject(file);
    expected += "/" + file + kAttributes;
  }
  const auto at_once = [&](const std::string& options) {
    const std::string call = "'" + KelprojProgram() + "' git-setup " + options;
    return RunProcess(
        {"sh", "-c", "for i in 0 1 2 3 4 5 6 7; do " + call + " p$i.xml & done; wait"},
        {Directory(), {{"HOME", Home("")}}});
  };
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_EQ(at_once(""), Done());
    std::istringstream lines(Read(".gitattributes"));
    std::set<std::string> sorted;
    for (std::string line; std::getline(lines, line);) sorted.insert(line + "\n");
    EXPECT_EQ(std::accumulate(sorted.begin(), sorted.end(), std::string()), expected);
    EXPECT_EQ(at_once("--undo"), Done());
    EXPECT_FALSE(std::filesystem::exists(PathOf(".gitattributes")));
    EXPECT_EQ(Configured("merge.kelproj.driver"), "");
  }
}

TEST_F(GitSetup, WorkingTreesOfOneRepository_AreSetUpTogether) {
  Commit();
  Succeed({"worktree", "add", "--quiet", Home("linked"), "-b", "linked"});
  EXPECT_EQ(RunHere({"git-setup", "blinker.xml", Home("linked/blinker.xml")}), Done());
  EXPECT_EQ(Read(".gitattributes"), std::string("/blinker.xml") + kAttributes);
  EXPECT_EQ(ReadFile(Home("linked/.gitattributes")), std::string("/blinker.xml") + kAttributes);
}

TEST_F(GitSetup, ProjectWhoseNameBeginsWithAHyphen_IsComparedAndMerged) {
  MakeProject("./-a.xml");
  ASSERT_EQ(RunHere({"git-setup", "--", "-a.xml", "blinker.xml"}), Done());
  Commit();
  SetName("./-a.xml", "a2");
  SetName("blinker.xml", "b2");
  EXPECT_EQ(RunGit({"diff"}),
            Printed("--- -a.xml\n+++ -a.xml\n- name: blinker\n+ name: a2\n"
                    "--- blinker.xml\n+++ blinker.xml\n- name: blinker\n+ name: b2\n"));
  Succeed({"stash", "--quiet"});
  Change({"set", "./-a.xml", "device.device", "Q8R60"});
  Commit();
  Succeed({"stash", "pop", "--quiet"});
  EXPECT_EQ(Get("./-a.xml", "name") + Get("./-a.xml", "device.device"), "a2\nQ8R60\n");
}

TEST_F(GitSetup, UndoOfOneOfTwoFiles_KeepsTheDriversForTheOther) {
  MakeProject("lamp.xml");
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml", "lamp.xml"}), Done());
  EXPECT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".gitattributes"), std::string("/lamp.xml") + kAttributes);
  EXPECT_NE(Configured("merge.kelproj.driver"), "");
}

TEST_F(GitSetup, UndoWhereOtherAttributesNameADriver_KeepsTheDrivers) {
  std::filesystem::create_directory(PathOf("hw"));
  const std::pair<std::string, bool> cases[] = {{"soc.xml merge=kelproj\n", true},
                                                {"soc.xml -text\tdiff=kelproj\r\n", true},
                                                {"# soc.xml merge=kelproj\n", false},
                                                {"*.kel filter=kelproject x=kelproj\n", false}};
  for (const auto& [attributes, is_named] : cases) {
    Write("hw/.gitattributes", attributes);
    ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
    EXPECT_EQ(RunHere({"git-setup", "--undo", "../blinker.xml"}, "hw"), Done());
    EXPECT_EQ(Configured("merge.kelproj.driver") != "", is_named) << attributes;
    EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml", "hw"));
  }
}

TEST_F(GitSetup, UndoInOneOfTwoWorkingTrees_KeepsTheDriversForTheOther) {
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  Commit();
  Succeed({"worktree", "add", "--quiet", Home("linked"), "-b", "linked"});
  const std::string linked = Home("linked/blinker.xml");
  EXPECT_EQ(RunHere({"git-setup", "--undo", linked}), Done());
  EXPECT_FALSE(std::filesystem::exists(Home("linked/.gitattributes")));
  EXPECT_NE(Configured("merge.kelproj.driver"), "");
  EXPECT_EQ(RunHere({"git-setup", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(Configured("merge.kelproj.driver"), "");
}

TEST_F(GitSetup, RelativeGitDirectoryInTheEnvironment_IsFromWhereOneStands) {
  std::filesystem::create_directories(PathOf("hw/soc"));
  MakeProject("hw/soc/soc.xml");
  const ProcessSettings settings = {Directory(), {{"HOME", Home("")}, {"GIT_DIR", ".git"}}};
  ASSERT_EQ(Run({"git-setup", "hw/soc/soc.xml"}, settings), Done());
  EXPECT_EQ(Read(".gitattributes"), std::string("/hw/soc/soc.xml") + kAttributes);
  EXPECT_NE(Configured("merge.kelproj.driver"), "");
  ASSERT_EQ(Run({"git-setup", "--undo", "hw/soc/soc.xml"}, settings), Done());
  EXPECT_EQ(Configured("merge.kelproj.driver"), "");
  EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml", "hw"));
}

TEST_F(GitSetup, UndoOfARemovedFile_IsDoneAllTheSame) {
  std::filesystem::create_directories(PathOf("hw/soc"));
  MakeProject("hw/soc/soc.xml");
  ASSERT_EQ(RunHere({"git-setup", "hw/soc/soc.xml"}), Done());
  std::filesystem::remove_all(PathOf("hw"));
  EXPECT_EQ(RunHere({"git-setup", "--undo", "hw/soc/soc.xml"}), Done());
  EXPECT_EQ(Configured("merge.kelproj.driver"), "");
  EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml"));
}

TEST_F(GitSetup, Global_ConfiguresTheUserAndNotTheRepository) {
  const std::string ours = Read(".git/config");
  const std::string users = ReadFile(Home(".gitconfig"));
  ASSERT_EQ(RunHere({"git-setup", "--global", "blinker.xml"}), Done());
  EXPECT_EQ(Read(".git/config"), ours);
  EXPECT_THAT(Configured("merge.kelproj.driver", "--global"), HasSubstr("merge %O %A %B"));
  EXPECT_TRUE(IsMergedAsAProject("blinker.xml"));
  ASSERT_EQ(RunHere({"git-setup", "--global", "--undo", "blinker.xml"}), Done());
  EXPECT_EQ(ReadFile(Home(".gitconfig")), users);
}

TEST_F(GitSetup, FileThatIsNoProjectFileByItsName_IsRefused) {
  Write("top.sv", "");
  EXPECT_EQ(Run({"git-setup", "top.sv"}),
            Failed("top.sv: the name of a project file ends in .xml"));
  EXPECT_FALSE(std::filesystem::exists(PathOf(".gitattributes")));
}

TEST_F(GitSetup, FileOfAnyName_IsMeantAloneWhateverStandsInItsName) {
  std::filesystem::create_directory(PathOf("Söhne & [Co]"));
  for (const std::string file :
       {"Söhne & [Co]/mein \"Projekt\"\t*.xml", "a[1].xml", "what?.xml", "back\\slash.xml",
        "#hash.xml", "!not.xml", "'quoted'.xml", " blank.xml"}) {
    MakeProject(file);
    EXPECT_EQ(RunHere({"git-setup", file}), Done()) << file;
    EXPECT_TRUE(IsMergedAsAProject(file)) << file << "\n" << Read(".gitattributes");
  }
  for (const char* const other : {"Söhne & C/mein \"Projekt\"\tx.xml", "a1.xml", "whatx.xml"}) {
    EXPECT_FALSE(IsMergedAsAProject(other)) << other;
  }
}

TEST_F(GitSetup, FromADirectoryBelow_NamesTheFileFromTheTop) {
  std::filesystem::create_directories(PathOf("hw/soc"));
  MakeProject("hw/soc.xml");
  MakeProject("hw/soc/soc.xml");
  ASSERT_EQ(RunHere({"git-setup", "../soc.xml", "soc.xml"}, "hw/soc"), Done());
  EXPECT_EQ(Read(".gitattributes"),
            std::string("/hw/soc.xml") + kAttributes + "/hw/soc/soc.xml" + kAttributes);
}

TEST_F(GitSetup, Pattern_MeansAllThatFitItBelowWhereOneStands) {
  std::filesystem::create_directories(PathOf("hw/soc"));
  MakeProject("hw/soc/b_soc.xml");
  ASSERT_EQ(RunHere({"git-setup", "**/*_soc.xml"}, "hw"), Done());
  EXPECT_TRUE(IsMergedAsAProject("hw/a_soc.xml"));
  EXPECT_TRUE(IsMergedAsAProject("hw/soc/b_soc.xml"));
  EXPECT_FALSE(IsMergedAsAProject("a_soc.xml"));
  EXPECT_FALSE(IsMergedAsAProject("hw/soc/other.xml"));
  ASSERT_EQ(RunHere({"git-setup", "--undo", "**/*_soc.xml"}, "hw"), Done());
  EXPECT_FALSE(IsMergedAsAProject("hw/a_soc.xml"));
}

TEST_F(GitSetup, PatternThatFitsNoFile_IsWrittenWithAWarning) {
  EXPECT_EQ(RunHere({"git-setup", "*_soc.xml"}), DoneWithWarning("*_soc.xml fits no file yet"));
  EXPECT_TRUE(IsMergedAsAProject("a_soc.xml"));
  EXPECT_EQ(RunHere({"git-setup", "--undo", "*_soc.xml"}), Done());
}

TEST_F(GitSetup, Trouble_ChangesNothing) {
  const std::string configuration = Read(".git/config");
  std::filesystem::create_directory(PathOf("hw"));
  WriteFile(Home("elsewhere.xml"), Read("blinker.xml"));
  const std::pair<std::string, std::string> cases[] = {
      {"no.xml", "no.xml does not exist"},
      {"hw", "hw is a directory"},
      {Home("elsewhere.xml"), Home("elsewhere.xml") + " is in no working tree of git"}};
  for (const auto& [file, reason] : cases) {
    EXPECT_EQ(RunHere({"git-setup", "blinker.xml", file}), Failed(reason));
    EXPECT_EQ(Read(".git/config"), configuration);
    EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml", "hw"));
  }
}

TEST_F(GitSetup, ConfigurationThatGitCannotWrite_IsToldInItsWords) {
  Write(".git/config.lock", "");
  const Outcome outcome = RunHere({"git-setup", "blinker.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("kelproj: error: git: "), HasSubstr("lock")));
  EXPECT_THAT(Names(), ElementsAre(".git", "blinker.xml"));
}

TEST_F(GitSetup, AttributesThatAreNoFile_AreTroubleAndChangeNothing) {
  std::filesystem::create_directory(PathOf(".gitattributes"));
  const std::string configuration = Read(".git/config");
  EXPECT_EQ(
      RunHere({"git-setup", "blinker.xml"}),
      Failed(std::filesystem::canonical(Directory()).string() + "/.gitattributes is a directory"));
  EXPECT_EQ(Read(".git/config"), configuration);
}

TEST_F(GitSetup, FileThatIsCommittedAlready_IsRenormalizedAsTheHelpTells) {
  Commit();
  ASSERT_THAT(RunGit({"show", "HEAD:blinker.xml"}).out, HasSubstr("sw_version"));
  ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
  const std::string steps[] = {"add .gitattributes blinker.xml", "add --renormalize blinker.xml"};
  const std::string help = RunHere({"git-setup", "--help"}).out;
  for (const std::string& step : steps) EXPECT_THAT(help, HasSubstr("\n  git " + step + "\n"));
  Succeed({"add", ".gitattributes", "blinker.xml"});
  Succeed({"add", "--renormalize", "blinker.xml"});
  Succeed({"commit", "--quiet", "--message", "Let git understand the project file"});
  EXPECT_EQ(RunGit({"status", "--porcelain"}), Done());
  EXPECT_THAT(RunGit({"show", "HEAD:blinker.xml"}).out, Not(HasSubstr("sw_version")));
}

TEST_F(GitSetup, WithoutGit_IsTrouble) {
  EXPECT_EQ(Run({"git-setup", "blinker.xml"}, {".", {{"PATH", "/nowhere"}}}),
            Failed("git is not installed"));
}

TEST_F(GitSetup, MessagesOfTheFilter_NameTheFile) {
  for (const std::string file : {"hw/it's [a] 50% project.xml", "-o.xml", "[b].xml"}) {
    std::filesystem::create_directories(PathOf("hw"));
    std::filesystem::copy_file(PathOf("blinker.xml"), PathOf(file));
    ASSERT_EQ(RunHere({"git-setup", "--", file}), Done());
    std::string text = Read(file);
    Write(file, text.insert(text.find('\n') + 1, "<!-- checked by Zoe -->\n"));
    const Outcome outcome = RunGit({"add", "--", file});
    EXPECT_EQ(outcome.status, 0);
    // Git may look at the other files once more.
    EXPECT_THAT(outcome.err, HasSubstr(file + ":2:1: warning: the comment is not kept\n"));
    EXPECT_THAT(RunGit({"show", ":" + file}).out, Not(HasSubstr("Zoe")));
  }
}

/// The program where a shell must quote its path and git takes a part of it for a placeholder.
class ProgramElsewhere : public GitTest {
 protected:
  void SetUp() override {
    GitTest::SetUp();
    if (IsSkipped()) return;
    const Outcome outcome =
        RunProcess({"cmake", "--install", BUILD_DIRECTORY, "--prefix", Home("50%A & Zoë's")});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    MakeProject();
    ASSERT_EQ(RunProcess({Home("50%A & Zoë's/bin/kelproj"), "git-setup", "blinker.xml"},
                         {Directory(), {{"HOME", Home("")}}}),
              Done());
    Commit();
  }
};

TEST_F(ProgramElsewhere, Diff_Works) {
  SetName("blinker.xml", "blinker2");
  EXPECT_EQ(RunGit({"diff"}),
            Printed("--- blinker.xml\n+++ blinker.xml\n- name: blinker\n+ name: blinker2\n"));
}

TEST_F(ProgramElsewhere, Merge_Works) {
  Succeed({"checkout", "--quiet", "-b", "theirs"});
  Change({"add", "blinker.xml", "--sdc", "pins.sdc"});
  Commit();
  Succeed({"checkout", "--quiet", "main"});
  Change({"add", "blinker.xml", "--sdc", "clocks.sdc"});
  Commit();
  Succeed({"merge", "--quiet", "theirs"});
  EXPECT_THAT(Run({"show", "blinker.xml"}).out, HasSubstr("\n  clocks.sdc\n  pins.sdc\n"));
}

TEST_F(ProgramElsewhere, Filter_Works) {
  EXPECT_THAT(RunGit({"show", "HEAD:blinker.xml"}).out,
              AllOf(HasSubstr("name=\"blinker\""), Not(HasSubstr("sw_version"))));
}

}  // namespace
