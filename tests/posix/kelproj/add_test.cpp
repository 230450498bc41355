#include "tests/kelproj/add_test.h"

namespace {

using namespace test_support;

TEST_F(Add, ProjectReachedThroughALink_HasTheNamesOfItsFilesWithoutIt) {
  std::filesystem::create_directories(PathOf("real/proj/rtl"));
  std::filesystem::create_directory_symlink("real/proj", PathOf("proj"));
  for (const char* name : {"a.v", "b.v", "c.v"}) Write(std::string("real/proj/rtl/") + name, "");
  ASSERT_EQ(Run({"new", "lamp", "-o", "proj/lamp.xml"}), Done());
  EXPECT_EQ(Run({"add", "proj/lamp.xml", "--rtl", "proj/rtl/a.v"}), Done());
  EXPECT_EQ(Run({"add", "proj/lamp.xml", "--rtl", "real/proj/rtl/b.v"}), Done());
  EXPECT_EQ(Run({"add", "real/proj/lamp.xml", "--rtl", "proj/rtl/c.v"}), Done());
  EXPECT_EQ(Run({"rename", "proj/lamp.xml", "proj/rtl/c.v", "proj/rtl/d.v"}), Done());
  EXPECT_EQ(Run({"list", "proj/lamp.xml", "--stored"}).out, "rtl/a.v\nrtl/b.v\nrtl/d.v\n");
}

TEST_F(Add, WayBackThroughALink_LeadsWhereTheSystemSays) {
  std::filesystem::create_directories(PathOf("other/sub"));
  std::filesystem::create_directory_symlink("other/sub", PathOf("link"));
  Write("other/x.v", "");
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "link/../x.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("other/x.v"));
  EXPECT_EQ(Run({"rename", "blinker.xml", "other/x.v", "link/../y.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("other/y.v"));
}

TEST_F(Add, FileBehindALinkInTheProject_KeepsItsSpelling) {
  std::filesystem::create_directory_symlink("rtl", PathOf("sources"));
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "sources/d.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("sources/d.v"));
}

TEST_F(Add, FileThatTheListHas_IsRefusedBehindALink) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "rtl/d.v"}), Done());
  std::filesystem::create_directory_symlink("rtl", PathOf("sources"));
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", "sources/d.v"},
                    Refused("\"sources/d.v\" is among the design files already"));
}

TEST_F(Add, NamesWithBlanksQuotesBracketsAndUmlauts_AreKeptAsTheyAre) {
  const std::vector<std::string> names = {"ein \"Stück\" Text's.md", "[a,b]", "{}", "%%", "-x"};
  for (const std::string& name : names) Write(name, "");
  EXPECT_EQ(
      Run({"add", "blinker.xml", "--misc", names[0], names[1], names[2], names[3], "--", names[4]}),
      Done());
  EXPECT_THAT(Table(), HasSubstr("Miscellaneous files (5)\n"
                                 "  ein \"Stück\" Text's.md    default\n"
                                 "  [a,b]                    default\n"
                                 "  {}                       default\n"
                                 "  %%                       default\n"
                                 "  -x                       default\n"));
}

TEST_F(Add, NamesThatEndWithAZero_MayHaveLineBreaks) {
  ProcessSettings settings;
  settings.input = std::string("two\nlines.md\0a.v\0", 17);
  Write("two\nlines.md", "");
  EXPECT_EQ(Run({"add", "blinker.xml", "--misc", "--from", "-", "-0"}, settings), Done());
  EXPECT_THAT(Listed("misc.files"), ElementsAre("two\nlines.md", "a.v"));
}

}  // namespace
