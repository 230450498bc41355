#include <cctype>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class LetterOfADrive : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    Write("a.v", "");
  }

  // The same place with the letter in the other case.
  std::string Other(const std::string& name) const {
    std::string path = PathOf(name);
    path[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(path[0])));
    return path;
  }
};

TEST_F(LetterOfADrive, InTheOtherCase_IsThatOfTheSameFiles) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", PathOf("a.v")}), Done());
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", Other("a.v")}),
            Refused("\"" + Other("a.v") + "\" is among the design files already"));
  EXPECT_EQ(Run({"rename", "blinker.xml", Other("a.v"), Other("b.v")}).status, 0);
  EXPECT_THAT(Listed("design.files"), ElementsAre(PathOf("b.v")));
  EXPECT_EQ(Run({"remove", "blinker.xml", Other("b.v")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre());
}

TEST_F(LetterOfADrive, InTheOtherCase_IsThatOfTheCurrentDirectory) {
  std::filesystem::create_directory(NativePath(PathOf("rtl")));
  Write("rtl/b.v", "");
  EXPECT_EQ(Run({"add", Other("blinker.xml"), "--rtl", "b.v"}, {Other("rtl")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("rtl/b.v"));
  EXPECT_EQ(Run({"list", PathOf("blinker.xml")}, {Other("rtl")}), Printed("b.v\n"));
}

TEST_F(LetterOfADrive, AbsoluteName_IsStoredAsGiven) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", Other("a.v")}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre(Other("a.v")));
}

/// Set-up with a git that answers everything with one text.
class GitThatAnswers : public LetterOfADrive {
 protected:
  void SetUp() override {
    LetterOfADrive::SetUp();
    std::filesystem::create_directory(NativePath(PathOf("programs")));
    std::filesystem::copy_file(NativePath(ANSWERING_PROGRAM),
                               NativePath(PathOf("programs/git.exe")));
    Write("HEAD", "");
  }

  Outcome SetUpGit(const std::string& file, const std::string& answer) const {
    return Run({"git-setup", file}, {".", {{"PATH", PathOf("programs")}, {"ANSWER", answer}}});
  }
};

TEST_F(GitThatAnswers, WorkingTreeWithTheLetterInTheOtherCase_HasTheFilesBelowIt) {
  std::filesystem::create_directory(NativePath(PathOf("hw")));
  MakeProject("hw/lamp.xml");
  std::string top = Other("");
  top.pop_back();
  EXPECT_EQ(SetUpGit("hw/lamp.xml", top), Done());
  EXPECT_EQ(Read(".gitattributes"), "/hw/lamp.xml diff=kelproj merge=kelproj filter=kelproj\n");
}

TEST_F(GitThatAnswers, DriveThatIsMissing_IsInNoWorkingTree) {
  EXPECT_EQ(SetUpGit("Q:/hw/p.xml", PathOf("")),
            Failed("Q:/hw/p.xml is in no working tree of git"));
}

}  // namespace
