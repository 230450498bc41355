#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

/// The program as it is installed, and then moved.
class Installation : public KelprojTest {
 protected:
  void SetUp() override {
    const Outcome outcome =
        RunProcess({"cmake", "--install", BUILD_DIRECTORY, "--prefix", PathOf("first place")});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    std::filesystem::rename(PathOf("first place"), PathOf("second place"));
  }

  std::string Installed(const std::string& name) const { return PathOf("second place/" + name); }
};

TEST_F(Installation, Moved_ChecksWithItsOwnSchema) {
  EXPECT_EQ(RunProcess({Installed("bin/kelproj"), "check", SampleProject()}), Done());
  std::filesystem::remove(Installed("share/projectdb/wdp_proj.xsd"));
  EXPECT_NE(RunProcess({Installed("bin/kelproj"), "check", SampleProject()}), Done());
}

TEST_F(Installation, ManualPageAndCompletions_AreThoseThatTheProgramPrints) {
  EXPECT_EQ(Run({"man"}), Printed(ReadFile(Installed("share/man/man1/kelproj.1"))));
  const std::pair<const char*, const char*> completions[] = {
      {"bash", "share/bash-completion/completions/kelproj"},
      {"zsh", "share/zsh/site-functions/_kelproj"},
      {"fish", "share/fish/vendor_completions.d/kelproj.fish"}};
  for (const auto& [shell, file] : completions) {
    EXPECT_EQ(Run({"completion", shell}), Printed(ReadFile(Installed(file)))) << shell;
  }
}

}  // namespace
