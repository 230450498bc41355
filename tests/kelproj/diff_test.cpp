#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "testing/shipped_files.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::AnsweredNo;
using test_support::Done;
using test_support::Failed;
using test_support::KelprojTest;
using test_support::Outcome;
using ::testing::HasSubstr;

using Json = nlohmann::json;

class Diff : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject("a.xml");
    std::filesystem::copy_file(PathOf("a.xml"), PathOf("b.xml"));
  }

  void Change(const std::vector<std::string>& arguments) const {
    ASSERT_EQ(Run(arguments).status, 0);
  }

  Outcome Compare(std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"diff", "a.xml", "b.xml"});
    return Run(options);
  }
};

TEST_F(Diff, EqualProjects_PrintNothing) { EXPECT_EQ(Compare(), Done()); }

TEST_F(Diff, OneFile_EqualsItself) {
  EXPECT_EQ(Run({"diff", test_support::SampleProject(), test_support::SampleProject()}), Done());
}

TEST_F(Diff, FilesThatDifferInTheirStampsAlone_AreEqual) {
  std::string bytes = Read("b.xml");
  const std::string stamp = "sw_version=\"";
  bytes.insert(bytes.find(stamp) + stamp.size(), "9.");
  Write("b.xml", bytes);
  EXPECT_EQ(Compare(), Done());
}

TEST_F(Diff, ChangedValue_IsPrintedBeforeAndAfter) {
  Change({"set", "b.xml", "device.device", "R40"});
  EXPECT_EQ(Compare(), AnsweredNo("--- a.xml\n"
                                  "+++ b.xml\n"
                                  "- device.device: Q8R25\n"
                                  "+ device.device: R40\n"));
}

TEST_F(Diff, AddedValue_IsPrintedAfter) {
  Change({"set", "b.xml", "info.owner", "Zoë"});
  EXPECT_EQ(Compare(), AnsweredNo("--- a.xml\n+++ b.xml\n+ info.owner: Zoë\n"));
}

TEST_F(Diff, RemovedValue_IsPrintedBefore) {
  Change({"set", "a.xml", "info.owner", "Zoë"});
  EXPECT_EQ(Compare(), AnsweredNo("--- a.xml\n+++ b.xml\n- info.owner: Zoë\n"));
}

TEST_F(Diff, FilePutIntoAList_IsOneDifference) {
  Change({"add", "a.xml", "--misc", "one.md", "three.md"});
  Change({"add", "b.xml", "--misc", "one.md", "two.md", "three.md"});
  const Json differences = Json::parse(Compare({"--json"}).out).at("differences");
  ASSERT_EQ(differences.size(), 1u);
  EXPECT_EQ(differences.at(0).at("what"), "misc.files");
  EXPECT_EQ(differences.at(0).at("where"), "1");
  EXPECT_THAT(differences.at(0).at("after").get<std::string>(), HasSubstr("two.md"));
  EXPECT_FALSE(differences.at(0).contains("before"));
}

TEST_F(Diff, EntryOfAList_IsPrintedWithItsPlace) {
  Change({"add", "b.xml", "--sdc", "one.sdc"});
  EXPECT_EQ(Compare(), AnsweredNo("--- a.xml\n+++ b.xml\n+ constraint.sdc[0]: one.sdc\n"));
}

TEST_F(Diff, ValueWithALineBreak_TakesOneLine) {
  Change({"set", "b.xml", "info.note", "one\n- two"});
  EXPECT_EQ(Compare(), AnsweredNo("--- a.xml\n+++ b.xml\n+ info.note: one\\n- two\n"));
}

TEST_F(Diff, Json_HasTheFilesAndTheDifferences) {
  Change({"set", "b.xml", "name", "blinker2"});
  const Outcome outcome = Compare({"--json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(Json::parse(outcome.out), Json::parse(R"({"before": "a.xml", "after": "b.xml",
                            "differences": [{"what": "name", "where": "", "before": "blinker",
                                             "after": "blinker2"}]})"));
}

TEST_F(Diff, JsonOfEqualProjects_HasNoDifferences) {
  const Outcome outcome = Compare({"--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Json::parse(outcome.out).at("differences"), Json::array());
}

TEST_F(Diff, BrokenFile_IsTroubleWhicheverItIs) {
  Write("b.xml", "<project>");
  EXPECT_EQ(Run({"diff", "a.xml", "b.xml"}).status, 2);
  EXPECT_EQ(Run({"diff", "b.xml", "a.xml"}).status, 2);
}

TEST_F(Diff, MissingFile_IsTrouble) {
  const Outcome outcome = Run({"diff", "a.xml", "c.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
}

TEST_F(Diff, NoFile_IsAProjectWithNothing) {
  const Outcome outcome = Run({"diff", "/dev/null", "a.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("+ device.device: Q8R25\n"));
}

TEST_F(Diff, OneFileAlone_IsRefused) {
  EXPECT_EQ(Run({"diff", "a.xml"}), Failed("a comparison takes two project files"));
}

TEST_F(Diff, ThreeFiles_AreRefused) {
  EXPECT_EQ(Run({"diff", "a.xml", "b.xml", "a.xml"}),
            Failed("a comparison takes two project files"));
}

}  // namespace
