// What no command that changes a project file may do, whatever the file is.

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::KelprojTest;
using test_support::Permissions;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Command = std::vector<std::string>;

const std::vector<Command> kChanges = {
    {"set", "blinker.xml", "name", "changed"},
    {"add", "blinker.xml", "--misc", "blinker.xml"},
    {"set-interface", "blinker.xml", "pins.interface.csv"},
};

class Change : public KelprojTest, public ::testing::WithParamInterface<Command> {
 protected:
  void ExpectNotWritten(const std::string& bytes) const {
    Write("blinker.xml", bytes);
    EXPECT_EQ(Run(GetParam()).status, 2);
    EXPECT_EQ(Read("blinker.xml"), bytes);
    EXPECT_THAT(Names(), ElementsAre("blinker.xml"));
  }

  std::string ProjectWith(const std::string& element) const {
    MakeProject();
    std::string bytes = Read("blinker.xml");
    bytes.insert(bytes.find("</kel:project>"), element);
    return bytes;
  }
};

INSTANTIATE_TEST_SUITE_P(, Change, ::testing::ValuesIn(kChanges), [](const auto& test) {
  const std::string& command = test.param[0];
  return command == "set-interface" ? "SetInterface" : command;
});

TEST_P(Change, MissingFile_IsNotCreated) {
  EXPECT_EQ(Run(GetParam()).status, 2);
  EXPECT_TRUE(Names().empty());
}

TEST_P(Change, EmptyFile_IsNotWritten) { ExpectNotWritten(""); }

TEST_P(Change, FileThatEndsTooEarly_IsNotWritten) {
  MakeProject();
  ExpectNotWritten(Read("blinker.xml").substr(0, 600));
}

TEST_P(Change, FileWithAnUnknownElement_IsNotWritten) {
  ExpectNotWritten(ProjectWith("<kel:floorplan/>"));
}

TEST_P(Change, FileWithAMapThatItsProcessDoesNotHave_IsNotWritten) {
  ExpectNotWritten(
      ProjectWith("<kel:debugger><kel:defmacro name=\"a\" value=\"b\"/></kel:debugger>"));
}

TEST_P(Change, FileThatDoesNotLoad_IsToldWithThePlaceOfTheError) {
  Write("blinker.xml", "<project>\n  <floorplan/>\n</project>\n");
  EXPECT_THAT(Run(GetParam()).err, HasSubstr("\nblinker.xml:2:3: error: "));
}

TEST_P(Change, ParameterThatIsNotKept_IsToldWithItsPlace) {
  Write("blinker.xml",
        "<project>\n  <debugger>\n"
        "    <param name=\"cable\" value=\"\" value_type=\"e_string\"/>\n"
        "  </debugger>\n</project>\n");
  const auto outcome = Run(GetParam());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr("blinker.xml:3:5: warning: "));
}

TEST_P(Change, FileInADirectoryThatCannotBeWritten_IsNotWritten) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const std::string before = Read("blinker.xml");
  const Permissions read_only(Directory(), 0555);
  const auto outcome = RunUnprivileged(GetParam());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("Permission denied"));
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_P(Change, FileThatIsProtectedAgainstWriting_IsNotWritten) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const std::string before = Read("blinker.xml");
  const Permissions read_only(PathOf("blinker.xml"), 0444);
  const auto outcome = RunUnprivileged(GetParam());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("Permission denied"));
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_P(Change, FileThatCannotBeRead_IsNotWritten) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const std::string before = Read("blinker.xml");
  const Permissions write_only(PathOf("blinker.xml"), 0222);
  EXPECT_EQ(RunUnprivileged(GetParam()).status, 2);
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_P(Change, FileBehindALink_IsChangedAndTheLinkStays) {
  MakeProject();
  std::filesystem::rename(PathOf("blinker.xml"), PathOf("real.xml"));
  std::filesystem::create_symlink("real.xml", PathOf("blinker.xml"));
  const std::string before = Read("real.xml");
  EXPECT_EQ(Run(GetParam()).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(PathOf("blinker.xml")));
  EXPECT_NE(Read("real.xml"), before);
}

TEST_P(Change, FileOfADirectory_Fails) {
  std::filesystem::create_directory(PathOf("blinker.xml"));
  EXPECT_EQ(Run(GetParam()).status, 2);
}

}  // namespace
