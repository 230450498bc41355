#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class NewOnPosix : public KelprojTest {};

TEST_F(NewOnPosix, DirectoryThatCannotBeWritten_Fails) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  const Permissions read_only(Directory(), 0555);
  EXPECT_EQ(RunUnprivileged({"new", "blinker", "-o", "blinker.xml"}),
            Failed("the directory " + Directory() + " may not be written"));
}

TEST_F(NewOnPosix, DirectoryThatCannotBeEntered_Fails) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  std::filesystem::create_directory(PathOf("closed"));
  const Permissions closed(PathOf("closed"), 0);
  EXPECT_EQ(RunUnprivileged({"new", "blinker", "-o", "closed/blinker.xml"}),
            Failed("closed/blinker.xml: " + TextOfErrno(EACCES)));
}

TEST_F(NewOnPosix, FileWithBlanksQuotesAndUmlauts_IsCreatedUnderThatName) {
  const std::string file = "ein \"schönes\" Projekt's.xml";
  EXPECT_EQ(Run({"new", "Blinklicht \"ä\" & <ö>", "-o", file}), Done());
  EXPECT_THAT(Names(), ElementsAre(file));
  EXPECT_EQ(Get(file, "name"), "Blinklicht \"ä\" & <ö>\n");
}

}  // namespace
