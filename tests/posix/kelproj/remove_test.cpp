#include "tests/kelproj/remove_test.h"

namespace {

using namespace test_support;

TEST_F(Remove, NameBehindALink_MeansTheSameFile) {
  std::filesystem::create_directory_symlink("rtl", PathOf("sources"));
  EXPECT_EQ(Run({"remove", "blinker.xml", "sources/b.v"}), Done());
  EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
}

}  // namespace
