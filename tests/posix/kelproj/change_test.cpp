#include "tests/kelproj/change_test.h"

namespace {

using namespace test_support;

TEST_P(Change, FileThatPermissionsProtect_IsNotWritten) {
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const std::string before = Read("blinker.xml");
  struct {
    std::string path;
    unsigned permissions;
    std::string reason;
  } const cases[] = {{Directory(), 0555, "the directory " + Directory() + " may not be written"},
                     {PathOf("blinker.xml"), 0444, "blinker.xml may not be written"},
                     {PathOf("blinker.xml"), 0222, "blinker.xml may not be read"}};
  for (const auto& [path, permissions, reason] : cases) {
    const Permissions changed(path, permissions);
    const auto outcome = RunUnprivileged(GetParam());
    EXPECT_EQ(outcome, Failed(reason));
  }
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

TEST_F(KelprojTest, FileBehindALinkIntoAnotherDirectory_HasTheNamesThatALoadOfTheLinkWants) {
  std::filesystem::create_directories(PathOf("real"));
  MakeProject("real/lamp.xml");
  std::filesystem::create_symlink("real/lamp.xml", PathOf("lamp.xml"));
  Write("real/a.v", "");
  const Outcome warned = DoneWithWarning(
      "lamp.xml is a link to " + std::filesystem::canonical(PathOf("real/lamp.xml")).string() +
      "; names of files are relative to the directory of the link");
  EXPECT_EQ(Run({"add", "lamp.xml", "--rtl", "real/a.v"}), warned);
  EXPECT_EQ(Run({"check", "lamp.xml", "--files"}), Done());
  EXPECT_EQ(Run({"list", "lamp.xml"}), Printed("real/a.v\n"));
  EXPECT_EQ(Run({"list", "lamp.xml", "--stored"}), Printed("real/a.v\n"));
  EXPECT_EQ(Run({"rename", "lamp.xml", "real/a.v", "real/b.v"}), warned);
  EXPECT_EQ(Run({"remove", "lamp.xml", "real/b.v"}), warned);
  EXPECT_EQ(Run({"list", "lamp.xml"}), Done());
}

}  // namespace
