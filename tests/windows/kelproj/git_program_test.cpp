#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

/// The program itself under the name of git, which knows nothing of what git is asked.
class GitProgram : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    std::filesystem::create_directory(NativePath(PathOf("tools 漢")));
  }

  void CopyTo(const std::string& name) const {
    std::filesystem::copy_file(NativePath(KelprojProgram()), NativePath(PathOf(name)));
  }

  Outcome SetUpGit() const {
    return Run({"git-setup", "blinker.xml"}, {".", {{"PATH", PathOf("tools 漢")}}});
  }
};

TEST_F(GitProgram, NotOnTheSearchPath_IsNotInstalled) {
  CopyTo("git.exe");
  EXPECT_EQ(SetUpGit(), Failed("git is not installed"));
}

TEST_F(GitProgram, OnTheSearchPath_IsAsked) {
  CopyTo("tools 漢/git.exe");
  EXPECT_EQ(SetUpGit(), Failed("blinker.xml is in no working tree of git"));
}

}  // namespace
