#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

bool HasPseudoTerminals() {
  const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master < 0) return false;
  std::array<char, 64> name;
  const bool has_terminal = grantpt(master) == 0 && unlockpt(master) == 0 &&
                            ptsname_r(master, name.data(), name.size()) == 0 &&
                            access(name.data(), R_OK | W_OK) == 0;
  close(master);
  return has_terminal;
}

class ShowOnATerminal : public KelprojTest {
 protected:
  void SetUp() override {
    if (RunProcess({"script", "--version"}).status != 0) GTEST_SKIP() << "there is no script";
    if (!HasPseudoTerminals()) GTEST_SKIP() << "there are no pseudo-terminals";
  }

  Outcome ShowSample(const std::string& no_colour) const {
    const std::string command = "'" + KelprojProgram() + "' show '" + SampleProject() + "'";
    return RunProcess({"script", "--quiet", "--return", "--command", command, "/dev/null"},
                      {".", {{"TERM", "xterm"}, {"NO_COLOR", no_colour}}});
  }
};

TEST_F(ShowOnATerminal, Headings_AreEmphasised) {
  EXPECT_THAT(ShowSample("").out, HasSubstr("\x1b[1mDevice\x1b[0m\r\n  family "));
}

TEST_F(ShowOnATerminal, NoColour_LeavesThemAsTheyAre) {
  EXPECT_THAT(ShowSample("1").out, HasSubstr("\nDevice\r\n  family "));
}

}  // namespace
