#include <nlohmann/json.hpp>

#include <projectdb/compare.h>
#include <projectdb/project_file.h>

#include "tests/kelproj/merge_test.h"

namespace {

using namespace test_support;
using MergeJson = nlohmann::json;

const char kDeviceConflict[] = "device.device: Q8R25 / Q8R40 / Q8R60\n";

TEST_F(Merge, ChangesApart_AreBothInTheOutput) {
  ChangeBothWithoutConflict();
  EXPECT_EQ(RunMerge({"-o", "out.xml"}), Done());
  EXPECT_EQ(Differences("base.xml", "out.xml"),
            "- device.device: Q8R25\n+ device.device: Q8R40\n"
            "+ constraint.sdc[0]: clocks.sdc\n+ constraint.sdc[1]: pins.sdc\n"
            "+ synthesis.param.goal: speed type=e_string\n");
}

TEST_F(Merge, WithoutOutput_PrintsWhatItWouldWriteThere) {
  ChangeBothWithoutConflict();
  ASSERT_EQ(RunMerge({"-o", "out.xml"}), Done());
  const std::string merged = Read("out.xml");
  EXPECT_EQ(RunMerge(), Printed(merged));
}

TEST_F(Merge, OutputThatIsAnInput_IsReplacedWhichever) {
  ChangeBothWithoutConflict();
  const std::string merged = RunMerge().out;
  for (const char* const name : {"base.xml", "ours.xml", "theirs.xml"}) {
    const std::string former = Read(name);
    EXPECT_EQ(RunMerge({"-o", name}), Done());
    EXPECT_EQ(Read(name), merged) << name;
    Write(name, former);
  }
}

TEST_F(Merge, Success_LeavesNoOtherFile) {
  ChangeBothWithoutConflict();
  ASSERT_EQ(RunMerge({"-o", "ours.xml"}), Done());
  EXPECT_THAT(Names(), ElementsAre("base.xml", "ours.xml", "theirs.xml"));
}

TEST_F(Merge, FilesOfAnyName_AreMerged) {
  ChangeBothWithoutConflict();
  const std::string merged = RunMerge().out;
  Write(".merge_file_0", Read("base.xml"));
  Write("ours of main", Read("ours.xml"));
  Write("theirs.txt", Read("theirs.xml"));
  EXPECT_EQ(Run({"merge", ".merge_file_0", "ours of main", "theirs.txt", "-o", "ours of main"}),
            Done());
  EXPECT_EQ(Read("ours of main"), merged);
}

TEST_F(Merge, Conflict_IsToldAndLeavesTheOutputAWholeProjectThatHasOurs) {
  ChangeBothToConflict();
  EXPECT_EQ(RunMerge({"-o", "out.xml"}), (Outcome{1, "", Conflict("out.xml", kDeviceConflict)}));
  EXPECT_EQ(Run({"check", "out.xml"}), Done());
  EXPECT_EQ(Differences("ours.xml", "out.xml"), "+ info.board: Tern\n");
}

TEST_F(Merge, ConflictWithoutOutput_PrintsTheProjectApartFromTheMessages) {
  ChangeBothToConflict();
  const Outcome outcome = RunMerge();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, Conflict("ours.xml", kDeviceConflict));
  Write("out.xml", outcome.out);
  EXPECT_EQ(Get("out.xml", "device.device"), "Q8R40\n");
}

TEST_F(Merge, ConflictInAList_IsToldWithItsPlaceAndWithWhatIsMissing) {
  Change({"add", "base.xml", "--rtl", "top.v", "--library", "work"});
  Write("ours.xml", Read("base.xml"));
  std::string changed = Read("base.xml");
  const std::string library = "library=\"work\"";
  ASSERT_NE(changed.find(library), std::string::npos);
  Write("theirs.xml", changed.replace(changed.find(library), library.size(), "library=\"cpu\""));
  std::string removed = Read("base.xml");
  const std::size_t begin = removed.find("<kel:design_file");
  ASSERT_NE(begin, std::string::npos);
  Write("ours.xml", removed.erase(begin, removed.find("/>", begin) + 2 - begin));
  const Outcome outcome = RunMerge({"-o", "out.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      outcome.err,
      Conflict("out.xml", "design.files[0]: top.v library=work / (none) / top.v library=cpu\n"));
}

TEST_F(Merge, EmptyAndMultilineValuesInAConflict_TakeOneReadableLine) {
  Change({"set", "base.xml", "info.note", ""});
  Change({"set", "ours.xml", "info.note", "one\ntwo"});
  Change({"set", "theirs.xml", "info.note", "\ttwo"});
  EXPECT_EQ(RunMerge({"-o", "out.xml"}).err,
            Conflict("out.xml", "info.note: \"\" / one\\ntwo / \\ttwo\n"));
}

TEST_F(Merge, OursOrTheirs_ResolvesEachConflictAndTellsIt) {
  ChangeBothToConflict();
  for (const auto& [side, device] :
       {std::pair("ours", "Q8R40\n"), std::pair("theirs", "Q8R60\n")}) {
    const std::string option = std::string("--") + side;
    EXPECT_EQ(
        RunMerge({"-o", "out.xml", option}),
        (Outcome{0, "",
                 std::string("kelproj: warning: out.xml: 1 conflict (base / ours / theirs); ") +
                     side + " is kept\n" + kDeviceConflict}));
    EXPECT_EQ(Get("out.xml", "device.device"), device);
    EXPECT_EQ(Get("out.xml", "info.board"), "Tern\n");
  }
}

TEST_F(Merge, OursAndTheirs_AreRefusedTogether) {
  EXPECT_THAT(RunMerge({"--ours", "--theirs"}),
              IsWrongUse("kelproj merge", {"--ours", "--theirs"}));
}

TEST_F(Merge, Path_NamesTheProjectInTheMessages) {
  ChangeBothToConflict();
  EXPECT_EQ(RunMerge({"-o", "ours.xml", "--path", "hw/soc.xml"}).err,
            Conflict("hw/soc.xml", kDeviceConflict));
  Write("theirs.xml", "<project>");
  EXPECT_THAT(
      RunMerge({"--path", "hw/soc.xml"}).err,
      AllOf(StartsWith("hw/soc.xml (theirs):1:"),
            EndsWith("kelproj: error: hw/soc.xml (theirs) does not load; nothing is merged\n")));
}

TEST_F(Merge, Json_HasTheConflictsAndTakesThePlaceOfTheProject) {
  ChangeBothToConflict();
  const auto expected = MergeJson::parse(R"({
      "base": "base.xml", "ours": "ours.xml", "theirs": "theirs.xml",
      "conflicts": [{"what": "device.device", "where": "", "base": "Q8R25", "ours": "Q8R40",
                     "theirs": "Q8R60"}]})");
  for (const auto& options : {std::vector<std::string>{"--json"}, {"--json", "-o", "out.xml"}}) {
    const Outcome outcome = RunMerge(options);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(MergeJson::parse(outcome.out), expected);
  }
  EXPECT_EQ(Get("out.xml", "info.board"), "Tern\n");
}

TEST_F(Merge, JsonOfAConflict_HasNoMemberForWhatIsNotThere) {
  Change({"set", "ours.xml", "info.owner", "Zoë"});
  Change({"set", "theirs.xml", "info.owner", "Ana"});
  const auto conflicts = MergeJson::parse(RunMerge({"--json"}).out).at("conflicts");
  EXPECT_EQ(conflicts, MergeJson::parse(R"([{"what": "info.owner", "where": "", "ours": "Zoë",
                                             "theirs": "Ana"}])"));
}

TEST_F(Merge, JsonWithoutConflicts_HasNone) {
  ChangeBothWithoutConflict();
  const Outcome outcome = RunMerge({"--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(MergeJson::parse(outcome.out).at("conflicts"), MergeJson::array());
}

TEST_F(Merge, EmptyBase_IsAProjectWithNothing) {
  Write("nothing", "");
  EXPECT_EQ(Run({"merge", "nothing", "ours.xml", "theirs.xml", "-o", "out.xml"}), Done());
  EXPECT_EQ(Differences("ours.xml", "out.xml"), "");
  Change({"set", "theirs.xml", "device.device", "Q8R60"});
  Change({"add", "theirs.xml", "--sdc", "pins.sdc"});
  EXPECT_EQ(Run({"merge", "nothing", "ours.xml", "theirs.xml", "-o", "out.xml"}),
            (Outcome{1, "", Conflict("out.xml", "device.device: \"\" / Q8R25 / Q8R60\n")}));
  EXPECT_EQ(Differences("ours.xml", "out.xml"), "+ constraint.sdc[0]: pins.sdc\n");
}

TEST_F(Merge, NoFileAsBase_IsAProjectWithNothing) {
  Change({"set", "theirs.xml", "device.device", "Q8R60"});
  EXPECT_EQ(Run({"merge", "/dev/null", "ours.xml", "theirs.xml", "-o", "out.xml"}),
            (Outcome{1, "", Conflict("out.xml", "device.device: \"\" / Q8R25 / Q8R60\n")}));
}

/// Gives each file its own stamps.
class MergeOfStamps : public Merge {
 protected:
  void Stamp(const std::string& name, const std::string& stamp) const {
    projectdb::ProjectContents contents = *projectdb::ReadProjectFile(PathOf(name), "").contents;
    contents.software_version = stamp;
    contents.last_modify_time = stamp.empty() ? "" : "at " + stamp;
    projectdb::WriteProjectFile(PathOf(name), contents, {true, std::nullopt, true});
  }

  std::string StampOf(const std::string& name) const { return Get(name, "sw_version"); }
};

TEST_F(MergeOfStamps, ChangedByBoth_AreNoConflictAndStayOurs) {
  Stamp("base.xml", "1");
  Stamp("ours.xml", "2");
  Stamp("theirs.xml", "3");
  EXPECT_EQ(RunMerge({"-o", "out.xml"}), Done());
  EXPECT_EQ(StampOf("out.xml"), "2\n");
  EXPECT_EQ(Get("out.xml", "last_change_date"), "at 2\n");
}

TEST_F(MergeOfStamps, MissingEverywhere_StayAway) {
  for (const char* const name : {"base.xml", "ours.xml", "theirs.xml"}) Stamp(name, "");
  ChangeBothWithoutConflict();
  for (const char* const name : {"ours.xml", "theirs.xml"}) Stamp(name, "");
  EXPECT_THAT(RunMerge().out, Not(HasSubstr("sw_version")));
}

TEST_F(MergeOfStamps, MissingInOurs_StayAwayThoughTheOutputHasSome) {
  Stamp("ours.xml", "");
  EXPECT_EQ(RunMerge({"-o", "base.xml"}), Done());
  EXPECT_EQ(StampOf("base.xml"), "\n");
}

TEST_F(MergeTrouble, MissingFile_IsNamed) {
  ExpectTrouble({"no.xml", "ours.xml", "theirs.xml"}, "no.xml does not exist");
  ExpectTrouble({"base.xml", "no.xml", "theirs.xml"}, "no.xml does not exist");
  ExpectTrouble({"base.xml", "ours.xml", "no.xml"}, "no.xml does not exist");
}

TEST_F(MergeTrouble, TextWithConflictMarkers_IsNoProject) {
  Write("ours.xml", "<<<<<<< main\n" + Read("ours.xml"));
  ExpectTrouble({"base.xml", "ours.xml", "theirs.xml"},
                "ours.xml does not load; nothing is merged");
  ExpectTrouble({"ours.xml", "base.xml", "theirs.xml"},
                "ours.xml does not load; nothing is merged");
}

TEST_F(MergeTrouble, SideThatDoesNotLoadWhole_WouldLoseWhatDoesNot) {
  InsertElement("theirs.xml", "<kel:unknown_info/>");
  ExpectTrouble({"base.xml", "ours.xml", "theirs.xml"},
                "theirs.xml does not load; nothing is merged");
}

TEST_F(Merge, SideThatDoesNotLoadIntoOurs_LeavesOursAndSaysSo) {
  const std::string ours = Read("ours.xml");
  Write("theirs.xml", "<project>");
  EXPECT_THAT(RunMerge({"-o", "ours.xml"}).err,
              EndsWith("kelproj: error: theirs.xml does not load; nothing is merged, and ours.xml "
                       "is ours\n"));
  EXPECT_EQ(Read("ours.xml"), ours);
}

TEST_F(Merge, BaseThatDoesNotLoadWhole_IsGoodForWhatLoads) {
  InsertElement("base.xml", "<kel:unknown_info/>");
  ChangeBothWithoutConflict();
  EXPECT_EQ(RunMerge({"-o", "out.xml"}), Done());
  EXPECT_EQ(Get("out.xml", "device.device"), "Q8R40\n");
}

TEST_F(Merge, WhatASideHasAndNoMergeKeeps_IsAWarning) {
  InsertElement("theirs.xml", "<kel:package_info/>");
  const Outcome outcome = RunMerge({"-o", "out.xml"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("theirs.xml:"), HasSubstr(": warning: ")));
}

TEST_F(Merge, OutputThatIsADirectory_IsNamedAsOne) {
  std::filesystem::create_directory(PathOf("out"));
  EXPECT_EQ(RunMerge({"-o", "out"}), Failed("out is a directory"));
}

TEST_F(Merge, OfTheSampleProject_HasTheChangesOfBothAndNothingElse) {
  for (const char* const name : {"base.xml", "ours.xml", "theirs.xml"}) {
    Write(name, ReadFile(SampleProject()));
  }
  Change({"set", "ours.xml", "synthesis.param.goal", "area"});
  Change({"add", "theirs.xml", "--misc", "doc/errata.md"});
  EXPECT_EQ(RunMerge({"-o", "out.xml"}), Done());
  EXPECT_EQ(Differences("theirs.xml", "out.xml"),
            "- synthesis.param.goal: balanced type=e_option\n"
            "+ synthesis.param.goal: area type=e_option\n");
  EXPECT_THAT(Differences("ours.xml", "out.xml"), StartsWith("+ misc.files[5]: doc/errata.md"));
}

TEST_F(Merge, OutputInADirectoryThatIsMissing_IsTrouble) {
  EXPECT_EQ(RunMerge({"-o", "no/out.xml"}), Failed("there is no directory " + PathOf("no")));
}

}  // namespace
