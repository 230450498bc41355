#include <nlohmann/json.hpp>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

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
  EXPECT_EQ(Run({"diff", SampleProject(), SampleProject()}), Done());
}

TEST_F(Diff, FilesThatDifferInTheirStampsAlone_AreEqual) {
  std::string bytes = Read("b.xml");
  const std::string stamp = "sw_version=\"";
  bytes.insert(bytes.find(stamp) + stamp.size(), "9.");
  Write("b.xml", bytes);
  EXPECT_EQ(Compare(), Done());
}

TEST_F(Diff, Difference_IsPrintedWithItsPlaceBeforeAndAfter) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"set", "b.xml", "device.device", "R40"}, "- device.device: Q8R25\n+ device.device: R40\n"},
      {{"set", "b.xml", "info.owner", "Zoë"}, "+ info.owner: Zoë\n"},
      {{"set", "a.xml", "info.owner", "Zoë"}, "- info.owner: Zoë\n"},
      {{"add", "b.xml", "--sdc", "one.sdc"}, "+ constraint.sdc[0]: one.sdc\n"},
      // One line, whatever the value.
      {{"set", "b.xml", "info.note", "one\n- two"}, "+ info.note: one\\n- two\n"}};
  const std::string equal = Read("a.xml");
  for (const auto& [change, shown] : cases) {
    Write("a.xml", equal);
    Write("b.xml", equal);
    Change(change);
    EXPECT_EQ(Compare(), AnsweredNo(std::string("--- a.xml\n+++ b.xml\n") + shown));
  }
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

TEST_F(Diff, BrokenOrMissingFile_IsTroubleWhicheverItIs) {
  Write("b.xml", "<project>");
  for (const auto& [before, after] :
       {std::pair("a.xml", "b.xml"), std::pair("b.xml", "a.xml"), std::pair("a.xml", "c.xml")}) {
    const Outcome outcome = Run({"diff", before, after});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(Diff, ControlCharacters_DoNotReachATerminal) {
  Write("b.xml", R"(<?xml version="1.1"?>
<p name="a&#x1b;[31m b&#x9b;31m"/>)");
  EXPECT_THAT(Compare().out, HasSubstr("+ name: a\\x1b[31m b\\x9b31m\n"));
}

TEST_F(Diff, NoFile_IsAProjectWithNothing) {
  const Outcome outcome = Run({"diff", "/dev/null", "a.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("+ device.device: Q8R25\n"));
}

TEST_F(Diff, OneOrThreeFiles_AreRefused) {
  for (const auto& command :
       {std::vector<std::string>{"diff", "a.xml"}, {"diff", "a.xml", "b.xml", "a.xml"}}) {
    EXPECT_EQ(Run(command), Failed("a comparison takes two project files"));
  }
}

}  // namespace
