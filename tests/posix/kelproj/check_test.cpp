#include "tests/kelproj/check_test.h"

namespace {

using namespace test_support;

TEST_F(Check, FileThatCannotBeRead_IsTrouble) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const Permissions write_only(PathOf("blinker.xml"), 0222);
  EXPECT_EQ(RunUnprivileged({"check", "blinker.xml"}), Failed("blinker.xml may not be read"));
}

TEST_F(CheckContents, FileTwiceInAListBehindALink_IsAWarning) {
  std::filesystem::create_directory(PathOf("rtl"));
  std::filesystem::create_directory_symlink("rtl", PathOf("link"));
  EXPECT_EQ(CheckProject(DesignFiles({"rtl/a.v", "link/a.v"})),
            Printed("mixer.xml: warning: design.files[1]: \"link/a.v\" is the file of "
                    "design.files[0] too\n"));
}

TEST_F(CheckFiles, UnlistedBesideAListedNameInAnotherSpelling_IsNotNamed) {
  std::filesystem::create_directories(PathOf("rtl"));
  std::filesystem::create_directory_symlink("rtl", PathOf("link"));
  Write("rtl/a.v", "");
  Write("mixer.xml", MixerXml("<design_info><design_file name=\"link/./a.v\"/></design_info>"));
  EXPECT_EQ(Run({"check", "mixer.xml", "--unlisted"}), Done());
}

TEST_F(MovedInstallation, ProgramBehindALink_FindsTheSchemaBesideItself) {
  WriteFile(Schema(), kAnySchema);
  std::filesystem::create_symlink(Program(), PathOf("kelproj"));
  EXPECT_EQ(RunProcess({PathOf("kelproj"), "check", PathOf("mixer.xml")}).status, 0);
}

TEST_F(MovedInstallation, NoSchema_IsTroubleAndTellsWhereItWasLookedFor) {
  if (std::filesystem::exists(KELPROJ_INSTALLED_SCHEMA)) GTEST_SKIP() << "there is one";
  EXPECT_EQ(RunProcess({Program(), "check", PathOf("mixer.xml")}),
            Failed("the installed schema is neither " + Schema() +
                   " nor " KELPROJ_INSTALLED_SCHEMA ": --schema names another"));
}

}  // namespace
