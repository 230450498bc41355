#include "tests/posix/kelproj/git_test.h"

namespace {

using namespace test_support;

/// The program as the external diff alone.
class Git : public GitTest {
 protected:
  void SetUp() override {
    GitTest::SetUp();
    if (IsSkipped()) return;
    Succeed({"config", "diff.kelproj.command", "'" + KelprojProgram() + "' diff"});
    Write(".gitattributes", "*.xml diff=kelproj\n");
    Commit();
  }

  void CommitProject() const {
    MakeProject();
    Commit();
  }
};

TEST_F(Git, ChangedProject_ShowsWhatChangedAlsoInTheLog) {
  CommitProject();
  SetName("blinker.xml", "blinker2");
  const std::string shown = "--- blinker.xml\n+++ blinker.xml\n- name: blinker\n+ name: blinker2\n";
  EXPECT_EQ(RunGit({"diff"}), Printed(shown));
  Commit();
  EXPECT_THAT(RunGit({"log", "-1", "--patch", "--ext-diff"}).out, HasSubstr(shown));
}

TEST_F(Git, ProjectInADirectoryWithBlanksQuotesAndUmlauts_IsNamedAsItIs) {
  std::filesystem::create_directory(PathOf("Söhne & \"Co\""));
  const std::string file = "Söhne & \"Co\"/mein 'Projekt'.xml";
  MakeProject(file);
  Commit();
  SetName(file, "blinker2");
  EXPECT_EQ(RunGit({"diff"}),
            Printed("--- " + file + "\n+++ " + file + "\n- name: blinker\n+ name: blinker2\n"));
}

TEST_F(Git, NewOrRemovedProject_ShowsAllThatItHas) {
  MakeProject();
  Succeed({"add", "--all"});
  EXPECT_THAT(RunGit({"diff", "--cached"}).out, StartsWith("--- /dev/null\n+++ blinker.xml\n+ "));
  Commit();
  Succeed({"rm", "--quiet", "blinker.xml"});
  EXPECT_THAT(RunGit({"diff", "--cached"}).out, StartsWith("--- blinker.xml\n+++ /dev/null\n- "));
}

TEST_F(Git, RenamedProject_ShowsBothNames) {
  CommitProject();
  Succeed({"mv", "blinker.xml", "lamp.xml"});
  SetName("lamp.xml", "lamp");
  Succeed({"add", "--all"});
  EXPECT_EQ(RunGit({"diff", "--cached", "--find-renames=50%"}),
            Printed("--- blinker.xml\n+++ lamp.xml\n- name: blinker\n+ name: lamp\n"));
}

TEST_F(Git, ProjectThatIsOnlyRenamed_IsEqual) {
  CommitProject();
  Succeed({"mv", "blinker.xml", "lamp.xml"});
  EXPECT_EQ(RunGit({"diff", "--cached", "--find-renames"}),
            Printed("blinker.xml => lamp.xml: the projects are equal\n"));
}

TEST_F(Git, ChangedLayoutAlone_IsEqual) {
  CommitProject();
  Write("blinker.xml", Read("blinker.xml") + "\n\n");
  EXPECT_EQ(RunGit({"diff"}), Printed("blinker.xml: the projects are equal\n"));
}

TEST_F(Git, BrokenProject_IsToldAndTheOthersAreStillCompared) {
  MakeProject("a.xml");
  MakeProject("b.xml");
  Commit();
  Write("a.xml", "<project>");
  SetName("b.xml", "blinker2");
  const Outcome outcome = RunGit({"diff"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "a.xml: not compared; git diff --no-ext-diff shows the text\n"
            "--- b.xml\n+++ b.xml\n- name: blinker\n+ name: blinker2\n");
  EXPECT_THAT(outcome.err, HasSubstr("a.xml does not load\n"));
}

TEST_F(Git, UnmergedProject_IsToldAndTheOthersAreStillCompared) {
  MakeProject("a.xml");
  MakeProject("b.xml");
  Commit();
  Succeed({"checkout", "--quiet", "-b", "theirs"});
  SetName("a.xml", "theirs");
  Commit();
  Succeed({"checkout", "--quiet", "main"});
  SetName("a.xml", "ours");
  Commit();
  ASSERT_EQ(RunGit({"merge", "theirs"}).status, 1);
  SetName("b.xml", "blinker2");
  Succeed({"add", "b.xml"});
  const Outcome outcome = RunGit({"diff", "--cached"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("a.xml: unmerged\n"));
  EXPECT_THAT(outcome.out, HasSubstr("- name: blinker\n+ name: blinker2\n"));
}

TEST_F(Git, ExternalDiffOfOneCommand_Works) {
  MakeProject();
  Succeed({"config", "--unset", "diff.kelproj.command"});
  Commit();
  SetName("blinker.xml", "blinker2");
  EXPECT_THAT(RunGit({"-c", "diff.external='" + KelprojProgram() + "' diff", "diff"}).out,
              HasSubstr("- name: blinker\n+ name: blinker2\n"));
}

TEST_F(Git, FileOfAnotherKind_IsLeftToGit) {
  Write("top.v", "module top;\n");
  Commit();
  Write("top.v", "module top2;\n");
  EXPECT_THAT(RunGit({"diff"}).out, HasSubstr("\n-module top;\n+module top2;\n"));
}

}  // namespace
