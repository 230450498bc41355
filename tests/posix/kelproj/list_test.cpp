#include "tests/kelproj/list_test.h"

namespace {

using namespace test_support;

TEST_F(List, ThroughALinkToTheDirectory_PrintsNamesThatTheUserCanOpen) {
  Write("tb höhe.sv", "");
  std::filesystem::create_directories(PathOf("a/b"));
  std::filesystem::create_directory_symlink(PathOf("lamp"), PathOf("a/b/link"));
  for (const char* directory : {"a/b", "a/b/link"}) {
    const std::string name = RunList({"--sim"}, directory, PathOf("a/b/link/lamp.xml")).out;
    ASSERT_FALSE(name.empty());
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(PathOf(directory)) /
                                        name.substr(0, name.size() - 1)))
        << name;
  }
}

TEST_F(List, NameThatGoesBackThroughALink_IsWhereTheSystemSays) {
  std::filesystem::create_directories(PathOf("other/sub"));
  std::filesystem::create_directory_symlink(PathOf("other/sub"), PathOf("lamp/link"));
  Write("rename.json", R"({"simulation": {"files": [{"name": "link/../bench.sv"}]}})");
  ASSERT_EQ(Run({"apply", "lamp/lamp.xml", "rename.json"}).status, 0);
  EXPECT_EQ(RunList({"--sim"}, "lamp", "lamp.xml"), Printed("../other/bench.sv\n"));
}

}  // namespace
