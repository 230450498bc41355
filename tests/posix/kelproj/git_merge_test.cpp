#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "tests/posix/kelproj/git_test.h"

namespace {

using namespace test_support;

const char kRtl[] = "--rtl";
const char kSdc[] = "--sdc";

/// A repository with a project file that is set up for git, and what two people do there.
class GitProject : public GitTest {
 protected:
  void SetUp() override {
    GitTest::SetUp();
    if (IsSkipped()) return;
    MakeProject();
    for (const char* const file : {"top.v", "alu.v", "uart.v", "clocks.sdc", "pins.sdc"}) {
      Write(file, "");
    }
    Change({"add", "blinker.xml", kRtl, "top.v"});
    Change({"set", "blinker.xml", "device.device", "Q8R25"});
    ASSERT_EQ(RunHere({"git-setup", "blinker.xml"}), Done());
    Commit();
    Succeed({"tag", "beginning"});
  }

  // A save that stamps the file, by another version of the software and at another time.
  void SaveAgain(const std::string& file, const std::string& stamp) const {
    projectdb::ProjectContents contents = *projectdb::ReadProjectFile(PathOf(file), "").contents;
    contents.software_version = "9." + stamp;
    contents.last_modify_time = "at " + stamp;
    projectdb::WriteProjectFile(PathOf(file), contents, {true, std::nullopt, true});
  }

  void BeginBranch(const std::string& name) const {
    Succeed({"checkout", "--quiet", "-b", name, "main"});
  }
  void GoTo(const std::string& branch) const { Succeed({"checkout", "--quiet", branch}); }

  // One commit of each of two branches, that of theirs saved three times.
  void CommitOnTwoBranches() const {
    BeginBranch("theirs");
    Change({"add", "blinker.xml", kRtl, "uart.v"});
    SaveAgain("blinker.xml", "1");
    Change({"set", "blinker.xml", "synthesis.param.goal", "speed"});
    SaveAgain("blinker.xml", "2");
    Commit("Add the UART");
    GoTo("main");
    Change({"add", "blinker.xml", kRtl, "alu.v"});
    Change({"set", "blinker.xml", "synthesis.param.effort", "high"});
    SaveAgain("blinker.xml", "3");
    Commit("Add the ALU");
  }

  void CommitConflict() const {
    BeginBranch("theirs");
    Change({"set", "blinker.xml", "device.device", "Q8R60"});
    Commit("Take the large device");
    GoTo("main");
    Change({"set", "blinker.xml", "device.device", "Q8R40"});
    Commit("Take the middle device");
  }

  // What the project has and had not at the beginning.
  std::string Added(const std::string& file = "blinker.xml") const {
    Write("before.txt", RunGit({"show", "beginning:blinker.xml"}).out);
    std::filesystem::rename(PathOf("before.txt"), Home("before.xml"));
    const std::string head = "--- " + Home("before.xml") + "\n+++ " + file + "\n";
    const std::string printed = Run({"diff", Home("before.xml"), file}).out;
    EXPECT_THAT(printed, StartsWith(head));
    return printed.substr(std::min(head.size(), printed.size()));
  }

  std::string Status() const { return RunGit({"status", "--porcelain"}).out; }
};

const char kBothBranches[] =
    "+ design.files[1]: alu.v library=default\n+ design.files[2]: uart.v library=default\n"
    "+ synthesis.param.effort: high type=e_string\n+ synthesis.param.goal: speed type=e_string\n";

TEST_F(GitProject, BranchesThatAddAFileAndAParameterAndSaveAnotherNumberOfTimes_MergeToBoth) {
  CommitOnTwoBranches();
  const Outcome merge = RunGit({"merge", "--no-edit", "theirs"});
  EXPECT_EQ(merge.status, 0) << merge.out;
  EXPECT_EQ(merge.err, "");
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(Added(), kBothBranches);
}

TEST_F(GitProject, MergeTheOtherWayRound_HasBothToo) {
  CommitOnTwoBranches();
  GoTo("theirs");
  Succeed({"merge", "--quiet", "--no-edit", "main"});
  Succeed({"checkout", "--quiet", "main"});
  Succeed({"merge", "--quiet", "theirs"});
  EXPECT_THAT(Run({"show", "blinker.xml"}).out,
              AllOf(HasSubstr("\n  alu.v"), HasSubstr("\n  uart.v")));
}

TEST_F(GitProject, RebaseOfFiveCommits_KeepsThemAll) {
  BeginBranch("theirs");
  for (const std::string number : {"1", "2", "3", "4", "5"}) {
    Write("part" + number + ".v", "");
    Change({"add", "blinker.xml", kRtl, "part" + number + ".v"});
    Change({"set", "blinker.xml", "synthesis.param.step", number});
    SaveAgain("blinker.xml", number);
    Commit("Take step " + number);
  }
  GoTo("main");
  Change({"add", "blinker.xml", kRtl, "alu.v"});
  Change({"add", "blinker.xml", kSdc, "clocks.sdc"});
  SaveAgain("blinker.xml", "6");
  Commit("Add the ALU");
  GoTo("theirs");
  Succeed({"rebase", "--quiet", "main"});
  EXPECT_EQ(RunGit({"rev-list", "--count", "main..theirs"}), Printed("5\n"));
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(Added(),
            "+ design.files[1]: alu.v library=default\n+ design.files[2]: part1.v "
            "library=default\n+ design.files[3]: part2.v library=default\n"
            "+ design.files[4]: part3.v library=default\n+ design.files[5]: part4.v "
            "library=default\n+ design.files[6]: part5.v library=default\n"
            "+ constraint.sdc[0]: clocks.sdc\n+ synthesis.param.step: 5 type=e_string\n");
}

TEST_F(GitProject, CherryPick_TakesTheOneCommitAlone) {
  BeginBranch("theirs");
  Change({"add", "blinker.xml", kRtl, "uart.v"});
  SaveAgain("blinker.xml", "1");
  Commit("Add the UART");
  Change({"add", "blinker.xml", kSdc, "pins.sdc"});
  SaveAgain("blinker.xml", "2");
  Commit("Constrain the pins");
  GoTo("main");
  Change({"add", "blinker.xml", kRtl, "alu.v"});
  Commit("Add the ALU");
  Succeed({"cherry-pick", "theirs"});
  EXPECT_EQ(RunGit({"log", "-1", "--format=%s"}), Printed("Constrain the pins\n"));
  Succeed({"reset", "--quiet", "--soft", "HEAD~1"});
  EXPECT_EQ(RunGit({"diff", "--cached"}),
            Printed("--- blinker.xml\n+++ blinker.xml\n+ constraint.sdc[0]: pins.sdc\n"));
}

TEST_F(GitProject, Revert_TakesTheOneCommitBack) {
  Change({"add", "blinker.xml", kSdc, "pins.sdc"});
  Commit("Constrain the pins");
  Change({"add", "blinker.xml", kSdc, "clocks.sdc"});
  Commit("Constrain the clocks");
  Succeed({"revert", "--no-edit", "HEAD~1"});
  const std::string shown = Run({"show", "blinker.xml"}).out;
  EXPECT_THAT(shown, AllOf(HasSubstr("\n  clocks.sdc\n"), Not(HasSubstr("pins.sdc"))));
}

TEST_F(GitProject, Conflict_StopsTheMergeWithItsValuesAndAProjectThatLoads) {
  CommitConflict();
  const Outcome merge = RunGit({"merge", "theirs"});
  EXPECT_EQ(merge.status, 1);
  EXPECT_THAT(merge.out, HasSubstr("CONFLICT (content): Merge conflict in blinker.xml\n"));
  EXPECT_EQ(merge.err,
            "kelproj: error: blinker.xml: 1 conflict (base / ours / theirs); ours is kept\n"
            "device.device: Q8R25 / Q8R40 / Q8R60\n");
  EXPECT_EQ(Status(), "UU blinker.xml\n");
  EXPECT_EQ(Run({"check", "blinker.xml"}), Done());
  EXPECT_EQ(Get("blinker.xml", "device.device"), "Q8R40\n");
}

TEST_F(GitProject, Conflict_IsResolvedBySetAndAdd) {
  CommitConflict();
  ASSERT_EQ(RunGit({"merge", "theirs"}).status, 1);
  Change({"set", "blinker.xml", "device.device", "Q8R60"});
  Succeed({"add", "blinker.xml"});
  Succeed({"commit", "--quiet", "--no-edit"});
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(RunGit({"rev-list", "--count", "--merges", "HEAD"}), Printed("1\n"));
  EXPECT_EQ(Get("blinker.xml", "device.device"), "Q8R60\n");
}

TEST_F(GitProject, ConflictInARebase_IsResolvedAndTheRebaseGoesOn) {
  CommitConflict();
  GoTo("theirs");
  ASSERT_EQ(RunGit({"rebase", "main"}).status, 1);
  Change({"set", "blinker.xml", "device.device", "Q8R60"});
  Succeed({"add", "blinker.xml"});
  Succeed({"rebase", "--continue"});
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(RunGit({"log", "-1", "--format=%s"}), Printed("Take the large device\n"));
  EXPECT_EQ(Get("blinker.xml", "device.device"), "Q8R60\n");
}

TEST_F(GitProject, FileAddedByBoth_IsMergedFromNothing) {
  ASSERT_EQ(RunHere({"git-setup", "lamp.xml*"}), DoneWithWarning("lamp.xml* fits no file yet"));
  Commit("Let git understand the lamp");
  BeginBranch("theirs");
  MakeProject("lamp.xml");
  Change({"add", "lamp.xml", kRtl, "uart.v"});
  Commit("Begin the lamp");
  GoTo("main");
  MakeProject("lamp.xml");
  Change({"add", "lamp.xml", kRtl, "alu.v"});
  Commit("Begin the lamp");
  Succeed({"merge", "--no-edit", "theirs"});
  EXPECT_THAT(Run({"show", "lamp.xml"}).out,
              AllOf(HasSubstr("\n  alu.v"), HasSubstr("\n  uart.v")));
}

TEST_F(GitProject, SideThatIsNoProject_StopsTheMergeAndSaysWhich) {
  BeginBranch("theirs");
  Write("blinker.xml", "<<<<<<< main\n" + Read("blinker.xml"));
  Commit("Commit a conflict by mistake");
  GoTo("main");
  SetName("blinker.xml", "blinker2");
  Commit();
  const Outcome merge = RunGit({"merge", "theirs"});
  EXPECT_EQ(merge.status, 1);
  EXPECT_THAT(merge.err, EndsWith("kelproj: error: blinker.xml (theirs) does not load; nothing is "
                                  "merged, and blinker.xml is ours\n"));
  EXPECT_EQ(Status(), "UU blinker.xml\n");
  EXPECT_EQ(Get("blinker.xml", "name"), "blinker2\n");
}

TEST_F(GitProject, RenamedByTheOneAndChangedByBoth_IsMergedUnderItsNewName) {
  ASSERT_EQ(RunHere({"git-setup", "*.xml"}), Done());
  Commit("Let git understand all projects");
  BeginBranch("theirs");
  Succeed({"mv", "blinker.xml", "lamp.xml"});
  Change({"add", "lamp.xml", kRtl, "uart.v"});
  Commit("Rename the project");
  GoTo("main");
  Change({"add", "blinker.xml", kRtl, "alu.v"});
  Commit("Add the ALU");
  Succeed({"merge", "--no-edit", "-X", "find-renames=30%", "theirs"});
  EXPECT_FALSE(std::filesystem::exists(PathOf("blinker.xml")));
  EXPECT_EQ(
      Added("lamp.xml"),
      "+ design.files[1]: alu.v library=default\n+ design.files[2]: uart.v library=default\n");
}

TEST_F(GitProject, DeletedByTheOne_IsAsWithAnyFile) {
  BeginBranch("theirs");
  Succeed({"rm", "--quiet", "blinker.xml"});
  Commit("Remove the project");
  GoTo("main");
  Write("top.v", "module top; endmodule\n");
  Commit("Fill the top");
  BeginBranch("ours");
  SetName("blinker.xml", "blinker2");
  Commit("Rename the project");
  const Outcome changed = RunGit({"merge", "theirs"});
  EXPECT_EQ(changed.status, 1);
  EXPECT_THAT(changed.out, HasSubstr("CONFLICT (modify/delete): blinker.xml"));
  EXPECT_EQ(Get("blinker.xml", "name"), "blinker2\n");
  Succeed({"merge", "--abort"});
  GoTo("main");
  Succeed({"merge", "--quiet", "--no-edit", "theirs"});
  EXPECT_FALSE(std::filesystem::exists(PathOf("blinker.xml")));
}

TEST_F(GitProject, LogWithTheExternalDiff_ShowsWhatEachCommitChanged) {
  CommitOnTwoBranches();
  Succeed({"merge", "--no-edit", "theirs"});
  const std::string log = RunGit({"log", "--patch", "--ext-diff", "--format=%s"}).out;
  EXPECT_THAT(log, HasSubstr("Add the ALU\n\n--- blinker.xml\n+++ blinker.xml\n"
                             "+ design.files[1]: alu.v library=default\n"
                             "+ synthesis.param.effort: high type=e_string\n"));
  EXPECT_THAT(log, HasSubstr("Add the UART\n\n--- blinker.xml\n+++ blinker.xml\n"
                             "+ design.files[1]: uart.v library=default\n"));
}

TEST_F(GitProject, WhatIsCommitted_IsCanonicalAndWithoutStamps) {
  const projectdb::ProjectFile file =
      projectdb::ParseProjectFile(RunGit({"show", "HEAD:blinker.xml"}).out, "");
  ASSERT_TRUE(file.contents);
  EXPECT_EQ(file.contents->software_version, "");
  EXPECT_EQ(file.contents->last_modify_time, "");
  EXPECT_EQ(projectdb::FormatProjectFile(*file.contents, {true}),
            RunGit({"show", "HEAD:blinker.xml"}).out);
}

TEST_F(GitProject, FileWithErrors_IsCommittedAsItIsAfterAMessage) {
  Write("blinker.xml", "<broken");
  const Outcome added = RunGit({"add", "blinker.xml"});
  EXPECT_EQ(added.status, 0);
  EXPECT_THAT(added.err, HasSubstr("blinker.xml has errors"));
  EXPECT_EQ(RunGit({"show", ":blinker.xml"}), Printed("<broken"));
}

/// Saves of the same content in other bytes.
class GitSave : public GitProject {
 protected:
  void SetUp() override {
    GitProject::SetUp();
    if (IsSkipped()) return;
    for (const char* const name : {"retiming", "goal", "effort"}) {
      Change({"set", "blinker.xml", std::string("synthesis.param.") + name, "true"});
    }
    Commit();
  }

  void ExpectNothingToCommit() const {
    EXPECT_EQ(RunGit({"diff", "--quiet", "--no-ext-diff"}), Done());
    const Outcome commit = RunGit({"commit", "--all", "--message", "Nothing"});
    EXPECT_EQ(commit.status, 1);
    EXPECT_THAT(commit.out, HasSubstr("nothing to commit"));
    Succeed({"add", "blinker.xml"});
    EXPECT_EQ(Status(), "");
  }
};

TEST_F(GitSave, AtAnotherTime_LeavesNothingToCommit) {
  SaveAgain("blinker.xml", "1");
  ExpectNothingToCommit();
}

TEST_F(GitSave, ByATool_LeavesNothingToCommit) {
  projectdb::KelProjectDatabase database;
  ASSERT_TRUE(database.LoadProjectData(PathOf("blinker.xml"), ""));
  database.ExportProjectData(PathOf("blinker.xml"));
  ExpectNothingToCommit();
}

TEST_F(GitSave, InAnotherLayout_LeavesNothingToCommit) {
  Write("blinker.xml", Read("blinker.xml") + "\n\n");
  ExpectNothingToCommit();
}

TEST_F(GitSave, OfTheSameSize_IsNotSeenByStatusEither) {
  SaveAgain("blinker.xml", "1");
  Succeed({"add", "blinker.xml"});
  SaveAgain("blinker.xml", "2");
  EXPECT_EQ(Status(), "");
}

TEST_F(GitSave, OfOtherContent_IsThereToCommit) {
  SetName("blinker.xml", "blinker2");
  EXPECT_EQ(Status(), " M blinker.xml\n");
}

TEST_F(GitProject, FileSavedAnewWithoutAChange_IsNotInTheWayOfAMerge) {
  CommitOnTwoBranches();
  SaveAgain("blinker.xml", "4");
  Succeed({"merge", "--quiet", "--no-edit", "theirs"});
  EXPECT_EQ(Added(), kBothBranches);
}

TEST_F(GitProject, RepositoryWithoutTheDrivers_WorksAsText) {
  CommitOnTwoBranches();
  Succeed({"clone", "--quiet", Directory(), Home("clone")});
  const auto run = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-C", Home("clone")});
    return RunGit(arguments);
  };
  // Both changed one place of the text.
  const Outcome merge = run({"merge", "--no-edit", "origin/theirs"});
  EXPECT_EQ(merge.status, 1);
  EXPECT_THAT(ReadFile(Home("clone/blinker.xml")), HasSubstr("<<<<<<< HEAD\n"));
  ASSERT_EQ(run({"merge", "--abort"}).status, 0);
  // What stands apart in the text merges; so it does with stamps, which nobody takes away here.
  ASSERT_EQ(run({"checkout", "--quiet", "-b", "apart"}).status, 0);
  ASSERT_EQ(RunHere({"set", Home("clone/blinker.xml"), "debugger.param.cable", "usb"}), Done());
  EXPECT_THAT(run({"diff"}).out, HasSubstr("\n+    <kel:param name=\"cable\" value=\"usb\""));
  ASSERT_EQ(run({"commit", "--quiet", "--all", "--message", "Choose a cable"}).status, 0);
  ASSERT_EQ(run({"checkout", "--quiet", "main"}).status, 0);
  ASSERT_EQ(RunHere({"add", Home("clone/blinker.xml"), kRtl, Home("x.v")}).status, 0);
  ASSERT_EQ(RunHere({"format", "--no-stamps", Home("clone/blinker.xml")}), Done());
  ASSERT_EQ(run({"commit", "--quiet", "--all", "--message", "Add a file"}).status, 0);
  const Outcome apart = run({"merge", "--no-edit", "apart"});
  EXPECT_EQ(apart.status, 0) << apart.out;
  EXPECT_EQ(Get(Home("clone/blinker.xml"), "debugger.param.cable"), "usb\n");
}

}  // namespace
